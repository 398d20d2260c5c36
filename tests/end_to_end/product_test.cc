// The files of the product.
#include <filesystem>
#include <gtest/gtest.h>

#include "tests/support/process.h"

namespace tests {
namespace {

std::string dynamicSection() { return outputOf(ZEL_READELF, {"readelf", "-Wd", ZEL_PLUGIN}); }

TEST(ProductTest, ThePluginExportsItsEntryPointAlone) {
  EXPECT_EQ(outputOf(ZEL_NM, {"nm", "-D", "--defined-only", "--format=just-symbols", ZEL_PLUGIN}),
            "REALPluginMain\n");
}

TEST(ProductTest, ThePluginNeedsNoCxxRuntime) {
  const std::string section = dynamicSection();
  EXPECT_NE(section.find("Shared library: [libzelnative.so]"), std::string::npos) << section;
  EXPECT_EQ(section.find("libstdc++"), std::string::npos) << section;
  EXPECT_EQ(section.find("libc++"), std::string::npos) << section;
}

TEST(ProductTest, ThePluginFindsItsCompanionBesideIt) {
  EXPECT_NE(dynamicSection().find("Library runpath: [$ORIGIN]"), std::string::npos);
  EXPECT_TRUE(std::filesystem::exists(
      std::filesystem::path(ZEL_PLUGIN).replace_filename("libzelnative.so")));
}

TEST(ProductTest, ThePluginInitialisesNothingAtLoadTime) {
  const std::string section = dynamicSection();
  EXPECT_EQ(section.find("(PREINIT_ARRAY)"), std::string::npos);
  EXPECT_EQ(outputOf(ZEL_NM, {"nm", ZEL_PLUGIN}).find("_GLOBAL__sub_I"), std::string::npos);
}

}  // namespace
}  // namespace tests
