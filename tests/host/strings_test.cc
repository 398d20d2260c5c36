// Strings of the reference host: layouts, encodings, and the data handed out of them.
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "native/corefoundation.h"
#include "tests/host/sample_plugin.h"

namespace tests {
namespace {

using Lines = std::vector<std::string>;
using zel::OlderStringRecord;
using zel::REALboolean;
using zel::REALobject;
using zel::REALstring;
using zel::REALstringData;

constexpr std::uint32_t kUtf8 = 0x08000100;
constexpr std::uint32_t kUtf16 = 0x100;
constexpr std::uint32_t kLatin1 = 0x201;
constexpr std::uint32_t kAscii = 0x600;
constexpr std::uint32_t kMacRoman = 0;
constexpr std::uint32_t kAsStored = 0xFFFF;

REALstring build(const char* bytes, std::int32_t length) {
  return entryPoint<REALstring(const char*, std::int32_t)>("REALBuildString")(bytes, length);
}
void lock(REALstring string) { entryPoint<void(REALstring)>("REALLockString")(string); }
void unlock(REALstring string) { entryPoint<void(REALstring)>("REALUnlockString")(string); }
bool getData(REALstring string, std::uint32_t encoding, REALstringData* out) {
  return entryPoint<REALboolean(REALstring, std::uint32_t, REALstringData*)>("PluginGetStringData")(
             string, encoding, out) != 0;
}
void dispose(REALstringData* record) {
  entryPoint<void(REALstringData*)>("PluginDisposeStringData")(record);
}

TEST_F(HostTest, BuildsStringsWithoutEncoding) {
  const REALstring string = build("a\0b", 3);
  ASSERT_NE(string, nullptr);
  EXPECT_EQ(host->bytes(string), std::string("a\0b", 3));
  EXPECT_EQ(host->references(string), 1);
  const auto encoding = entryPoint<std::uint32_t(REALstring)>("REALGetStringEncoding");
  EXPECT_EQ(encoding(string), kAsStored);
  entryPoint<void(REALstring, std::uint32_t)>("REALSetStringEncoding")(string, kAscii);
  EXPECT_EQ(encoding(string), kAscii);
  EXPECT_EQ(host->encoding(string), kAscii);
  lock(string);
  EXPECT_EQ(host->references(string), 2);
  unlock(string);
  unlock(string);
  EXPECT_EQ(host->references(string), 0);
}

TEST_F(HostTest, BuildsNoEmptyStrings) {
  EXPECT_EQ(build("", 0), nullptr);
  EXPECT_EQ(build("abc", -1), nullptr);
  EXPECT_EQ(build(nullptr, 3), nullptr);
  EXPECT_EQ(takeFailures(), Lines{"REALBuildString was given no bytes"});
}

TEST_F(HostTest, MakesEmptyStringsForTests) {
  const REALstring empty = host->string("");
  ASSERT_NE(empty, nullptr);
  EXPECT_EQ(host->bytes(empty), "");
  EXPECT_EQ(host->encoding(empty), kUtf8);
  host->unlock(empty);
  EXPECT_EQ(host->bytes(nullptr), "");
  EXPECT_EQ(host->encoding(nullptr), kAsStored);
}

TEST_F(HostTest, FindsStringsReleasedTooOften) {
  const REALstring string = host->string("twice");
  unlock(string);
  EXPECT_EQ(*reinterpret_cast<unsigned char*>(string), 0xDD);
  unlock(string);
  EXPECT_EQ(takeFailures(),
            Lines{"REALUnlockString was given string \"twice\" (#1), which is dead"});
}

TEST_F(HostTest, LaysStringsOutForAllToReadBefore2013) {
  for (const std::optional<double> version : {std::optional<double>(), std::optional(2012.99)}) {
    start({.version = version});
    const REALstring string = host->string("text");
    const auto* const record = reinterpret_cast<const OlderStringRecord*>(string);
    EXPECT_EQ(record->length, 4);
    EXPECT_STREQ(record->storage + 1, "text");
    EXPECT_NE(record->storage[0], 't');
    host->unlock(string);
  }
}

TEST_F(HostTest, HidesStringsFrom2013On) {
  start({.version = 2013.0});
  const REALstring string = host->string("text");
  const auto* const record = reinterpret_cast<const OlderStringRecord*>(string);
  EXPECT_NE(record->length, 4);
  EXPECT_STRNE(record->storage + 1, "text");
  EXPECT_STREQ(entryPoint<const char*(REALstring)>("StringGetCString")(string), "text");
  host->unlock(string);
}

// --- conversions

TEST_F(HostTest, ConvertsBetweenEncodings) {
  const auto convert = entryPoint<REALstring(REALstring, std::uint32_t)>("REALConvertString");
  struct Case {
    std::string bytes;
    std::uint32_t from;
    std::uint32_t to;
    std::string converted;
  };
  const std::string utf16 = {'\xE9', '\0', '\x3D', '\xD8', '\0', '\xDE'};  // little-endian
  const std::vector<Case> cases = {
      {"\xC3\xA9\xF0\x9F\x98\x80", kUtf8, kUtf16, utf16},
      {utf16, kUtf16, kUtf8, "\xC3\xA9\xF0\x9F\x98\x80"},
      {"caf\xE9", kLatin1, kUtf8, "caf\xC3\xA9"},
      {"caf\x8E", kMacRoman, kUtf8, "caf\xC3\xA9"},
      {"caf\xC3\xA9", kUtf8, kMacRoman, "caf\x8E"},
      {"plain", kUtf8, kAscii, "plain"},
      {"\xC3\xA9", kUtf8, kUtf8, "\xC3\xA9"},
  };
  for (const Case& c : cases) {
    const REALstring string = host->string(c.bytes, c.from);
    const REALstring converted = convert(string, c.to);
    EXPECT_EQ(host->bytes(converted), c.converted);
    EXPECT_EQ(host->encoding(converted), c.to);
    EXPECT_EQ(host->references(converted), 1);
    unlock(converted);
    unlock(string);
  }
}

TEST_F(HostTest, ConvertsOnlyWhatItCan) {
  const auto convert = entryPoint<REALstring(REALstring, std::uint32_t)>("REALConvertString");
  struct Case {
    std::string bytes;
    std::uint32_t from;
    std::uint32_t to;
  };
  const std::vector<Case> cases = {{"\xC3\xA9", kUtf8, kAscii},     {"\xFF", kUtf8, kUtf16},
                                   {"abc", kUtf16, kUtf8},          {"text", kAsStored, kUtf8},
                                   {"text", kUtf8, 0x12345},        {"\x80", kAscii, kUtf8},
                                   {"\xE2\x82\xAC", kUtf8, kLatin1}};
  for (const Case& c : cases) {
    const REALstring string = host->string(c.bytes, c.from);
    EXPECT_EQ(convert(string, c.to), nullptr) << c.from << " to " << c.to;
    unlock(string);
  }
}

TEST_F(HostTest, ConvertsAfterWhatItCouldNotAsBefore) {
  const auto convert = entryPoint<REALstring(REALstring, std::uint32_t)>("REALConvertString");
  // A character that ends in its middle, then a whole one, then one that can't be expressed.
  const struct {
    const char* bytes;
    const char* converted;
  } rows[] = {{"caf\xC3", ""},
              {"\xA9", ""},
              {"caf\xC3\xA9", "caf\xE9"},
              {"\xE2\x82\xAC", ""},
              {"caf\xC3\xA9", "caf\xE9"}};
  for (const auto& row : rows) {
    const REALstring string = host->string(row.bytes, kUtf8);
    const REALstring converted = convert(string, kLatin1);
    EXPECT_EQ(converted == nullptr ? "" : host->bytes(converted), row.converted);
    if (converted != nullptr) unlock(converted);
    unlock(string);
  }
}

std::string textOf(zel::CFStringRef string) {
  char buffer[100] = {};
  if (string == nullptr) return "null";
  if (zel::CFStringGetCString(string, buffer, sizeof buffer, kUtf8) == 0) return "unconvertible";
  return buffer;
}

TEST_F(HostTest, MakesNativeStrings) {
  const auto native =
      entryPoint<zel::CFStringRef(REALstring, unsigned char)>("REALGetStringCFString");
  const auto converted = [this, native](const std::string& bytes, std::uint32_t encoding) {
    const REALstring string = host->string(bytes, encoding);
    const zel::CFStringRef made = native(string, 0);
    std::string text = textOf(made);
    if (made != nullptr) zel::CFRelease(made);
    unlock(string);
    return text;
  };
  EXPECT_EQ(converted("caf\xC3\xA9", kUtf8), "caf\xC3\xA9");
  EXPECT_EQ(converted("caf\xE9", kLatin1), "caf\xC3\xA9");
  EXPECT_EQ(converted(std::string("a\0b\0", 4), kUtf16), "ab");
  EXPECT_EQ(converted("\xFF", kUtf8), "null");
  EXPECT_EQ(converted("raw", kAsStored), "null");
  EXPECT_EQ(native(nullptr, 0), nullptr);
  EXPECT_EQ(takeFailures(), Lines{"REALGetStringCFString was given a null handle"});
}

// --- data

TEST_F(HostTest, HandsOutBytesAsStoredOrConverted) {
  const REALstring string = host->string("caf\xE9", kLatin1);
  REALstringData data = {};
  ASSERT_TRUE(getData(string, kAsStored, &data));
  EXPECT_EQ(data.length, 4U);
  EXPECT_EQ(data.encoding, kAsStored);
  EXPECT_EQ(std::memcmp(data.data, "caf\xE9\0\0\0", 8), 0);
  EXPECT_NE(host->unbalanced().find("string data of 4 bytes (#2): 1 reference\n"),
            std::string::npos);
  dispose(&data);
  ASSERT_TRUE(getData(string, kUtf8, &data));
  EXPECT_EQ(data.length, 5U);
  EXPECT_EQ(data.encoding, kUtf8);
  EXPECT_EQ(std::memcmp(data.data, "caf\xC3\xA9\0\0\0", 9), 0);
  dispose(&data);
  unlock(string);
}

TEST_F(HostTest, HandsOutNothingItCannotConvert) {
  const REALstring string = host->string("\xC3\xA9", kUtf8);
  REALstringData data = {nullptr, 7, 8};
  EXPECT_FALSE(getData(string, kAscii, &data));
  EXPECT_FALSE(getData(nullptr, kAsStored, &data));
  EXPECT_EQ(data.length, 7U);
  EXPECT_EQ(data.encoding, 8U);
  unlock(string);
}

TEST_F(HostTest, TakesBackOnlyWhatItHandedOut) {
  const REALstring string = host->string("text");
  REALstringData data = {};
  ASSERT_TRUE(getData(string, kAsStored, &data));
  REALstringData other = {&data, 4, kAsStored};
  dispose(&other);
  dispose(&data);
  dispose(&data);
  unlock(string);
  EXPECT_EQ(
      takeFailures(),
      (Lines{"PluginDisposeStringData was given a handle that isn't the host's",
             "PluginDisposeStringData was given string data of 4 bytes (#2), which is dead"}));
}

TEST_F(HostTest, LetsThePluginFreeDataWhileDisposingIsHidden) {
  const REALstring string = host->string("text");
  REALstringData data = {};
  host->hideFirst("PluginDisposeStringData", 2);
  EXPECT_EQ(host::Host::resolver()("PluginDisposeStringData"), nullptr);
  ASSERT_TRUE(getData(string, kAsStored, &data));
  std::free(data.data);
  EXPECT_EQ(host::Host::resolver()("PluginDisposeStringData"), nullptr);
  ASSERT_TRUE(getData(string, kAsStored, &data));
  dispose(&data);
  unlock(string);
}

TEST_F(HostTest, CountsBytesForPrograms) {
  const auto loadMethod = entryPoint<void*(REALobject, const char*)>("REALLoadGlobalMethod");
  const auto lenB = reinterpret_cast<std::int32_t (*)(REALstring)>(
      loadMethod(nullptr, "LenB( s as string ) as integer"));
  ASSERT_NE(lenB, nullptr);
  const REALstring string = host->string("caf\xC3\xA9");
  EXPECT_EQ(lenB(string), 5);
  EXPECT_EQ(lenB(nullptr), 0);
  EXPECT_EQ(host->calls("LenB"), 2);
  EXPECT_EQ(loadMethod(nullptr, "Len(s as string) as integer"), nullptr);
  host->hide("LenB");
  EXPECT_EQ(loadMethod(nullptr, "LenB(s as string) as integer"), nullptr);
  EXPECT_EQ(loadMethod(reinterpret_cast<REALobject>(string), "LenB(s as string) as integer"),
            nullptr);
  EXPECT_EQ(takeFailures(), Lines{"REALLoadGlobalMethod was given an object"});
  unlock(string);
}

}  // namespace
}  // namespace tests
