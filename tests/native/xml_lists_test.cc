// Property lists as XML and in the old style, as others write them.
#include "tests/native/values.h"

namespace native_test {
namespace {

class XmlListsTest : public NativeTest {
 protected:
  static std::string read(const std::string& element) {
    return literal(parsed("<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\">" +
                          element + "</plist>"));
  }
};

TEST_F(XmlListsTest, EscapesThatFoundationWrites) {
  EXPECT_EQ(read("<string>fine \\UD83D\\UDE00</string>"), "\"fine \\d83d\\de00\"");
  EXPECT_EQ(read("<string>\\UD83D\\UDE00\\UD83D\\UDE01 x</string>"),
            "\"\\d83d\\de00\\d83d\\de01 x\"");
  EXPECT_EQ(read("<string>\\U001B[\\U0007</string>"), "\"\\001b[\\0007\"");
  EXPECT_EQ(read("<string>\\uffff \\UFFFE\\UD83D</string>"), "\"\\uffff \\fffe\\d83d\"");
  EXPECT_EQ(read("<dict><key>\\UD83D\\UDE00</key><true/></dict>"), "{\"\\d83d\\de00\": c 1}");
}

TEST_F(XmlListsTest, WhatOnlyLooksLikeAnEscape) {
  EXPECT_EQ(read("<string>x\\U0041y</string>"), "\"x\\U0041y\"");
  EXPECT_EQ(read("<string>C:\\Users \\U \\UD83 \\U000A \\U0009 \\U007F</string>"),
            "\"C:\\Users \\U \\UD83 \\U000A \\U0009 \\U007F\"");
  EXPECT_EQ(read("<string>\\U00</string>"), "\"\\U00\"");
}

TEST_F(XmlListsTest, Integers) {
  EXPECT_EQ(read("<integer>9223372036854775806</integer>"), "q 9223372036854775806");
  EXPECT_EQ(read("<integer>9223372036854775807</integer>"), "q 9223372036854775807");
  EXPECT_EQ(read("<integer>9223372036854775808</integer>"), "Q 9223372036854775808");
  EXPECT_EQ(read("<integer>18446744073709551615</integer>"), "Q 18446744073709551615");
  EXPECT_EQ(read("<integer>-9223372036854775808</integer>"), "q -9223372036854775808");
  EXPECT_EQ(read("<integer>-1</integer>"), "i -1");
  EXPECT_EQ(read("<integer>2147483647</integer>"), "i 2147483647");
}

TEST_F(XmlListsTest, HighIntegersAmongOthers) {
  EXPECT_EQ(read("<dict><key>a</key><integer>18446744073709551615</integer><key>b</key><array>"
                 "<integer>1</integer><integer>9223372036854775813</integer><string>t</string>"
                 "</array></dict>"),
            R"({"a": Q 18446744073709551615, "b": (i 1, Q 9223372036854775813, "t")})");
}

TEST_F(XmlListsTest, OldStyle) {
  EXPECT_EQ(literal(parsed("{ a = (b, \"c d\", <00ff>); \"e\\n\" = { f = <*I5>; }; }")),
            "{\"a\": (\"b\", \"c d\", <00ff>), \"e\\000a\": {\"f\": i 5}}");
}

}  // namespace
}  // namespace native_test
