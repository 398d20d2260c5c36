// Statements, variables and methods.
#include "tests/runner/runner_test.h"

namespace tests {
namespace {

class StatementsTest : public RunnerTest {};

TEST_F(StatementsTest, VariablesBeginWithTheValueOfTheirType) {
  EXPECT_EQ(run("Dim i As Integer, s As String"),
            "test:1:17: error: Expected the end of the line, "
            "found \",\".\n  1 | Dim i As Integer, s As String\n"
            "    |                 ^\n");
  EXPECT_EQ(run("Dim i, j As Integer\nDim s As String\nDim b As Boolean\nDim x As Double\n"
                "Dim o As Dictionary\nPrint Str(i + j) + s + Str(b) + Str(x) + Str(o Is Nil)"),
            "0False0True\n");
}

TEST_F(StatementsTest, VariablesTakeTheirTypeFromTheirValue) {
  EXPECT_EQ(run("Var n = 5\nVar s = \"a\"\nn = n + 1\nPrint s + Str(n)"), "a6\n");
}

TEST_F(StatementsTest, ADimInALoopBeginsAnew) {
  EXPECT_EQ(run("For i As Integer = 1 To 2\nDim n As Integer\nn = n + 1\nPrint Str(n)\nNext"),
            "1\n1\n");
}

TEST_F(StatementsTest, Constants) {
  EXPECT_EQ(run("Const k = 5\nConst half As Double = 0.5\nPrint Str(k * half)"), "2.5\n");
  EXPECT_EQ(firstProblem("Const k = 5\nk = 6"), "2:1+1 \"k\" is a constant and can't be changed.");
}

TEST_F(StatementsTest, Choices) {
  const char* const program =
      "Sub f(n As Integer)\nIf n < 0 Then\nPrint \"below\"\nElseIf n = 0 Then\nPrint \"zero\"\n"
      "Else\nPrint \"above\"\nEnd If\nEnd Sub\nf -1\nf(0)\nCall f(1)\n"
      "If True Then Print \"yes\" Else Print \"no\"";
  EXPECT_EQ(run(program), "below\nzero\nabove\nyes\n");
}

TEST_F(StatementsTest, SelectCase) {
  const char* const program =
      "Function kind(v As Variant) As String\nSelect Case v\nCase 1, 3, 5\nReturn \"odd\"\n"
      "Case 2 To 4\nReturn \"even\"\nCase Is > 100\nReturn \"large\"\nCase IsA Dictionary\n"
      "Return \"dictionary\"\nCase \"A\"\nReturn \"letter\"\nElse\nReturn \"else\"\nEnd Select\n"
      "End Function\nPrint kind(3)\nPrint kind(4)\nPrint kind(101)\nPrint kind(50)";
  EXPECT_EQ(run(program), "odd\neven\nlarge\nelse\n");
  EXPECT_EQ(run("Select Case \"b\"\nCase \"A\"\nPrint \"1\"\nCase \"B\"\nPrint \"2\"\nEnd Select"),
            "2\n");
  EXPECT_EQ(run("Dim v As Variant = New Dictionary\nSelect Case v\nCase IsA Dictionary\n"
                "Print \"yes\"\nEnd Select"),
            "yes\n");
}

TEST_F(StatementsTest, Loops) {
  EXPECT_EQ(run("For i As Integer = 1 To 3\nPrint Str(i)\nNext"), "1\n2\n3\n");
  EXPECT_EQ(run("For i As Integer = 5 DownTo 1 Step 2\nPrint Str(i)\nNext i"), "5\n3\n1\n");
  EXPECT_EQ(run("For i As Integer = 3 To 1 Step -1\nPrint Str(i)\nNext"), "3\n2\n1\n");
  EXPECT_EQ(run("For x As Double = 0 To 1 Step 0.5\nPrint Str(x)\nNext"), "0\n0.5\n1\n");
  EXPECT_EQ(run("For i As Integer = 2 To 1\nPrint Str(i)\nNext"), "");
  EXPECT_EQ(run("Dim i As Integer\nFor i = 1 To 3\nNext\nPrint Str(i)"), "4\n");
  EXPECT_EQ(run("Dim i As Integer\nWhile i < 2\ni = i + 1\nWend\nPrint Str(i)"), "2\n");
  EXPECT_EQ(run("Dim i As Integer\nDo\ni = i + 1\nLoop Until i >= 3\nPrint Str(i)"), "3\n");
  EXPECT_EQ(run("Dim i As Integer = 5\nDo Until i >= 3\ni = 0\nLoop\nPrint Str(i)"), "5\n");
  EXPECT_EQ(run("For Each s As String In Array(\"a\", \"b\")\nPrint s\nNext"), "a\nb\n");
}

TEST_F(StatementsTest, WaysOutOfLoops) {
  EXPECT_EQ(run("For i As Integer = 1 To 9\nIf i = 2 Then Continue\nIf i = 4 Then Exit\n"
                "Print Str(i)\nNext"),
            "1\n3\n");
  EXPECT_EQ(run("For i As Integer = 1 To 3\nDim j As Integer = 0\nWhile True\nj = j + 1\n"
                "If j = 2 Then Continue For\nIf i = 3 Then Exit For\nPrint Str(i * 10 + j)\nWend\n"
                "Next\nPrint \"end\""),
            "11\n21\nend\n");
  EXPECT_EQ(firstProblem("Exit"), "1:1+4 \"Exit\" stands in no loop.");
  EXPECT_EQ(firstProblem("While True\nContinue For\nWend"),
            "2:1+8 \"Continue\" stands in no For loop.");
}

TEST_F(StatementsTest, MethodsCallEachOther) {
  EXPECT_EQ(run("Function fib(n As Integer) As Integer\nIf n < 2 Then Return n\n"
                "Return fib(n - 1) + fib(n - 2)\nEnd Function\nPrint Str(fib(15))"),
            "610\n");
}

TEST_F(StatementsTest, MethodsSeeTheProgramsVariables) {
  EXPECT_EQ(run("Dim total As Integer\nSub add(n As Integer)\ntotal = total + n\nEnd Sub\n"
                "add 2\nadd 3\nPrint Str(total)"),
            "5\n");
}

TEST_F(StatementsTest, ByRefParametersAreTheCallersVariables) {
  EXPECT_EQ(run("Sub swap(ByRef a As Integer, ByRef b As Integer)\nDim c As Integer = a\na = b\n"
                "b = c\nEnd Sub\nDim x As Integer = 1\nDim y As Integer = 2\nswap x, y\n"
                "Print Str(x) + Str(y)"),
            "21\n");
  EXPECT_EQ(
      firstProblem("Sub f(ByRef a As Integer)\nEnd Sub\nf 5"),
      "3:3+1 A ByRef parameter takes a variable of type Integer. [Sub f(ByRef a As Integer)]");
}

TEST_F(StatementsTest, ParametersThatCanBeLeftOut) {
  EXPECT_EQ(run("Function f(a As Integer, b As Integer = 10) As Integer\nReturn a + b\n"
                "End Function\nPrint Str(f(1)) + \" \" + Str(f(1, 2))"),
            "11 3\n");
}

TEST_F(StatementsTest, MethodsThatAreAssignedTo) {
  EXPECT_EQ(run("Dim kept As String\nSub note(n As Integer, Assigns s As String)\n"
                "kept = s + Str(n)\nEnd Sub\nnote(5) = \"x\"\nPrint kept"),
            "x5\n");
}

TEST_F(StatementsTest, OverloadsAreChosenByTheirTypes) {
  EXPECT_EQ(run("Function f(n As Integer) As String\nReturn \"integer\"\nEnd Function\n"
                "Function f(x As Double) As String\nReturn \"double\"\nEnd Function\n"
                "Function f(s As String) As String\nReturn \"string\"\nEnd Function\n"
                "Print f(1)\nPrint f(1.5)\nPrint f(\"a\")"),
            "integer\ndouble\nstring\n");
}

TEST_F(StatementsTest, NamesAreTheSameInAnyCase) {
  EXPECT_EQ(run("Dim Größe As Integer = 5\nPRINT STR(GRÖßE)\nprint str(größe)"), "5\n5\n");
}

TEST_F(StatementsTest, ExceptionsAreCaughtByTheirClass) {
  EXPECT_EQ(
      run("Try\nRaise New KeyNotFoundException(\"gone\", 3)\nCatch e As OutOfBoundsException\n"
          "Print \"bounds\"\nCatch e As KeyNotFoundException\n"
          "Print e.Message + Str(e.ErrorNumber)\nFinally\nPrint \"finally\"\nEnd Try"),
      "gone3\nfinally\n");
  EXPECT_EQ(run("Try\nRaise New OutOfBoundsException\nCatch\nPrint \"any\"\nEnd Try"), "any\n");
}

TEST_F(StatementsTest, FinallyRunsOnEveryWay) {
  EXPECT_EQ(run("Function f() As Integer\nTry\nReturn 1\nFinally\nPrint \"finally\"\nEnd Try\n"
                "End Function\nPrint Str(f)"),
            "finally\n1\n");
  EXPECT_EQ(run("Try\nTry\nRaise New RuntimeException(\"a\")\nFinally\nPrint \"inner\"\nEnd Try\n"
                "Catch e\nPrint e.Message\nEnd Try"),
            "inner\na\n");
}

TEST_F(StatementsTest, AnUnhandledExceptionHasItsStack) {
  EXPECT_EQ(run("Sub inner()\nDim a() As Integer\na(3) = 1\nEnd Sub\nSub outer()\ninner\nEnd Sub\n"
                "outer"),
            "Unhandled OutOfBoundsException: Index 3 is outside of the array, whose last index is "
            "-1.\n  at test:3 in inner\n  at test:6 in outer\n  at test:8\n");
}

TEST_F(StatementsTest, EndlessRecursionIsAnException) {
  EXPECT_EQ(run("Function f() As Integer\nReturn f + 1\nEnd Function\nTry\nPrint Str(f)\n"
                "Catch e As StackOverflowException\nPrint \"too deep\"\nEnd Try"),
            "too deep\n");
}

TEST_F(StatementsTest, InputIsRead) {
  EXPECT_EQ(run("Dim name As String = Input(\"Name? \")\nPrint \"Hello \" + name", "Ada\n"),
            "Name? Hello Ada\n");
}

TEST_F(StatementsTest, AllMistakesAreSaidAtOnce) {
  EXPECT_EQ(problems("Dim a As Integr\nPrnt \"x\"\na = 5"),
            "test:1:10: error: There is no type \"Integr\".\n"
            "  1 | Dim a As Integr\n"
            "    |          ^~~~~~\n"
            "  Did you mean \"Integer\"?\n"
            "test:2:1: error: There is no variable or method \"Prnt\".\n"
            "  2 | Prnt \"x\"\n"
            "    | ^~~~\n"
            "  declared: Print(text As String)\n"
            "  declared: Print\n"
            "  Did you mean \"Print\"?\n");
}

TEST_F(StatementsTest, WhatIsTypedRunsAtOnce) {
  EXPECT_EQ(enter({"Dim n As Integer = 5", "n", "n + 1", "n = 7", "Print Str(n)", "For i = 1 To 2",
                   "Function twice(x As Integer) As Integer\nReturn 2 * x\nEnd Function",
                   "twice(n)", "Dim n As String = \"new\"", "n", "n.Upp"}),
            "Int32 5\nInt32 6\n7\nunfinished\nInt32 14\n\"new\"\n"
            "test:1:3: error: String has no method or property \"Upp\".\n"
            "  1 | n.Upp\n    |   ^~~\n");
}

TEST_F(StatementsTest, AMistakeLeavesNothingBehindInASession) {
  EXPECT_EQ(enter({"Dim n As Integer = \"a\"", "n", "n = 5"}).substr(0, 70),
            "test:1:20: error: Expected Integer, but this is String.\n"
            "  1 | Dim n As");
}

}  // namespace
}  // namespace tests
