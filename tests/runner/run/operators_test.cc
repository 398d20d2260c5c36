// What expressions come to.
#include "tests/runner/runner_test.h"

namespace tests {
namespace {

class OperatorsTest : public RunnerTest {};

struct Row {
  const char* expression;
  const char* value;
};

TEST_F(OperatorsTest, Precedence) {
  const Row rows[] = {
      {"1 + 2 * 3", "Int32 7"},
      {"(1 + 2) * 3", "Int32 9"},
      {"-2 ^ 2", "Double -4"},
      {"2 ^ 3 ^ 2", "Double 64"},
      {"2 ^ -1", "Double 0.5"},
      {"10 - 4 - 3", "Int32 3"},
      {"7 \\ 2 * 2", "Int32 6"},
      {"7 Mod 4 + 1", "Int32 4"},
      {"1 + 1 = 2", "true"},
      {"1 < 2 And 2 < 3", "true"},
      {"True Or False And False", "true"},
      {"Not True Or True", "true"},
      {"Not (True Or True)", "false"},
      {"True Xor True", "false"},
      {"1 = 1 = True", "true"},
  };
  for (const Row& row : rows) EXPECT_EQ(valueOf(row.expression), row.value) << row.expression;
}

TEST_F(OperatorsTest, TypesOfResults) {
  const Row rows[] = {
      {"7 / 2", "Double 3.5"},
      {"6 / 2", "Double 3"},
      {"1 + 0.5", "Double 1.5"},
      {"2147483647 + 1", "Int32 -2147483648"},
      {"2147483648 + 1", "Int64 2147483649"},
      {"-2147483648", "Int32 -2147483648"},
      {"&hFFFFFFFF", "Int64 4294967295"},
      {"7.9 \\ 2", "Int64 3"},
      {"-7 Mod 4", "Int32 -3"},
      {"-7 \\ 2", "Int32 -3"},
      {"6 And 3", "Int32 2"},
      {"6 Or 3", "Int32 7"},
      {"6 Xor 3", "Int32 5"},
      {"Not 0", "Int32 -1"},
      {"1 / 0", "Double inf"},
      {"\"a\" + \"b\"", "\"ab\""},
  };
  for (const Row& row : rows) EXPECT_EQ(valueOf(row.expression), row.value) << row.expression;
}

TEST_F(OperatorsTest, Comparisons) {
  const Row rows[] = {
      {"\"abc\" = \"ABC\"", "true"},
      {"\"Ä\" = \"ä\"", "true"},
      {"\"a\" < \"B\"", "true"},
      {"\"b\" <= \"B\"", "true"},
      {"1 = 1.0", "true"},
      {"1 <> 2", "true"},
      {"2 >= 2", "true"},
      {"4294967295 > -1", "true"},
      {"(Nil = Nil)", "true"},
      {"Nil Is Nil", "true"},
      {"(New Dictionary = New Dictionary)", "false"},
      {"New Date(2020, 1, 1) < New Date(2020, 1, 2)", "true"},
      {"(New Date(2020, 1, 1) = New Date(2020, 1, 1))", "true"},
      {"New Date(2020, 1, 1) Is New Date(2020, 1, 1)", "false"},
      {"New Dictionary IsA Dictionary", "true"},
      {"New OutOfBoundsException IsA RuntimeException", "true"},
      {"New Dictionary IsA Date", "false"},
      {"Not New Dictionary IsA Date", "true"},
  };
  for (const Row& row : rows) EXPECT_EQ(valueOf(row.expression), row.value) << row.expression;
}

TEST_F(OperatorsTest, VariantsAreLookedAtWhenTheProgramRuns) {
  EXPECT_EQ(run("Dim v As Variant = 5\nDim w As Variant = \"7\"\nPrint v + 1\nPrint w + \"x\"\n"
                "Print Str(v = 5.0)\nPrint Str(v < w)\nPrint v + w"),
            "6\n7x\nTrue\nTrue\n57\n");
  EXPECT_EQ(run("Dim v As Variant = New Date(2020, 1, 1)\nDim n As Integer = v - 1"),
            "Unhandled TypeMismatchException: \"-\" can't be used between Date and Integer.\n"
            "  at test:2\n");
}

TEST_F(OperatorsTest, TheSecondOperandIsOnlyAskedWhenItMatters) {
  EXPECT_EQ(run("Function f() As Boolean\nPrint \"asked\"\nReturn True\nEnd Function\n"
                "If False And f Then Print \"no\"\nIf True Or f Then Print \"yes\""),
            "yes\n");
}

TEST_F(OperatorsTest, DivisionOfIntegersByZeroIsAnException) {
  EXPECT_EQ(run("Dim n As Integer = 0\nPrint Str(1 \\ n)"),
            "Unhandled UnsupportedOperationException: An integer was divided by 0.\n  at test:2\n");
  EXPECT_EQ(run("Dim n As Integer = -2147483648\nDim m As Integer = -1\nPrint Str(n \\ m)\n"
                "Print Str(n Mod m)"),
            "-2147483648\n0\n");
}

TEST_F(OperatorsTest, WhatDoesntFitIsAMistake) {
  EXPECT_EQ(firstProblem("Print \"a\" + 1"),
            "1:11+1 \"+\" can't be used between String and Integer. Str makes a text of a number.");
  EXPECT_EQ(firstProblem("If 1 And True Then Print"),
            "1:6+3 \"And\" can't be used between Integer and Boolean.");
  EXPECT_EQ(firstProblem("If 1 = \"1\" Then Print"),
            "1:6+1 \"=\" can't be used between Integer and String.");
  EXPECT_EQ(firstProblem("If Not \"a\" Then Print"), "1:4+7 \"Not\" doesn't take String.");
  EXPECT_EQ(firstProblem("If 1 Then Print"),
            "1:4+1 A condition is a Boolean, but this is Integer.");
}

}  // namespace
}  // namespace tests
