// The files of the product.
#include <filesystem>
#include <fstream>
#include <iterator>

#include "plugin/version.h"
#include "tests/end_to_end/end_to_end_test.h"
#include "tests/support/process.h"

namespace tests {
namespace {

class ProductTest : public testing::TestWithParam<const char*> {
 protected:
  const std::filesystem::path file = productFile(GetParam());
  [[nodiscard]] std::string dynamicSection() const {
    return outputOf(ZEL_READELF, {"readelf", "-Wd", file});
  }
};

const auto kNameOfFile = [](const auto& row) {
  return std::filesystem::path(row.param).stem().string();
};

INSTANTIATE_TEST_SUITE_P(Plugins, ProductTest,
                         testing::Values("NSUserDefaultsZEL.so", "NSExceptionZEL.so"), kNameOfFile);

TEST_P(ProductTest, ItExportsItsEntryPointAlone) {
  EXPECT_EQ(outputOf(ZEL_NM, {"nm", "-D", "--defined-only", "--format=just-symbols", file}),
            "REALPluginMain\n");
}

TEST_P(ProductTest, ItNeedsNoCxxRuntime) {
  const std::string section = dynamicSection();
  EXPECT_NE(section.find("Shared library: [libzelnative.so]"), std::string::npos) << section;
  EXPECT_EQ(section.find("libstdc++"), std::string::npos) << section;
  EXPECT_EQ(section.find("libc++"), std::string::npos) << section;
}

TEST_P(ProductTest, ItFindsTheNativeLibraryBesideIt) {
  EXPECT_NE(dynamicSection().find("Library runpath: [$ORIGIN]"), std::string::npos);
  EXPECT_TRUE(std::filesystem::exists(productFile("libzelnative.so")));
}

TEST_P(ProductTest, ItInitialisesNothingAtLoadTime) {
  const std::string section = dynamicSection();
  EXPECT_EQ(section.find("(PREINIT_ARRAY)"), std::string::npos);
  EXPECT_EQ(outputOf(ZEL_NM, {"nm", file}).find("_GLOBAL__sub_I"), std::string::npos);
}

// What looks for it, such as `what`, finds it by its first four characters, and it ends with a
// zero.
std::string versionIn(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(in), {}};
  const std::size_t start = bytes.find("@(#)");
  return start == std::string::npos ? "none" : bytes.c_str() + start;
}

TEST_P(ProductTest, ItSaysItsVersion) {
  EXPECT_EQ(versionIn(file), "@(#)" + file.stem().string() + " " + zel::kVersion);
}

TEST(NativeLibraryTest, ItSaysItsVersion) {
  EXPECT_EQ(versionIn(productFile("libzelnative.so")),
            std::string("@(#)libzelnative ") + zel::kVersion);
}

// What adds methods to Foundation's classes stays: the methods do too.
TEST_P(ProductTest, OnlyTheCompanionStaysLoaded) {
  const bool stays = dynamicSection().find("NODELETE") != std::string::npos;
  EXPECT_EQ(stays, std::string(GetParam()) == "NSExceptionZEL.so");
}

}  // namespace
}  // namespace tests
