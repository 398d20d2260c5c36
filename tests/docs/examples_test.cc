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

// What a program prints, against the plugin and in a store of its own, which hostrun brings.
std::string outputOfProgram(const std::string& text) {
  const TemporaryFolder folder;
  const std::filesystem::path program = folder.path() / "example.xojo_script";
  std::ofstream(program) << text;
  const char* const other = std::getenv("ZEL_PLUGIN_OPTIONS");
  const std::string plugin = other != nullptr ? other : "--plugin " ZEL_PLUGIN;
  return outputOf("/bin/sh",
                  {"sh", "-c", ZEL_HOSTRUN " --leaks " + plugin + " '" + program.native() + "'"});
}

class ExamplesTest : public testing::TestWithParam<Example> {};

TEST_P(ExamplesTest, PrintsWhatThePageSays) {
  ASSERT_TRUE(GetParam().output) << "below the program isn't what it prints";
  EXPECT_EQ(outputOfProgram(GetParam().program), *GetParam().output);
}

// What a host runs of the sample project: the method between the marks of its event.
std::string eventOf(const std::string& file) {
  std::ifstream in(file);
  std::string method;
  bool within = false;
  for (std::string line; std::getline(in, line);) {
    if (line.find("#tag") != std::string::npos) {
      within = line.find("#tag Event") != std::string::npos;
    } else if (within) {
      method += line + '\n';
    }
  }
  return method;
}

TEST(SampleTest, TheProjectOfThePackageRuns) {
  const std::string method = eventOf(ZEL_PROJECT "/examples/sample/App.xojo_code");
  EXPECT_EQ(outputOfProgram(method + "Dim args() As String = Array(\"Sample\", \"Ada\")\n"
                                     "Print Str(Run(args))\n"
                                     "Print Str(Run(args))\n"),
            "Start number 1. Before, it was used by nobody.\n"
            "An empty key is rejected.\n"
            "0\n"
            "Start number 2. Before, it was used by Ada.\n"
            "An empty key is rejected.\n"
            "0\n");
}

INSTANTIATE_TEST_SUITE_P(Pages, ExamplesTest, testing::ValuesIn(allExamples()), nameOf);

}  // namespace
}  // namespace tests
