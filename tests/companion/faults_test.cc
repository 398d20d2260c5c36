// Everything that the family and the host call, with a failure at its first, second, third ...
// operation until none is left to fail: nothing may be lost.
#include <functional>

#include "native/exceptions.h"
#include "tests/companion/companion_test.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests
using namespace std::string_literals;

struct Call {
  const char* name;
  std::function<bool(Host&, const ObjectRef&, id)> make;  // whether the host raised an exception
  bool guarded;                                           // whether a native one becomes the host's
};

void PrintTo(const Call& call, std::ostream* out) { *out << call.name; }

Call method(const char* name) {
  return {name,
          [name](Host& host, const ObjectRef& object, id) {
            return host.call(object, name).raised.has_value();
          },
          true};
}

// Long enough for a buffer on the way to the host.
const std::string kLongText(150, 'x');  // NOLINT(cert-err58-cpp): a constant of the tests

class CompanionFaultsTest : public CompanionTest, public testing::WithParamInterface<Call> {
 protected:
  void prepare(double version) {
    startHost({.version = version});
    exception =
        foundation.exception(kLongText, kLongText, "NSException",
                             foundation.dictionary({{kLongText, foundation.number("i", 7)}}));
    object = newHostObject(exception);
  }
  void finish() {
    object.reset();
    freeFamilyInstances();
    host->takePending();
    expectBalanced();
    foundation.drainPool();
  }
  // Whether the call ended in an exception; a native one from a guarded call fails the test.
  bool callRaises() {
    bool raised = false;
    const id left = catching([&] { raised = GetParam().make(*host, object, exception); });
    EXPECT_TRUE(left == nullptr || !GetParam().guarded);
    return raised || left != nullptr;
  }

  ObjectRef object;
  id exception = nullptr;
};

constexpr double kHosts[] = {2011.04, 2012.0, 2014.0};

TEST_P(CompanionFaultsTest, AnExceptionAtAnyMessageLosesNothing) {
  for (const double version : kHosts) {
    long n = 1;
    for (bool hit = true; hit; ++n) {
      SCOPED_TRACE(n);
      prepare(version);
      foundation.throwAtMessage(n);
      const bool raised = callRaises();
      hit = !foundation.faultsPending();
      foundation.throwAtMessage(0);
      EXPECT_EQ(raised, hit);
      finish();
      ASSERT_LT(n, 50);
    }
  }
}

TEST_P(CompanionFaultsTest, ARoutineThatAnswersNothingAtAnyCallLosesNothing) {
  for (const double version : kHosts) {
    prepare(version);
    host->clearRecords();
    callRaises();
    const Lines sequence = host->sequence();
    finish();
    for (const std::string& entryPoint : sequence) {
      if (entryPoint.find("nlock") != std::string::npos) continue;  // it gives nothing back then
      SCOPED_TRACE(entryPoint);
      prepare(version);
      host->answerNull(entryPoint);
      callRaises();
      host->answerAgain(entryPoint);
      finish();
    }
  }
}

TEST_P(CompanionFaultsTest, AFailedAllocationLosesNothing) {
  for (long n = 1;; ++n) {
    prepare(2014.0);
    foundation_double::Allocations::shared().failAt(n);
    callRaises();
    const bool hit = !foundation_double::Allocations::shared().faultPending();
    foundation_double::Allocations::shared().failAt(0);
    finish();
    if (!hit) break;
    ASSERT_LT(n, 50);
  }
}

// A host that lacks a routine from the start: nothing is lost, and the object says what it can.
class LackingHostTest : public CompanionTest, public testing::WithParamInterface<const char*> {
 protected:
  void prepareHost() override {
    CompanionTest::prepareHost();
    host->hide(GetParam());
  }
};

TEST_P(LackingHostTest, AnExceptionIsMadeOfWhatThereIs) {
  const id exception = foundation.exception("Name", "Reason");
  {
    const ObjectRef object = newHostObject(exception);
    EXPECT_TRUE(object);
    EXPECT_EQ(foundation.references(exception), 2);
  }
  EXPECT_EQ(foundation.references(exception), 1);
}

INSTANTIATE_TEST_SUITE_P(Routines, LackingHostTest,
                         testing::Values("REALBuildString", "REALSetStringEncoding",
                                         "REALSetPropValueString", "REALSetPropValueInt",
                                         "pluginObjectType"));

Call ofFamily(const char* name, std::function<void(id)> make) {
  return {name,
          [make = std::move(make)](Host&, const ObjectRef&, id exception) {
            make(exception);
            return false;
          },
          false};
}

INSTANTIATE_TEST_SUITE_P(
    Calls, CompanionFaultsTest,
    testing::Values(method("name"), method("reason"), method("userInfo"),
                    ofFamily("NewNSException",
                             [](id exception) { const ObjectRef made = newHostObject(exception); }),
                    ofFamily("GetInstancesDictionary",
                             [](id) {
                               send<CFMutableDictionaryRef, "GetInstancesDictionaryZEL">(
                                   classNamed<"NSException">());
                             }),
                    ofFamily("Prepare",
                             [](id) {
                               send<void, "PrepareNSExceptionZEL">(classNamed<"NSException">());
                             })),
    [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace zel
