// The files that a plugin comes in.
#include <dlfcn.h>

#include "tests/end_to_end/end_to_end_test.h"

namespace tests {
namespace {

using host::isBundle;
using host::PluginLibrary;

std::string fileUnderTest() { return pluginFile(kClass); }

std::string refusalOf(const std::string& file) {
  try {
    const PluginLibrary library(file);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "";
}

// The shared library that a function of this process belongs to, or "".
std::string libraryOf(host::PluginMain function) {
  Dl_info info{};
  return dladdr(reinterpret_cast<void*>(function), &info) == 0 ? "" : info.dli_fname;
}

TEST(LibraryTest, TheFileUnderTestIsTheOneThatRuns) {
  const PluginLibrary library(fileUnderTest());
  EXPECT_EQ(libraryOf(library.main()), isBundle(fileUnderTest()) ? "" : fileUnderTest());
}

TEST(LibraryTest, AFileIsLoadedOnce) {
  const PluginLibrary library(fileUnderTest());
  EXPECT_EQ(refusalOf(fileUnderTest()), fileUnderTest() + " is loaded already");
}

TEST(LibraryTest, AFileThatIsGoneCanBeLoadedAgain) {
  EXPECT_EQ(refusalOf(fileUnderTest()), "");
  EXPECT_EQ(refusalOf(fileUnderTest()), "");
}

TEST(LibraryTest, OtherLibrariesAreRefused) {
  EXPECT_EQ(refusalOf(ZEL_NO_PLUGIN),
            std::string(ZEL_NO_PLUGIN) + " has no REALPluginMain: it is no plugin");
}

TEST(LibraryTest, AFileThatIsntThereIsRefused) {
  EXPECT_NE(refusalOf("/nowhere/none.so"), "");
  EXPECT_NE(refusalOf("/nowhere/none.bundle"), "");
}

TEST(LibraryTest, BundlesAreKnownByTheirNames) {
  EXPECT_TRUE(isBundle("a/b.bundle"));
  EXPECT_TRUE(isBundle("a/b.bundle/"));
  EXPECT_FALSE(isBundle("a.bundle/b.so"));
}

}  // namespace
}  // namespace tests
