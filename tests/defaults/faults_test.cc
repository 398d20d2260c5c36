// Every host-callable function, with a failure at its first, second, third ... operation until none
// is left to fail: nothing may be lost, and no native exception may arrive in the host.
#include <functional>

#include "native/exceptions.h"
#include "plugin/host.h"
#include "plugin/methods.h"
#include "plugin/tables.h"
#include "tests/support/plugin_test.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests
using namespace std::string_literals;

const char* const kClass = "NSUserDefaultsZEL";

// One call from the host; `guarded` tells whether a native exception in it becomes the host's.
struct Call {
  const char* name;
  std::function<Outcome(Host&, const ObjectRef&)> make;
  bool guarded = true;
};

void PrintTo(const Call& call, std::ostream* out) { *out << call.name; }

Call method(const char* name, const std::vector<Value>& arguments) {
  return {name,
          [=](Host& host, const ObjectRef& object) { return host.call(object, name, arguments); }};
}

Call shared(const char* name, bool guarded = true) {
  return {name,
          [=](Host& host, const ObjectRef& /*object*/) { return host.callShared(kClass, name); },
          guarded};
}

// Long enough for a buffer on the way back to the host.
const std::string kLongText(150, 'x');  // NOLINT(cert-err58-cpp): a constant of the tests

class FaultsTest : public PluginTest, public testing::WithParamInterface<Call> {
 protected:
  // A fresh plugin, everything present, values stored under the keys that the calls read.
  void prepare(double version) {
    startHost({.version = version});
    provideSiblings();
    object = host->construct(kClass);
    host->call(object, "setStringValue", {"text"s, kLongText});
    host->call(object, "setURLValue", {"url"s, "http://example.com/" + kLongText});
    host->callShared(kClass, "standardUserDefaults");
  }
  void finish() {
    object.reset();
    expectBalanced();
    siblings = nullptr;
    foundation.reset();
  }
  // Whether the call ended in an exception of the host's; a native one that arrives fails the test.
  bool callRaises() {
    bool raised = false;
    const id left = catching([&] { raised = GetParam().make(*host, object).raised.has_value(); });
    EXPECT_TRUE(left == nullptr || !GetParam().guarded);
    return raised || left != nullptr;
  }

  ObjectRef object;
};

constexpr double kHosts[] = {2011.04, 2012.0, 2014.0};

TEST_P(FaultsTest, AnExceptionAtAnyMessageReachesTheHostAndLosesNothing) {
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

TEST_P(FaultsTest, ARoutineThatAnswersNothingAtAnyCallLosesNothing) {
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

TEST_P(FaultsTest, AFailedAllocationLosesNothing) {
  for (long n = 1;; ++n) {
    prepare(2014.0);
    testkit::Allocations::shared().failAt(n);
    callRaises();
    const bool hit = !testkit::Allocations::shared().faultPending();
    testkit::Allocations::shared().failAt(0);
    finish();
    if (!hit) break;
    ASSERT_LT(n, 50);
  }
}

// A host whose resolver knows nothing: every call ends, with nothing.
class EmptyHostTest : public PluginTest {
 protected:
  void SetUp() override {
    PluginTest::SetUp();
    provideSiblings();
    siblings->giveNoExceptions();
    gResolver = [](const char* /*name*/) -> void* { return nullptr; };
    NSUserDefaultsClass.base.systemUse = 24;
  }
  char object_[64] = {};
  char string_[64] = {};
  REALobject object = reinterpret_cast<REALobject>(object_);
  REALstring string = reinterpret_cast<REALstring>(string_);
};

TEST_F(EmptyHostTest, EveryGetterGivesItsDefault) {
  Constructor(object);
  EXPECT_EQ(integerForKey(object, string), 0);
  EXPECT_EQ(floatForKey(object, string), 0.0F);
  EXPECT_EQ(doubleForKey(object, string), 0.0);
  EXPECT_EQ(boolForKey(object, string), 0);
  EXPECT_EQ(stringForKey(object, string), nullptr);
  EXPECT_EQ(URLForKey(object, string), nullptr);
  NSUserDefaultsDestructor(object);
}

TEST_F(EmptyHostTest, EverySetterStoresNothing) {
  ConstructorUser(object, string);
  setIntegerForKey(object, string, 1);
  setFloatForKey(object, string, 1);
  setDoubleForKey(object, string, 1);
  setBoolForKey(object, string, 1);
  setStringForKey(object, string, string);
  setURLForKey(object, string, string);
  EXPECT_EQ(foundation.log().size(), 6U);  // each handed on a nil key, which Foundation rejects
  NSUserDefaultsDestructor(object);
}

TEST_F(EmptyHostTest, TheOtherMethodsEndToo) {
  NSUserDefaultsConstructor(object);
  Constructor(object);
  Constructor(object);
  EXPECT_EQ(synchronize(object), 1);
  EXPECT_EQ(standardUserDefaults(), nullptr);
  resetStandardUserDefaults();
  EXPECT_EQ(getNSGlobalDomain(), nullptr);
  EXPECT_EQ(DummyException(object), nullptr);
  NSUserDefaultsDestructor(object);
}

INSTANTIATE_TEST_SUITE_P(
    Calls, FaultsTest,
    testing::Values(method("integerForKey", {"key"s}), method("floatForKey", {"key"s}),
                    method("doubleForKey", {"key"s}), method("boolForKey", {"key"s}),
                    method("stringForKey", {"text"s}), method("URLForKey", {"url"s}),
                    method("setIntegerValue", {"key"s, std::int32_t{5}}),
                    method("setFloatValue", {"key"s, 0.5F}),
                    method("setDoubleValue", {"key"s, 0.5}),
                    method("setBoolValue", {"key"s, std::int8_t{1}}),
                    method("setStringValue", {"key"s, "text"s}),
                    method("setURLValue", {"key"s, "http://example.com"s}),
                    method("synchronize", {}), shared("standardUserDefaults"),
                    shared("resetStandardUserDefaults"), shared("NSGlobalDomain", false),
                    shared("NSUserDefaultsDidChangeNotification", false)),
    [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace zel
