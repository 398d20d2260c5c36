// Building the macOS bundles from a copy of the sources that stands elsewhere.
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>

#include "tests/macho/check/bundle_file.h"
#include "tests/support/folder.h"
#include "tests/support/process.h"

namespace tests {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

std::string contents(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file) << path;
  return {std::istreambuf_iterator<char>(file), {}};
}

class BuildTest : public testing::Test {
 protected:
  BuildTest() {
    for (const fs::directory_entry& part : fs::directory_iterator(ZEL_PROJECT)) {
      const fs::path name = part.path().filename();
      if (name == "build" || name == ".git") continue;
      fs::copy(part.path(), folder_ / name, fs::copy_options::recursive);
    }
  }

  /// Builds a target for a processor; nothing that was compiled before is used.
  [[nodiscard]] Ending build(const std::string& processor, const std::string& target) const {
    const std::string preset = " --preset macos-" + processor;
    return run("export CCACHE_DISABLE=1; cd '" + folder_.string() + "' && cmake" + preset +
               " && cmake --build" + preset + " --target " + target);
  }

  /// What has been built.
  [[nodiscard]] fs::path bundle(const std::string& processor) const {
    return folder_ / "build" / ("macos-" + processor) / "product/NSUserDefaultsZEL.bundle/Contents";
  }

  TemporaryFolder temporary_;
  fs::path folder_ = temporary_.path();
};

class RebuildTest : public BuildTest, public testing::WithParamInterface<const char*> {};

TEST_P(RebuildTest, MakesTheSameBytesElsewhere) {
  const Ending outcome = build(GetParam(), "NSUserDefaultsZEL");
  ASSERT_EQ(outcome.status, 0) << outcome.output;
  const fs::path known =
      fs::path(ZEL_PROJECT) / "build" / bundle(GetParam()).lexically_relative(folder_ / "build");
  for (const char* file : {"MacOS/NSUserDefaultsZEL", "Info.plist", "PkgInfo"}) {
    EXPECT_TRUE(contents(bundle(GetParam()) / file) == contents(known / file)) << file;
  }
}

INSTANTIATE_TEST_SUITE_P(Processors, RebuildTest, testing::Values("i386", "x86_64", "arm64"));

// With a call of a function of the system's that isn't in the list.
TEST_F(BuildTest, AnUnlistedImportIsAnErrorWithItsName) {
  const fs::path source = folder_ / "native/darwin/constants.cc";
  std::string text = contents(source);
  for (std::size_t at = 0; (at = text.find("dlsym", at)) != std::string::npos;) {
    text.replace(at, 5, "getpid");
  }
  std::ofstream(source) << text;
  for (const char* processor : {"i386", "x86_64"}) {
    const Ending outcome = build(processor, "loader_sample");
    EXPECT_NE(outcome.status, 0) << processor;
    EXPECT_THAT(outcome.output, HasSubstr("_getpid"));
  }
}

TEST_F(BuildTest, TheBundleTellsItsVersion) {
  const std::string list = contents(fs::path(ZEL_PROJECT) / "build/macos-i386" /
                                    "product/NSUserDefaultsZEL.bundle/Contents/Info.plist");
  const std::string version = std::string("<string>") + ZEL_VERSION + "</string>\n";
  EXPECT_THAT(list, HasSubstr("<key>CFBundleShortVersionString</key>\n\t" + version));
  EXPECT_THAT(list, HasSubstr("<key>CFBundleVersion</key>\n\t" + version));
  EXPECT_THAT(list, HasSubstr("<key>CFBundleExecutable</key>\n\t<string>NSUserDefaultsZEL<"));
  EXPECT_THAT(list, HasSubstr("<key>LSMinimumSystemVersion</key>\n\t<string>10.6</string>\n"));
}

}  // namespace
}  // namespace tests
