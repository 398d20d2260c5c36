#include "macho/file/exports.h"

#include <gtest/gtest.h>

#include "tests/macho/file/refusal.h"

namespace tests {
namespace {

using macho::Image;
using macho::readImage;

std::string refusal(const ByteList& tree) { return refusalOf(SampleLists{.exports = tree}); }

TEST(ExportsTest, TheTreeIsFollowed) {
  const Image image = readImage(sampleFile());
  EXPECT_EQ(image.exports.size(), 2U);
  ASSERT_NE(image.findExport("_main"), nullptr);
  EXPECT_EQ(image.findExport("_main")->address, 0x10U);
  ASSERT_NE(image.findExport("_mine"), nullptr);
  EXPECT_EQ(image.findExport("_mine")->address, 0x1020U);
}

TEST(ExportsTest, OtherNamesAreNotFound) {
  const Image image = readImage(sampleFile());
  for (const char* name : {"", "_", "_m", "_mai", "_mainly", "main"})
    EXPECT_EQ(image.findExport(name), nullptr) << name;
}

TEST(ExportsTest, AnImageMayExportNothing) {
  EXPECT_TRUE(readImage(sampleFile({.exports = {}})).exports.empty());
  EXPECT_TRUE(readImage(sampleFile({.exports = {0, 0}})).exports.empty());
}

TEST(ExportsTest, ANameMayBeTheBeginningOfAnother) {
  const Image image = readImage(
      sampleFile({.exports = {0, 1, '_', 'a', 0, 6, 2, 0, 1, 1, 'b', 0, 13, 2, 4, 2, 0}}));
  ASSERT_EQ(image.exports.size(), 2U);
  EXPECT_EQ(image.findExport("_a")->address, 1U);
  EXPECT_EQ(image.findExport("_ab")->address, 2U);
}

TEST(ExportsTest, RefusalsAreTold) {
  EXPECT_EQ(refusal({0, 1, 'a', 0, 5}), "the tree of exports has a branch that leads outside");
  EXPECT_EQ(refusal({0, 1, 'a', 0, 0}), "the tree of exports meets itself");
  EXPECT_EQ(refusal({0, 2, 'a', 0, 8, 'b', 0, 8, 0, 0}), "the tree of exports meets itself");
  EXPECT_EQ(refusal({0, 1, 'a'}), "the tree of exports ends too early");
  EXPECT_EQ(refusal({9, 0, 1}), "the tree of exports ends too early");
  EXPECT_EQ(refusal({1, 0, 0x10, 0}),
            "the tree of exports has an export that is longer than it says");
  EXPECT_EQ(refusal({0, 1, 'a', 0, 5, 3, 8, 1, 0, 0}),
            "the tree of exports has an export of a kind that can't be loaded: a");
  EXPECT_EQ(refusal({0, 1, 'a', 0, 5, 4, 0, 0x80, 0x80, 0x05, 0}),
            "the tree of exports has an export that lies outside the image: a");
  ByteList longName{0, 1};
  longName.insert(longName.end(), 1025, 'a');
  longName.insert(longName.end(), {0, 0});
  EXPECT_EQ(refusal(longName), "the tree of exports has a name that is too long");
}

}  // namespace
}  // namespace tests
