// Every host-callable function, with a failure at its first, second, third ... operation until none
// is left to fail: nothing may be lost, and no native exception may arrive in the host.
#include <algorithm>
#include <functional>
#include <set>

#include "native/exceptions.h"
#include "tests/defaults/fault_calls.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests

const char* const kClass = "NSUserDefaultsZEL";

// How a call ended; its value lives on, so that what is made next is made elsewhere.
struct Ending {
  Outcome outcome;
  std::vector<Value> arguments;
  bool raised = false;
};

// What is called in a run where nothing fails, and how often.
struct Counted {
  std::string name;
  int calls;
};

class FaultsTest : public PluginTest, public testing::WithParamInterface<FaultCall> {
 protected:
  // A fresh plugin, everything present.
  void prepare(double version) {
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
    object = host->construct(kClass);
    if (call().shared) host->callShared(kClass, "standardUserDefaults");
    if (call().before != nullptr) {
      Kit kit = this->kit();
      call().before(kit);
    }
    host->clearRecords();
    foundation.clearRecords();
  }
  void finish() {
    object.reset();
    family->forgetKept();
    expectBalanced();
    family = nullptr;
    foundation.reset();
  }
  // The same, but that many blocks were lost.
  void finishWithLostBlocks(std::size_t lost) {
    object.reset();
    family->forgetKept();
    const std::string lines = host->unbalanced();
    EXPECT_EQ(static_cast<std::size_t>(std::count(lines.begin(), lines.end(), '\n')), lost);
    EXPECT_EQ(lines.starts_with("object of MemoryBlock"), lost > 0) << lines;
    EXPECT_EQ(foundation.unbalanced(), "");
    abandonHost();
    foundation.reset();
  }

  const FaultCall& call() { return GetParam(); }
  Kit kit() { return {*host, *family, foundation}; }

  // Makes the arguments, arms the fault and calls. A native exception that arrives fails the test.
  Ending make(const std::function<void()>& arm = nullptr) {
    Ending ending;
    Kit kit = this->kit();
    ending.arguments = call().arguments(kit);
    if (arm != nullptr) arm();
    const id left = catching([&] {
      ending.outcome = call().shared ? host->callShared(kClass, call().method, ending.arguments)
                                     : host->call(object, call().method, ending.arguments);
    });
    EXPECT_TRUE(left == nullptr || !call().guarded);
    ending.raised = left != nullptr || ending.outcome.raised.has_value();
    return ending;
  }
  void expectSuccess(const Ending& ending) {
    EXPECT_FALSE(ending.raised);
    EXPECT_EQ(host->describe(ending.outcome.value), call().gives);
    expectTrace(call().trace.with);
  }
  void expectFailure(const Ending& ending) {
    EXPECT_TRUE(ending.raised);
    if (!call().guarded) return;  // it has gone past the host
    const std::string given = host->describe(ending.outcome.value);
    const Lines& failed = call().failed;
    EXPECT_EQ(std::count(failed.begin(), failed.end(), given), 1) << given;
    expectTrace(call().trace.without);
  }
  void expectTrace(const std::string& expected) {
    const Trace& trace = call().trace;
    if (trace.method == nullptr) return;
    EXPECT_EQ(host->describe(ask(object, trace.method, trace.arguments)), expected);
  }

  static std::vector<Counted> counted(const Lines& names) {
    std::vector<Counted> all;
    for (const std::string& name : std::set<std::string>(names.begin(), names.end()))
      all.push_back({name, static_cast<int>(std::count(names.begin(), names.end(), name))});
    return all;
  }
  // What is on record after the call, before its value dies.
  Lines whatHappens(const std::function<Lines()>& records) {
    const Ending ending = make();
    return records();
  }
  // How often each of the host's entry points is called, in a run where nothing fails.
  std::vector<Counted> entryPoints(double version) {
    prepare(version);
    const Lines sequence = whatHappens([&] { return host->sequence(); });
    finish();
    return counted(sequence);
  }
  // How often each Core Foundation function is called, by the plugin or by the host.
  std::vector<Counted> functions() {
    prepare(kVersion);
    const Lines sequence = whatHappens([&] { return foundation.calls(); });
    finish();
    return counted(sequence);
  }
  // One run with the fault, then another one without it, whose result must be whole.
  void runTwice(double version, bool losesBlocks, const std::function<void()>& arm,
                const std::function<void()>& disarm) {
    prepare(version);
    {
      const Ending first = make(arm);
      disarm();
      if (call().repeatable) expectSuccess(make());
    }
    if (losesBlocks) {
      finishWithLostBlocks(call().blocks);
    } else {
      finish();
    }
  }

