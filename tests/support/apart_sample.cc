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

}  // namespace
