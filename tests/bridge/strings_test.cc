// Texts across the border: host strings as native ones.
#include "bridge/strings.h"

#include <cstdlib>

#include "native/exceptions.h"
#include "tests/support/intercept.h"
#include "tests/support/plugin_test.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests

constexpr std::uint32_t kUtf8 = 0x08000100;
constexpr std::uint32_t kUtf16 = 0x100;
constexpr std::uint32_t kAscii = 0x600;
constexpr std::uint32_t kMacRoman = 0;

std::string text(std::string_view bytesWithZeros) { return std::string(bytesWithZeros); }

// --- host to native

class ToNativeTest : public PluginTest {
 protected:
  // The native text of a host string; "(null)" for none.
  std::string converted(std::string_view bytes, std::uint32_t encoding) {
    const HostText string(*host, bytes, encoding);
    return foundation.utf8(autoreleasedCFString(string.handle()));
  }
  // A host of that version that doesn't convert by itself, so that the bytes are read.
  void startHostWithoutConversion(double version) {
    startHost({.version = version});
    host->answerNull("REALGetStringCFString");
  }
};

TEST_F(ToNativeTest, ANullStringGivesNull) {
  EXPECT_EQ(RBString2CFString(nullptr), nullptr);
  EXPECT_EQ(autoreleasedCFString(nullptr), nullptr);
  EXPECT_EQ(host->sequence(), Lines{});
}

TEST_F(ToNativeTest, TheHostConvertsByItself) {
  EXPECT_EQ(converted("Grüße, 世界 🎈", kUtf8), "Grüße, 世界 🎈");
  EXPECT_EQ(host->sequence(), Lines{"REALGetStringCFString"});
}

TEST_F(ToNativeTest, TheResultIsTheCallers) {
  const HostText string(*host, "mine");
  const CFStringRef native = RBString2CFString(string.handle());
  EXPECT_EQ(foundation.references(native), 1);
  CFRelease(native);
  EXPECT_EQ(host->references(string.handle()), 1);
}

TEST_F(ToNativeTest, CurrentHostsAreAskedTwiceBeforeTheBytesAreRead) {
  for (const double version : {2012.0, 2012.99, 2013.0, 2014.0}) {
    startHostWithoutConversion(version);
    EXPECT_EQ(converted("key", kUtf8), "key");
    EXPECT_EQ(host->calls("REALGetStringCFString"), 2);
    EXPECT_EQ(host->lookups("REALGetStringCFString"), 2);
  }
}

TEST_F(ToNativeTest, BytesThatAreNowhereGiveNull) {
  startHostWithoutConversion(2013.0);
  for (const std::uint32_t encoding : {kUtf8, kUtf16}) {
    intercept("PluginGetStringData",
              [](REALstring, std::uint32_t, REALstringData* out) -> REALboolean {
                *out = {nullptr, 3, 0};
                return 1;
              });
    intercept("PluginDisposeStringData", [](REALstringData*) {});
    EXPECT_EQ(converted("key", encoding), "(null)");
  }
  EXPECT_EQ(foundation.calls(), Lines{});
}

TEST_F(ToNativeTest, TheSecondAnswerIsTaken) {
  host->answerNull("REALGetStringCFString", 1);
  EXPECT_EQ(converted("key", kUtf8), "key");
  EXPECT_EQ(host->sequence(), (Lines{"REALGetStringCFString", "REALGetStringCFString"}));
}

TEST_F(ToNativeTest, OlderHostsAreAskedOnce) {
  startHostWithoutConversion(2011.99);
  EXPECT_EQ(converted("key", kUtf8), "key");
  EXPECT_EQ(host->calls("REALGetStringCFString"), 1);
}

TEST_F(ToNativeTest, OlderHostsMayConvertToo) {
  startHost({.version = 2011.04});
  EXPECT_EQ(converted("key", kUtf8), "key");
  EXPECT_EQ(host->sequence(), Lines{"REALGetStringCFString"});
}

TEST_F(ToNativeTest, BytesOfAnOpaqueStringAreHandedOutAndTakenBack) {
  startHostWithoutConversion(2013.0);
  EXPECT_EQ(converted("key", kUtf8), "key");
  EXPECT_EQ(host->sequence(),
            (Lines{"REALGetStringCFString", "REALGetStringCFString", "REALGetStringEncoding",
                   "PluginGetStringData", "PluginDisposeStringData"}));
}

TEST_F(ToNativeTest, BytesOfAnOlderStringAreReadInPlaceUnderALock) {
  startHostWithoutConversion(2012.99);
  EXPECT_EQ(converted("key", kUtf8), "key");
  EXPECT_EQ(host->sequence(),
            (Lines{"REALGetStringCFString", "REALGetStringCFString", "REALGetStringEncoding",
                   "REALLockString", "REALUnlockString"}));
}

