#include "runner/syntax/lexer.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <map>

#include "runner/text/diagnostic.h"

namespace runner {
namespace {

using Kind = Token::Kind;

std::string kinds(const std::string& text) {
  const std::map<Kind, char> kLetters = {{Kind::word, 'w'},      {Kind::number, 'n'},
                                         {Kind::text, 't'},      {Kind::sign, 's'},
                                         {Kind::endOfLine, '/'}, {Kind::end, '.'}};
  std::string found;
  for (const Token& token : tokens(Source("test", text))) found += kLetters.at(token.kind);
  return found;
}

host::Value numberIn(const std::string& text) { return tokens(Source("test", text)).front().value; }

std::string problem(const std::string& text) {
  try {
    tokens(Source("test", text));
  } catch (const Problem& found) {
    return std::to_string(found.place.begin) + "-" + std::to_string(found.place.end) + " " +
           found.message;
  }
  return "";
}

TEST(LexerTest, WordsNumbersTextsAndSigns) {
  EXPECT_EQ(kinds("Dim a1 = 5 + .5"), "wwsnsn/.");
  EXPECT_EQ(kinds("Größe=\"Text\""), "wst/.");
  EXPECT_EQ(kinds(""), "/.");
  EXPECT_EQ(kinds("a\nb\r\nc\rd"), "w/w/w/w/.");
}

TEST(LexerTest, CommentsAreGone) {
  EXPECT_EQ(kinds("a ' one\nb // two\nRem three\nremark"), "w/w//w/.");
}

TEST(LexerTest, ALineGoesOnBehindAnUnderscore) {
  EXPECT_EQ(kinds("a _\nb"), "ww/.");
  EXPECT_EQ(kinds("a _ ' comment\r\nb"), "ww/.");
  EXPECT_EQ(kinds("a_b"), "w/.");
  EXPECT_EQ(problem("a _ b"), "2-3 Nothing may follow the \"_\" that continues a line.");
}

TEST(LexerTest, NumbersHaveTheNarrowestType) {
  EXPECT_EQ(numberIn("2147483647"), host::Value(std::int32_t{2147483647}));
  EXPECT_EQ(numberIn("2147483648"), host::Value(std::int64_t{2147483648}));
  EXPECT_EQ(numberIn("9223372036854775808"), host::Value(std::uint64_t{9223372036854775808U}));
  EXPECT_EQ(numberIn("&hFF"), host::Value(std::int32_t{255}));
  EXPECT_EQ(numberIn("&b101"), host::Value(std::int32_t{5}));
  EXPECT_EQ(numberIn("&O17"), host::Value(std::int32_t{15}));
  EXPECT_EQ(numberIn("1.5"), host::Value(1.5));
  EXPECT_EQ(numberIn(".5"), host::Value(0.5));
  EXPECT_EQ(numberIn("1e3"), host::Value(1000.0));
  EXPECT_EQ(numberIn("2.5E-2"), host::Value(0.025));
}

TEST(LexerTest, QuotesAreDoubledInTexts) {
  EXPECT_EQ(tokens(Source("test", R"("say ""hi""")")).front().text, R"(say "hi")");
  EXPECT_EQ(tokens(Source("test", "\"\"")).front().text, "");
}

TEST(LexerTest, WhatIsWrongIsSaid) {
  EXPECT_EQ(problem("a = \"open"), "4-9 This text has no closing quote (\").");
  EXPECT_EQ(problem("\"open\nb\""), "0-5 This text has no closing quote (\").");
  EXPECT_EQ(problem("12ab"), "2-3 A number ends here, and a name can't follow it directly.");
  EXPECT_EQ(problem("&hXY"), "0-4 These are no hexadecimal digits.");
  EXPECT_EQ(problem("&b12"), "0-4 These are no binary digits.");
  EXPECT_EQ(problem("99999999999999999999"),
            "0-20 This number is too large for every integer type.");
  EXPECT_EQ(problem("1e999"), "0-5 This number is too large or too small for a Double.");
  EXPECT_EQ(problem("a ? b"), "2-3 The language has no sign \"?\".");
  EXPECT_EQ(problem("a & b").substr(0, 31), "2-3 \"&\" begins a number: &h (he");
  EXPECT_EQ(problem("ab\xFF"), "2-3 This byte is no text in UTF-8.");
}

}  // namespace
}  // namespace runner
