// The language's functions, and its arrays.
#include "runner/check/suggest.h"
#include "runner/library/format.h"
#include "tests/runner/runner_test.h"

namespace tests {
namespace {

class FunctionsTest : public RunnerTest {};

struct Row {
  const char* expression;
  const char* value;
};

TEST_F(FunctionsTest, PartsOfTexts) {
  const Row rows[] = {
      {"Len(\"Grüße\")", "Int32 5"},
      {"LenB(\"Grüße\")", "Int32 7"},
      {"Left(\"Grüße\", 3)", "\"Grü\""},
      {"Right(\"Grüße\", 2)", "\"ße\""},
      {"Right(\"ab\", 5)", "\"ab\""},
      {"Mid(\"Grüße\", 3)", "\"üße\""},
      {"Mid(\"Grüße\", 3, 2)", "\"üß\""},
      {"Mid(\"abc\", 0)", "\"\""},
      {"\"Grüße\".Middle(2, 2)", "\"üß\""},
      {"Trim(\"  a b \")", "\"a b\""},
      {"LTrim(\" a \") + RTrim(\" b \")", "\"a  b\""},
      {"Uppercase(\"Grüße\")", "\"GRÜßE\""},
      {"\"ÄB\".Lowercase", "\"äb\""},
      {"NthField(\"a,b,c\", \",\", 2)", "\"b\""},
      {"NthField(\"a,b,c\", \",\", 4)", "\"\""},
      {"CountFields(\"a,b,c\", \",\")", "Int32 3"},
      {"Split(\"a,b,,c\", \",\")", "[\"a\", \"b\", \"\", \"c\"]"},
      {"Split(\"a b\")", "[\"a\", \"b\"]"},
      {"Split(\"äb\", \"\")", "[\"ä\", \"b\"]"},
      {"Split(\"\", \",\")", "[]"},
      {"Join(Array(\"a\", \"b\"), \"-\")", "\"a-b\""},
      {"Join(Split(\"1 2\"))", "\"1 2\""},
  };
  for (const Row& row : rows) EXPECT_EQ(valueOf(row.expression), row.value) << row.expression;
}

TEST_F(FunctionsTest, FindingAndReplacing) {
  const Row rows[] = {
      {"InStr(\"GRÜSSE\", \"üs\")", "Int32 3"},
      {"InStr(\"Hello\", \"L\")", "Int32 3"},
      {"InStr(4, \"Hello\", \"l\")", "Int32 4"},
      {"InStr(\"Hello\", \"x\")", "Int32 0"},
      {"\"Hello\".IndexOf(\"l\")", "Int32 2"},
      {"\"Hello\".IndexOf(\"x\")", "Int32 -1"},
      {"\"Hello\".Contains(\"ELL\")", "true"},
      {"\"Hello\".BeginsWith(\"he\")", "true"},
      {"\"Hello\".EndsWith(\"LO\")", "true"},
      {"Replace(\"a-b-c\", \"-\", \"+\")", "\"a+b-c\""},
      {"ReplaceAll(\"a-b-c\", \"-\", \"+\")", "\"a+b+c\""},
      {"ReplaceAll(\"abc\", \"\", \"+\")", "\"abc\""},
      {"StrComp(\"a\", \"A\", 0)", "Int32 1"},
      {"StrComp(\"a\", \"A\", 1)", "Int32 0"},
  };
  for (const Row& row : rows) EXPECT_EQ(valueOf(row.expression), row.value) << row.expression;
}

TEST_F(FunctionsTest, NumbersAndTexts) {
  const Row rows[] = {
      {"Str(5)", "\"5\""},
      {"Str(-0.1)", "\"-0.1\""},
      {"Str(1e20)", "\"1e+20\""},
      {"Str(1234567.5)", "\"1234567.5\""},
      {"Str(2147483648)", "\"2147483648\""},
      {"Str(0 / 0)", "\"NaN\""},
      {"Str(1 / 0) + Str(-1 / 0)", "\"INF-INF\""},
      {"Str(True)", "\"True\""},
      {"(5).ToString", "\"5\""},
      {"Val(\"12.5abc\")", "Double 12.5"},
      {"Val(\"&hFF\")", "Double 255"},
      {"Val(\"x\")", "Double 0"},
      {"Val(\"inf\")", "Double 0"},
      {"\" 42\".ToInteger", "Int32 42"},
      {"Chr(228)", "\"ä\""},
      {"Asc(\"ä\")", "Int32 228"},
      {"Hex(255)", "\"FF\""},
      {"Hex(-1)", "\"FFFFFFFF\""},
      {"Oct(8)", "\"10\""},
      {"Bin(5)", "\"101\""},
      {"EncodeHex(\"Aä\")", "\"41C3A4\""},
      {"DecodeHex(\"41 c3a4\")", "\"Aä\""},
      {"Abs(-5)", "Int32 5"},
      {"Abs(-5.5)", "Double 5.5"},
      {"Min(3, 2)", "Int32 2"},
      {"Max(3, 2.5)", "Double 3"},
      {"Floor(-1.5)", "Double -2"},
      {"Ceil(1.2)", "Double 2"},
      {"Round(2.5)", "Double 3"},
      {"Sqrt(9)", "Double 3"},
      {"VarType(5)", "Int32 2"},
      {"VarType(\"a\")", "Int32 8"},
      {"VarType(Nil)", "Int32 0"},
      {"VarType(New Date(2020, 1, 1))", "Int32 7"},
      {"Integer(3.9)", "Int32 3"},
      {"Integer(3e10)", "Int32 2147483647"},
  };
  for (const Row& row : rows) EXPECT_EQ(valueOf(row.expression), row.value) << row.expression;
}

TEST_F(FunctionsTest, NumbersByAPattern) {
  using runner::formatted;
  EXPECT_EQ(formatted(1234.567, "#,##0.00"), "1,234.57");
  EXPECT_EQ(formatted(1234567, "#,###"), "1,234,567");
  EXPECT_EQ(formatted(0.5, "#.##"), ".5");
  EXPECT_EQ(formatted(0.5, "0.0#"), "0.5");
  EXPECT_EQ(formatted(7, "000"), "007");
  EXPECT_EQ(formatted(0.25, "0%"), "25%");
  EXPECT_EQ(formatted(-5, "-0"), "-5");
  EXPECT_EQ(formatted(-5, "0"), "5");
  EXPECT_EQ(formatted(5, "+0"), "+5");
  EXPECT_EQ(formatted(-5, "0;(0);zero"), "(5)");
  EXPECT_EQ(formatted(0, "0;(0);zero"), "zero");
  EXPECT_EQ(formatted(12345, "0.00E+00"), "1.23E+04");
  EXPECT_EQ(formatted(99999, "0.0E+0"), "1.0E+5");
  EXPECT_EQ(formatted(5, "$0\\#"), "$5#");
}

TEST_F(FunctionsTest, Arrays) {
  EXPECT_EQ(run("Dim a() As Integer\na.Append 3\na.Add(1)\na.Insert 1, 2\nPrint Str(a.Ubound)\n"
                "Print Str(Ubound(a)) + Str(a.LastIndex) + Str(a.Count)\na.Sort\n"
                "For Each n As Integer In a\nPrint Str(n)\nNext\na.Remove 0\nPrint Str(a(0))\n"
                "Print Str(a.IndexOf(3)) + Str(a.Pop) + Str(a.Count)\na.RemoveAll\n"
                "Print Str(a.Count)"),
            "2\n223\n1\n2\n3\n2\n131\n0\n");
  EXPECT_EQ(run("Dim a(2) As String\na(1) = \"x\"\nPrint Join(a, \",\")\nRedim a(0)\n"
                "Print Str(a.Ubound)\na.ResizeTo(3)\nPrint Join(a, \",\")"),
            ",x,\n0\n,,,\n");
  EXPECT_EQ(run("Dim a() As Dictionary\na.Append New Dictionary\na(0).Value(\"k\") = 1\n"
                "Print a(0).Value(\"k\")"),
            "1\n");
  EXPECT_EQ(valueOf("Array(1, 2.5)"), "[Double 1, Double 2.5]");
  EXPECT_EQ(valueOf("Array(1, \"a\")"), "[Int32 1, \"a\"]");
}

TEST_F(FunctionsTest, ArraysAreReferences) {
  EXPECT_EQ(run("Sub add(a() As String)\na.Append \"x\"\nEnd Sub\nDim a() As String\nadd a\n"
                "Dim b() As String = a\nb.Append \"y\"\nPrint Join(a, \"\")"),
            "xy\n");
}

TEST_F(FunctionsTest, BadIndicesAreExceptions) {
  EXPECT_EQ(run("Dim a(1) As Integer\nPrint Str(a(2))"),
            "Unhandled OutOfBoundsException: Index 2 is outside of the array, whose last index is "
            "1.\n  at test:2\n");
  EXPECT_EQ(run("Dim a() As Integer = Nil\na.Append 1"),
            "Unhandled NilObjectException: \"Append\" was called on Nil.\n  at test:2\n");
}

TEST_F(FunctionsTest, TheNearestNameIsSuggested) {
  EXPECT_EQ(runner::nearest("Uppercse", {"Lowercase", "Uppercase"}), "Uppercase");
  EXPECT_EQ(runner::nearest("Pritn", {"Print", "Input"}), "Print");
  EXPECT_EQ(runner::nearest("xyz", {"Print", "Input"}), "");
  EXPECT_EQ(runner::nearest("a", {"b"}), "");
}

}  // namespace
}  // namespace tests