class ByteFallbackTest : public ToNativeTest, public testing::WithParamInterface<double> {
 protected:
  void SetUp() override {
    ToNativeTest::SetUp();
    startHostWithoutConversion(GetParam());
  }
};

INSTANTIATE_TEST_SUITE_P(Hosts, ByteFallbackTest,
                         testing::Values(2011.04, 2012.0, 2012.99, 2013.0, 2013.03, 2014.0));

TEST_P(ByteFallbackTest, KeepsTheRecordedEncoding) {
  EXPECT_EQ(converted("Grüße", kUtf8), "Grüße");
  EXPECT_EQ(converted("plain", kAscii), "plain");
  EXPECT_EQ(converted("Gr\xFC\xDF"
                      "e",
                      0x201),
            "Grüße");
  EXPECT_EQ(converted("Gr\x9F\xA7"
                      "e",
                      kMacRoman),
            "Grüße");
}

TEST_P(ByteFallbackTest, TakesNoEncodingForMacRoman) {
  EXPECT_EQ(converted("\x8A\xA5 caf\x8E", kNoEncoding), "ä• café");
}

TEST_P(ByteFallbackTest, TakesAMissingEncodingServiceForMacRoman) {
  host->hide("REALGetStringEncoding");
  EXPECT_EQ(converted("caf\x8E", kUtf8), "café");
}

TEST_P(ByteFallbackTest, CountsUtf16AndDropsAnOddByte) {
  const auto utf16 =
      text({"a\0"
            "\0\0"
            "b\0"
            "\x3D\xD8"
            "\x88\xDF"
            "c",
            11});
  EXPECT_EQ(converted(utf16, kUtf16), text({"a\0b\xF0\x9F\x9E\x88", 7}));
}

TEST_P(ByteFallbackTest, EndsOtherTextsAtTheFirstZeroByte) {
  EXPECT_EQ(converted(text({"ab\0cd", 5}), kUtf8), "ab");
  EXPECT_EQ(converted(text({"ab\0cd", 5}), kMacRoman), "ab");
}

TEST_P(ByteFallbackTest, RefusesBytesThatAreNotValid) {
  EXPECT_EQ(converted("caf\xE9", kUtf8), "(null)");
  EXPECT_EQ(converted("caf\x8E", kAscii), "(null)");
}

TEST_P(ByteFallbackTest, RefusesAnUnknownEncoding) { EXPECT_EQ(converted("x", 0x7777), "(null)"); }

struct Raising {
  const char* function;
  std::uint32_t encoding;
};

// What makes a native string, and the host strings that it is for.
constexpr Raising kRaising[] = {{"CFStringCreateWithCString", kUtf8},
                                {"CFStringCreateWithCharacters", kUtf16}};

TEST_P(ByteFallbackTest, GivesEverythingBackWhenAnExceptionPasses) {
  for (const auto& [function, encoding] : kRaising) {
    SCOPED_TRACE(function);
    const HostText string(*host, text({"k\0", 2}), encoding);
    host->clearRecords();
    foundation.throwAtCall(function);
    EXPECT_NE(catching([&] { static_cast<void>(RBString2CFString(string.handle())); }), nullptr);
    EXPECT_EQ(host->sequence().back(),
              GetParam() < 2013.0 ? "REALUnlockString" : "PluginDisposeStringData");
    EXPECT_EQ(host->references(string.handle()), 1);
  }
}

TEST_F(ToNativeTest, AnUnlockIsTriedEvenWhereNoLockWasTaken) {
  startHostWithoutConversion(2012.0);
  host->hide("REALLockString");
  const REALstring string = host->string("key");
  EXPECT_EQ(foundation.utf8(autoreleasedCFString(string)), "key");
  EXPECT_EQ(host->calls("REALUnlockString"), 1);
  EXPECT_EQ(host->references(string), 0);
}

TEST_F(ToNativeTest, BytesThatTheHostRefusesGiveNull) {
  startHostWithoutConversion(2013.0);
  host->answerNull("PluginGetStringData");
  EXPECT_EQ(converted("key", kUtf8), "(null)");
  EXPECT_EQ(converted(text({"a\0", 2}), kUtf16), "(null)");
  EXPECT_EQ(host->calls("PluginDisposeStringData"), 0);
  EXPECT_EQ(foundation.calls(), Lines{});
}

TEST_F(ToNativeTest, HostsWithoutByteHandOutAreReadThroughTheirOlderRoutines) {
  startHostWithoutConversion(2013.0);
  host->hide("PluginGetStringData");
  host->hide("PluginDisposeStringData");
  EXPECT_EQ(converted("Grüße, und zwar recht lange, damit der Platz auch reicht", kUtf8),
            "Grüße, und zwar recht lange, damit der Platz auch reicht");
}

