#include "macho/check/import_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>

namespace tests {
namespace {

using testing::ElementsAre;
using testing::Pair;

constexpr char kLibraries[] =
    "# a comment\n"
    "[libraries]\n"
    "One  1.0  /usr/lib/one.dylib\n"
    "\n"
    "Two  300.0  /usr/lib/two.dylib\n"
    "[symbols]\n";

macho_check::ImportList listFor(const std::string& processor, const std::string& symbols,
                                const std::string& bundle = "Bundle") {
  std::istringstream text(kLibraries + symbols);
  return macho_check::readImportList(text, bundle, processor);
}

std::string refusal(const std::string& list) {
  std::istringstream text(list);
  try {
    macho_check::readImportList(text, "Bundle", "i386");
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "none";
}

TEST(ImportListTest, KnowsTheLibraries) {
  EXPECT_THAT(listFor("i386", "").libraries,
              ElementsAre(Pair("/usr/lib/one.dylib", "1.0"), Pair("/usr/lib/two.dylib", "300.0")));
}

TEST(ImportListTest, KnowsTheSymbolsOfAProcessor) {
  const std::string symbols =
      "One any          _first   because of this\n"
      "Two i386         _second  because\n"
      "Two x86_64,arm64 _third   because\n";
  EXPECT_THAT(listFor("i386", symbols).symbols, ElementsAre(Pair("_first", "/usr/lib/one.dylib"),
                                                            Pair("_second", "/usr/lib/two.dylib")));
  EXPECT_THAT(listFor("arm64", symbols).symbols, ElementsAre(Pair("_first", "/usr/lib/one.dylib"),
                                                             Pair("_third", "/usr/lib/two.dylib")));
}

TEST(ImportListTest, KnowsTheSymbolsOfABundle) {
  const std::string symbols =
      "One any _first because\n"
      "[symbols Bundle]\n"
      "One any _second because\n"
      "[symbols Other]\n"
      "One any _third because\n";
  const auto first = Pair("_first", "/usr/lib/one.dylib");
  EXPECT_THAT(listFor("i386", symbols).symbols,
              ElementsAre(first, Pair("_second", "/usr/lib/one.dylib")));
  EXPECT_THAT(listFor("i386", symbols, "Other").symbols,
              ElementsAre(first, Pair("_third", "/usr/lib/one.dylib")));
  EXPECT_THAT(listFor("i386", symbols, "Third").symbols, ElementsAre(first));
}

TEST(ImportListTest, RefusesASectionOfSomethingElse) {
  EXPECT_EQ(refusal(std::string(kLibraries) + "[symbols One Two]\nOne any _first because"),
            "the list of imports: not in a section: One any _first because");
}

TEST(ImportListTest, RefusesASymbolWithoutAReason) {
  EXPECT_EQ(
      refusal(std::string(kLibraries) + "One any _first"),
      "the list of imports: not a library, processors, a symbol and a reason: One any _first");
}

TEST(ImportListTest, RefusesASymbolOfAnUnknownLibrary) {
  EXPECT_EQ(refusal(std::string(kLibraries) + "Three any _first because"),
            "the list of imports: unknown library: Three any _first because");
}

TEST(ImportListTest, RefusesALibraryWithoutAnInstallName) {
  EXPECT_EQ(refusal("[libraries]\nOne 1.0"),
            "the list of imports: not a name, a version and an install name: One 1.0");
}

TEST(ImportListTest, RefusesWhatStandsInNoSection) {
  EXPECT_EQ(refusal("One 1.0 /usr/lib/one.dylib"),
            "the list of imports: not in a section: One 1.0 /usr/lib/one.dylib");
}

}  // namespace
}  // namespace tests
