// Texts across the border: native strings as host ones.
#include "bridge/strings.h"
#include "native/exceptions.h"
#include "tests/support/intercept.h"
#include "tests/support/plugin_test.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests

constexpr std::uint32_t kUtf8 = 0x08000100;

std::string text(std::string_view bytesWithZeros) { return std::string(bytesWithZeros); }

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
  const CFStringRef empty = foundation.string("");
  foundation.clearRecords();
  EXPECT_EQ(converted(empty), "(null)");
  EXPECT_EQ(host->sequence(), Lines{});
  EXPECT_EQ(foundation.calls(), Lines{"CFStringGetLength"});
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

[[noreturn]] void raise() {
  objc_exception_throw(foundation_double::Foundation::shared().exception("Bad", "No string."));
}

TEST_F(ToHostTest, TheBufferIsFreedWhenTheHostRaisesWhileItBuilds) {
  intercept("REALBuildString", [](const char*, std::int32_t) -> REALstring { raise(); });
  const CFStringRef string = foundation.string(std::string(100, 'x'));
  EXPECT_NE(catching([&] { static_cast<void>(CFString2RBString(string)); }), nullptr);
  EXPECT_EQ(buffers(), std::vector<std::size_t>{600});
}

TEST_F(ToHostTest, TheBufferIsFreedWhenTheHostRaisesOverTheEncoding) {
  intercept("REALSetStringEncoding", [](REALstring string, std::uint32_t) {
    callHost<void>("REALUnlockString", string);  // the host has lost its string
    raise();
  });
  const CFStringRef string = foundation.string(std::string(100, 'x'));
  EXPECT_NE(catching([&] { static_cast<void>(CFString2RBString(string)); }), nullptr);
  EXPECT_EQ(buffers(), std::vector<std::size_t>{600});
}

TEST_F(ToHostTest, TheBufferIsFreedWhenAnExceptionPasses) {
  const CFStringRef string = foundation.string(std::string(100, 'x'));
  foundation.throwAtCall("CFStringGetCString");
  EXPECT_NE(catching([&] { static_cast<void>(CFString2RBString(string)); }), nullptr);
  EXPECT_EQ(buffers(), std::vector<std::size_t>{600});
}

}  // namespace
}  // namespace zel
