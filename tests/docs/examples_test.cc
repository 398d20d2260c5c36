// Every program on the pages prints just what the page says, run against the built plugin in a
// store of its own.
#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <ostream>
#include <unistd.h>

#include "tests/docs/pages.h"
#include "tests/support/folder.h"
#include "tests/support/process.h"

namespace tests {

// The page's path from the project's folder.
static std::string pageName(const Example& example) {
  return std::filesystem::path(example.page).lexically_relative(ZEL_PROJECT);
}

// GoogleTest shows parameters by this.
static void PrintTo(const Example& example, std::ostream* out) {
  *out << pageName(example) << ':' << example.line;
}

namespace {

std::vector<Example> allExamples() {
  std::vector<Example> found;
  for (const std::string& page : pages()) {
    const std::vector<Example> examples = examplesIn(page);
    found.insert(found.end(), examples.begin(), examples.end());
  }
  return found;
}

std::string nameOf(const testing::TestParamInfo<Example>& info) {
  std::string name = pageName(info.param) + "_line_" + std::to_string(info.param.line);
  std::replace_if(
      name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
  return name;
}

class ExamplesTest : public testing::TestWithParam<Example> {
 protected:
  // hostrun brings the store.
  [[nodiscard]] std::string run(const std::string& text) const {
    std::ofstream(program_) << text;
    const char* const other = std::getenv("ZEL_PLUGIN_OPTIONS");
    const std::string plugin = other != nullptr ? other : "--plugin " ZEL_PLUGIN;
    return outputOf(
        "/bin/sh", {"sh", "-c", ZEL_HOSTRUN " --leaks " + plugin + " '" + program_.native() + "'"});
  }

 private:
  TemporaryFolder folder_;
  std::filesystem::path program_ = folder_.path() / "example.xojo_script";
};

TEST_P(ExamplesTest, PrintsWhatThePageSays) {
  ASSERT_TRUE(GetParam().output) << "below the program isn't what it prints";
  EXPECT_EQ(run(GetParam().program), *GetParam().output);
}

INSTANTIATE_TEST_SUITE_P(Pages, ExamplesTest, testing::ValuesIn(allExamples()), nameOf);

}  // namespace
}  // namespace tests
