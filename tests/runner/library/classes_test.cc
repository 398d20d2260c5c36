// The host's classes, and those of plugins.
#include "tests/runner/runner_test.h"

namespace tests {
namespace {

class ClassesTest : public RunnerTest {};

struct Row {
  const char* expression;
  const char* value;
};

TEST_F(ClassesTest, Dictionaries) {
  EXPECT_EQ(run("Dim d As New Dictionary\nd.Value(\"a\") = 1\nd.Value(2) = \"two\"\n"
                "d.Value(\"a\") = d.Value(\"a\") + 1\nPrint d.Value(\"a\") + d.Value(2)\n"
                "Print Str(d.Count) + Str(d.HasKey(\"a\")) + Str(d.HasKey(\"b\"))\n"
                "Print d.Lookup(\"b\", \"none\") + d.Lookup(2, \"none\")\n"
                "For Each k As Variant In d.Keys\nPrint k\nNext\nPrint d.Key(1)\n"
                "d.Remove \"a\"\nPrint Str(d.Count)\nd.Clear\nPrint Str(d.Count)"),
            "2two\n2TrueFalse\nnonetwo\na\n2\n2\n1\n0\n");
  EXPECT_EQ(run("Dim d As New Dictionary\nPrint d.Value(\"gone\")"),
            "Unhandled KeyNotFoundException: The Dictionary has no key \"gone\".\n  at test:2\n");
  EXPECT_EQ(run("Dim d As Dictionary\nd.Value(\"a\") = 1"),
            "Unhandled NilObjectException: \"Value\" was called on Nil.\n  at test:2\n");
}

TEST_F(ClassesTest, Dates) {
  EXPECT_EQ(run("Dim d As New Date(2020, 2, 28, 23, 59, 58)\nPrint d.SQLDateTime\n"
                "d.Day = d.Day + 2\nPrint d.SQLDate\nd.Month = 13\nPrint d.SQLDate\n"
                "d.Second = d.Second + 2\nPrint d.SQLDateTime\nPrint Str(d.DayOfWeek)\n"
                "Dim e As New Date(d)\ne.SQLDateTime = \"2000-01-01 12:00:00\"\n"
                "Print e.SQLDateTime + \" \" + Str(e.TotalSeconds)\ne.TotalSeconds = 0\n"
                "Print e.SQLDate\nPrint Str(d.Year)"),
            "2020-02-28 23:59:58\n2020-03-01\n2021-01-01\n2021-01-02 00:00:00\n7\n"
            "2000-01-01 12:00:00 3029572800\n1904-01-01\n2021\n");
  EXPECT_EQ(run("Dim d As New Date(10000, 1, 1)"),
            "Unhandled OutOfBoundsException: A Date's year is between 1 and 9999.\n  at test:1\n");
}

TEST_F(ClassesTest, MemoryBlocks) {
  EXPECT_EQ(
      run("Dim m As New MemoryBlock(8)\nm.Byte(0) = 255\nm.Int16Value(2) = -2\n"
          "Print Str(m.Size) + \" \" + EncodeHex(m)\nPrint Str(m.Byte(0))\n"
          "Print Str(m.Int16Value(2))\nm.StringValue(4, 4) = \"abc\"\n"
          "Print m.StringValue(4, 3)\nDim n As MemoryBlock = \"xy\"\n"
          "Dim s As String = n\nPrint s\nm.DoubleValue(0) = 0.5\nPrint Str(m.DoubleValue(0))"),
      "8 FF00FEFF00000000\n255\n-2\nabc\nxy\n0.5\n");
  EXPECT_EQ(
      run("Dim m As New MemoryBlock(2)\nPrint Str(m.Byte(2))"),
      "Unhandled OutOfBoundsException: 1 bytes from 2 on are outside of the MemoryBlock, which "
      "has 2.\n  at test:2\n");
}

TEST_F(ClassesTest, FolderItems) {
  EXPECT_EQ(run("Dim f As New FolderItem(\"/usr/bin/../lib\")\nPrint f.NativePath\nPrint f.Name\n"
                "Print f.Parent.NativePath + \" \" + f.Child(\"x\").NativePath\n"
                "Print Str(f.Directory) + Str(f.Child(\"no such file\").Exists)\n"
                "Print Str(GetFolderItem(\"/\").Parent Is Nil)"),
            "/usr/lib\nlib\n/usr /usr/lib/x\nTrueFalse\nTrue\n");
}

TEST_F(ClassesTest, Variants) {
  EXPECT_EQ(run("Dim v As Variant\nPrint Str(v.IsNull) + Str(v.Type)\nv = \"12\"\n"
                "Print v.StringValue + Str(v.IntegerValue + 1) + Str(v.Type)\nv = 2.5\n"
                "Print Str(v.DoubleValue) + Str(v.IsNumeric)\nDim n As Integer = v\nPrint Str(n)\n"
                "v = New Date(2020, 1, 2)\nPrint v.DateValue.SQLDate\n"
                "v = Array(\"a\")\nPrint Str(v.IsArray)\nDim s() As String = v\nPrint s(0)\n"
                "v = True\nPrint v"),
            "True0\n12138\n2.5True\n2\n2020-01-02\nTrue\na\nTrue\n");
  EXPECT_EQ(
      run("Dim v As Variant = 5\nDim d As Dictionary = v"),
      "Unhandled TypeMismatchException: A value of type Integer can't be used as Dictionary.\n"
      "  at test:2\n");
}

TEST_F(ClassesTest, Casts) {
  EXPECT_EQ(run("Dim o As Object = New Dictionary\nDictionary(o).Value(1) = 2\n"
                "Print Dictionary(o).Value(1)"),
            "2\n");
  EXPECT_EQ(run("Dim o As Object = New Dictionary\nDim d As Date = Date(o)"),
            "Unhandled IllegalCastException: An object of class Dictionary is no Date.\n"
            "  at test:2\n");
  EXPECT_EQ(firstProblem("Dim d As Date = New Dictionary"),
            "1:17+14 Expected Date, but this is Dictionary.");
}

// --- plugins

TEST_F(ClassesTest, AMethodOfAPluginIsCalledByItsDeclaration) {
  EXPECT_EQ(run("Dim s As New SampleZEL(4)\nPrint Str(s.number)\nPrint Str(s.convert(3))\n"
                "Print Str(s.convert(3.0))\nPrint s.convert(\"text\")\nPrint Str(s.convert(True))\n"
                "Dim f As Single = 5\nPrint Str(s.convert(f))\n"
                "Print Str(s.mixed(1, \"x\", 2.5, True, 3))"),
            "4\n-3\n1\ntext\nTrue\n2.5\n1007.5\n");
}

TEST_F(ClassesTest, AnAssignmentCallsTheSetter) {
  EXPECT_EQ(run("Dim s As New SampleZEL\ns.count(\"a\") = 5\nPrint Str(s.count(\"b\"))\n"
                "s.count(\"a\") += 2\nPrint Str(s.count(\"b\"))\ns.total(\"t\") = 9\n"
                "Print Str(s.number)\ns.setCountValue \"k\", 1\nPrint Str(s.number)"),
            "5\n7\n9\n1\n");
  EXPECT_EQ(SamplePlugin::current().storedKey, "k");
}

TEST_F(ClassesTest, SharedMethods) {
  EXPECT_EQ(run("Print SampleZEL.version\nDim s As SampleZEL = sampleZEL.make\n"
                "Print Str(s.self Is s)\nPrint Str(s IsA SampleZEL)"),
            "1.0\nTrue\nTrue\n");
}

TEST_F(ClassesTest, ArraysAndVariantsPassBothWays) {
  EXPECT_EQ(run("Dim s As New SampleZEL\nDim a() As String = s.sameStrings(Array(\"a\", \"b\"))\n"
                "Print Join(a, \"\") + s.sameStrings(Array(\"x\"))(0)\n"
                "Dim v() As Variant = s.sameVariants(Array(1, \"two\"))\nPrint v(1)\n"
                "Print s.sameVariant(5) + s.sameVariant(\"x\")\n"
                "Print Str(s.sameVariant(Nil) Is Nil)\nPrint Str(s.isEmpty(\"\"))"),
            "abx\ntwo\n5x\nTrue\nTrue\n");
}

TEST_F(ClassesTest, WhatAPluginRaisesIsCaught) {
  EXPECT_EQ(run("Dim s As New SampleZEL\nTry\ns.raise 2\n"
                "Catch e As UnsupportedOperationException\nPrint \"caught\"\nEnd Try"),
            "caught\n");
  EXPECT_EQ(run("Dim s As New SampleZEL\ns.raise 1"),
            "Unhandled UnsupportedOperationException\n  at test:2\n");
}

TEST_F(ClassesTest, ObjectsDieWithTheirLastReference) {
  EXPECT_EQ(run("Dim s As SampleZEL = New SampleZEL\ns = Nil\nPrint \"gone\"\n"
                "For i As Integer = 1 To 3\nDim t As New SampleZEL\nNext"),
            "gone\n");
  EXPECT_EQ(SamplePlugin::current().constructed, 4);
  EXPECT_EQ(SamplePlugin::current().destroyed, 4);
}

// Its constant texts are kept by its code.
TEST_F(ClassesTest, AMethodThatCallsItselfLeavesNothingBehind) {
  EXPECT_EQ(run("Function f(s As SampleZEL, n As Integer) As Boolean\n"
                "If n = 0 Then Return s.isEmpty(\"text\")\nReturn f(s, n - 1)\nEnd Function\n"
                "Print Str(f(New SampleZEL, 3))"),
            "False\n");
}

TEST_F(ClassesTest, AnObjectDiesAtOnce) {
  SamplePlugin& plugin = SamplePlugin::current();
  std::ostringstream out;
  std::istringstream in;
  runner::Session session(*host, out, in);
  session.run(runner::Source("test", "Dim s As New SampleZEL"));
  EXPECT_EQ(plugin.destroyed, 0);
  session.run(runner::Source("test", "s = Nil"));
  EXPECT_EQ(plugin.destroyed, 1);
}

TEST_F(ClassesTest, MistakesAreHeldAgainstTheDeclaration) {
  const Row rows[] = {
      {"Dim s As SampleZEL\ns.numbr",
       "2:3+5 SampleZEL has no method or property \"numbr\". [number as integer] {number}"},
      {"Dim s As SampleZEL\ns.count",
       "2:3+5 \"count\" takes 1 argument, but none are given. "
       "[count(key as string) as integer]"},
      {"Dim s As SampleZEL\ns.raise 1, 2",
       "2:3+5 \"raise\" takes 1 argument, but 2 are given. "
       "[raise(times as integer)]"},
      {"Dim s As SampleZEL\ns.raise \"1\"",
       "2:9+3 Argument 1 of \"raise\" must be Integer, but this "
       "is String. [raise(times as integer)]"},
      {"Dim s As SampleZEL\ns.number = 1",
       "2:3+6 \"number\" can't be assigned to: it has no setter. "
       "[number as integer]"},
      {"Dim s As SampleZEL\ns.count(\"k\") = \"x\"",
       "2:16+3 The value must be Integer, but this is String. [count(key as string) as integer]"},
      {"Dim s As SampleZEL\ns.self(1)",
       "2:3+4 \"self\" takes 0 arguments, but 1 is given. "
       "[self as SampleZEL]"},
      {"SampleZEL.number",
       "1:11+6 SampleZEL has no shared method \"number\". It is a method of "
       "objects of the class."},
      {"SampleZEL.versoin",
       "1:11+7 SampleZEL has no shared method \"versoin\". [version as string] {version}"},
      {"Dim s As New SampleZEL(\"x\")",
       "1:24+3 Argument 1 of \"SampleZEL\" must be Integer, but this is String. "
       "[Constructor(value as integer)]"},
      {"Dim s As New SampleZEL\ns.convert(Nil)",
       "2:3+7 There is no \"convert\" that takes (Nil). [convert(value as integer) as integer] "
       "[convert(value as single) as single] [convert(value as double) as double] "
       "[convert(value as boolean) as boolean] [convert(text as string) as string]"},
      {"Dim s As New SmapleZEL", "1:14+9 There is no type \"SmapleZEL\". {SampleZEL}"},
      {"Dim v As Variant = 1\nv.count(1)",
       "2:3+5 Variant has no method or property \"count\". A Variant is first put into a variable "
       "of "
       "the type that it holds."},
  };
  for (const Row& row : rows) EXPECT_EQ(firstProblem(row.expression), row.value) << row.expression;
}

TEST_F(ClassesTest, NamesAreCompleted) {
  std::ostringstream out;
  std::istringstream in;
  runner::Session session(*host, out, in);
  session.run(runner::Source("test", "Dim sample As New SampleZEL"));
  using Names = std::vector<std::string>;
  EXPECT_EQ(session.completions("x = sample.co"), (Names{"convert", "count"}));
  EXPECT_EQ(session.completions("sample.s"), (Names{"sameSample", "sameStrings", "sameVariant",
                                                    "sameVariants", "self", "setCountValue"}));
  EXPECT_EQ(session.completions("SampleZEL."), (Names{"make", "version"}));
  EXPECT_EQ(session.completions("sample.self.NUM"), (Names{"number"}));
  session.run(runner::Source("test",
                             "Module M\nConst kName = 1\nSub Act()\nEnd Sub\nEnd Module\n"
                             "Class C\nSize As Integer\nEnum E\nOne\nEnd Enum\n"
                             "Shared Sub Make()\nEnd Sub\nEnd Class\nDim c As New C"));
  EXPECT_EQ(session.completions("M."), (Names{"Act", "kName"}));
  EXPECT_EQ(session.completions("c.Si"), (Names{"Size"}));
  EXPECT_EQ(session.completions("Dim s As sampl"), (Names{"SampleZEL", "sample"}));
  EXPECT_EQ(session.completions("sample.sameStrings(a.").size(), 0U);
  EXPECT_EQ(session.completions("Uppe"), (Names{"Uppercase"}));
}

}  // namespace
}  // namespace tests
