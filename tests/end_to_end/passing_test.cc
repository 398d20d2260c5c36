// Native exceptions that pass through the host: out of one function of the plugin, which the host
// has called for another one. Apart, because the hook that raises stays in a process for good.
#include "host/family/erased.h"
#include "host/family/runtime.h"
#include "native/exceptions.h"
#include "tests/end_to_end/end_to_end_test.h"

namespace tests {
namespace {

using namespace std::string_literals;

// Which of the coming calls of GetInstancesDictionaryZEL raises; all the others give nothing.
int callsUntilRaise;

zel::CFStringRef textOf(const char* text) {
  return zel::autoreleased(
      zel::CFStringCreateWithCString(zel::kDefaultAllocator, text, zel::kCFStringEncodingUTF8));
}

zel::CFMutableDictionaryRef getInstances(zel::id /*self*/, zel::SEL /*selector*/) {
  if (--callsUntilRaise == 0) {
    zel::objc_exception_throw(zel::send<zel::id, "exceptionWithName:reason:userInfo:">(
        zel::classNamed<"NSException">(), textOf("Hook"), textOf("asked to"), zel::id{nullptr}));
  }
  return nullptr;
}

class PassingTest : public EndToEndTest, public testing::WithParamInterface<double> {
 protected:
  void SetUp() override {
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
