#include "tests/defaults/calls_test.h"

#include <algorithm>

#include "native/exceptions.h"

namespace tests {

void CallsTest::prepare(double version) {
  startHost({.version = version});
  provideFamily();
  family->provideStructures();
  family->provideCoreFoundation();
  family->provideTimes();
  family->provideWrapper();
  family->provideObjectClass("NSColorZEL");
  host->addClass("Unknown", "");
  foundation.addClass("NSColor", "NSObject");
  foundation.makeFile("/folder/file.txt");
  object = call().constructs ? host->make(kClass) : host->construct(kClass);
  if (call().shared) host->callShared(kClass, "standardUserDefaults");
  if (call().before != nullptr) {
    Kit kit = this->kit();
    call().before(kit);
  }
  host->clearRecords();
  foundation.clearRecords();
}

void CallsTest::finish() {
  object.reset();
  family->forgetKept();
  expectBalanced();
  family = nullptr;
  foundation.reset();
}

void CallsTest::finishWithLostBlocks(std::size_t lost) {
  object.reset();
  family->forgetKept();
  const std::string lines = host->unbalanced();
  EXPECT_EQ(static_cast<std::size_t>(std::count(lines.begin(), lines.end(), '\n')), lost);
  EXPECT_EQ(lines.starts_with("object of MemoryBlock"), lost > 0) << lines;
  EXPECT_EQ(foundation.unbalanced(), "");
  abandonHost();
  foundation.reset();
}

Ending CallsTest::attempt(const std::function<void()>& arm) {
  Ending ending;
  Kit kit = this->kit();
  ending.arguments = call().arguments(kit);
  if (arm != nullptr) arm();
  ending.left = zel::catching([&] {
    ending.outcome = call().shared ? host->callShared(kClass, call().method, ending.arguments)
                                   : host->call(object, call().method, ending.arguments);
  });
  ending.raised = ending.left != nullptr || ending.outcome.raised.has_value();
  return ending;
}

Ending CallsTest::make(const std::function<void()>& arm) {
  Ending ending = attempt(arm);
  EXPECT_TRUE(ending.left == nullptr || !call().guarded);
  return ending;
}

void CallsTest::expectSuccess(const Ending& ending) {
  EXPECT_FALSE(ending.raised);
  EXPECT_EQ(host->describe(ending.outcome.value), call().gives);
  expectTrace(call().trace.with);
}

void CallsTest::expectFailure(const Ending& ending) {
  EXPECT_TRUE(ending.raised);
  if (!call().guarded) return;  // it has gone past the host
  const std::string given = host->describe(ending.outcome.value);
  const Lines& failed = call().failed;
  EXPECT_EQ(std::count(failed.begin(), failed.end(), given), 1) << given;
  expectTrace(call().trace.without);
}

void CallsTest::expectTrace(const std::string& expected) {
  const Trace& trace = call().trace;
  if (trace.method == nullptr) return;
  EXPECT_EQ(host->describe(ask(object, trace.method, trace.arguments)), expected);
}

}  // namespace tests
