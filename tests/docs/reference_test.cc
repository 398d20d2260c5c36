// The manual has a section for every method that is registered, with just its declaration, and a
// table of all of them that leads to their sections.
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <gmock/gmock.h>
#include <map>
#include <regex>
#include <sstream>

#include "host/loading/plugin_library.h"
#include "tests/docs/pages.h"

namespace tests {
namespace {

const std::string kTable = ZEL_PROJECT "/docs/methods.md";
const std::string kFolder = ZEL_PROJECT "/docs/methods/";
constexpr const char* kClass = "NSUserDefaultsZEL";
constexpr const char* kShared = "Called on the class";

using Texts = std::vector<std::string>;

bool isDeclaration(const Block& block) { return block.language == "declaration"; }

bool says(const Section& section, const std::string& text) {
  return section.text.find(text) != std::string::npos;
}

std::string withoutEnd(const std::string& line) { return line.substr(0, line.find('\n')); }

struct MethodSection {
  std::string place;  // as the table links to it
  Section section;
};

// As the pages' anchors are made of headings.
std::string anchorOf(const std::string& title) {
  std::string anchor = title;
  for (char& c : anchor) {
    c = c == ' ' ? '-' : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  return anchor;
}

// The sections of the manual that are about a method.
std::vector<MethodSection> methodSections() {
  std::vector<MethodSection> found;
  for (const std::string& page : pages()) {
    if (!page.starts_with(kFolder)) continue;
    for (const Section& section : sectionsOf(page)) {
      if (std::none_of(section.blocks.begin(), section.blocks.end(), isDeclaration)) continue;
      const std::string file = std::filesystem::path(page).filename();
      found.push_back({"methods/" + file + "#" + anchorOf(section.title), section});
    }
  }
  return found;
}

// The declarations of those sections that a condition holds for.
template <class Condition>
Texts declarationsIn(Condition condition) {
  Texts found;
  for (const MethodSection& method : methodSections()) {
    if (condition(method.section)) found.push_back(withoutEnd(method.section.blocks[0].text));
  }
  return found;
}

// What the built plugin registers with a host.
class ReferenceTest : public testing::Test {
 protected:
  ReferenceTest() { host_.load(library_.main()); }

  [[nodiscard]] const host::RegisteredClass& registered() const { return *host_.findClass(kClass); }

 private:
  host::PluginLibrary library_{ZEL_PLUGIN};
  host::Host host_;
};

// The declarations of those methods that a condition holds for.
template <class Condition>
Texts declarationsOf(const std::vector<host::RegisteredMethod>& methods, Condition condition) {
  Texts found;
  for (const host::RegisteredMethod& method : methods)
    if (condition(method)) found.push_back(method.text);
  return found;
}

bool any(const host::RegisteredMethod& /*method*/) { return true; }
bool isAssignable(const host::RegisteredMethod& method) { return method.setter != nullptr; }

TEST_F(ReferenceTest, EveryInstanceMethodHasItsDeclaration) {
  const Texts methods = declarationsOf(registered().methods, any);
  EXPECT_EQ(methods.size(), 43U);
  EXPECT_THAT(declarationsIn([](const Section& section) { return !says(section, kShared); }),
              testing::UnorderedElementsAreArray(methods));
}

TEST_F(ReferenceTest, EverySharedMethodHasItsDeclarationAndSaysSo) {
  const Texts methods = declarationsOf(registered().sharedMethods, any);
  EXPECT_EQ(methods.size(), 6U);
  EXPECT_THAT(declarationsIn([](const Section& section) { return says(section, kShared); }),
              testing::UnorderedElementsAreArray(methods));
}

TEST_F(ReferenceTest, ItSaysWhatCanBeAssignedTo) {
  const Texts assignable = declarationsOf(registered().methods, isAssignable);
  EXPECT_EQ(assignable.size(), 10U);
  EXPECT_THAT(
      declarationsIn([](const Section& section) { return says(section, "Can be assigned to"); }),
      testing::UnorderedElementsAreArray(assignable));
}

// A method's section has its name in the title, its declaration and a program.
TEST(ReferenceSectionsTest, EveryMethodHasOneWithAProgram) {
  for (const MethodSection& method : methodSections()) {
    SCOPED_TRACE(method.place);
    const Section& section = method.section;
    EXPECT_EQ(section.level, 2);
    ASSERT_EQ(section.blocks.size(), 3U);
    EXPECT_TRUE(isDeclaration(section.blocks[0]));
    EXPECT_EQ(section.blocks[1].language, "xojo");
    EXPECT_EQ(section.blocks[2].language, "text");
    const std::string& declaration = section.blocks[0].text;
    EXPECT_EQ(section.title.substr(0, section.title.find(' ')),
              declaration.substr(0, declaration.find_first_of("( \n")));
  }
}

// The rows of the table: a declaration, by the place that it links to.
std::map<std::string, std::string> tableRows() {
  const std::regex row(R"(\| \[`([^`]+)`\]\(([^)]+)\) \| .+ \|)");
  std::map<std::string, std::string> found;
  for (const Section& section : sectionsOf(kTable)) {
    std::istringstream lines(section.text);
    std::smatch parts;
    for (std::string line; std::getline(lines, line);)
      if (std::regex_match(line, parts, row)) found.emplace(parts[2], parts[1]);
  }
  return found;
}

TEST(ReferenceSectionsTest, TheTableLeadsToEveryMethod) {
  std::map<std::string, std::string> expected;
  for (const MethodSection& method : methodSections())
    expected.emplace(method.place, withoutEnd(method.section.blocks[0].text));
  EXPECT_EQ(expected.size(), 49U);
  EXPECT_EQ(tableRows(), expected);
}

}  // namespace
}  // namespace tests
