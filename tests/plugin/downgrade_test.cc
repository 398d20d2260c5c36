// The older record layout, field by field.
#include "plugin/downgrade.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <ostream>
#include <vector>

#include "foundation_double/allocations.h"

namespace zel {
namespace {

struct Free {
  void operator()(void* block) const { std::free(block); }
};
using Freed = std::unique_ptr<void, Free>;

// The arrays are the host's for good; a test gives them back itself.
template <class Record>
Freed freed(const Record* records) {
  return Freed(const_cast<Record*>(records));
}

void firstFunction() {}
void secondFunction() {}

int delegates;
int enums;
int attributes;
char eventInstances;

TEST(FixPropertiesTest, GivesNothingForNoList) {
  REALproperty property{};
  EXPECT_EQ(FixProperties(nullptr, 3), nullptr);
  EXPECT_EQ(FixProperties(&property, 0), nullptr);
  EXPECT_EQ(FixProperties(nullptr, 0), nullptr);
}

TEST(FixPropertiesTest, KeepsTheFirstTenWords) {
  REALproperty properties[2] = {
      {{11, 12, 13, 14, 15, 16, 17, 18, 19, 20}, 7, &attributes},
      {{21, 22, 23, 24, 25, 26, 27, 28, 29, 30}, 8, &attributes},
  };
  const OlderPropertyRecord* const older = FixProperties(properties, 2);
  const Freed guard = freed(older);
  ASSERT_NE(older, nullptr);
  for (int word = 0; word < 10; ++word) {
    EXPECT_EQ(older[0].words[word], 11 + word);
    EXPECT_EQ(older[1].words[word], 21 + word);
    EXPECT_EQ(properties[0].words[word], 11 + word);
  }
  EXPECT_EQ(properties[0].attributeCount, 7);
  EXPECT_EQ(properties[0].attributes, &attributes);
}

TEST(FixPropertiesTest, RefusesSizesThatTheHostCannotCount) {
  REALproperty property{};
  constexpr std::int32_t kOneTooMany = 0x7FFFFFFF / sizeof(OlderPropertyRecord) + 1;
  EXPECT_EQ(FixProperties(&property, kOneTooMany), nullptr);
  EXPECT_EQ(FixProperties(&property, -1), nullptr);
  EXPECT_EQ(FixProperties(&property, std::numeric_limits<std::int32_t>::max()), nullptr);
  EXPECT_EQ(FixProperties(&property, std::numeric_limits<std::int32_t>::min()), nullptr);
}

// A class with something in every field.
class DowngradeTest : public testing::Test {
 protected:
  void SetUp() override {
    definition.base = {
        .version = 12,
        .name = "Everything",
        .superName = "Super",
        .dataSize = 48,
        .systemUse = 77,
        .constructor = firstFunction,
        .destructor = secondFunction,
        .properties = properties,
        .propertyCount = 1,
        .methods = methods,
        .methodCount = 2,
        .events = events,
        .eventCount = 2,
        .eventInstances = &eventInstances,
        .eventInstanceCount = 5,
        .interfaces = "Interfaces",
        .attributes = &attributes,
        .attributeCount = 9,
        .constants = constants,
        .constantCount = 2,
        .flags = 4,
        .sharedProperties = sharedProperties,
        .sharedPropertyCount = 1,
        .sharedMethods = sharedMethods,
        .sharedMethodCount = 1,
    };
    definition.delegates = &delegates;
    definition.delegateCount = 3;
    definition.enums = &enums;
    definition.enumCount = 2;
  }
  void TearDown() override {
    for (const void* list :
         {record.properties, record.events, record.constants, record.sharedProperties,
          const_cast<void*>(record.methods), const_cast<void*>(record.sharedMethods)}) {
      std::free(const_cast<void*>(list));
    }
  }

