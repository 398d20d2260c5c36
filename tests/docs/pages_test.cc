// How sections and examples are read from pages.
#include "tests/docs/pages.h"

#include <fstream>
#include <gmock/gmock.h>
#include <stdexcept>

#include "tests/support/folder.h"

namespace tests {
namespace {

class PagesTest : public testing::Test {
 protected:
  const std::string& page(const std::string& text) {
    std::ofstream(file_) << text;
    return file_;
  }

 private:
  TemporaryFolder folder_;
  std::string file_ = folder_.path() / "page.md";
};

TEST_F(PagesTest, SectionsKnowTheirChapter) {
  const auto sections = sectionsOf(page("before\n# T\n## One\ntext\n### Two three\n## Four\n"));
  ASSERT_EQ(sections.size(), 5U);
  EXPECT_EQ(sections[0].text, "before\n");
  EXPECT_EQ(sections[1].title, "T");
  EXPECT_EQ(sections[1].chapter, "");
  EXPECT_EQ(sections[2].chapter, "One");
  EXPECT_EQ(sections[2].text, "text\n");
  EXPECT_EQ(sections[3].level, 3);
  EXPECT_EQ(sections[3].title, "Two three");
  EXPECT_EQ(sections[3].chapter, "One");
  EXPECT_EQ(sections[4].chapter, "Four");
}

TEST_F(PagesTest, BlocksKeepTheirLines) {
  const auto sections = sectionsOf(page("# T\n```sh\n# no heading\n\n  a\n```\nb\n"));
  ASSERT_EQ(sections.size(), 2U);
  EXPECT_EQ(sections[1].text, "b\n");
  ASSERT_EQ(sections[1].blocks.size(), 1U);
  EXPECT_EQ(sections[1].blocks[0].language, "sh");
  EXPECT_EQ(sections[1].blocks[0].text, "# no heading\n\n  a\n");
  EXPECT_EQ(sections[1].blocks[0].line, 2);
}

TEST_F(PagesTest, AnExampleIsAProgramAndItsOutput) {
  const std::string& file =
      page("```text\nnot one\n```\n```xojo\nPrint \"1\"\n```\n\n```text\n1\n```\n");
  const auto examples = examplesIn(file);
  ASSERT_EQ(examples.size(), 1U);
  EXPECT_EQ(examples[0].page, file);
  EXPECT_EQ(examples[0].line, 4);
  EXPECT_EQ(examples[0].program, "Print \"1\"\n");
  EXPECT_EQ(examples[0].output, "1\n");
}

TEST_F(PagesTest, AProgramMayBeWithoutOutput) {
  for (const char* const behind : {"", "```sh\n```\n", "# T\n```text\n1\n```\n"}) {
    const auto examples = examplesIn(page(std::string("```xojo\nPrint\n```\n") + behind));
    ASSERT_EQ(examples.size(), 1U) << behind;
    EXPECT_EQ(examples[0].output, std::nullopt) << behind;
  }
}

TEST_F(PagesTest, WhatCannotBeReadIsRefused) {
  EXPECT_THROW(sectionsOf(page("```xojo\nPrint\n")), std::runtime_error);
  EXPECT_THROW(sectionsOf("/no/such/page.md"), std::runtime_error);
}

TEST(AllPagesTest, TheReadmeAndTheManualAreAmongThem) {
  EXPECT_THAT(pages(), testing::AllOf(testing::Contains(ZEL_PROJECT "/README.md"),
                                      testing::Contains(ZEL_PROJECT "/docs/start.md"),
                                      testing::Contains(ZEL_PROJECT "/docs/methods/numbers.md")));
}

}  // namespace
}  // namespace tests
