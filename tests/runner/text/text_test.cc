// Texts on their way to a terminal.
#include "runner/text/text.h"

#include <gtest/gtest.h>
#include <string>

namespace tests {
namespace {

using runner::oneLine;
using runner::wellFormed;

TEST(TextTest, WhatIsNoCharacterIsReplaced) {
  EXPECT_EQ(wellFormed(""), "");
  EXPECT_EQ(wellFormed("Grüße, 世界"), "Grüße, 世界");
  EXPECT_EQ(wellFormed("\xFF"), "\xEF\xBF\xBD");
  EXPECT_EQ(wellFormed("a\xC3"), "a\xEF\xBF\xBD");
  EXPECT_EQ(wellFormed("\xE4\xB8z\xBC\xC3\xBC"), "\xEF\xBF\xBD\xEF\xBF\xBDz\xEF\xBF\xBDü");
}

TEST(TextTest, OneLineHasNoBreaks) {
  EXPECT_EQ(oneLine("one\ntwo\r\n\tthree\n", 0), "one two three");
  EXPECT_EQ(oneLine("\x1B[2Jgone", 0), " [2Jgone");
  EXPECT_EQ(oneLine("a\xFFz", 0), "a\xEF\xBF\xBDz");
  EXPECT_EQ(oneLine("", 0), "");
}

TEST(TextTest, OneLineIsNoWiderThanItMayBe) {
  EXPECT_EQ(oneLine("0123456789", 10), "0123456789");
  EXPECT_EQ(oneLine("0123456789abc", 10), "012 ... bc");
  EXPECT_EQ(oneLine("0123456789abcdef", 11), "012 ... def");
  // Wide characters take two columns.
  EXPECT_EQ(oneLine("世界世界世界", 11), "世 ... 界");
  EXPECT_EQ(oneLine("ÄÖÜäöüßx", 7), "Ä ... x");
  // Too little for anything to be left out.
  EXPECT_EQ(oneLine("0123456789", 5), "0123456789");
}

}  // namespace
}  // namespace tests
