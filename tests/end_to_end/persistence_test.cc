// What one process stores through the built plugin, others read from disk: through the plugin, and
// with Foundation's own tool.
#include <filesystem>

#include "tests/end_to_end/end_to_end_test.h"
#include "tests/support/process.h"

namespace tests {
namespace {

using namespace std::string_literals;

class PersistenceTest : public FamilyTest, public testing::WithParamInterface<double> {
 protected:
  void SetUp() override { startHost({.version = GetParam()}); }

  void storeEverything() {
    const ObjectRef defaults = standard();
    EXPECT_EQ(ask(defaults, "setIntegerValue", {"integer"s, std::int32_t{-42}}), Value());
    EXPECT_EQ(ask(defaults, "setFloatValue", {"single"s, 1.25F}), Value());
    EXPECT_EQ(ask(defaults, "setDoubleValue", {"double"s, 0.1}), Value());
    EXPECT_EQ(ask(defaults, "setBoolValue", {"boolean"s, std::int8_t{1}}), Value());
    EXPECT_EQ(ask(defaults, "setStringValue", {"string"s, "Grüße, 世界"s}), Value());
    EXPECT_EQ(ask(defaults, "setURLValue", {"url"s, "https://example.com/a?b=c"s}), Value());
    EXPECT_EQ(ask(defaults, "synchronize"), Value(std::int8_t{1}));
  }
  // The domain of this program.
  static std::string domain() { return std::filesystem::path(program_invocation_name).filename(); }
};

constexpr double kHosts[] = {2011.04, 2012.0, 2013.0, 2014.0};

INSTANTIATE_TEST_SUITE_P(Hosts, PersistenceTest, testing::ValuesIn(kHosts));

TEST_P(PersistenceTest, AnotherProcessReadsTheSame) {
  storeEverything();
  // In a host of every version; each in a process of its own, for what can be loaded only once.
  for (std::size_t i = 0; i < std::size(kHosts); ++i) {
    const std::string output = outputOf(
        "/proc/self/exe",
        {program_invocation_name, "--gtest_also_run_disabled_tests",
         "--gtest_filter=Hosts/PersistenceTest.DISABLED_TheOtherProcess/" + std::to_string(i)});
    EXPECT_NE(output.find("[  PASSED  ] 1 test."), std::string::npos) << output;
  }
}

// Run by the test above, in a process of its own.
TEST_P(PersistenceTest, DISABLED_TheOtherProcess) {
  const ObjectRef defaults = standard();
  EXPECT_EQ(ask(defaults, "integerForKey", {"integer"s}), Value(std::int32_t{-42}));
  EXPECT_EQ(ask(defaults, "floatForKey", {"single"s}), Value(1.25F));
  EXPECT_EQ(ask(defaults, "doubleForKey", {"double"s}), Value(0.1));
  EXPECT_EQ(ask(defaults, "boolForKey", {"boolean"s}), Value(std::int8_t{1}));
  EXPECT_EQ(ask(defaults, "stringForKey", {"string"s}), Value("Grüße, 世界"s));
  EXPECT_EQ(ask(defaults, "URLForKey", {"url"s}), Value("https://example.com/a?b=c"s));
}

TEST_P(PersistenceTest, FoundationsToolReadsTheSame) {
  storeEverything();
  const auto read = [](const char* key) {
    return outputOf(ZEL_DEFAULTS_TOOL, {"defaults", "read", domain(), key});
  };
  EXPECT_EQ(read("integer"), domain() + " integer -42\n");
  EXPECT_EQ(read("single"), domain() + " single 1.25\n");
  EXPECT_EQ(read("boolean"), domain() + " boolean 1\n");
  EXPECT_EQ(read("string"), domain() + " string 'Grüße, 世界'\n");
}

TEST_P(PersistenceTest, WhatFoundationsToolWritesIsRead) {
  outputOf(ZEL_DEFAULTS_TOOL, {"defaults", "write", domain(), "written", "from outside"});
  EXPECT_EQ(ask(standard(), "synchronize"), Value(std::int8_t{1}));
  EXPECT_EQ(ask(standard(), "stringForKey", {"written"s}), Value("from outside"s));
}

}  // namespace
}  // namespace tests
