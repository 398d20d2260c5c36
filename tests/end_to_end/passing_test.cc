// Native exceptions that pass through the host: out of one function of the plugin, which the host
// has called for another one.
#include <functional>
#include <utility>

#include "host/family/erased.h"
#include "host/family/runtime.h"
#include "native/exceptions.h"
#include "tests/end_to_end/end_to_end_test.h"

extern "C" {
// Of the Objective-C runtime.
zel::Class* objc_allocateClassPair(zel::Class* superClass, const char* name, std::size_t extra);
void objc_registerClassPair(zel::Class* made);
zel::id class_createInstance(zel::Class* isa, std::size_t extra);
zel::id object_dispose(zel::id object);
}

namespace tests {
namespace {

using namespace std::string_literals;

// Which of the coming calls of GetInstancesDictionaryZEL raises; all the others give nothing.
int callsUntilRaise;
// What it raises; null: an NSException.
zel::id thrown;

zel::CFStringRef textOf(const char* text) {
  return zel::autoreleased(
      zel::CFStringCreateWithCString(zel::kDefaultAllocator, text, zel::kCFStringEncodingUTF8));
}

zel::CFMutableDictionaryRef getInstances(zel::id /*self*/, zel::SEL /*selector*/) {
  if (--callsUntilRaise == 0) {
    if (thrown != nullptr) zel::objc_exception_throw(thrown);
    zel::objc_exception_throw(zel::send<zel::id, "exceptionWithName:reason:userInfo:">(
        zel::classNamed<"NSException">(), textOf("Hook"), textOf("asked to"), zel::id{nullptr}));
  }
  return nullptr;
}

zel::id wrap(zel::id /*self*/, zel::SEL /*selector*/, zel::REALobject /*object*/) {
  zel::objc_exception_throw(thrown);
}

class PassingTest : public EndToEndTest, public testing::WithParamInterface<double> {
 protected:
  void SetUp() override {
    callsUntilRaise = 0;
    thrown = nullptr;
    startHost({.version = GetParam()});
    const host::AddMethod add = host::addToRuntime();
    add({"NSException", "NSObject", true, "GetInstancesDictionaryZEL", host::erased(getInstances),
         "^v@:"});
    family_ = std::make_unique<host::Family>(*host, add);
    family_->provideExceptions();
  }
  // The call throws; what arrives in the host.
  template <class Call>
  zel::id leftBy(Call call) {
    testing::internal::CaptureStderr();
    const zel::id left = zel::catching(call);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(host->takePending(), std::vector<Raised>{});
    return left;
  }
  static zel::id plainObject() {
    return zel::autoreleased(zel::send<zel::id, "new">(zel::classNamed<"NSObject">()));
  }
  // What the host was about to make when the exception passed isn't accounted for.
  void TearDown() override {
    host = nullptr;
    library = nullptr;
  }