TEST_F(ToNativeTest, AHostThatTakesNoDataBackHasItFreed) {
  startHostWithoutConversion(2013.0);
  host->hide("PluginDisposeStringData");
  EXPECT_EQ(converted("key", kUtf8), "key");
  EXPECT_EQ(foundation_double::Allocations::shared().sizes(), std::vector<std::size_t>{7});
  for (const auto& [function, encoding] : kRaising) {
    SCOPED_TRACE(function);
    const HostText string(*host, text({"k\0", 2}), encoding);
    foundation.throwAtCall(function);
    EXPECT_NE(catching([&] { static_cast<void>(RBString2CFString(string.handle())); }), nullptr);
    EXPECT_EQ(foundation_double::Allocations::shared().live(), 0U);
  }
}

// What the host is given back, which it frees.
Lines takenBack;

TEST_F(ToNativeTest, AHostThatHandsNoDataOutIsGivenItBackAllTheSame) {
  startHostWithoutConversion(2013.0);
  takenBack.clear();
  intercept("PluginDisposeStringData", [](REALstringData* record) {
    takenBack.emplace_back(static_cast<const char*>(record->data), record->length + 4);
    std::free(record->data);
  });
  host->hide("PluginGetStringData");
  EXPECT_EQ(converted("key", kUtf8), "key");
  EXPECT_EQ(takenBack, Lines{text({"key\0\0\0\0", 7})});
  for (const auto& [function, encoding] : kRaising) {
    SCOPED_TRACE(function);
    const HostText string(*host, text({"k\0", 2}), encoding);
    takenBack.clear();
    foundation.throwAtCall(function);
    EXPECT_NE(catching([&] { static_cast<void>(RBString2CFString(string.handle())); }), nullptr);
    EXPECT_EQ(takenBack, Lines{text({"k\0\0\0\0\0", 6})});
  }
}

TEST_F(ToNativeTest, ABufferThatCannotBeHadGivesNull) {
  startHostWithoutConversion(2013.0);
  host->hide("PluginGetStringData");
  foundation_double::Allocations::shared().failAt(1);
  EXPECT_EQ(converted("key", kUtf8), "(null)");
  EXPECT_EQ(foundation.calls(), Lines{});
}

TEST_F(ToNativeTest, ALengthThatIsFoundLateIsTheWholeOne) {
  startHostWithoutConversion(2013.0);
  host->hide("PluginGetStringData");
  host->hide("PluginDisposeStringData");
  host->hideFirst("LenB", 1);
  EXPECT_EQ(converted("longer than four bytes", kUtf8), "(null)");
  EXPECT_EQ(foundation_double::Allocations::shared().sizes(), std::vector<std::size_t>{});
  EXPECT_EQ(converted("longer than four bytes", kUtf8), "longer than four bytes");
  EXPECT_EQ(foundation_double::Allocations::shared().sizes(), std::vector<std::size_t>{26});
}

TEST_F(ToNativeTest, AHandOutThatIsFoundLateIsAskedForOnceAConversion) {
  startHostWithoutConversion(2013.0);
  host->hideFirst("PluginGetStringData", 1);
  host->hide("PluginDisposeStringData");
  EXPECT_EQ(converted("key", kUtf8), "key");
  EXPECT_EQ(host->lookups("PluginGetStringData"), 1);
  EXPECT_EQ(host->calls("LenB"), 1);
  EXPECT_EQ(converted("key", kUtf8), "key");
  EXPECT_EQ(host->lookups("PluginGetStringData"), 2);
  EXPECT_EQ(host->calls("PluginGetStringData"), 1);
  EXPECT_EQ(host->calls("LenB"), 1);
}

TEST_F(ToNativeTest, HostsWithoutAnyWayToTheBytesGiveNull) {
  startHostWithoutConversion(2013.0);
  host->hide("PluginGetStringData");
  host->hide("StringGetCString");
  EXPECT_EQ(converted("key", kUtf8), "(null)");
}

TEST_F(ToNativeTest, AHostWithoutTheConversionIsAskedForItEveryTime) {
  startHost({.version = 2014.0});
  host->hide("REALGetStringCFString");
  EXPECT_EQ(converted("key", kUtf8), "key");
  EXPECT_EQ(host->lookups("REALGetStringCFString"), 2);
  host->unhide("REALGetStringCFString");
  EXPECT_EQ(converted("key", kUtf8), "key");
  EXPECT_EQ(host->lookups("REALGetStringCFString"), 3);
  EXPECT_EQ(host->calls("REALGetStringCFString"), 1);
}

}  // namespace
}  // namespace zel
