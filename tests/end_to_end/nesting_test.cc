// Values that hold values, as deep as they may be, in a thread with as little stack as any has; and
// deeper ones.
#include <algorithm>
#include <functional>
#include <pthread.h>

#include "tests/end_to_end/end_to_end_test.h"
#include "tests/support/nested_values.h"

namespace tests {
namespace {

using namespace std::string_literals;

constexpr std::size_t kSmallestStack = 512 << 10;  // bytes
// A thread's stack that tells how much of it was ever used.
class WatchedStack {
 public:
  WatchedStack() : bytes_(kSmallestStack + kAlignment, kUntouched) {}

  // Runs the body in a thread that has this stack, and an autorelease pool.
  void run(const std::function<void()>& body) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstack(&attributes, begin(), kSmallestStack);
    pthread_t thread{};
    ASSERT_EQ(
        pthread_create(&thread, &attributes, runBody, const_cast<std::function<void()>*>(&body)),
        0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
  }
  // Stacks grow downwards.
  [[nodiscard]] std::size_t used() {
    const std::byte* const end = begin() + kSmallestStack;
    return static_cast<std::size_t>(
        end - std::find_if(begin(), begin() + kSmallestStack,
                           [](std::byte each) { return each != kUntouched; }));
  }

 private:
  static constexpr std::size_t kAlignment = 4096;
  static constexpr std::byte kUntouched{0xA5};

  static void* runBody(void* body) {
    const host::Pool pool;
    (*static_cast<const std::function<void()>*>(body))();
    return nullptr;
  }
  std::byte* begin() {
    void* aligned = bytes_.data();
    std::size_t space = bytes_.size();
    return static_cast<std::byte*>(std::align(kAlignment, kSmallestStack, aligned, space));
  }

  std::vector<std::byte> bytes_;
};

class NestingTest : public DefaultsTest {
 protected:
  ObjectRef lists(int levels) { return nestedArrays(*host, levels); }
  ObjectRef dictionaries(int levels) { return nestedDictionaries(*host, levels); }
  // How many stand within each other in what a getter gives.
  long levelsFor(const std::string& getter, const Values& arguments) {
    return levelsIn(*host, ask(defaults, getter, arguments));
  }
  void expectTooDeep(const std::string& method, const Values& arguments) {
    SCOPED_TRACE(method);
    testing::internal::CaptureStderr();
    EXPECT_EQ(host->call(defaults, method, arguments).raised, kTooDeep);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  }
};

// One host that reads the elements of arrays in its own way, one whose elements are read directly.
INSTANTIATE_TEST_SUITE_P(Hosts, NestingTest, testing::Values(2013.0, 2014.0));

// The host's own work, making the value and telling of it, is done elsewhere.
TEST_P(NestingTest, AsDeepAsItMayBeFitsEveryStack) {
  const ObjectRef list = lists(kDeepest);
  const ObjectRef dictionary = dictionaries(kDeepest);
  const ObjectRef domain = dictionaries(kDeepest + 1);
  WatchedStack stack;
  std::vector<Outcome> got;
  stack.run([&] {
    const auto call = [&](const std::string& method, const Values& arguments) {
      got.push_back(host->call(defaults, method, arguments));
    };
    call("setVariantValue", {"deep list"s, list});
    call("variantForKey", {"deep list"s});
    call("setDictionaryValue", {"deep dictionary"s, dictionary});
    call("dictionaryForKey", {"deep dictionary"s});
    call("setPersistentDomain", {domain, "deep domain"s});
    call("persistentDomainForName", {"deep domain"s});
    call("synchronize", {});
    call("dictionaryRepresentation", {});
    call("removePersistentDomainForName", {"deep domain"s});
  });
  for (const Outcome& outcome : got) EXPECT_EQ(outcome.raised, std::nullopt);
  EXPECT_LE(stack.used(), kSmallestStack / 2);
  RecordProperty("stack", std::to_string(stack.used()));
  EXPECT_EQ(got.at(6).value, Value(std::int8_t{1}));
  EXPECT_EQ(levelsFor("variantForKey", {"deep list"s}), 256);
  EXPECT_EQ(levelsFor("dictionaryForKey", {"deep dictionary"s}), 256);
}

TEST_P(NestingTest, WhatIsDeeperIsRefused) {
  ask(defaults, "setIntegerValue", {"key"s, std::int32_t{7}});
  expectTooDeep("setVariantValue", {"key"s, lists(kDeepest + 1)});
  expectTooDeep("setArrayValue", {"key"s, lists(kDeepest + 1)});
  expectTooDeep("setDictionaryValue", {"key"s, dictionaries(kDeepest + 1)});
  expectTooDeep("setPersistentDomain", {dictionaries(kDeepest + 2), "deep domain"s});
  expectTooDeep("setVolatileDomain", {dictionaries(kDeepest + 2), "deep domain"s});
  expectTooDeep("registerDefaults", {dictionaries(kDeepest + 2)});
  EXPECT_EQ(ask(defaults, "integerForKey", {"key"s}), Value(std::int32_t{7}));
  EXPECT_EQ(ask(defaults, "volatileDomainForName", {"deep domain"s}), Value(ObjectRef()));
}

TEST_P(NestingTest, WhatIsMuchDeeperIsRefused) {
  const ObjectRef list = lists(20'000);
  WatchedStack stack;
  std::optional<Raised> raised;
  stack.run([&] {
    raised = host->call(defaults, "setVariantValue", {"much deeper"s, list}).raised;
  });
  EXPECT_EQ(raised, kTooDeep);
  EXPECT_EQ(ask(defaults, "variantForKey", {"much deeper"s}), Value(ObjectRef()));
}

}  // namespace
}  // namespace tests