  REALproperty properties[1] = {{{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, 1, &attributes}};
  REALproperty sharedProperties[1] = {{{31, 32, 33, 34, 35, 36, 37, 38, 39, 40}, 1, &attributes}};
  REALmethodDefinition methods[2] = {
      {firstFunction, secondFunction, "first as integer", 4, 1, &attributes},
      {secondFunction, nullptr, "second", 5, 1, &attributes},
  };
  REALmethodDefinition sharedMethods[1] = {{firstFunction, nullptr, "shared", 6, 1, &attributes}};
  REALevent events[2] = {{"Opened", &attributes, 1, &attributes}, {"Closed", &enums, 0, nullptr}};
  REALconstant constants[2] = {{{101, 102, 103}, 1, &attributes}, {{111, 112, 113}, 0, nullptr}};
  REALclassDefinition definition{};
  OlderClassRecord& record = definition.base;
};

TEST_F(DowngradeTest, CopiesWhatBothLayoutsHave) {
  downgrade(definition, 9);
  EXPECT_EQ(record.version, 9);
  EXPECT_STREQ(record.name, "Everything");
  EXPECT_STREQ(record.superName, "Super");
  EXPECT_EQ(record.dataSize, 48);
  EXPECT_EQ(record.systemUse, 77);
  EXPECT_EQ(record.constructor, &firstFunction);
  EXPECT_EQ(record.destructor, &secondFunction);
  EXPECT_EQ(record.eventInstances, &eventInstances);
  EXPECT_EQ(record.eventInstanceCount, 5);
  EXPECT_STREQ(record.interfaces, "Interfaces");
  EXPECT_EQ(record.flags, 4);
}

TEST_F(DowngradeTest, CopiesEveryCount) {
  downgrade(definition, 9);
  EXPECT_EQ(record.propertyCount, 1);
  EXPECT_EQ(record.methodCount, 2);
  EXPECT_EQ(record.eventCount, 2);
  EXPECT_EQ(record.constantCount, 2);
  EXPECT_EQ(record.sharedPropertyCount, 1);
  EXPECT_EQ(record.sharedMethodCount, 1);
}

TEST_F(DowngradeTest, DropsTheAttributes) {
  downgrade(definition, 9);
  EXPECT_EQ(record.attributes, nullptr);
  EXPECT_EQ(record.attributeCount, 0);
}

TEST_F(DowngradeTest, LeavesDelegatesAndEnumsAsTheyWere) {
  downgrade(definition, 9);
  EXPECT_EQ(definition.delegates, &delegates);
  EXPECT_EQ(definition.delegateCount, 3);
  EXPECT_EQ(definition.enums, &enums);
  EXPECT_EQ(definition.enumCount, 2);
}

TEST_F(DowngradeTest, ConvertsMethodsInOrder) {
  downgrade(definition, 9);
  const auto* const older = static_cast<const OlderMethodRecord*>(record.methods);
  EXPECT_EQ(older[0].function, &firstFunction);
  EXPECT_EQ(older[0].setter, &secondFunction);
  EXPECT_STREQ(older[0].declaration, "first as integer");
  EXPECT_EQ(older[0].flags, 4);
  EXPECT_EQ(older[1].function, &secondFunction);
  EXPECT_EQ(older[1].setter, nullptr);
  EXPECT_STREQ(older[1].declaration, "second");
  EXPECT_EQ(older[1].flags, 5);
}

TEST_F(DowngradeTest, ConvertsSharedMethods) {
  downgrade(definition, 9);
  const auto* const older = static_cast<const OlderMethodRecord*>(record.sharedMethods);
  EXPECT_EQ(older[0].function, &firstFunction);
  EXPECT_STREQ(older[0].declaration, "shared");
  EXPECT_EQ(older[0].flags, 6);
}

TEST_F(DowngradeTest, LinksEverySourceEventToItsTwin) {
  downgrade(definition, 9);
  auto* const older = static_cast<OlderEventRecord*>(record.events);
  EXPECT_STREQ(older[0].declaration, "Opened");
  EXPECT_EQ(older[0].systemUse, &attributes);
  EXPECT_STREQ(older[1].declaration, "Closed");
  EXPECT_EQ(older[1].systemUse, &enums);
  EXPECT_EQ(events[0].systemUse, &older[0]);
  EXPECT_EQ(events[1].systemUse, &older[1]);
}

TEST_F(DowngradeTest, KeepsThreeWordsOfAConstant) {
  downgrade(definition, 9);
  const auto* const older = static_cast<const OlderConstantRecord*>(record.constants);
  EXPECT_EQ(older[0].words[0], 101);
  EXPECT_EQ(older[0].words[2], 103);
  EXPECT_EQ(older[1].words[0], 111);
  EXPECT_EQ(older[1].words[2], 113);
}

TEST_F(DowngradeTest, ConvertsBothPropertyLists) {
  downgrade(definition, 9);
  EXPECT_EQ(static_cast<const OlderPropertyRecord*>(record.properties)[0].words[9], 10);
  EXPECT_EQ(static_cast<const OlderPropertyRecord*>(record.sharedProperties)[0].words[9], 40);
}

// Which of the allocations fails, and how many records each list has then.
struct LostCase {
  int allocation;
  std::int32_t properties;
  std::int32_t methods;
  std::int32_t events;
  std::int32_t constants;
  std::int32_t sharedMethods;
  std::int32_t sharedProperties;
};

class LostListTest : public DowngradeTest, public testing::WithParamInterface<LostCase> {};

TEST_P(LostListTest, IsToldWithoutRecords) {
  foundation_double::Allocations::shared().reset();
  foundation_double::Allocations::shared().failAt(GetParam().allocation);
  downgrade(definition, 9);
  EXPECT_FALSE(foundation_double::Allocations::shared().faultPending());
  EXPECT_EQ(record.propertyCount, GetParam().properties);
  EXPECT_EQ(record.methodCount, GetParam().methods);
  EXPECT_EQ(record.eventCount, GetParam().events);
  EXPECT_EQ(record.constantCount, GetParam().constants);
  EXPECT_EQ(record.sharedMethodCount, GetParam().sharedMethods);
  EXPECT_EQ(record.sharedPropertyCount, GetParam().sharedProperties);
  EXPECT_EQ(record.properties != nullptr, GetParam().properties != 0);
  EXPECT_EQ(record.methods != nullptr, GetParam().methods != 0);
  EXPECT_EQ(record.events != nullptr, GetParam().events != 0);
  EXPECT_EQ(record.constants != nullptr, GetParam().constants != 0);
  EXPECT_EQ(record.sharedMethods != nullptr, GetParam().sharedMethods != 0);
  EXPECT_EQ(record.sharedProperties != nullptr, GetParam().sharedProperties != 0);
}

INSTANTIATE_TEST_SUITE_P(
    Lists, LostListTest,
    testing::Values(LostCase{1, 0, 2, 2, 2, 1, 1}, LostCase{2, 1, 0, 2, 2, 1, 1},
                    LostCase{3, 1, 2, 0, 2, 1, 1}, LostCase{4, 1, 2, 2, 0, 1, 1},
                    LostCase{5, 1, 2, 2, 2, 0, 1}, LostCase{6, 1, 2, 2, 2, 1, 0}));

TEST(FixPropertiesTest, GivesNothingWhereNothingCanBeAllocated) {
  REALproperty property{};
  foundation_double::Allocations::shared().failAt(1);
  EXPECT_EQ(FixProperties(&property, 1), nullptr);
  EXPECT_FALSE(foundation_double::Allocations::shared().faultPending());
}

TEST_F(DowngradeTest, TurnsListsThatItCannotConvertIntoNothingAndKeepsTheirCounts) {
  record.properties = nullptr;
  record.methodCount = 0;
  record.events = nullptr;
  record.constantCount = -1;
  record.sharedProperties = nullptr;
  record.sharedMethods = nullptr;
  downgrade(definition, 9);
  EXPECT_EQ(record.properties, nullptr);
  EXPECT_EQ(record.propertyCount, 1);
  EXPECT_EQ(record.methods, nullptr);
  EXPECT_EQ(record.methodCount, 0);
  EXPECT_EQ(record.events, nullptr);
  EXPECT_EQ(record.eventCount, 2);
  EXPECT_EQ(record.constants, nullptr);
  EXPECT_EQ(record.constantCount, -1);
  EXPECT_EQ(record.sharedProperties, nullptr);
  EXPECT_EQ(record.sharedPropertyCount, 1);
  EXPECT_EQ(record.sharedMethods, nullptr);
  EXPECT_EQ(record.sharedMethodCount, 1);
}

// --- how large a list may be. What is asked for is seen, and not given.

struct ListCase {
  const char* name;
  void (*set)(OlderClassRecord& record, void* list, std::int32_t count);
  const void* (*get)(const OlderClassRecord& record);
  std::size_t recordSize;  // in the older layout, in bytes
};

void PrintTo(const ListCase& row, std::ostream* out) { *out << row.name; }

template <auto List, auto Count, class Older>
ListCase listCase(const char* name) {
  return {name,
          [](OlderClassRecord& record, void* list, std::int32_t count) {
            record.*List = list;
            record.*Count = count;
          },
          [](const OlderClassRecord& record) -> const void* { return record.*List; },
          sizeof(Older)};
}

class ListSizeTest : public testing::TestWithParam<ListCase> {
 protected:
  static constexpr std::int64_t kMost = 0x7FFFFFFF;  // bytes

