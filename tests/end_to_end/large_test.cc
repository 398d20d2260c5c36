// A million entries each way. How long it takes is measured by the benchmarks.
#include "tests/end_to_end/end_to_end_test.h"

namespace tests {
namespace {

using namespace std::string_literals;

constexpr std::int32_t kEntries = 1'000'000;

class LargeTest : public FamilyTest {
 protected:
  void SetUp() override {
    startHost({.keepSequence = false});
    defaults = standard();
  }
  void TearDown() override {
    ask(defaults, "removeVolatileDomainForName", {"large"s});
    defaults.reset();
    drainPool();
    FamilyTest::TearDown();
  }
  // Through a volatile domain, so that nothing is written to disk.
  ObjectRef throughTheStore(const ObjectRef& dictionary) {
    EXPECT_EQ(ask(defaults, "setVolatileDomain", {dictionary, "large"s}), Value());
    return std::get<ObjectRef>(ask(defaults, "volatileDomainForName", {"large"s}));
  }

  ObjectRef defaults;
};

TEST_F(LargeTest, ADictionary) {
  testkit::Entries entries;
  entries.reserve(kEntries);
  for (std::int32_t i = 0; i < kEntries; ++i) entries.emplace_back(std::to_string(i), i);
  const testkit::Entries back = host->entries(throughTheStore(host->dictionary(entries)));
  ASSERT_EQ(back.size(), static_cast<std::size_t>(kEntries));
  std::int64_t sum = 0;
  for (const auto& [key, value] : back) {
    ASSERT_EQ(std::get<std::string>(key), std::to_string(std::get<std::int32_t>(value)));
    sum += std::get<std::int32_t>(value);
  }
  EXPECT_EQ(sum, 499'999'500'000);
}

TEST_F(LargeTest, AList) {
  Values elements;
  elements.reserve(kEntries);
  for (std::int32_t i = 0; i < kEntries; ++i) elements.emplace_back(i);
  const ObjectRef list = host->array(Host::kObjectElements, elements);
  const ObjectRef back = throughTheStore(host->dictionary({{"list"s, list}}));
  const testkit::Entries entries = host->entries(back);
  ASSERT_EQ(entries.size(), 1U);
  EXPECT_EQ(host->elements(std::get<ObjectRef>(entries.at(0).second)), elements);
}

TEST_F(LargeTest, AListOfTexts) {
  Values elements;
  elements.reserve(kEntries);
  for (std::int32_t i = 0; i < kEntries; ++i) elements.emplace_back(std::to_string(i));
  const ObjectRef list = host->array(Host::kStringElements, elements);
  EXPECT_EQ(ask(defaults, "setStringArrayValue", {"large"s, list}), Value());
  const auto back = std::get<ObjectRef>(ask(defaults, "stringArrayForKey", {"large"s}));
  EXPECT_EQ(host->elements(back), elements);
  ask(defaults, "removeObjectForKey", {"large"s});
}

}  // namespace
}  // namespace tests
