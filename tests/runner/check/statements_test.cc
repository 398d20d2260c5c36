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

TEST_F(StatementsTest, ByRefParametersAreElementsToo) {
  const std::string add = "Sub add(ByRef n As Integer, more As Integer = 1)\nn += more\nEnd Sub\n";
  EXPECT_EQ(run(add + "Dim a() As Integer = Array(5, 7)\nadd a(1)\nadd a(0), 10\n"
                      "Print Str(a(0)) + \" \" + Str(a(1))"),
            "15 8\n");
  // The index is computed once.
  EXPECT_EQ(run(add + "Function first() As Integer\nPrint \"asked\"\nReturn 0\nEnd Function\n"
                      "Dim a() As Integer = Array(5, 7)\nadd a(first())\nPrint Str(a(0))"),
            "asked\n6\n");
  EXPECT_EQ(run(add + "Dim a() As Integer\nadd a(0)"),
            "Unhandled OutOfBoundsException: Index 0 is outside of the array, whose last index is "
            "-1.\n  at test:5\n");
  // Only where it is asked for by reference; elsewhere the same call takes what it has.
  EXPECT_EQ(run("Function f(ByRef a As Integer, b As Integer, ParamArray c As Integer) As Integer\n"
                "a = 9\nReturn b + c(0)\nEnd Function\n"
                "Dim a() As Integer = Array(1, 2, 3)\nPrint Str(f(a(0), a(1), a(2))) + Str(a(0))"),
            "59\n");
}

TEST_F(StatementsTest, ByRefParametersArePropertiesToo) {
  const std::string counter =
      "Sub add(ByRef n As Integer)\nn += 1\nEnd Sub\n"
      "Class Counter\nCount As Integer = 5\nShared All As Integer\nOther As Counter\n"
      "Property Twice As Integer\nGet\nReturn Count * 2\nEnd Get\n"
      "Set\nCount = value \\ 2\nEnd Set\nEnd Property\n"
      "Sub Both(ByRef n As Integer)\nn += 1\nPrint Str(n) + \"=\" + Str(Count)\nEnd Sub\n"
      "Sub Inside()\nadd Count\nadd All\nBoth Count\nEnd Sub\nEnd Class\n"
      "Function made(c As Counter) As Counter\nPrint \"asked\"\nReturn c\nEnd Function\n"
      "Dim c As New Counter\n";
  EXPECT_EQ(run(counter + "add c.Count\nadd made(c).Count\nPrint Str(c.Count)"), "asked\n7\n");
  EXPECT_EQ(run(counter + "add Counter.All\nadd Counter.All\nPrint Str(Counter.All)"), "2\n");
  // A field is the caller's own, while the method runs as well.
  EXPECT_EQ(run(counter + "c.Both c.Count\nc.Inside\nPrint Str(c.Count) + Str(Counter.All)"),
            "6=6\n8=8\n81\n");
  EXPECT_EQ(run(counter + "add c.Twice\nadd c.Twice\nadd c.Twice\nPrint Str(c.Count)"), "5\n");
  EXPECT_EQ(run(counter + "Sub more(ByRef n As Integer)\nn += 4\nEnd Sub\n"
                          "more made(c).Twice\nPrint Str(c.Count)"),
            "asked\n7\n");
  EXPECT_EQ(run(counter + "add c.Other.Count"),
            "Unhandled NilObjectException: \"Count\" was called on Nil.\n  at test:31\n");
  EXPECT_EQ(run(counter + "Dim d As New Date(2024, 2, 29)\nadd d.Year\nPrint Str(d.Year)"),
            "2025\n");
  // What a method that fails has made of a copy is lost.
  EXPECT_EQ(run(counter + "Sub fail(ByRef n As Integer)\nn = 90\n"
                          "Raise New KeyNotFoundException\nEnd Sub\n"
                          "Try\nfail c.Twice\nCatch\nPrint Str(c.Count)\nEnd Try"),
            "5\n");
  // Of a method's value there is nothing to change.
  EXPECT_EQ(firstProblem(counter + "Dim t As String\nadd t.Length"),
            "32:5+8 A ByRef parameter takes a variable, an element of an array or a property of "
            "type Integer. [Sub add(ByRef n As Integer)]");
  EXPECT_EQ(firstProblem(counter + "Dim x() As Double\nadd x(0)"),
            "32:5+4 A ByRef parameter takes a variable, an element of an array or a property of "
            "type Integer. [Sub add(ByRef n As Integer)]");
}

TEST_F(StatementsTest, ByRefParametersAreTheCallersVariables) {
  EXPECT_EQ(run("Sub swap(ByRef a As Integer, ByRef b As Integer)\nDim c As Integer = a\na = b\n"
                "b = c\nEnd Sub\nDim x As Integer = 1\nDim y As Integer = 2\nswap x, y\n"
                "Print Str(x) + Str(y)"),
            "21\n");
  EXPECT_EQ(
      firstProblem("Sub f(ByRef a As Integer)\nEnd Sub\nf 5"),
      "3:3+1 A ByRef parameter takes a variable, an element of an array or a property of type "
      "Integer. [Sub f(ByRef a As Integer)]");
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
