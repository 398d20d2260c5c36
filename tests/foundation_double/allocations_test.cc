#include "foundation_double/allocations.h"

#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace {

using foundation_double::Allocations;

/// What the optimiser can't see through: it may otherwise drop a malloc whose block isn't used.
void* volatile gBlock = nullptr;

class AllocationsTest : public testing::Test {
 protected:
  void SetUp() override { allocations_.reset(); }
  void TearDown() override { allocations_.reset(); }

  Allocations& allocations_ = Allocations::shared();
};

TEST_F(AllocationsTest, BlocksAreCountedUntilTheyAreFreed) {
  void* const first = std::malloc(10);
  void* const second = std::calloc(3, 7);
  gBlock = first;
  gBlock = second;
  EXPECT_EQ(allocations_.live(), 2U);
  EXPECT_EQ(allocations_.sizes(), (std::vector<std::size_t>{10, 21}));
  std::free(first);
  EXPECT_EQ(allocations_.live(), 1U);
  std::free(second);
  std::free(nullptr);
  EXPECT_EQ(allocations_.live(), 0U);
}

TEST_F(AllocationsTest, TheNthAllocationFails) {
  allocations_.failAt(2);
  void* const first = std::malloc(8);
  EXPECT_TRUE(allocations_.faultPending());
  void* const second = std::calloc(1, 9);
  EXPECT_FALSE(allocations_.faultPending());
  void* const third = std::malloc(11);
  EXPECT_NE(first, nullptr);
  EXPECT_EQ(second, nullptr);
  EXPECT_NE(third, nullptr);
  EXPECT_EQ(allocations_.sizes(), (std::vector<std::size_t>{8, 9, 11}));
  EXPECT_EQ(allocations_.live(), 2U);
  std::free(first);
  std::free(second);
  std::free(third);
}

TEST_F(AllocationsTest, CallocStillGivesZeros) {
  auto* const bytes = static_cast<unsigned char*>(std::calloc(4, 1));
  gBlock = bytes;
  ASSERT_NE(bytes, nullptr);
  EXPECT_EQ(bytes[0] | bytes[1] | bytes[2] | bytes[3], 0);
  std::free(bytes);
}

TEST_F(AllocationsTest, ATooLargeCallocIsRecordedAsTheLargestSize) {
  const volatile std::size_t half = SIZE_MAX / 2 + 1;
  allocations_.failAt(1);  // no allocator is asked for it
  void* const block = std::calloc(half, 2);
  EXPECT_EQ(block, nullptr);
  std::free(block);
  EXPECT_EQ(allocations_.sizes(),
            std::vector<std::size_t>{std::numeric_limits<std::size_t>::max()});
}

TEST_F(AllocationsTest, OperatorNewIsNotWatched) {
  const auto* const vector = new std::vector<int>(100);
  EXPECT_EQ(allocations_.live(), 0U);
  EXPECT_TRUE(allocations_.sizes().empty());
  delete vector;
}

TEST_F(AllocationsTest, ResetForgetsLiveBlocks) {
  void* const block = std::malloc(5);
  gBlock = block;
  allocations_.failAt(1);
  allocations_.reset();
  EXPECT_FALSE(allocations_.faultPending());
  EXPECT_EQ(allocations_.live(), 0U);
  EXPECT_TRUE(allocations_.sizes().empty());
  std::free(block);
  EXPECT_EQ(allocations_.live(), 0U);
}

}  // namespace
