// What is said of programs that are wrong, and that it is said once.
#include "tests/runner/runner_test.h"

namespace tests {
namespace {

class MistakesTest : public RunnerTest {
 protected:
  // The lines of all that is wrong, with the messages.
  std::string all(const std::string& program) {
    std::ostringstream out;
    std::istringstream in;
    runner::Session session(*host, out, in);
    std::string text;
    for (const runner::Diagnostic& found : session.check(runner::Source("test", program)))
      text += std::to_string(found.line) + " " + found.message + "\n";
    return text;
  }
};

TEST_F(MistakesTest, AnUnknownNameIsSaidToBeSoOnce) {
  EXPECT_EQ(all("x = 1\nPrint Str(x)\nX += 2"), "1 There is no variable or method \"x\".\n");
  EXPECT_EQ(all("Dim a As Nothing\nDim b As nothing\na = 5\na.Append 3\nPrint Str(a + b)"),
            "1 There is no type \"Nothing\".\n");
  EXPECT_EQ(all("Sub f(n As Nothing)\nEnd Sub\nf 5\nf \"a\""), "1 There is no type \"Nothing\".\n");
  EXPECT_EQ(all("Const k = gone\nPrint Str(k)\nDim n As Integer = k"),
            "1 There is no variable or method \"gone\".\n");
}

TEST_F(MistakesTest, CurlyQuotesAreKnown) {
  EXPECT_EQ(firstProblem("Print “hello”"),
            "1:7+1 This is a curly quote (“). Texts stand in straight ones (\").");
  EXPECT_EQ(firstProblem("Print name’"),
            "1:11+1 This is a curly quote (’). Texts stand in straight ones (\").");
  EXPECT_EQ(run("Print \"“hello”\""), "“hello”\n");
}

TEST_F(MistakesTest, AConstantIsFoldedOnlyWhereThatRaisesNothing) {
  EXPECT_EQ(run("Const c As Variant = \"x\"\nDim n As Variant = -c"),
            "Unhandled TypeMismatchException: \"-\" can't be used between Integer and String.\n"
            "  at test:2\n");
  EXPECT_EQ(firstProblem("Const c As Variant = \"x\"\nPrint -c"), "");
}

TEST_F(MistakesTest, AnExceptionPassesAFinallyThatLeavesALoop) {
  EXPECT_EQ(run("For i As Integer = 1 To 2\nTry\nRaise New RuntimeException(\"passing\")\n"
                "Finally\nExit For\nEnd Try\nNext\nPrint \"never\""),
            "Unhandled RuntimeException: passing\n  at test:3\n");
  EXPECT_EQ(run("Function f() As Integer\nTry\nRaise New RuntimeException(\"passing\")\nFinally\n"
                "Return 1\nEnd Try\nEnd Function\nPrint Str(f)"),
            "Unhandled RuntimeException: passing\n  at test:3 in f\n  at test:8\n");
}

TEST_F(MistakesTest, WhatACompoundAssignmentStandsOnIsComputedOnce) {
  EXPECT_EQ(run("Function f() As Integer\nPrint \"asked\"\nReturn 1\nEnd Function\n"
                "Dim a() As Integer = Array(1, 2)\na(f()) += 5\nPrint Str(a(1))"),
            "asked\n7\n");
  EXPECT_EQ(run("Function f() As String\nPrint \"asked\"\nReturn \"k\"\nEnd Function\n"
                "Dim d As New Dictionary\nd.Value(\"k\") = 1\nd.Value(f) += 5\n"
                "Print d.Value(\"k\")"),
            "asked\n6\n");
}

TEST_F(MistakesTest, NamesOfMethodsAreFoldedAsThoseOfVariablesAre) {
  EXPECT_EQ(run("Sub Äh()\nPrint \"called\"\nEnd Sub\näh\nÄH"), "called\ncalled\n");
}

TEST_F(MistakesTest, AByRefArgumentIsFoundByWhatItMeans) {
  EXPECT_EQ(run("Sub add(ByRef n As Integer)\nn += 1\nEnd Sub\nDim x As Integer\nadd (x)\nadd X\n"
                "Print Str(x)"),
            "2\n");
}

}  // namespace
}  // namespace tests
