// What is so in every method that the host calls, whatever it does.
#include <algorithm>
#include <set>
#include <utility>

#include "plugin/errors.h"
#include "plugin/host.h"
#include "plugin/tables.h"
#include "tests/defaults/calls_test.h"
#include "tests/support/intercept.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests

// The words of an object's instance data, from the start of the object.
constexpr std::int32_t kFirstWord = 24;
constexpr std::int32_t kSecondWord = 32;

class EveryMethodTest : public CallsTest {
 protected:
  NSUserDefaults*& wordAt(std::int32_t offset) {
    return *reinterpret_cast<NSUserDefaults**>(object.as<char*>() + offset);
  }
  void expectNothingDone(const Ending& ending) {
    EXPECT_FALSE(ending.raised);
    EXPECT_EQ(host->describe(ending.outcome.value), call().failed.front());
    EXPECT_EQ(sentToDefaults(), Lines{});
    EXPECT_EQ(foundation.log(), Lines{});
  }
};

// The first array that a method makes.
REALarray firstArray = nullptr;

void watchArrays() {
  firstArray = nullptr;
  intercept("RuntimeArrayCreateSingleDimBoundedArray", [](std::int32_t type, std::int32_t bound) {
    const auto made = callHost<REALarray>("RuntimeArrayCreateSingleDimBoundedArray", type, bound);
    if (firstArray == nullptr) firstArray = made;
    return made;
  });
}

TEST_P(EveryMethodTest, PassesOnWhatIsNoNSException) {
  // The array that a list would have been returned in has nobody left to give it back.
  const bool returnsArray = call().failed.front() == "[]";
  bool hit = true;
  for (long n = 1; hit; ++n) {
    SCOPED_TRACE(n);
    prepare(kVersion);
    watchArrays();
    const id thrown = foundation.object("NSObject");
    {
      const Ending ending = attempt([&] { foundation.throwAtMessage(n, thrown); });
      hit = !foundation.faultsPending();
      foundation.throwAtMessage(0);
      EXPECT_EQ(ending.left, hit ? thrown : nullptr);
    }
    EXPECT_EQ(foundation.log(), Lines{});
    EXPECT_EQ(host->takePending(), std::vector<Raised>{});
    if (hit && returnsArray) REALUnlockObject(reinterpret_cast<REALobject>(firstArray));
    finish();
    ASSERT_LT(n, 500);
  }
}

std::vector<FaultCall> guardedCalls() {
  std::vector<FaultCall> calls = faultCalls();
  std::erase_if(calls, [](const FaultCall& call) { return !call.guarded; });
  return calls;
}

INSTANTIATE_TEST_SUITE_P(Calls, EveryMethodTest, testing::ValuesIn(guardedCalls()),
                         [](const auto& row) { return row.param.name; });

// --- those that act on a constructed object

std::vector<FaultCall> ordinaryCalls() {
  std::vector<FaultCall> calls = faultCalls();
  std::erase_if(calls, [](const FaultCall& call) { return call.shared || call.constructs; });
  return calls;
}

class OrdinaryMethodTest : public EveryMethodTest {};

INSTANTIATE_TEST_SUITE_P(Calls, OrdinaryMethodTest, testing::ValuesIn(ordinaryCalls()),
                         [](const auto& row) { return row.param.name; });

TEST_P(OrdinaryMethodTest, DoesNothingOnAnUnconstructedObject) {
  prepare(kVersion);
  {
    const ObjectRef constructed = std::exchange(object, host->make(kClass));
    foundation.clearRecords();
    expectNothingDone(make());
    object = constructed;
    expectTrace(call().trace.without);
  }
  finish();
}

TEST_P(OrdinaryMethodTest, FindsTheObjectWhereTheHostSaysOrWhereItAlwaysIs) {
  prepare(kVersion);
  wordAt(kSecondWord) = std::exchange(wordAt(kFirstWord), nullptr);
  NSUserDefaultsClass.base.systemUse = kSecondWord;
  if (call().fixedPosition) {
    expectNothingDone(make());
    expectTrace(call().trace.without);
  } else {
    expectSuccess(make());
  }
  wordAt(kFirstWord) = std::exchange(wordAt(kSecondWord), nullptr);
  finish();
}

TEST_P(OrdinaryMethodTest, ReadsTheObjectWithinTheGuardOrBeforeItOpens) {
  prepare(kVersion);
  NSUserDefaults* const wrapped = wordAt(kFirstWord);
  Kit kit = this->kit();
  Ending ending;
  ending.arguments = call().arguments(kit);
  foundation.clearRecords();
  foundation.beforeCatching([&] { wordAt(kFirstWord) = nullptr; });
  ending.outcome = host->call(object, call().method, ending.arguments);
  foundation.beforeCatching(nullptr);
  wordAt(kFirstWord) = wrapped;
  if (call().fixedPosition) {
    expectSuccess(ending);
  } else {
    expectNothingDone(ending);
    expectTrace(call().trace.without);
  }
  ending = {};
  finish();
}

TEST_P(OrdinaryMethodTest, DoesNotJoinTheFamily) {
  prepare(kVersion);
  instances = nullptr;
  ExceptionsInitialized = false;
  const int preparations = family->preparations();
  expectSuccess(make());
  EXPECT_EQ(instances, nullptr);
  EXPECT_EQ(family->preparations(), preparations);
  finish();
}

// --- the table of calls

TEST(CallsTableTest, HasEveryDeclaredMethod) {
  std::set<std::string> called;
  for (const FaultCall& call : faultCalls()) called.insert(call.method);
  called.insert("_exception");  // does nothing, whatever happens
  const auto expectCalled = [&](const REALmethodDefinition& record) {
    const std::string declaration = record.declaration;
    EXPECT_EQ(called.count(declaration.substr(0, declaration.find_first_of("( "))), 1U)
        << declaration;
  };
  std::ranges::for_each(NSUserDefaultsMethods, expectCalled);
  std::ranges::for_each(NSUserDefaultsSharedMethods, expectCalled);
}

}  // namespace
}  // namespace zel
