// Very many entries through the built plugin, both ways: nothing may be left over, and what comes
// back is what went in. How long it takes, and that it grows no faster than the size, is measured
// in bench/, with a million of them.
#include <algorithm>
#include <cstdlib>
#include <map>
#include <string>

#include "tests/end_to_end/end_to_end_test.h"

// Foundation's own accounts of the objects that are alive.
extern "C" {
zel::BOOL GSDebugAllocationActive(zel::BOOL active);
zel::Class** GSDebugAllocationClassList();  // ends with null; the caller frees it
int GSDebugAllocationCount(zel::Class* nativeClass);
}

namespace tests {
namespace {

using namespace std::string_literals;

constexpr std::int32_t kFew = 10;

// Very many, unless the environment says how many.
std::int32_t entries() {
  const char* const number = std::getenv("ZEL_ENTRIES");
  return number != nullptr ? std::stoi(number) : 50'000;
}

// How many more native objects of every class are alive than when the counting began.
std::map<std::string, int> nativeObjects() {
  std::map<std::string, int> counts;
  zel::Class** const classes = GSDebugAllocationClassList();
  for (zel::Class** each = classes; *each != nullptr; ++each)
    if (const int count = GSDebugAllocationCount(*each); count != 0)
      counts[zel::object_getClassName(*each)] = count;
  std::free(classes);
  return counts;
}

class LargeTest : public DefaultsTest {
 protected:
  void SetUp() override {
    // Half a million calls of the host are too many to remember.
    startDefaults({.version = GetParam(), .keepSequence = false});
  }

  // Runs the same with a few entries first, so that everything that is made once is there, and then
  // with very many: no native object may be left over.
  template <class Body>
  void withFewAndMany(Body body) {
    GSDebugAllocationActive(1);
    const auto witness = zel::send<zel::id, "new">(zel::classNamed<"NSObject">());
    body(kFew);
    drainPool();
    const auto before = nativeObjects();
    EXPECT_EQ(before.count("NSObject"), 1U) << "nothing is counted";
    body(entries());
    drainPool();
    EXPECT_EQ(nativeObjects(), before);
    zel::release(witness);
    GSDebugAllocationActive(0);
  }

  // What goes into the store and out again as a domain that is kept in memory only.
  ObjectRef thereAndBack(const ObjectRef& dictionary) {
    ask(defaults, "setVolatileDomain", {dictionary, "large"s});
    auto back = std::get<ObjectRef>(ask(defaults, "volatileDomainForName", {"large"s}));
    ask(defaults, "removeVolatileDomainForName", {"large"s});
    return back;
  }
};

Values texts(std::int32_t count) {
  Values elements;
  for (std::int32_t i = 0; i < count; ++i) elements.emplace_back("text " + std::to_string(i));
  return elements;
}

// One host that reads the elements of arrays in its own way, one whose elements are read directly.
INSTANTIATE_TEST_SUITE_P(Hosts, LargeTest, testing::Values(2013.0, 2014.0));

// Dictionaries are reached in the same way in every host.
class LargeDictionaryTest : public LargeTest {};

INSTANTIATE_TEST_SUITE_P(Host, LargeDictionaryTest, testing::Values(2014.0));

TEST_P(LargeDictionaryTest, ADictionaryThereAndBack) {
  withFewAndMany([this](std::int32_t count) {
    host::Entries entries;
    for (std::int32_t i = 0; i < count; ++i) entries.emplace_back("key " + std::to_string(i), i);
    host::Entries found = host->entries(thereAndBack(host->dictionary(entries)));
    // Foundation keeps no order.
    const auto number = [](const auto& entry) { return std::get<std::int32_t>(entry.second); };
    std::sort(found.begin(), found.end(),
              [&](const auto& a, const auto& b) { return number(a) < number(b); });
    EXPECT_TRUE(found == entries);
  });
}

TEST_P(LargeTest, AListThereAndBack) {
  withFewAndMany([this](std::int32_t count) {
    const Values elements = texts(count);
    const ObjectRef list = host->array(Host::kObjectElements, elements);
    const host::Entries back = host->entries(thereAndBack(host->dictionary({{"list"s, list}})));
    ASSERT_EQ(back.size(), 1U);
    EXPECT_TRUE(host->elements(std::get<ObjectRef>(back[0].second)) == elements);
  });
}

TEST_P(LargeTest, AListOfStringsThereAndBack) {
  withFewAndMany([this](std::int32_t count) {
    const Values elements = texts(count);
    const Value list = host->array(Host::kStringElements, elements);
    ask(defaults, "setStringArrayValue", {"large list"s, list});
    const auto back = std::get<ObjectRef>(ask(defaults, "stringArrayForKey", {"large list"s}));
    EXPECT_TRUE(host->elements(back) == elements);
    ask(defaults, "removeObjectForKey", {"large list"s});
  });
}

}  // namespace
}  // namespace tests
