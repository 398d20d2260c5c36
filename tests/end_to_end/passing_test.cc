// Native exceptions that pass through the host: out of one function of the plugin, which the host
// has called for another one. Apart, because the hook that raises stays in a process for good.
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

class PassingTest : public EndToEndTest, public testing::WithParamInterface<double> {
 protected:
  void SetUp() override {
    thrown = nullptr;
    startHost({.version = GetParam()});
    const host::AddMethod add = host::addToRuntime();
    add({"NSException", "NSObject", true, "GetInstancesDictionaryZEL", host::erased(getInstances),
         "^v@:"});
    family_ = std::make_unique<host::Family>(*host, add);
    family_->provideExceptions();
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
  testing::internal::CaptureStderr();
  const zel::id left = zel::catching([&] { host->callShared(kClass, "standardUserDefaults"); });
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(left, mute);
  EXPECT_EQ(host->takePending(), std::vector<Raised>{});
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

}  // namespace
}  // namespace tests
