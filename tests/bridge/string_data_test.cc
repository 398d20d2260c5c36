// A host string's bytes, handed out by the host or by what older hosts have.
#include "bridge/string_data.h"

#include <cstring>
#include <optional>

#include "tests/support/plugin_test.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests

constexpr std::uint32_t kUtf8 = 0x08000100;
constexpr std::uint32_t kUtf16 = 0x100;
constexpr std::uint32_t kUnknown = 0x7777;
constexpr std::uint32_t kUnset = 0xDDDDDDDD;

class StringDataTest : public PluginTest {
 protected:
  struct Handed {
    std::string bytes;  // with the four zero bytes that end them
    std::uint32_t length;
    std::uint32_t encoding;
    friend bool operator==(const Handed&, const Handed&) = default;
  };

  // What is handed out of a string; nullopt when nothing is.
  std::optional<Handed> handedOut(REALstring string, std::uint32_t encoding,
                                  std::uint32_t lengthOnEntry = 0) {
    REALstringData record{&marker_, lengthOnEntry, kUnset};
    if (!REALGetStringData(string, encoding, &record)) {
      EXPECT_EQ(record.data, &marker_);
      EXPECT_EQ(record.length, lengthOnEntry);
      EXPECT_EQ(record.encoding, kUnset);
      return std::nullopt;
    }
    Handed handed{
        {static_cast<const char*>(record.data), record.length + 4}, record.length, record.encoding};
    disposeStringData(record);
    return handed;
  }

  static Handed expected(const char* bytesAndZeros, std::uint32_t length, std::uint32_t encoding) {
    return {std::string(bytesAndZeros, length + 4), length, encoding};
  }

 private:
  char marker_ = 0;
};

TEST_F(StringDataTest, TheHostHandsOutByItself) {
  const HostText string(*host, "héy");
  EXPECT_EQ(handedOut(string.handle(), kUtf8), expected("h\xC3\xA9y\0\0\0\0", 4, kUtf8));
  EXPECT_EQ(handedOut(string.handle(), kNoEncoding), expected("h\xC3\xA9y\0\0\0\0", 4, 0xFFFF));
  EXPECT_EQ(handedOut(string.handle(), kUtf16), expected("h\0\xE9\0y\0\0\0\0\0", 6, kUtf16));
  EXPECT_EQ(host->sequence(),
            (Lines{"PluginGetStringData", "PluginDisposeStringData", "PluginGetStringData",
                   "PluginDisposeStringData", "PluginGetStringData", "PluginDisposeStringData"}));
  EXPECT_EQ(host->lookups("StringGetCString"), 0);
  EXPECT_EQ(host->lookups("REALLoadGlobalMethod"), 0);
}

TEST_F(StringDataTest, ARefusalOfTheHostIsFinal) {
  const HostText string(*host, "key");
  host->answerNull("PluginGetStringData");
  EXPECT_EQ(handedOut(string.handle(), kUtf8), std::nullopt);
  EXPECT_EQ(host->sequence(), Lines{"PluginGetStringData"});
}

std::uint32_t answeredWith(REALstring /*string*/, std::uint32_t /*encoding*/,
                           REALstringData* /*out*/) {
  return 0xABCDEF00;
}

TEST_F(StringDataTest, OnlyTheLowByteOfTheAnswerCounts) {
  gResolver = [](const char*) { return reinterpret_cast<void*>(answeredWith); };
  REALstringData record{};
  EXPECT_FALSE(REALGetStringData(nullptr, kUtf8, &record));
}

// Hosts without a routine of their own.
class OlderStringDataTest : public StringDataTest {
 protected:
  void SetUp() override {
    StringDataTest::SetUp();
    host->hide("PluginGetStringData");
    host->hide("PluginDisposeStringData");
  }
  static std::vector<std::size_t> buffers() {
    return foundation_double::Allocations::shared().sizes();
  }
};

