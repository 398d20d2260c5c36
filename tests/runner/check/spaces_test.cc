// Classes, modules and enums of a program, and what methods of its own can take.
#include "tests/runner/runner_test.h"

namespace tests {
namespace {

class SpacesTest : public RunnerTest {};

constexpr char kCounter[] =
    "Class Counter\n"
    "Private mCount As Integer = 10\n"
    "Names() As String\n"
    "Shared Made As Integer\n"
    "Const kStep = 2\n"
    "Sub Constructor(start As Integer)\nmCount = start\nMade = Made + 1\nEnd Sub\n"
    "Sub Constructor()\nMade = Made + 1\nEnd Sub\n"
    "Function Count() As Integer\nReturn mCount\nEnd Function\n"
    "Sub Advance()\nmCount += kStep\nSelf.Names.Append(\"step\")\nEnd Sub\n"
    "Shared Function Describe() As String\nReturn Str(Made) + \" made\"\nEnd Function\n"
    "End Class\n";

TEST_F(SpacesTest, AClassHasPropertiesMethodsAndConstructors) {
  EXPECT_EQ(run(std::string(kCounter) +
                "Dim a As New Counter(5)\nDim b As New Counter\na.Advance\nb.Advance\nb.Advance\n"
                "Print Str(a.Count) + \" \" + Str(b.Count) + \" \" + Str(b.Names.Ubound)\n"
                "Print b.Names(1)\nPrint Counter.Describe\nPrint Str(Counter.kStep)\n"
                "Counter.Made = 7\nPrint Counter.Describe"),
            "7 14 1\nstep\n2 made\n2\n7 made\n");
}

TEST_F(SpacesTest, AClassBelowAnotherOneCallsItsMethods) {
  EXPECT_EQ(
      run("Class Animal\nName As String\nSub Constructor(n As String)\nName = n\nEnd Sub\n"
          "Function Sound() As String\nReturn \"...\"\nEnd Function\n"
          "Function Speak() As String\nReturn Name + \": \" + Sound\nEnd Function\nEnd Class\n"
          "Class Dog\nInherits Animal\nTail As Boolean\n"
          "Sub Constructor(n As String)\nSuper.Constructor(n + \"!\")\nTail = True\nEnd Sub\n"
          "Function Sound() As String\nReturn Super.Sound + \"woof\"\nEnd Function\n"
          "End Class\n"
          "Dim a As Animal = New Dog(\"Rex\")\nPrint a.Speak\nPrint Str(a IsA Dog)\n"
          "Print Str(Dog(a).Tail)\nDim plain As New Animal(\"Cat\")\nPrint plain.Speak\n"
          "Print Str(plain IsA Dog)"),
      "Rex!: ...woof\nTrue\nTrue\nCat: ...\nFalse\n");
}

TEST_F(SpacesTest, AClassCanStandBelowOneOfTheHostOrOfAPlugin) {
  EXPECT_EQ(run("Class Named Inherits Dictionary\nTitle As String\n"
                "Function Both(key As String) As String\nReturn Title + Value(key).StringValue\n"
                "End Function\nEnd Class\n"
                "Dim n As New Named\nn.Title = \"T\"\nn.Value(\"a\") = 5\nPrint n.Both(\"a\")\n"
                "Dim d As Dictionary = n\nPrint Str(d.Count)"),
            "T5\n1\n");
  EXPECT_EQ(run("Class Mine Inherits SampleZEL\nExtra As String = \"e\"\n"
                "Sub Constructor(n As Integer)\nSuper.Constructor(n)\nEnd Sub\n"
                "Function Twice() As Integer\nReturn 2 * number\nEnd Function\nEnd Class\n"
                "Dim m As New Mine(4)\nPrint Str(m.Twice) + m.Extra + Str(m.number)"),
            "8e4\n");
  EXPECT_EQ(run("Class Failed Inherits RuntimeException\nEnd Class\nTry\nRaise New Failed\n"
                "Catch e As Failed\nPrint \"caught\"\nEnd Try"),
            "caught\n");
}

TEST_F(SpacesTest, ComputedProperties) {
  const char* const expected = "5\n10\n";
  EXPECT_EQ(run("Class Box\nPrivate mSize As Integer\nProperty Size As Integer\nGet\n"
                "Return mSize\nEnd Get\nSet\nmSize = value\nEnd Set\nEnd Property\nEnd Class\n"
                "Dim b As New Box\nb.Size = 5\nPrint Str(b.Size)\nb.Size += 5\nPrint Str(b.Size)"),
            expected);
  EXPECT_EQ(run("#tag Class\nProtected Class Box\n#tag ComputedProperty, Flags = &h0\n#tag Getter\n"
                "Get\nReturn mSize\nEnd Get\n#tag EndGetter\n#tag Setter\nSet\nmSize = value\n"
                "End Set\n#tag EndSetter\nSize As Integer\n#tag EndComputedProperty\n"
                "#tag Property, Flags = &h21\nPrivate mSize As Integer\n#tag EndProperty\n"
                "End Class\n#tag EndClass\n"
                "Dim b As New Box\nb.Size = 5\nPrint Str(b.Size)\nb.Size += 5\nPrint Str(b.Size)"),
            expected);
}

TEST_F(SpacesTest, WhoMayUseAMember) {
  const std::string program =
      "Class A\nPrivate x As Integer\nProtected y As Integer\nEnd Class\n"
      "Class B Inherits A\nFunction Sum() As Integer\nReturn y\nEnd Function\nEnd Class\n";
  EXPECT_EQ(run(program + "Dim b As New B\nPrint Str(b.Sum)"), "0\n");
  EXPECT_EQ(firstProblem(program + "Dim a As New A\na.x = 5"),
            "11:3+1 \"x\" is private to A. [x As Integer]");
  EXPECT_EQ(firstProblem(program + "Dim a As New A\nPrint Str(a.y)"),
            "11:13+1 \"y\" is protected to A. [y As Integer]");
}

TEST_F(SpacesTest, AModuleHasWhatIsSharedByAll) {
  EXPECT_EQ(run("Module Settings\nConst kName = \"app\"\nPrivate mCount As Integer = 3\n"
                "Limits() As Integer\nEnum Mode\nLight\nDark = 5\nAutomatic\nEnd Enum\n"
                "Sub Add(n As Integer)\nmCount = mCount + n\nLimits.Append n\nEnd Sub\n"
                "Function Count() As Integer\nReturn mCount\nEnd Function\n"
                "Global Function Twice(n As Integer) As Integer\nReturn 2 * n\nEnd Function\n"
                "End Module\n"
                "Settings.Add(4)\nPrint Settings.kName + Str(Settings.Count)\n"
                "Print Str(Settings.Limits(0)) + Str(Twice(5))\n"
                "Dim m As Settings.Mode = Settings.Mode.Automatic\n"
                "Print Str(Integer(m)) + Str(m = Settings.Mode.Dark)\n"
                "Select Case m\nCase Settings.Mode.Automatic\nPrint \"auto\"\nEnd Select"),
            "app7\n410\n6False\nauto\n");
  EXPECT_EQ(firstProblem("Module M\nPrivate n As Integer\nEnd Module\nPrint Str(M.n)"),
            "4:13+1 \"n\" is private to M.");
  EXPECT_EQ(firstProblem("Module M\nnumber As Integer\nEnd Module\nPrint Str(M.nubmer)"),
            "4:13+6 M has no member \"nubmer\". {number}");
}

TEST_F(SpacesTest, EnumsAreTypesOfTheirOwn) {
  EXPECT_EQ(run("Enum Color3\nRed\nGreen\nEnd Enum\nDim c As Color3 = Color3.Green\n"
                "Print Str(Integer(c))\nc = Color3(0)\nPrint Str(c = Color3.Red)\n"
                "Print Str(Color3.Red < Color3.Green)"),
            "1\nTrue\nTrue\n");
  EXPECT_EQ(firstProblem("Enum E\nA\nEnd Enum\nDim e1 As E = 1"),
            "4:15+1 Expected E, but this is Integer.");
}

TEST_F(SpacesTest, ObjectsDieWithTheirFields) {
  EXPECT_EQ(run("Class Node\nNext_ As Node\nValue As Variant\nEnd Class\nSub f()\n"
                "Dim n As New Node\nn.Next_ = New Node\nn.Next_.Value = New Dictionary\nEnd Sub\n"
                "f\nPrint \"done\""),
            "done\n");
}

TEST_F(SpacesTest, WhatIsWrongWithAClassIsSaidAtItsLine) {
  EXPECT_EQ(firstProblem("Class A\nInherits B\nEnd Class\nClass B\nInherits A\nEnd Class"),
            "5:10+1 A class can't stand above itself.");
  EXPECT_EQ(firstProblem("Class A Inherits FolderItem\nEnd Class"),
            "1:18+10 No class can stand below FolderItem.");
  EXPECT_EQ(firstProblem("Class Dictionary\nEnd Class"),
            "1:7+10 There is a type \"Dictionary\" already.");
  EXPECT_EQ(firstProblem("Class A\nShared Sub f()\ng\nEnd Sub\nSub g()\nEnd Sub\nEnd Class"),
            "3:1+1 \"g\" belongs to objects of A, and a shared method has none.");
  EXPECT_EQ(firstProblem("Interface I\nSub f()\nEnd Interface"),
            "1:1+9 \"Interface\" isn't in the language of this runner. What is in it, and what "
            "stays out, stands in docs/language.md.");
  const std::string outside =
      " in the language of this runner. What is in it, and what stays out, stands in "
      "docs/language.md.";
  EXPECT_EQ(firstProblem("Print \"a\"\nGoTo there"), "2:1+4 \"GoTo\" isn't" + outside);
  EXPECT_EQ(firstProblem("Class A Implements B\nEnd Class"),
            "1:9+10 \"Implements\" isn't" + outside);
  EXPECT_EQ(firstProblem("Dim f As Variant = AddressOf g"), "1:20+9 \"AddressOf\" isn't" + outside);
  EXPECT_EQ(firstProblem("Dim a(2, 2) As Integer"),
            "1:8+1 An array of more than one dimension isn't" + outside);
  EXPECT_EQ(run("Dim event As Boolean = True\nDim addressOf As Integer = 5\n"
                "If event And addressOf = 5 Then Print \"names\""),
            "names\n");
}

TEST_F(SpacesTest, StaticVariablesKeepTheirValue) {
  EXPECT_EQ(run("Function f() As Integer\nStatic n As Integer = 5\nn = n + 1\nReturn n\n"
                "End Function\nPrint Str(f)\nPrint Str(f)\nPrint Str(f)"),
            "6\n7\n8\n");
}

TEST_F(SpacesTest, ParametersOfEveryKind) {
  EXPECT_EQ(run("Function sum(ParamArray n As Integer) As Integer\nDim total As Integer\n"
                "For Each one As Integer In n\ntotal = total + one\nNext\nReturn total\n"
                "End Function\nPrint Str(sum(1, 2, 3)) + Str(sum) + Str(sum(Array(4, 5)))"),
            "609\n");
  EXPECT_EQ(run("Function shout(Extends s As String, mark As String = \"!\") As String\n"
                "Return s.Uppercase + mark\nEnd Function\nPrint \"a\".shout + \"b\".shout(\"?\")"),
            "A!B?\n");
  EXPECT_EQ(run("Function f(a As Integer, Optional b As String) As String\nReturn Str(a) + b\n"
                "End Function\nPrint f(1) + f(2, \"x\")"),
            "12x\n");
}

TEST_F(SpacesTest, AChoiceBetweenValuesComputesTheOneThatItGives) {
  EXPECT_EQ(run("Function f() As String\nPrint \"asked\"\nReturn \"no\"\nEnd Function\n"
                "Print If(1 < 2, \"yes\", f())\nDim d As Double = If(False, 1, 2.5)\nPrint Str(d)"),
            "yes\n2.5\n");
}

TEST_F(SpacesTest, PairsAndDictionariesOfThem) {
  EXPECT_EQ(run("Dim d As New Dictionary(\"a\" : 1, \"b\" : Array(2, 3))\nPrint Str(d.Count)\n"
                "Print d.Value(\"a\")\nDim p As Pair = (\"k\" : 5)\nPrint p.Left + p.Right"),
            "2\n1\nk5\n");
}

TEST_F(SpacesTest, BranchesThatAreMeantForAnotherPlatformAreLeftOut) {
  EXPECT_EQ(run("#Pragma DisableBackgroundTasks\n#If TargetMacOS Then\nthis is never read\n"
                "#ElseIf TargetLinux And Not TargetWindows Then\nPrint \"linux\"\n"
                "#If False\nPrint \"inner\"\n#Else\nPrint \"else\"\n#EndIf\n#Else\nPrint \"?\"\n"
                "#Endif\nIf TargetLinux Then Print \"again\""),
            "linux\nelse\nagain\n");
  EXPECT_EQ(firstProblem("#If TargetMacOS\nPrint \"a\""), "1:2+2 This #If has no #Endif.");
  EXPECT_EQ(firstProblem("#Else"), "1:2+4 \"#Else\" belongs to no #If here.");
  EXPECT_EQ(firstProblem("#Nothing"),
            "1:1+8 \"#\" begins #If, #ElseIf, #Else, #Endif, #Pragma or #tag.");
}

TEST_F(SpacesTest, ConditionsCompareWhatIsKnown) {
  const auto holds = [this](const std::string& condition, const std::string& before = "") {
    return run(before + "#If " + condition + " Then\nPrint \"yes\"\n#Else\nPrint \"no\"\n#End If");
  };
  for (const char* const condition :
       {"XojoVersion >= 2013.02", "RBVersion < 2019.02", "XojoVersion = 2014.0 And Not DebugBuild",
        "(TargetMacOS Or TargetLinux) And Not (TargetWindows Or TargetMacOS)",
        "Target32Bit <> Target64Bit", "TargetMacOS Xor TargetLinux", "-1 < 0", "\"a\" = \"A\"",
        "\"a\" < \"B\"", "1 <= 1", "2 > 1.5", "TargetMacOS = TargetWindows"})
    EXPECT_EQ(holds(condition), "yes\n") << condition;
  for (const char* const condition : {"XojoVersion >= 2019.02", "TargetMacOS Or TargetWindows",
                                      "1 <> 1", "\"a\" > \"b\"", "1 >= 2"})
    EXPECT_EQ(holds(condition), "no\n") << condition;
  EXPECT_EQ(
      run("#If XojoVersion >= 2019.02 Then\nPrint \"new\"\n#ElseIf XojoVersion >= 2014 Then\n"
          "Print \"middle\"\n#ElseIf True Then\nPrint \"never\"\n#Endif\nPrint Str(XojoVersion)"),
      "middle\n2014\n");
}

TEST_F(SpacesTest, ConditionsKnowTheConstantsAboveThem) {
  EXPECT_EQ(run("Const kLevel = 2\nConst kName As String = \"Pro\"\nConst kMore = kLevel\n"
                "#If kMore = 2 And kLevel < 3 And kName = \"PRO\" Then\nPrint \"yes\"\n#Endif"),
            "yes\n");
  EXPECT_EQ(run("Module M\nPrivate Const kOn = True\nSub f()\n#If kOn\nPrint \"on\"\n#Endif\n"
                "End Sub\nEnd Module\nM.f"),
            "on\n");
  // One of a method is known within it.
  EXPECT_EQ(
      run("Const k = 1\nSub f()\nConst k = 2\n#If k = 2 Then\nPrint \"inner\"\n#Endif\nEnd Sub\n"
          "f\n#If k = 1 Then\nPrint \"outer\"\n#Endif"),
      "inner\nouter\n");
  // What is left out declares nothing.
  EXPECT_EQ(firstProblem("#If False Then\nConst k = 1\n#Endif\n#If k = 1 Then\n#Endif"),
            "4:5+1 #If doesn't know \"k\". It knows the host's constants, such as TargetLinux, "
            "DebugBuild and XojoVersion, and the program's own that stand above it.");
  EXPECT_EQ(firstProblem("Const k = 2 * 3\n#If k = 6 Then\n#Endif"),
            "2:5+1 #If can't know the value of \"k\". It knows constants that are numbers, texts, "
            "True, False or other such constants.");
}

TEST_F(SpacesTest, WhatIsNoConditionIsSaid) {
  const std::string made =
      "A condition of #If is made of True, False, numbers, texts and constants such as TargetLinux "
      "and XojoVersion, with =, <>, <, >, <=, >=, And, Or, Xor, Not and parentheses.";
  const struct {
    const char* condition;
    std::string problem;
  } rows[] = {
      {"XojoVersion Then",
       "1:5+11 A condition of #If is True or False, but this is a number. Compare it: XojoVersion "
       ">= 2019.02"},
      {"Not 5 Then",
       "1:9+1 A condition of #If is True or False, but this is a number. Compare it: XojoVersion "
       ">= 2019.02"},
      {"XojoVersion >= \"2019\" Then",
       "1:5+21 #If compares what is alike, but this is a number and a text."},
      {"f() Then", "1:5+3 " + made},
      {"1 + 1 = 2 Then", "1:5+5 " + made},
      {"Nil = Nil Then", "1:5+3 " + made},
      {"-True Then", "1:5+5 " + made},
      {"True Then Print 1",
       "1:15+5 \"#If\" has a line of its own: what follows it stands on the next."},
      {"True And Then", "1:14+4 Expected an expression, found \"Then\"."},
      {"True False Then", "1:10+5 Expected \"Then\", found \"False\"."},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(firstProblem("#If " + std::string(row.condition) + "\n#Endif"), row.problem)
        << row.condition;
  }
  EXPECT_EQ(firstProblem("#If True\n#Else Print 1\n#Endif"),
            "2:7+5 \"#Else\" has a line of its own: what follows it stands on the next.");
  // Where nothing depends on it, a condition of a newer host's is left alone.
  EXPECT_EQ(run("#If True Then\nPrint \"a\"\n#ElseIf IsNewer(5) Then\nPrint \"b\"\n#Endif"), "a\n");
}

TEST_F(SpacesTest, AValueThatIsntUsedNeedsCall) {
  EXPECT_EQ(run("Function f() As Integer\nPrint \"called\"\nReturn 1\nEnd Function\nCall f"),
            "called\n");
  EXPECT_EQ(firstProblem("Function f() As Integer\nReturn 1\nEnd Function\nf"),
            "4:1+1 The value that \"f\" gives isn't used. \"Call\" in front says that it isn't "
            "wanted. [Function f() As Integer]");
}

TEST_F(SpacesTest, AClassThatIsDeclaredAnewLeavesEarlierObjectsAlone) {
  EXPECT_EQ(
      enter({"Class A\nn As Integer\nEnd Class",
             "Function old() As Variant\nReturn New A\nEnd Function",
             "Class A\nn As Integer\nm As Integer\nEnd Class", "Dim a As A = old()", "(New A).m"}),
      "Unhandled TypeMismatchException: A value of type A can't be used as A.\n"
      "  at test:1\nInt32 0\n");
}

TEST_F(SpacesTest, ANameThatIsTakenIsSaidOnce) {
  EXPECT_EQ(problems("Module Dictionary\nn As Integer\nEnd Module"),
            "test:1:8: error: There is a type \"Dictionary\" already.\n"
            "  1 | Module Dictionary\n    |        ^~~~~~~~~~\n");
  EXPECT_EQ(firstProblem("Class A\nEnd Class\nModule a\nEnd Module"),
            "3:8+1 \"a\" is declared already, in line 1.");
}

TEST_F(SpacesTest, ClassesStayInASession) {
  EXPECT_EQ(
      enter({"Class A\nn As Integer\nEnd Class", "Dim a As New A", "a.n = 5", "a.n",
             "Dim again As A = a", "Str(again.n)", "Module M\nConst k = 7\nEnd Module", "M.k"}),
      "Int32 5\n\"5\"\nInt32 7\n");
}

}  // namespace
}  // namespace tests
