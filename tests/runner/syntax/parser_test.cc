// What is a program and what isn't, and what is said about it.
#include "runner/syntax/parser.h"

#include <gtest/gtest.h>

#include "runner/text/diagnostic.h"

namespace runner {
namespace {

// "" for a program.
std::string problem(const std::string& text) {
  const Source source("test", text);
  try {
    parse(source, 2014);
  } catch (const Problem& found) {
    const Diagnostic diagnostic = diagnose(source, found);
    return std::to_string(diagnostic.line) + ":" + std::to_string(diagnostic.column) + " " +
           diagnostic.message;
  }
  return "";
}

TEST(ParserTest, EveryStatementIsKnown) {
  for (const char* const program :
       {"Dim a As Integer",
        "Var a, b As Double = 1",
        "Dim a() As String",
        "Dim a(9) As Integer",
        "Dim d As New Dictionary",
        "Const k = 5",
        "Const k As Double = 5",
        "a = 1",
        "a += 1",
        "a.b(1).c = 2",
        "Call f(1)",
        "f 1, 2",
        "f",
        "a.b \"x\"",
        "If a Then b",
        "If a Then b Else c",
        "If a Then\nb\nElseIf c Then\nd\nElse\ne\nEnd If",
        "For i = 1 To 9\nNext",
        "For i As Integer = 9 DownTo 1 Step 2\nNext i",
        "For Each s As String In a\nNext",
        "While a\nWend",
        "Do\nLoop Until a",
        "Do Until a\nLoop",
        "Select Case a\nCase 1, 2 To 3, Is > 4\nb\nCase IsA Date\nElse\nc\nEnd Select",
        "Select Case a\nCase 1\nCase Else\nEnd Select",
        ("Try\na\nCatch e As RuntimeException\nb\n"
         "Catch\nc\nFinally\nd\nEnd Try"),
        "Raise e",
        "Redim a(5)",
        "Exit For",
        "Continue While",
        "Sub f()\nReturn\nEnd Sub",
        ("Function f(ByRef a As Integer, b() As String) As Double\n"
         "Return 1\nEnd Function"),
        "Sub f(a As Integer = 5, Assigns b As String)\nEnd Sub",
        "a = b : c = d",
        "If a Then\nEnd",
        "a = -b ^ 2 * Not c"})
    EXPECT_EQ(problem(program), "") << program;
}

TEST(ParserTest, WordsAreTheSameInAnyCase) {
  EXPECT_EQ(problem("DIM a AS integer\nIF a THEN\nEND IF"), "");
}

TEST(ParserTest, BehindAPointEveryWordIsAName) {
  EXPECT_EQ(problem("a.Next = b.End + c.Select(1)"), "");
}

TEST(ParserTest, WhatWasExpectedIsSaid) {
  const struct {
    const char* program;
    const char* expected;
  } rows[] = {
      {"Dim", "1:4 Expected the name of a variable, found the end of the line."},
      {"Dim a", "1:6 Expected \"As\" or \"=\", found the end of the line."},
      {"Dim a As", "1:9 Expected the name of a type, found the end of the line."},
      {"Dim next As Integer",
       "1:5 \"next\" has a meaning of its own and can't be used as a name; expected the name of a "
       "variable."},
      {"If a", "1:5 Expected \"Then\", found the end of the line."},
      {"If a Then\nb",
       "2:2 Expected \"End If\", which closes the \"If\" of line 1, found the end of "
       "the program."},
      {"If a Then\nEnd While",
       "2:5 Expected \"End If\", which closes the \"If\" of line 1, found "
       "\"While\"."},
      {"For i = 1 To 5\nWend",
       "2:1 Expected \"Next\", which closes the \"For\" of line 1, found "
       "\"Wend\"."},
      {"For i = 1 To 5\nNext j", "2:6 This loop's variable is \"i\"."},
      {"For i = 1 5", "1:11 Expected \"To\" or \"DownTo\", found a number."},
      {"Next", "1:1 \"Next\" closes nothing here."},
      {"a = ", "1:5 Expected an expression, found the end of the line."},
      {"a = (1 + 2", "1:11 Expected \")\", found the end of the line."},
      {"f(1, 2", "1:7 Expected \",\" or \")\", found the end of the line."},
      {"a = 1 2", "1:7 Expected the end of the line, found a number."},
      {"5 = a", "1:1 Expected a statement, found a number."},
      {"Select Case a\nb\nEnd Select",
       "2:1 Expected \"End Select\", which closes the \"Select\" of "
       "line 1, found \"b\"."},
      {"Function f()\nEnd Function",
       "1:13 Expected \"As\" and the type of the result, found the end of the line."},
      {"If a Then\nSub f()\nEnd Sub\nEnd If",
       "2:1 A Sub or Function can't stand inside of another block."},
      {"Redim a", "1:7 Redim takes an array and its new upper bound: Redim a(9)."},
      {"Const k As Integer",
       "1:19 Expected \"=\" and the constant's value, found the end of the line."},
      {"Do\nWhile a\nLoop",
       "3:1 Expected \"Wend\", which closes the \"While\" of line 2, found "
       "\"Loop\"."},
  };
  for (const auto& row : rows) EXPECT_EQ(problem(row.program), row.expected) << row.program;
}

TEST(ParserTest, NothingIsNestedTooDeeply) {
  EXPECT_EQ(problem("a = " + std::string(150, '(') + "1" + std::string(150, ')')), "");
  EXPECT_EQ(problem("a = " + std::string(5000, '(') + "1").substr(6), "This is nested too deeply.");
  std::string sum = "a = 1";
  for (int i = 0; i < 1000; ++i) sum += "+1";
  EXPECT_NE(problem(sum).find("This is nested too deeply."), std::string::npos);
  std::string blocks;
  for (int i = 0; i < 1000; ++i) blocks += "If a Then\n";
  EXPECT_NE(problem(blocks).find("This is nested too deeply."), std::string::npos);
  EXPECT_NE(problem("a = " + std::string(9999, '-') + "1").find("nested"), std::string::npos);
}

TEST(ParserTest, AnOpenBlockIsUnfinished) {
  for (const char* const text :
       {"If a Then", "For i = 1 To 2\nf", "Sub f()", "f(1,", "Try\nCatch e"})
    EXPECT_TRUE(isUnfinished(Source("test", text), 2014)) << text;
  for (const char* const text : {"f", "If Then", "a = )", "\"open", "End If", ""})
    EXPECT_FALSE(isUnfinished(Source("test", text), 2014)) << text;
}

}  // namespace
}  // namespace runner
