// How tests that are kept apart are told of.
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

#include "tests/support/folder.h"
#include "tests/support/process.h"

namespace tests {
namespace {

class ApartTest : public testing::Test {
 protected:
  // Runs the sample. @param options of GoogleTest's. @param variables for it, as the shell takes
  // them.
  Ending sample(const std::string& options = "", const std::string& variables = "") {
    return run(variables + " ZEL_TEST_RESULTS='" + results_.string() + "' " ZEL_SAMPLE " " +
               options);
  }
  [[nodiscard]] std::string results() const {
    std::ifstream file(results_);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  TemporaryFolder folder_;
  std::filesystem::path results_ = folder_.path() / "results";
};

TEST_F(ApartTest, EveryTestIsToldOfByItsName) {
  const Ending ending = sample();
  EXPECT_EQ(results(),
            "failed SampleTest.Fails\npassed SampleTest.Passes\nskipped SampleTest.Skips\n"
            "failed CrashTest.Crashes\nfailed CrashTest.IsNotReached\npassed CrashTest.Passes\n"
            "passed EndTest.Passes\nfailed EndTest.Passes and the end of its process\n");
  EXPECT_EQ(ending.status, 1);
  EXPECT_NE(ending.output.find("on purpose"), std::string::npos);
  EXPECT_NE(ending.output.find("The process ended with 134."), std::string::npos);
  EXPECT_NE(ending.output.find("3 passed, 4 failed, 1 skipped\n"), std::string::npos);
}

TEST_F(ApartTest, AFilterChooses) {
  EXPECT_EQ(sample("--gtest_filter='*Passes:*Skips-End*'").status, 0);
  EXPECT_EQ(results(),
            "passed SampleTest.Passes\nskipped SampleTest.Skips\npassed CrashTest.Passes\n");
}

TEST_F(ApartTest, NothingChosenIsAMistake) {
  EXPECT_EQ(sample("--gtest_filter=No*").status, 1);
  EXPECT_EQ(results(), "");
}

TEST_F(ApartTest, DisabledTestsRunWhenAskedFor) {
  EXPECT_EQ(sample("--gtest_also_run_disabled_tests --gtest_filter=*IsNotRun").status, 1);
  EXPECT_EQ(results(), "failed SampleTest.DISABLED_IsNotRun\n");
}

TEST_F(ApartTest, SeveralProgramsShareTheSuites) {
  EXPECT_EQ(sample("", "GTEST_TOTAL_SHARDS=2 GTEST_SHARD_INDEX=1").status, 1);
  EXPECT_EQ(results(),
            "failed CrashTest.Crashes\nfailed CrashTest.IsNotReached\npassed CrashTest.Passes\n");
  EXPECT_EQ(sample("", "GTEST_TOTAL_SHARDS=3 GTEST_SHARD_INDEX=2").status, 1);
  EXPECT_EQ(results(), "passed EndTest.Passes\nfailed EndTest.Passes and the end of its process\n");
}

TEST_F(ApartTest, ManyTestsOfASuiteShareNoProcess) {
  const Ending ending = sample("--gtest_also_run_disabled_tests --gtest_filter='*ManyTest*'");
  EXPECT_EQ(ending.status, 0);
  EXPECT_NE(ending.output.find("51 passed, 0 failed, 0 skipped\n"), std::string::npos);
}

}  // namespace
}  // namespace tests
