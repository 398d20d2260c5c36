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

std::string repeated(const std::string& text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

// So many lists within each other, around one that is empty.
std::string xmlLists(int levels) {
  return repeated("<array>", levels) + repeated("</array>", levels);
}
std::string oldLists(int levels) { return repeated("(", levels) + repeated(")", levels); }

TEST_F(XmlListsTest, NestingHasABound) {
  EXPECT_EQ(read(xmlLists(257)).size(), 2U * 257);
  EXPECT_EQ(read(xmlLists(258)), literal(nullptr));
  EXPECT_EQ(read(xmlLists(200'000)), literal(nullptr));
  EXPECT_EQ(read(repeated("<dict><key>k</key>", 258) + repeated("</dict>", 258)), literal(nullptr));
  EXPECT_EQ(literal(parsed(oldLists(257))).size(), 2U * 257);
  EXPECT_EQ(parsed(oldLists(258)), nullptr);
  EXPECT_EQ(parsed(oldLists(200'000)), nullptr);
  EXPECT_EQ(parsed(repeated("{k=", 258) + "v" + repeated(";}", 258)), nullptr);
}

TEST_F(XmlListsTest, WhatOnlyLooksLikeNesting) {
  EXPECT_EQ(read("<array>" + repeated("<dict/><array />", 300) + "</array>").size(),
            2U + 300 * 4 + 599 * 2);
  EXPECT_EQ(read("<!--" + repeated("<array>", 300) + "--><true/>"), "c 1");
  // What Foundation makes of such a section is its own business.
  EXPECT_NE(read("<string><![CDATA[" + repeated("<dict>", 300) + "]]></string>"), literal(nullptr));
  EXPECT_EQ(read("<array>" + repeated("<array></array>", 300) + "</array>").size(),
            2U + 300 * 2 + 299 * 2);
  EXPECT_EQ(literal(parsed("(\"" + repeated("(\\\"{", 300) + "\")")),
            "(\"" + repeated("(\"{", 300) + "\")");
  EXPECT_EQ(
      literal(parsed("(a /* " + repeated("(", 300) + " \" */, b // " + repeated("{", 300) + "\n)")),
      "(\"a\", \"b\")");
  EXPECT_EQ(literal(parsed("(" + repeated("(a),", 300) + "b)")).size(), 2U + 300 * 7 + 3);
}

TEST_F(XmlListsTest, OldStyle) {
  EXPECT_EQ(literal(parsed("{ a = (b, \"c d\", <00ff>); \"e\\n\" = { f = <*I5>; }; }")),
            "{\"a\": (\"b\", \"c d\", <00ff>), \"e\\000a\": {\"f\": i 5}}");
}

}  // namespace
}  // namespace native_test
