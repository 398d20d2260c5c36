// Kinds of values: integers of every size, money, colors, moments, texts and their encodings.
#include "tests/runner/runner_test.h"

namespace tests {
namespace {

class ValuesTest : public RunnerTest {};

struct Row {
  const char* expression;
  const char* value;
};

TEST_F(ValuesTest, IntegersOfEverySize) {
  EXPECT_EQ(run("Dim a As Int8 = 127\na = a + 1\nDim b As Byte = 255\nb = b + 1\n"
                "Dim c As Int16 = 32767\nc = c + 1\nDim d As UInt16 = 65535\nd = d + 1\n"
                "Dim e As UInteger = 4294967295\nPrint Str(a) + \" \" + Str(b) + \" \" + Str(c) + "
                "\" \" + Str(d) + \" \" + Str(e)\nDim l() As UInt8\nl.Append 7\nPrint Str(l(0))"),
            "-128 0 -32768 0 4294967295\n7\n");
}

TEST_F(ValuesTest, ANumberBeyondItsTypeIsAMistake) {
  EXPECT_EQ(firstProblem("Dim n As Integer = 3000000000"),
            "1:20+10 3000000000 doesn't fit into Integer.");
  EXPECT_EQ(firstProblem("Dim n As Byte = -1"), "1:17+2 -1 doesn't fit into UInt8.");
  EXPECT_EQ(firstProblem("Dim n As Int64 = 3000000000"), "");
  EXPECT_EQ(firstProblem("Dim n As Integer = -2147483648"), "");
  EXPECT_EQ(run("Dim n As Integer = &hFFFFFFFF\nPrint Str(n)"), "-1\n");
}

TEST_F(ValuesTest, MoneyIsExact) {
  EXPECT_EQ(run("Dim c As Currency = 0.1\nDim sum As Currency\nFor i As Integer = 1 To 10\n"
                "sum = sum + c\nNext\nPrint Str(sum) + \" \" + Str(sum = 1)\n"
                "c = 19.9999\nPrint Str(c * 3)\nPrint Str(-c)\nDim v As Variant = c\n"
                "Print Str(VarType(v)) + \" \" + Str(v.CurrencyValue)"),
            "1 True\n59.9997\n-19.9999\n6 19.9999\n");
}

TEST_F(ValuesTest, Colors) {
  EXPECT_EQ(run("Dim c As Color = &cFF8000\nPrint Str(c.Red) + \" \" + Str(c.Green) + \" \" + "
                "Str(c.Blue)\nPrint Str(c = RGB(255, 128, 0))\nPrint Str(c)\n"
                "Dim v As Variant = c\nPrint Str(VarType(v))\nDim back As Color = v\n"
                "Print Str(back = c)\nDim none As Color\nPrint Str(none = &c000000)"),
            "255 128 0\nTrue\n&h00FF8000\n16\nTrue\nTrue\n");
  EXPECT_EQ(firstProblem("Dim c As Color = &cFF"),
            "1:18+4 A color is written with six hexadecimal digits: &cFF8000.");
}

TEST_F(ValuesTest, MoneyAndColorsAreKeptInVariantsOfTheHost) {
  EXPECT_EQ(run("Dim d As New Dictionary\nd.Value(\"c\") = &c0000FF\nDim m As Currency = 2.5\n"
                "d.Value(\"m\") = m\nPrint Str(d.Value(\"c\").Type) + \" \" + "
                "Str(d.Value(\"m\").Type)\nDim c As Color = d.Value(\"c\")\nPrint Str(c.Blue)\n"
                "Dim s As New SampleZEL\nPrint Str(VarType(s.sameVariant(&c010203)))"),
            "16 6\n255\n16\n");
}

TEST_F(ValuesTest, Moments) {
  EXPECT_EQ(run("Dim d As New DateTime(2020, 2, 28, 23, 59, 58)\nPrint d.SQLDateTime\n"
                "Dim e As DateTime = d.AddInterval(0, 0, 1, 0, 0, 2)\nPrint e.SQLDateTime\n"
                "Print e.SubtractInterval(1).SQLDate\n"
                "Print Str(d.Year) + Str(d.Month) + Str(d.Day) + Str(d.DayOfWeek)\n"
                "Print Str(e.SecondsFrom1970 - d.SecondsFrom1970)\n"
                "Print DateTime.FromString(\"2001-02-03 04:05:06\").SQLDateTime\n"
                "Print Str(DateTime.Now.Year > 2000)"),
            "2020-02-28 23:59:58\n2020-03-01 00:00:00\n2019-03-01\n20202286\n86402\n"
            "2001-02-03 04:05:06\nTrue\n");
}

TEST_F(ValuesTest, EncodingsOfTexts) {
  EXPECT_EQ(run("Dim s As String = \"Grüße\"\nPrint s.Encoding.InternetName\n"
                "Dim l As String = ConvertEncoding(s, Encodings.ISOLatin1)\nPrint EncodeHex(l)\n"
                "Print l.Encoding.InternetName + Str(l.Encoding = Encodings.ISOLatin1)\n"
                "Print l.ConvertEncoding(Encodings.UTF8)\n"
                "Dim raw As String = DecodeHex(\"C3A4\")\n"
                "Print DefineEncoding(raw, Encodings.UTF8)\n"
                "Print ConvertEncoding(\"a→b\", Encodings.ASCII)"),
            "UTF-8\n4772FCDF65\nISO-8859-1True\nGrüße\nä\na?b\n");
}

TEST_F(ValuesTest, BytesAsLetters) {
  const Row rows[] = {
      {"EncodeBase64(\"hello\")", "\"aGVsbG8=\""},
      {"EncodeBase64(\"\")", "\"\""},
      {"Len(EncodeBase64(\""
       "0123456789012345678901234567890123456789012345678901234567890\"))",
       "Int32 86"},
      {"Len(EncodeBase64(\""
       "0123456789012345678901234567890123456789012345678901234567890\", 0))",
       "Int32 84"},
      {"DefineEncoding(DecodeBase64(\"aGVs bG8=\"), Encodings.UTF8)", "\"hello\""},
      {"DecodeBase64(\"aGVsbG8=\", Encodings.UTF8)", "\"hello\""},
      {"IsNumeric(\" -12.5 \")", "true"},
      {"IsNumeric(\"12x\")", "false"},
      {"IsNumeric(\"\")", "false"},
      {"IsNumeric(7)", "true"},
      {"IsNumeric(New Dictionary)", "false"},
      {"CStr(2.5) + CStr(True)", "\"2.5True\""},
  };
  for (const Row& row : rows) EXPECT_EQ(valueOf(row.expression), row.value) << row.expression;
}

TEST_F(ValuesTest, FoldersOfTheUser) {
  EXPECT_EQ(run("Print Str(SpecialFolder.Temporary.IsFolder)\n"
                "Print SpecialFolder.Documents.Name + SpecialFolder.Desktop.Name"),
            "True\nDocumentsDesktop\n");
}

TEST_F(ValuesTest, AnExceptionTellsWhereItWasRaised) {
  EXPECT_EQ(run("Sub inner()\nRaise New RuntimeException(\"x\")\nEnd Sub\nTry\ninner\n"
                "Catch e As RuntimeException\nFor Each line As String In e.Stack\nPrint line\n"
                "Next\nEnd Try\nDim fresh As New RuntimeException\nPrint Str(fresh.Stack.Ubound)"),
            "inner, line 2\nline 5\n-1\n");
}

}  // namespace
}  // namespace tests
