// Every host-callable function, with a failure at its first, second, third ... operation until none
// is left to fail: nothing may be lost, and no native exception may arrive in the host.
#include <algorithm>
#include <functional>
#include <set>

#include "tests/defaults/calls_test.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests

// What is called in a run where nothing fails, and how often.
struct Counted {
  std::string name;
  int calls;
};

class FaultsTest : public CallsTest {
 protected:
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