  [[nodiscard]] static std::int32_t largestCount() {
    return static_cast<std::int32_t>(kMost / static_cast<std::int64_t>(GetParam().recordSize));
  }
  // The sizes asked for, in bytes, for a class that has only this list.
  static std::vector<std::size_t> askedFor(std::int32_t count) {
    REALclassDefinition definition{};
    GetParam().set(definition.base, &definition, count);
    auto& allocations = foundation_double::Allocations::shared();
    allocations.reset();
    allocations.failAt(1);
    downgrade(definition, 9);
    EXPECT_EQ(GetParam().get(definition.base), nullptr);
    const std::vector<std::size_t> sizes = allocations.sizes();
    allocations.reset();
    return sizes;
  }
};

TEST_P(ListSizeTest, OneRecordIsTheSmallest) {
  EXPECT_EQ(askedFor(1), std::vector{GetParam().recordSize});
  EXPECT_EQ(askedFor(0), std::vector<std::size_t>{});
  EXPECT_EQ(askedFor(-1), std::vector<std::size_t>{});
  EXPECT_EQ(askedFor(std::numeric_limits<std::int32_t>::min()), std::vector<std::size_t>{});
}

TEST_P(ListSizeTest, TheLargestIsWhatTheHostCanCount) {
  EXPECT_EQ(askedFor(largestCount()),
            std::vector{static_cast<std::size_t>(largestCount()) * GetParam().recordSize});
  EXPECT_EQ(askedFor(largestCount() + 1), std::vector<std::size_t>{});
  EXPECT_EQ(askedFor(std::numeric_limits<std::int32_t>::max()), std::vector<std::size_t>{});
}

using Record = OlderClassRecord;

INSTANTIATE_TEST_SUITE_P(
    Lists, ListSizeTest,
    testing::Values(
        listCase<&Record::properties, &Record::propertyCount, OlderPropertyRecord>("properties"),
        listCase<&Record::methods, &Record::methodCount, OlderMethodRecord>("methods"),
        listCase<&Record::events, &Record::eventCount, OlderEventRecord>("events"),
        listCase<&Record::constants, &Record::constantCount, OlderConstantRecord>("constants"),
        listCase<&Record::sharedProperties, &Record::sharedPropertyCount, OlderPropertyRecord>(
            "sharedProperties"),
        listCase<&Record::sharedMethods, &Record::sharedMethodCount, OlderMethodRecord>(
            "sharedMethods")),
    [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace zel