TEST_F(OlderStringDataTest, BytesAsStoredAreLabelledSo) {
  const HostText string(*host, "h\xE9y", 0x201);
  EXPECT_EQ(handedOut(string.handle(), kNoEncoding, 3), expected("h\xE9y\0\0\0\0", 3, 0xFFFF));
  EXPECT_EQ(host->calls("REALGetStringEncoding"), 0);
}

TEST_F(OlderStringDataTest, BytesAsStoredTakeABufferOfTheSizeThatTheCallerGives) {
  const HostText string(*host, "key");
  EXPECT_EQ(handedOut(string.handle(), kNoEncoding, 1000), expected("key\0\0\0\0", 3, 0xFFFF));
  EXPECT_EQ(buffers(), std::vector<std::size_t>{1004});
}

TEST_F(OlderStringDataTest, TheSameEncodingIsCopied) {
  const HostText string(*host, "héy");
  EXPECT_EQ(handedOut(string.handle(), kUtf8), expected("h\xC3\xA9y\0\0\0\0", 4, kUtf8));
  EXPECT_EQ(buffers(), std::vector<std::size_t>{8});
  EXPECT_EQ(host->calls("REALConvertString"), 0);
}

TEST_F(OlderStringDataTest, AnotherEncodingIsConverted) {
  const HostText string(*host, "héy");
  EXPECT_EQ(handedOut(string.handle(), kUtf16), expected("h\0\xE9\0y\0\0\0\0\0", 6, kUtf16));
  EXPECT_EQ(buffers(), std::vector<std::size_t>{10});
  EXPECT_EQ(host->calls("REALConvertString"), 1);
  EXPECT_EQ(host->calls("REALUnlockString"), 1);
}

TEST_F(OlderStringDataTest, AHostWithoutEncodingsCountsAsMacRoman) {
  host->hide("REALGetStringEncoding");
  const HostText string(*host, "key");
  EXPECT_EQ(handedOut(string.handle(), 0), expected("key\0\0\0\0", 3, 0));
  EXPECT_EQ(host->calls("REALConvertString"), 0);
}

TEST_F(OlderStringDataTest, WhatTheHostCannotConvertIsNotHandedOut) {
  const HostText string(*host, "key");
  EXPECT_EQ(handedOut(string.handle(), kUnknown), std::nullopt);
  EXPECT_EQ(host->calls("REALConvertString"), 1);
  EXPECT_EQ(buffers(), std::vector<std::size_t>{});
}

TEST_F(OlderStringDataTest, AHostThatConvertsNothingHandsOutNoOtherEncoding) {
  host->hide("REALConvertString");
  const HostText string(*host, "key");
  EXPECT_EQ(handedOut(string.handle(), kUtf16), std::nullopt);
  EXPECT_EQ(buffers(), std::vector<std::size_t>{});
}

TEST_F(OlderStringDataTest, ANullStringIsNotHandedOut) {
  EXPECT_EQ(handedOut(nullptr, kUtf8), std::nullopt);
  EXPECT_EQ(handedOut(nullptr, kNoEncoding), std::nullopt);
  EXPECT_EQ(host->lookups("StringGetCString"), 1);
  EXPECT_EQ(host->calls("StringGetCString"), 0);
}

TEST_F(OlderStringDataTest, BothRoutinesAreNeededAndLookedUpAgain) {
  const HostText string(*host, "key");
  host->hideFirst("StringGetCString", 1);
  EXPECT_EQ(handedOut(string.handle(), kUtf8), std::nullopt);
  EXPECT_EQ(handedOut(string.handle(), kUtf8), expected("key\0\0\0\0", 3, kUtf8));
  EXPECT_EQ(host->lookups("StringGetCString"), 2);
  EXPECT_EQ(host->lookups("LenB"), 1);
}

TEST_F(OlderStringDataTest, TheLengthMethodIsLookedUpAgainToo) {
  const HostText string(*host, "key");
  host->hideFirst("LenB", 1);
  EXPECT_EQ(handedOut(string.handle(), kUtf8), std::nullopt);
  EXPECT_EQ(handedOut(string.handle(), kUtf8), expected("key\0\0\0\0", 3, kUtf8));
  EXPECT_EQ(host->lookups("LenB"), 2);
  EXPECT_EQ(host->lookups("REALLoadGlobalMethod"), 1);
}

