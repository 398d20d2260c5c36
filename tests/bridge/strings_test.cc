// Texts across the border, both ways.
#include "bridge/strings.h"

#include <cstring>

#include "native/exceptions.h"
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

TEST_P(ByteFallbackTest, GivesEverythingBackWhenAnExceptionPasses) {
  const HostText string(*host, "key");
  foundation.throwAtCall("CFStringCreateWithCString");
  EXPECT_NE(catching([&] { static_cast<void>(RBString2CFString(string.handle())); }), nullptr);
  EXPECT_EQ(host->references(string.handle()), 1);
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

// --- native to host

class ToHostTest : public PluginTest {
 protected:
  // The host string's bytes; "(null)" for none.
  std::string converted(CFStringRef string) {
    const REALstring made = CFString2RBString(string);
    if (made == nullptr) return "(null)";
    EXPECT_EQ(host->encoding(made), kUtf8);
    EXPECT_EQ(host->references(made), 1);
    std::string bytes = host->bytes(made);
    host->unlock(made);
    return bytes;
  }
  static std::vector<std::size_t> buffers() {
    return foundation_double::Allocations::shared().sizes();
  }
};

TEST_F(ToHostTest, NullAndEmptyTextsGiveNull) {
  EXPECT_EQ(converted(nullptr), "(null)");
  EXPECT_EQ(converted(foundation.string("")), "(null)");
  EXPECT_EQ(host->sequence(), Lines{});
}

TEST_F(ToHostTest, EveryTextBecomesUtf8) {
  EXPECT_EQ(converted(foundation.string("plain")), "plain");
  EXPECT_EQ(converted(foundation.string("Grüße, 世界 🎈")), "Grüße, 世界 🎈");
  EXPECT_EQ(host->sequence().at(0), "REALBuildString");
  EXPECT_EQ(host->sequence().at(1), "REALSetStringEncoding");
}

TEST_F(ToHostTest, TheNativeStringIsOnlyBorrowed) {
  const CFStringRef string = foundation.string("mine");
  EXPECT_EQ(converted(string), "mine");
  EXPECT_EQ(foundation.references(string), 1);
}

TEST_F(ToHostTest, TextsEndAtTheFirstZeroCharacter) {
  EXPECT_EQ(converted(foundation.string(text({"ab\0cd", 5}))), "ab");
  EXPECT_EQ(converted(foundation.string(text({"\0cd", 3}))), "(null)");
}

TEST_F(ToHostTest, NinetyNineUnitsTakeNoMemory) {
  const std::string units(99, 'x');
  EXPECT_EQ(converted(foundation.string(units)), units);
  EXPECT_EQ(buffers(), std::vector<std::size_t>{});
}

TEST_F(ToHostTest, AHundredUnitsTakeOneBuffer) {
  const std::string units(100, 'x');
  EXPECT_EQ(converted(foundation.string(units)), units);
  EXPECT_EQ(buffers(), std::vector<std::size_t>{600});
}

TEST_F(ToHostTest, TheLongestUtf8FitsOnBothPaths) {
  for (const std::size_t units : {std::size_t{99}, std::size_t{100}}) {
    std::string expected;
    for (std::size_t i = 0; i < units; ++i) expected += "世";
    EXPECT_EQ(converted(foundation.string(expected)), expected);
  }
}

TEST_F(ToHostTest, LengthsWhoseBufferTheHostCannotCountGiveNull) {
  EXPECT_EQ(converted(foundation.stringOfLength(357913942)), "(null)");   // 2147483652 bytes
  EXPECT_EQ(converted(foundation.stringOfLength(0x7FFFFFFF)), "(null)");  // -6 bytes
  EXPECT_EQ(converted(foundation.stringOfLength(-1)), "(null)");
  EXPECT_EQ(buffers(), std::vector<std::size_t>{});
  EXPECT_EQ(host->sequence(), Lines{});
}

TEST_F(ToHostTest, ALengthWhoseBufferSizeWrapsRoundIsTriedInWhatIsLeft) {
  EXPECT_EQ(converted(foundation.stringOfLength(0x2AAAAAAB)), "x");  // 2 bytes are left
  EXPECT_EQ(buffers(), std::vector<std::size_t>{2});
}

TEST_F(ToHostTest, ABufferThatCannotBeHadGivesNull) {
  foundation_double::Allocations::shared().failAt(1);
  EXPECT_EQ(converted(foundation.string(std::string(100, 'x'))), "(null)");
  EXPECT_EQ(host->sequence(), Lines{});
}

TEST_F(ToHostTest, TextsThatCannotBeConvertedGiveNull) {
  EXPECT_EQ(converted(foundation.string16(u"ab\xD800")), "(null)");
  std::u16string longText(100, u'x');
  longText.back() = 0xD800;
  EXPECT_EQ(converted(foundation.string16(longText)), "(null)");
}

TEST_F(ToHostTest, AHostThatBuildsNoStringsGetsNull) {
  host->hide("REALBuildString");
  EXPECT_EQ(converted(foundation.string("short")), "(null)");
  EXPECT_EQ(converted(foundation.string(std::string(100, 'x'))), "(null)");
  host->unhide("REALBuildString");
  host->answerNull("REALBuildString");
  EXPECT_EQ(converted(foundation.string("short")), "(null)");
  EXPECT_EQ(host->calls("REALSetStringEncoding"), 0);
}

TEST_F(ToHostTest, AHostWithoutEncodingsGetsTheStringAllTheSame) {
  host->hide("REALSetStringEncoding");
  const REALstring made = CFString2RBString(foundation.string("bare"));
  EXPECT_EQ(host->bytes(made), "bare");
  EXPECT_EQ(host->encoding(made), kNoEncoding);
  host->unlock(made);
}

TEST_F(ToHostTest, TheBufferIsFreedWhenAnExceptionPasses) {
  const CFStringRef string = foundation.string(std::string(100, 'x'));
  foundation.throwAtCall("CFStringGetCString");
  EXPECT_NE(catching([&] { static_cast<void>(CFString2RBString(string)); }), nullptr);
  EXPECT_EQ(buffers(), std::vector<std::size_t>{600});
}

}  // namespace
}  // namespace zel
