// What Foundation rejects, of objects by key and of domains: it arrives as one exception in the
// host, with a line in the log, and nothing is changed.
#include "tests/end_to_end/end_to_end_test.h"

namespace tests {
namespace {

using namespace std::string_literals;

class ExceptionsTest : public DefaultsTest {
 protected:
  void TearDown() override {
    EXPECT_EQ(ask(defaults, "synchronize"), Value(std::int8_t{1}));
    DefaultsTest::TearDown();
  }
  /// A call that must raise. What it returned all the same is the result.
  Value rejected(const std::string& method, const Values& arguments) {
    return checked(method, [&] { return host->call(defaults, method, arguments); });
  }
  void rejectedAssignment(const std::string& getter, const Value& value) {
    checked(getter, [&] { return host->assign(defaults, getter, {""s}, value); });
  }
  std::string get(const std::string& getter, const std::string& key) {
    return host->describe(ask(defaults, getter, {key}));
  }
  ObjectRef folder() { return host->folderItem("/usr"); }

 private:
  template <class Call>
  Value checked(const std::string& method, Call call) {
    SCOPED_TRACE(method);
    testing::internal::CaptureStderr();
    const Outcome outcome = call();
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_EQ(outcome.raisedCount, 1);
    const Raised raised = outcome.raised.value_or(Raised{});
    EXPECT_EQ(raised.className, "NSExceptionZEL");
    const std::string reason = raised.message.value_or("");
    EXPECT_NE(reason, "");
    EXPECT_NE(log.find("A NSInvalidArgumentException: " + reason + ", Info: "), std::string::npos)
        << log;
    return outcome.value;
  }
};

INSTANTIATE_TEST_SUITE_P(Hosts, ExceptionsTest,
                         testing::ValuesIn(amongThese({2011.04, 2013.9, 2014.0})));

TEST_P(ExceptionsTest, NothingIsStoredUnderAnEmptyKey) {
  const struct {
    const char* setter;
    Value value;
  } rows[] = {{"setDataValue", host->memoryBlock("ab")},
              {"setVariantValue", host->variant(std::int32_t{1})},
              {"setStringArrayValue", host->array(Host::kStringElements, {"a"s})},
              {"setArrayValue", host->array(Host::kObjectElements, {"a"s})},
              {"setDictionaryValue", host->dictionary({{"a"s, 0.5}})},
              {"setFileValue", folder()}};
  for (const auto& row : rows) {
    EXPECT_EQ(rejected(row.setter, {""s, row.value}), Value());
    EXPECT_EQ(get("variantForKey", ""), "nil");
  }
}

TEST_P(ExceptionsTest, NothingIsAssignedUnderAnEmptyKey) {
  rejectedAssignment("dataForKey", host->memoryBlock("ab"));
  rejectedAssignment("variantForKey", host->variant(std::int32_t{1}));
  rejectedAssignment("dictionaryForKey", host->dictionary({{"a"s, 0.5}}));
  rejectedAssignment("fileForKey", folder());
}

TEST_P(ExceptionsTest, AnEmptyKeyReadsAsOneThatIsNotSet) {
  EXPECT_EQ(get("dataForKey", ""), "nil");
  EXPECT_EQ(get("variantForKey", ""), "nil");
  EXPECT_EQ(get("dictionaryForKey", ""), "nil");
  EXPECT_EQ(get("fileForKey", ""), "nil");
  EXPECT_EQ(get("arrayForKey", ""), "[]");
  EXPECT_EQ(get("stringArrayForKey", ""), "[]");
}

TEST_P(ExceptionsTest, WhatIsNoPropertyListLeavesTheOldValue) {
  ask(defaults, "setStringValue", {"kept"s, "before"s});
  rejected("setVariantValue", {"kept"s, folder()});
  rejected("setVariantValue", {"kept"s, host->dictionary({{"folder"s, folder()}})});
  rejected("setDictionaryValue", {"kept"s, host->dictionary({{"none"s, std::monostate()}})});
  rejected("setArrayValue", {"kept"s, host->array(Host::kObjectElements, {folder()})});
  EXPECT_EQ(get("variantForKey", "kept"), "\"before\"");
}

TEST_P(ExceptionsTest, NothingIsNoElementOfATypedList) {
  ask(defaults, "setStringValue", {"kept"s, "before"s});
  rejected("setVariantValue", {"kept"s, host->array(4104, {"a"s, ""s})});
  rejected("setVariantValue", {"kept"s, host->array(4103, {ObjectRef()})});
  rejected("setVariantValue", {"kept"s, host->array(4105, {ObjectRef()})});
  EXPECT_EQ(get("variantForKey", "kept"), "\"before\"");
  // As a list of variants it leaves nothing out but the nothing.
  ask(defaults, "setArrayValue",
      {"kept"s, host->array(Host::kObjectElements, {ObjectRef(), "a"s})});
  EXPECT_EQ(get("arrayForKey", "kept"), R"(["a"])");
}

TEST_P(ExceptionsTest, NamesOfDomainsMustNotBeEmpty) {
  const ObjectRef domain = host->dictionary({{"a"s, 0.5}});
  rejected("addSuiteNamed", {""s});
  rejected("removeSuiteNamed", {""s});
  rejected("setPersistentDomain", {domain, ""s});
  rejected("setVolatileDomain", {domain, ""s});
}

TEST_P(ExceptionsTest, NothingIsThereToRemoveUnderAnEmptyName) {
  for (const char* const method :
       {"removeObjectForKey", "removePersistentDomainForName", "removeVolatileDomainForName"})
    EXPECT_EQ(ask(defaults, method, {""s}), Value()) << method;
  EXPECT_EQ(get("persistentDomainForName", ""), "nil");
  EXPECT_EQ(get("volatileDomainForName", ""), "nil");
}

TEST_P(ExceptionsTest, ADomainIsMadeOnce) {
  ask(defaults, "setVolatileDomain", {host->dictionary({{"a"s, 0.5}}), "once"s});
  rejected("setVolatileDomain", {host->dictionary({{"b"s, 1.5}}), "once"s});
  EXPECT_EQ(get("volatileDomainForName", "once"), R"({"a": Double 0.5})");
  // One kind of domain can't take the name of the other.
  rejected("setPersistentDomain", {host->dictionary({{"b"s, 1.5}}), "once"s});
  EXPECT_EQ(get("volatileDomainForName", "once"), R"({"a": Double 0.5})");
  ask(defaults, "removeVolatileDomainForName", {"once"s});
  EXPECT_EQ(get("volatileDomainForName", "once"), "nil");
}

TEST_P(ExceptionsTest, OneExceptionAfterAnotherAndThenAllIsWell) {
  for (int i = 0; i < 50; ++i) rejected("setDataValue", {""s, host->memoryBlock("ab")});
  ask(defaults, "setDataValue", {"after"s, host->memoryBlock("ab")});
  EXPECT_EQ(get("dataForKey", "after"), "MemoryBlock 6162");
}

}  // namespace
}  // namespace tests
