// Declarations in the host's language.
#include "host/declaration.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

namespace tests {
namespace {

using host::Declaration;
using host::parseDeclaration;

// A declaration written out in full, for comparing.
std::string shown(const Declaration& declaration) {
  std::string text = declaration.name;
  for (const host::Parameter& parameter : declaration.parameters) {
    text += "|" + std::string(parameter.assigns ? "assigns " : "") +
            (parameter.byRef ? "byref " : "") + parameter.name + ":" + parameter.type.name +
            (parameter.type.array ? "()" : "");
  }
  if (declaration.result)
    text += "->" + declaration.result->name + (declaration.result->array ? "()" : "");
  return text;
}

std::string parsed(const char* text) { return shown(parseDeclaration(text)); }

std::string errorOf(const char* text) {
  try {
    return "no error: " + parsed(text);
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
}

TEST(DeclarationTest, ReadsNamesParametersAndResults) {
  EXPECT_EQ(parsed("Constructor"), "Constructor");
  EXPECT_EQ(parsed("Constructor(username as string)"), "Constructor|username:string");
  EXPECT_EQ(parsed("synchronize as boolean"), "synchronize->boolean");
  EXPECT_EQ(parsed("objectIsForcedForKey(key as string, domain as string) as boolean"),
            "objectIsForcedForKey|key:string|domain:string->boolean");
  EXPECT_EQ(parsed("_exception as NSExceptionZEL"), "_exception->NSExceptionZEL");
  EXPECT_EQ(parsed("empty()"), "empty");
}

TEST(DeclarationTest, ReadsArrays) {
  EXPECT_EQ(parsed("setStringArrayValue(key as string, values() as string)"),
            "setStringArrayValue|key:string|values:string()");
  EXPECT_EQ(parsed("take(values as string())"), "take|values:string()");
  EXPECT_EQ(parsed("names as string()"), "names->string()");
}

TEST(DeclarationTest, ReadsHowParametersPass) {
  EXPECT_EQ(parsed("Value(key As Variant, Assigns _value As Variant)"),
            "Value|key:Variant|assigns _value:Variant");
  EXPECT_EQ(parsed("swap(byref a as integer, ByVal b as integer)"),
            "swap|byref a:integer|b:integer");
}

TEST(DeclarationTest, DoesNotMindSpaceOrCase) {
  EXPECT_EQ(parsed(" LenB( s  AS string )As integer "), "LenB|s:string->integer");
}

TEST(DeclarationTest, SaysWhatWasExpectedAndWhere) {
  EXPECT_EQ(errorOf(""),
            "declaration \"\": expected the name of a method at column 1, found the end");
  EXPECT_EQ(errorOf("f(key string)"),
            "declaration \"f(key string)\": expected \"as\" at column 7, found \"string\"");
  EXPECT_EQ(errorOf("f(key as)"),
            "declaration \"f(key as)\": expected the name of a type at column 9, found \")\"");
  EXPECT_EQ(errorOf("f(key as string"),
            "declaration \"f(key as string\": expected \",\" or \")\" at column 16, found the end");
  EXPECT_EQ(errorOf("f integer"),
            "declaration \"f integer\": expected \"as\" or the end at column 3, found \"integer\"");
  EXPECT_EQ(errorOf("f as integer integer"),
            "declaration \"f as integer integer\": expected the end at column 14, found "
            "\"integer\"");
  EXPECT_EQ(errorOf("f(a() as string())"),
            "declaration \"f(a() as string())\": expected one pair of parentheses, not two at "
            "column 18, found \")\"");
  EXPECT_EQ(errorOf("f(assigns a as string, b as string)"),
            "declaration \"f(assigns a as string, b as string)\": expected no parameter after the "
            "one that assigns at column 24, found \"b\"");
  EXPECT_EQ(errorOf("f(as as string)"),
            "declaration \"f(as as string)\": expected the name of a parameter at column 3, found "
            "\"as\"");
  EXPECT_EQ(errorOf("f(1 as string)"),
            "declaration \"f(1 as string)\": expected the name of a parameter at column 3, found "
            "\"1\"");
}

bool same(const char* left, const char* right) {
  return sameSignature(parseDeclaration(left), parseDeclaration(right));
}

TEST(DeclarationTest, ComparesByNameTypesAndResult) {
  EXPECT_TRUE(same("LenB( s as string ) as integer", "lenb(text AS String) As Integer"));
  EXPECT_FALSE(same("LenB(s as string) as integer", "Len(s as string) as integer"));
  EXPECT_FALSE(same("LenB(s as string) as integer", "LenB(s as string)"));
  EXPECT_FALSE(same("LenB(s as string) as integer", "LenB(s as string) as double"));
  EXPECT_FALSE(same("f(a as string)", "f(a() as string)"));
  EXPECT_FALSE(same("f(a as string)", "f(a as string, b as string)"));
  EXPECT_FALSE(same("f(a as string)", "f(assigns a as string)"));
  EXPECT_FALSE(same("f(a as string)", "f(byref a as string)"));
}

}  // namespace
}  // namespace tests