 private:
  std::unique_ptr<host::Family> family_;
};

INSTANTIATE_TEST_SUITE_P(Hosts, PassingTest, testing::ValuesIn(kHostVersions));

TEST_P(PassingTest, TheHookOfANewObjectRaisesIntoTheHost) {
  callsUntilRaise = 1;
  const zel::id left = zel::catching([&] { host->make(kClass); });
  ASSERT_NE(left, nullptr);
  EXPECT_STREQ(zel::object_getClassName(left), "NSException");
  callsUntilRaise = 0;
  EXPECT_NE(host->make(kClass), ObjectRef());
}

// An object of a root class without a method, to which any message would end the process.
zel::id newMute() {
  static zel::Class* const made = [] {
    zel::Class* const root = objc_allocateClassPair(nullptr, "Mute", 0);
    objc_registerClassPair(root);
    return root;
  }();
  return class_createInstance(made, sizeof(void*));
}

TEST_P(PassingTest, WhatIsNoExceptionLeavesTheMethodAsItIs) {
  const zel::id mute = newMute();
  thrown = mute;
  callsUntilRaise = 2;
  EXPECT_EQ(leftBy([&] { host->callShared(kClass, "standardUserDefaults"); }), mute);
  object_dispose(mute);
  EXPECT_EQ(ask(standard(), "integerForKey", {"unset"s}), Value(std::int32_t{0}));
}

TEST_P(PassingTest, TheMethodThatWantedTheObjectCatches) {
  callsUntilRaise = 2;
  testing::internal::CaptureStderr();
  const Outcome outcome = host->callShared(kClass, "standardUserDefaults");
  const std::string log = testing::internal::GetCapturedStderr();
  EXPECT_EQ(outcome.value, Value(ObjectRef()));
  EXPECT_EQ(outcome.raised, (Raised{"NSExceptionZEL", "asked to", 0}));
  EXPECT_NE(log.find("A Hook: asked to, Info: (null)\n"), std::string::npos) << log;
  EXPECT_EQ(ask(standard(), "integerForKey", {"unset"s}), Value(std::int32_t{0}));
}

TEST_P(PassingTest, WhatIsRaisedBeforeTheGuardOpensLeavesUnlogged) {
  const ObjectRef object = host->make(kClass);
  const std::function<void()> calls[] = {
      [&] { host->call(object, "Constructor"); },
      [&] { host->call(object, "Constructor", {"somebody"s}); },
      [&] { host->callShared(kClass, "standardUserDefaults"); },
      [&] { host->callShared(kClass, "resetStandardUserDefaults"); }};
  for (const auto& call : calls) {
    callsUntilRaise = 1;
    const zel::id left = leftBy(call);
    ASSERT_NE(left, nullptr);
    EXPECT_STREQ(zel::object_getClassName(left), "NSException");
  }
  EXPECT_EQ(host->call(object, "Constructor").raised, std::nullopt);
}

TEST_P(PassingTest, MethodsOfAConstructedObjectDoNotAskForTheMap) {
  const ObjectRef defaults = standard();
  callsUntilRaise = 1;
  ask(defaults, "setIntegerValue", {"number"s, std::int32_t{5}});
  EXPECT_EQ(ask(defaults, "integerForKey", {"number"s}), Value(std::int32_t{5}));
  ask(defaults, "variantForKey", {"number"s});
  ask(defaults, "arrayForKey", {"number"s});
  ask(defaults, "removeObjectForKey", {"number"s});
  ask(defaults, "volatileDomainNames");
  ask(defaults, "synchronize");
  askShared("NSGlobalDomain");
  EXPECT_EQ(std::exchange(callsUntilRaise, 0), 1);
}

TEST_P(PassingTest, WhatIsNoNSExceptionLeavesEveryKindOfMethod) {
  const ObjectRef defaults = standard();
  host->addClass("Window", "");
  host::addToRuntime()(
      {"ZELREALobjectWrapper", "NSObject", true, "wrap:", host::erased(wrap), "@@:^v"});
  thrown = plainObject();
  callsUntilRaise = 2;  // in the hook of the new object
  EXPECT_EQ(leftBy([&] { host->callShared(kClass, "standardUserDefaults"); }), thrown);
  const ObjectRef window = host->make("Window");
  const ObjectRef domain = host->dictionary({{"window"s, window}});
  EXPECT_EQ(leftBy([&] { host->call(defaults, "setVariantValue", {"window"s, window}); }), thrown);
  EXPECT_EQ(leftBy([&] {
              host->call(defaults, "setArrayValue",
                         {"window"s, host->array(Host::kObjectElements, {window})});
            }),
            thrown);
  EXPECT_EQ(leftBy([&] {
              host->call(defaults, "setDictionaryValue", {"window"s, domain});
            }),
            thrown);
  EXPECT_EQ(leftBy([&] {
              host->call(defaults, "setVolatileDomain", {domain, "windows"s});
            }),
            thrown);
  EXPECT_EQ(ask(defaults, "variantForKey", {"window"s}), Value(ObjectRef()));
}

}  // namespace
}  // namespace tests
