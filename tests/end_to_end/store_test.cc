// What a program is told of the store, and what is kept for it.
#include <filesystem>

#include "host/store/private_store.h"
#include "tests/end_to_end/end_to_end_test.h"
#include "tests/support/process.h"

namespace tests {
namespace {

using namespace std::string_literals;
namespace fs = std::filesystem;

class StoreTest : public FamilyTest {
 protected:
  void SetUp() override { startHost({.version = 2014.0}); }

  [[nodiscard]] ObjectRef theme() const { return host->dictionary({{"accent"s, "blue"s}}); }
};

TEST_F(StoreTest, WhatIsSetIsKeptAtTheEndOfTheProgram) {
  const std::string said =
      outputOf("/proc/self/exe", {program_invocation_name, "--gtest_also_run_disabled_tests",
                                  "--gtest_filter=StoreTest.DISABLED_TheProgram"});
  EXPECT_NE(said.find("[  PASSED  ] 1 test."), std::string::npos) << said;
  const ObjectRef defaults = standard();
  EXPECT_EQ(ask(defaults, "synchronize"), Value(std::int8_t{1}));
  EXPECT_EQ(ask(defaults, "stringForKey", {"ofTheSharedObject"s}), Value("kept"s));
  EXPECT_EQ(ask(defaults, "stringForKey", {"ofAnObject"s}), Value("kept as well"s));
}

// Run by the test above, in a process of its own.
TEST_F(StoreTest, DISABLED_TheProgram) {
  ask(standard(), "setStringValue", {"ofTheSharedObject"s, "kept"s});
  const ObjectRef own = host->construct(kClass);
  ask(own, "setStringValue", {"ofAnObject"s, "kept as well"s});
}

TEST_F(StoreTest, SynchronizeSaysWhetherItHasWritten) {
  const fs::path file = host::storedDomain("com.example.theme");
  fs::create_directory(file);
  const ObjectRef defaults = standard();
  ask(defaults, "setPersistentDomain", {theme(), "com.example.theme"s});
  testing::internal::CaptureStderr();
  EXPECT_EQ(ask(defaults, "synchronize"), Value(std::int8_t{0}));
  EXPECT_NE(testing::internal::GetCapturedStderr().find("The defaults in " + file.native()),
            std::string::npos);
  EXPECT_EQ(host->describe(ask(defaults, "persistentDomainForName", {"com.example.theme"s})),
            R"({"accent": "blue"})");
  fs::remove(file);
  EXPECT_EQ(ask(defaults, "synchronize"), Value(std::int8_t{1}));
  EXPECT_TRUE(fs::is_regular_file(file));
  ask(defaults, "removePersistentDomainForName", {"com.example.theme"s});
  EXPECT_FALSE(fs::exists(file));
}

TEST_F(StoreTest, NamesOfDomainsStayInTheFolder) {
  const ObjectRef defaults = standard();
  const auto raised = [&](const std::string& method, const Values& arguments) {
    testing::internal::CaptureStderr();
    const Outcome outcome = host->call(defaults, method, arguments);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("A NSInvalidArgumentException: "),
              std::string::npos);
    return outcome.raised.has_value() ? outcome.raised->className : "nothing"s;
  };
  for (const char* const name : {"../x", "/x", "a/b", ".", ".."}) {
    EXPECT_EQ(raised("setPersistentDomain", {theme(), std::string(name)}), "NSExceptionZEL")
        << name;
    EXPECT_EQ(raised("removePersistentDomainForName", {std::string(name)}), "NSExceptionZEL");
  }
  EXPECT_FALSE(fs::exists(host::storedDomain("../x")));
}

}  // namespace
}  // namespace tests
