// Tests that end in every way, for the test of what keeps them apart.
#include <cstdlib>
#include <gtest/gtest.h>

namespace {

TEST(SampleTest, Passes) { SUCCEED(); }
TEST(SampleTest, Fails) { FAIL() << "on purpose"; }
TEST(SampleTest, Skips) { GTEST_SKIP(); }
TEST(SampleTest, DISABLED_IsNotRun) { FAIL(); }

TEST(CrashTest, Passes) { SUCCEED(); }
TEST(CrashTest, Crashes) { std::abort(); }
TEST(CrashTest, IsNotReached) { SUCCEED(); }

TEST(EndTest, Passes) {
  std::atexit([] { std::_Exit(3); });
}

class DISABLED_ManyTest : public testing::TestWithParam<int> {};

INSTANTIATE_TEST_SUITE_P(Tests, DISABLED_ManyTest, testing::Range(0, 51));

TEST_P(DISABLED_ManyTest, RunsInAProcessOfFewer) {
  static int before = 0;
  EXPECT_LT(before++, 50);
}

}  // namespace
