// The reference manual has a section for every method that is registered, with just its
// declaration.
#include <algorithm>
#include <gmock/gmock.h>

#include "host/loading/plugin_library.h"
#include "tests/docs/pages.h"

namespace tests {
namespace {

const std::string kReference = ZEL_PROJECT "/docs/reference.md";
const std::string kInstance = "Instance methods";
const std::string kShared = "Shared methods";
constexpr const char* kClass = "NSUserDefaultsZEL";

using Texts = std::vector<std::string>;

bool isDeclaration(const Block& block) { return block.language == "declaration"; }

// The sections of a chapter that are about a method.
std::vector<Section> methodSections(const std::string& chapter) {
  std::vector<Section> found = sectionsOf(kReference);
  std::erase_if(found, [&](const Section& section) {
    return section.chapter != chapter ||
           std::none_of(section.blocks.begin(), section.blocks.end(), isDeclaration);
  });
  return found;
}

Texts declarationsIn(const std::string& chapter) {
  Texts found;
  for (const Section& section : methodSections(chapter)) {
    for (const Block& block : section.blocks)
      if (isDeclaration(block)) found.push_back(block.text);
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

// The declarations of those methods that a condition holds for, as blocks have them.
template <class Condition>
Texts declarationsOf(const std::vector<host::RegisteredMethod>& methods, Condition condition) {
  Texts found;
  for (const host::RegisteredMethod& method : methods)
    if (condition(method)) found.push_back(method.text + '\n');
  return found;
}

bool any(const host::RegisteredMethod& /*method*/) { return true; }
bool isAssignable(const host::RegisteredMethod& method) { return method.setter != nullptr; }

TEST_F(ReferenceTest, EveryInstanceMethodHasItsDeclaration) {
  const Texts methods = declarationsOf(registered().methods, any);
  EXPECT_EQ(methods.size(), 43U);
  EXPECT_THAT(declarationsIn(kInstance), testing::UnorderedElementsAreArray(methods));
}

TEST_F(ReferenceTest, EverySharedMethodHasItsDeclaration) {
  const Texts methods = declarationsOf(registered().sharedMethods, any);
  EXPECT_EQ(methods.size(), 6U);
  EXPECT_THAT(declarationsIn(kShared), testing::UnorderedElementsAreArray(methods));
}

TEST_F(ReferenceTest, ItSaysWhatCanBeAssignedTo) {
  Texts said;
  for (const Section& section : methodSections(kInstance)) {
    if (section.text.find("Can be assigned to") != std::string::npos)
      said.push_back(section.blocks[0].text);
  }
  const Texts assignable = declarationsOf(registered().methods, isAssignable);
  EXPECT_EQ(assignable.size(), 10U);
  EXPECT_THAT(said, testing::UnorderedElementsAreArray(assignable));
}

// A method's section has its name in the title, its declaration and a program.
TEST(ReferenceSectionsTest, EveryMethodHasOneWithAProgram) {
  for (const std::string& chapter : {kInstance, kShared}) {
    for (const Section& section : methodSections(chapter)) {
      SCOPED_TRACE(section.title);
      EXPECT_EQ(section.level, 3);
      ASSERT_EQ(section.blocks.size(), 3U);
      EXPECT_TRUE(isDeclaration(section.blocks[0]));
      EXPECT_EQ(section.blocks[1].language, "xojo");
      EXPECT_EQ(section.blocks[2].language, "text");
      const std::string& declaration = section.blocks[0].text;
      EXPECT_EQ(section.title.substr(0, section.title.find(' ')),
                declaration.substr(0, declaration.find_first_of("( \n")));
    }
  }
}

}  // namespace
}  // namespace tests