  static constexpr double kVersion = 2014.0;
  ObjectRef object;
};

constexpr double kHosts[] = {2011.04, 2012.0, 2014.0};

// What gives references back, or takes those that are given back in any case.
bool countsReferences(const std::string& entryPoint) {
  return entryPoint.starts_with("REALLock") || entryPoint.starts_with("REALUnlock");
}

TEST_P(FaultsTest, WithoutAFaultTheCallGivesWhatItShould) {
  for (const double version : kHosts) {
    prepare(version);
    expectSuccess(make());
    finish();
  }
}

TEST_P(FaultsTest, AnExceptionAtAnyMessageReachesTheHostAndLosesNothing) {
  for (const double version : kHosts) {
    long n = 1;
    for (bool hit = true; hit; ++n) {
      SCOPED_TRACE(n);
      prepare(version);
      {
        const Ending ending = make([&] { foundation.throwAtMessage(n); });
        hit = !foundation.faultsPending();
        foundation.throwAtMessage(0);
        if (hit) {
          expectFailure(ending);
        } else {
          expectSuccess(ending);
        }
      }
      finish();
      ASSERT_LT(n, 500);
    }
  }
}

TEST_P(FaultsTest, AnExceptionInAnyFunctionReachesTheHostAndLosesNothing) {
  for (const auto& function : functions()) {
    if (!function.name.starts_with("CF")) continue;
    if (function.name == "CFRelease" || function.name == "CFRetain") continue;  // they never raise
    for (int n = 1; n <= function.calls; ++n) {
      SCOPED_TRACE(function.name + " " + std::to_string(n));
      prepare(kVersion);
      expectFailure(make([&] { foundation.throwAtCall(function.name, n); }));
      finish();
    }
  }
}

TEST_P(FaultsTest, AFunctionThatFailsLosesNothing) {
  for (const auto& function : functions()) {
    if (function.name == "CFRelease" || function.name == "CFRetain") continue;  // they never fail
    for (int n = 1; n <= function.calls; ++n) {
      SCOPED_TRACE(function.name + " " + std::to_string(n));
      runTwice(
          kVersion, false, [&] { foundation.failCall(function.name, n); }, [] {});
    }
  }
}

TEST_P(FaultsTest, ARoutineThatAnswersNothingLosesNothing) {
  for (const double version : kHosts) {
    for (const auto& entryPoint : entryPoints(version)) {
      if (countsReferences(entryPoint.name)) continue;
      const std::string& name = entryPoint.name;
      for (int n = 0; n <= entryPoint.calls; ++n) {  // 0: at every call
        SCOPED_TRACE(name + " " + std::to_string(n));
        runTwice(
            version, name == "memoryBlockGetPtr" && call().blocks > 0,
            [&] { host->answerNull(name, n); }, [&] { host->answerAgain(name); });
      }
    }
  }
}

TEST_P(FaultsTest, ARoutineThatIsFoundLateLosesNothing) {
  for (const auto& entryPoint : entryPoints(kVersion)) {
    if (countsReferences(entryPoint.name)) continue;
    const std::string& name = entryPoint.name;
    const bool losesBlocks = name == "memoryBlockGetPtr" && call().blocks > 0;
    for (int lookups = 1; lookups <= 3; ++lookups) {
      SCOPED_TRACE(name + " " + std::to_string(lookups));
      runTwice(
          kVersion, losesBlocks, [&] { host->hideFirst(name, lookups); },
          [&] { host->unhide(name); });
    }
    SCOPED_TRACE(name);
    runTwice(
        kVersion, losesBlocks, [&] { host->hide(name); }, [&] { host->unhide(name); });
  }
}

TEST_P(FaultsTest, AFailedAllocationLosesNothing) {
  for (long n = 1;; ++n) {
    prepare(kVersion);
    make([&] { foundation_double::Allocations::shared().failAt(n); });
    const bool hit = !foundation_double::Allocations::shared().faultPending();
    foundation_double::Allocations::shared().failAt(0);
    finish();
    if (!hit) break;
    ASSERT_LT(n, 50);
  }
}

INSTANTIATE_TEST_SUITE_P(Calls, FaultsTest, testing::ValuesIn(faultCalls()),
                         [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace zel