TEST_F(OlderStringDataTest, TheLengthMethodNeedsAHostThatLoadsMethods) {
  const HostText string(*host, "key");
  host->hide("REALLoadGlobalMethod");
  EXPECT_EQ(handedOut(string.handle(), kUtf8), std::nullopt);
}

TEST_F(OlderStringDataTest, ABufferThatCannotBeHadIsNotHandedOut) {
  const HostText string(*host, "key");
  const struct {
    std::uint32_t encoding;
    int unlocked;  // what was converted
  } rows[] = {{kNoEncoding, 0}, {kUtf8, 0}, {kUtf16, 1}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.encoding);
    host->clearRecords();
    foundation_double::Allocations::shared().failAt(1);
    EXPECT_EQ(handedOut(string.handle(), row.encoding, 3), std::nullopt);
    EXPECT_EQ(host->calls("REALUnlockString"), row.unlocked);
  }
  EXPECT_EQ(buffers(), (std::vector<std::size_t>{7, 7, 10}));
}

TEST_F(OlderStringDataTest, TheRoutinesAreAskedForOnceEach) {
  const HostText string(*host, "key");
  host->hideFirst("PluginGetStringData", 1);  // and known again at the next question
  host->clearRecords();
  EXPECT_EQ(handedOut(string.handle(), kUtf16), expected("k\0e\0y\0\0\0\0\0", 6, kUtf16));
  EXPECT_EQ(host->lookups("PluginGetStringData"), 1);
  EXPECT_EQ(host->calls("PluginGetStringData"), 0);
  EXPECT_EQ(host->lookups("StringGetCString"), 1);
  EXPECT_EQ(host->lookups("LenB"), 1);
}

// --- bytes as stored, without a length on entry

class StoredBytesTest : public OlderStringDataTest {
 protected:
  std::optional<Handed> stored(REALstring string) {
    REALstringData record{nullptr, 0, kUnset};
    if (!getStoredBytes(string, &record)) return std::nullopt;
    Handed handed{
        {static_cast<const char*>(record.data), record.length + 4}, record.length, record.encoding};
    disposeStringData(record);
    return handed;
  }
};

TEST_F(StoredBytesTest, TakeABufferOfTheirOwnSize) {
  const HostText string(*host, "h\xE9y", 0x201);
  EXPECT_EQ(stored(string.handle()), expected("h\xE9y\0\0\0\0", 3, 0xFFFF));
  EXPECT_EQ(buffers(), std::vector<std::size_t>{7});
}

TEST_F(StoredBytesTest, AreHandedOutByTheHostWhereItCan) {
  host->unhide("PluginGetStringData");
  host->unhide("PluginDisposeStringData");
  const HostText string(*host, "key");
  EXPECT_EQ(stored(string.handle()), expected("key\0\0\0\0", 3, 0xFFFF));
  EXPECT_EQ(host->sequence(), (Lines{"PluginGetStringData", "PluginDisposeStringData"}));
}

TEST_F(StoredBytesTest, OfALengthThatIsFoundLateAreNoneBefore) {
  const HostText string(*host, "a text longer than four bytes");
  host->hideFirst("LenB", 1);
  EXPECT_EQ(stored(string.handle()), std::nullopt);
  EXPECT_EQ(host->lookups("LenB"), 1);
  EXPECT_EQ(stored(string.handle()), expected("a text longer than four bytes\0\0\0\0", 29, 0xFFFF));
  EXPECT_EQ(buffers(), std::vector<std::size_t>{33});
}

TEST_F(OlderStringDataTest, AConvertedStringIsLeftWhereTheHostCannotUnlock) {
  host->hide("REALUnlockString");
  const REALstring string = host->string("key");
  EXPECT_EQ(handedOut(string, kUtf16), expected("k\0e\0y\0\0\0\0\0", 6, kUtf16));
  host->unlock(string);
  EXPECT_NE(host->unbalanced(), "");
  abandonHost();
}

}  // namespace
}  // namespace zel
