// Programs in the host's language against the built plugin. NAME.out holds what the program
// NAME.xojo_script prints, or those in the folder NAME one after the other in one store; nothing
// may be left over in the host then. NAME.err holds what is said about a broken one.
#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "tests/support/folder.h"
#include "tests/support/process.h"

namespace tests {
namespace {

namespace fs = std::filesystem;

std::vector<fs::path> expectations() {
  std::vector<fs::path> found;
  for (const fs::path folder : {ZEL_PROJECT "/tests/programs", ZEL_PROJECT "/examples"}) {
    for (const fs::path& file : fs::recursive_directory_iterator(folder))
      if (file.extension() == ".out" || file.extension() == ".err") found.push_back(file);
  }
  std::ranges::sort(found);
  return found;
}

std::string nameOf(const testing::TestParamInfo<fs::path>& info) {
  std::string name = info.param.lexically_relative(ZEL_PROJECT).replace_extension();
  std::ranges::replace_if(
      name, [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
  return name;
}

std::string contents(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file) << path;
  return {std::istreambuf_iterator<char>(file), {}};
}

// The program's file, or those in the folder of its name.
std::string programsOf(const fs::path& expectation) {
  const fs::path name = fs::path(expectation).replace_extension();
  if (!fs::is_directory(name)) return name.filename().string() + ".xojo_script";
  std::set<std::string> names;
  for (const fs::path& file : fs::directory_iterator(name)) {
    if (file.extension() == ".xojo_script")
      names.insert(file.lexically_relative(name.parent_path()));
  }
  std::string all;
  for (const std::string& file : names) all += file + ' ';
  return all;
}

class ProgramsTest : public testing::TestWithParam<fs::path> {
 protected:
  // Runs the programs from their folder, so that messages name the file alone.
  [[nodiscard]] Ending hostrun(const std::string& options) const {
    const char* const other = std::getenv("ZEL_PLUGIN_OPTIONS");
    const std::string plugin = other != nullptr ? other : "--plugin " ZEL_PLUGIN;
    return run("cd '" + GetParam().parent_path().string() + "' && " ZEL_HOSTRUN " " + plugin + ' ' +
               options + ' ' + programsOf(GetParam()) + " 2>'" + messages_.string() + "'");
  }
  [[nodiscard]] std::string messages() const { return contents(messages_); }

 private:
  TemporaryFolder folder_;
  fs::path messages_ = folder_.path() / "messages";
};

TEST_P(ProgramsTest, SaysWhatTheFileBesideItSays) {
  if (GetParam().extension() == ".err") {
    EXPECT_EQ(hostrun("--check").status, 1);
    EXPECT_EQ(messages(), contents(GetParam()));
  } else {
    const Ending ending = hostrun("--leaks");
    EXPECT_EQ(ending.status, 0) << messages();
    EXPECT_EQ(ending.output, contents(GetParam())) << messages();
  }
}

#ifdef ZEL_LOADER_SAMPLE
// The one that the loader is tested with asks for other things than a host has.
TEST(BundleTest, OneThatIsNoPluginOfAHostIsNamed) {
  const Ending ending = run("echo | " ZEL_HOSTRUN " --macos --plugin " ZEL_LOADER_SAMPLE " - 2>&1");
  EXPECT_EQ(ending.output, "hostrun: " ZEL_LOADER_SAMPLE
                           " crashed in its REALPluginMain.\n"
                           "It had asked the host for \"case\", which this host doesn't have.\n"
                           "--plugin takes the file of a plugin, such as NSUserDefaultsZEL.so.\n");
  EXPECT_EQ(ending.status, 1);
}
#endif

INSTANTIATE_TEST_SUITE_P(Programs, ProgramsTest, testing::ValuesIn(expectations()), nameOf);

}  // namespace
}  // namespace tests
