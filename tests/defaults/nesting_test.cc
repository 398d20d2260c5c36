// Values that hold values: as deep as they may be, and deeper.
#include <algorithm>

#include "bridge/dictionaries.h"
#include "plugin/host.h"
#include "tests/support/nested_values.h"
#include "tests/support/plugin_test.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests
using namespace std::string_literals;

class NestingTest : public PluginTest {
 protected:
  void SetUp() override {
    PluginTest::SetUp();
    provideFamily();
    defaults = host->construct("NSUserDefaultsZEL");
  }
  void TearDown() override {
    defaults.reset();
    PluginTest::TearDown();
  }

  ObjectRef lists(int levels) { return nestedArrays(*host, levels); }
  ObjectRef dictionaries(int levels) { return nestedDictionaries(*host, levels); }
  // The same as native objects, of one kind around the other.
  id nativeLists(int levels) {
    id list = foundation.array({});
    while (--levels > 0) list = foundation.array({list});
    return list;
  }
  id nativeDictionaries(int levels) {
    id dictionary = foundation.dictionary({});
    while (--levels > 0) dictionary = foundation.dictionary({{"inner"s, dictionary}});
    return dictionary;
  }

  long levelsFor(const std::string& getter, const std::string& key = "key") {
    return levelsIn(*host, ask(defaults, getter, {key}));
  }
  // The reply of Foundation to the message, whatever it is asked for.
  void answer(const char* selector, id reply) {
    replied = reply;
    foundation.addMethod("NSUserDefaults", selector, [](id, SEL, CFStringRef) { return replied; });
  }
  void expectTooDeep(const std::string& method, const std::vector<Value>& arguments,
                     const Value& result = Value()) {
    SCOPED_TRACE(method);
    foundation.clearRecords();
    const Outcome outcome = host->call(defaults, method, arguments);
    EXPECT_EQ(outcome.raised, kTooDeep);
    EXPECT_EQ(outcome.value, result);
    EXPECT_EQ(foundation.log(), Lines{});
    const Lines& sent = foundation.messages();
    EXPECT_EQ(std::count(sent.begin(), sent.end(), "+[NSException NewNSExceptionZEL:]"), 0);
  }

  ObjectRef defaults;
  static inline id replied;
};

TEST_F(NestingTest, AValueMayBeThatDeep) {
  ask(defaults, "setVariantValue", {"key"s, lists(kDeepest)});
  EXPECT_EQ(levelsFor("variantForKey"), 256);
  ask(defaults, "setArrayValue", {"key"s, lists(kDeepest)});
  EXPECT_EQ(levelsFor("arrayForKey"), 256);
  ask(defaults, "setDictionaryValue", {"key"s, dictionaries(kDeepest)});
  EXPECT_EQ(levelsFor("dictionaryForKey"), 256);
}

TEST_F(NestingTest, AnyOtherKindMayStandInside) {
  const ObjectRef list =
      host->array(Host::kObjectElements,
                  {"text"s, std::int32_t{1}, host->memoryBlock("a"), host->dictionary()});
  ObjectRef deep = list;
  for (int level = 2; level < kDeepest; ++level) deep = host->array(Host::kObjectElements, {deep});
  ask(defaults, "setVariantValue", {"key"s, deep});
  EXPECT_EQ(levelsFor("variantForKey"), 256);
}

TEST_F(NestingTest, OneMoreIsRefusedAndTheKeyKeepsWhatItHad) {
  ask(defaults, "setIntegerValue", {"key"s, std::int32_t{7}});
  expectTooDeep("setVariantValue", {"key"s, lists(kDeepest + 1)});
  expectTooDeep("setArrayValue", {"key"s, lists(kDeepest + 1)});
  expectTooDeep("setVariantValue", {"key"s, dictionaries(kDeepest + 1)});
  expectTooDeep("setDictionaryValue", {"key"s, dictionaries(kDeepest + 1)});
  EXPECT_EQ(ask(defaults, "integerForKey", {"key"s}), Value(std::int32_t{7}));
}

TEST_F(NestingTest, EveryLevelCountsWhateverItIs) {
  const ObjectRef mixed =
      host->array(Host::kObjectElements, {host->dictionary({{"list"s, lists(kDeepest - 1)}})});
  expectTooDeep("setVariantValue", {"key"s, mixed});
  // An array of texts is one more level too.
  ObjectRef texts = host->array(Host::kStringElements, {"a"s});
  for (int level = 1; level < kDeepest; ++level)
    texts = host->array(Host::kObjectElements, {texts});
  ask(defaults, "setVariantValue", {"key"s, texts});
  expectTooDeep("setVariantValue", {"key"s, host->array(Host::kObjectElements, {texts})});
}

TEST_F(NestingTest, WhatStandsAsideDoesNotCount) {
  const ObjectRef deep = lists(kDeepest - 1);
  ask(defaults, "setArrayValue",
      {"key"s, host->array(Host::kObjectElements, {deep, deep, std::int32_t{1}, deep})});
  EXPECT_EQ(levelsFor("arrayForKey"), 1 + 3 * 255);
}

TEST_F(NestingTest, WhatHoldsItselfIsRefused) {
  const ObjectRef dictionary = host->dictionary();
  const auto set = reinterpret_cast<DictionarySetter>(REALLoadObjectMethod(
      dictionary.handle(), "Value(key As Variant, Assigns _value As Variant)"));
  const ObjectRef key = host->variant("self"s);
  set(dictionary.handle(), key.handle(), dictionary.handle());
  expectTooDeep("setDictionaryValue", {"key"s, dictionary});
  expectTooDeep("setVariantValue", {"key"s, dictionary});
  set(dictionary.handle(), key.handle(), nullptr);
}

TEST_F(NestingTest, GettersGiveNothing) {
  answer("objectForKey:", nativeLists(kDeepest + 1));
  expectTooDeep("variantForKey", {"key"s}, ObjectRef());
  answer("objectForKey:", nativeDictionaries(kDeepest + 1));
  expectTooDeep("variantForKey", {"key"s}, ObjectRef());
  answer("dictionaryForKey:", nativeDictionaries(kDeepest + 1));
  expectTooDeep("dictionaryForKey", {"key"s}, ObjectRef());
}

TEST_F(NestingTest, AListIsGivenAsFarAsItWasFilled) {
  const id deep = nativeLists(kDeepest);
  answer("arrayForKey:",
         foundation.array({foundation.number("i", 1), deep, foundation.number("i", 2)}));
  foundation.clearRecords();
  const Outcome outcome = host->call(defaults, "arrayForKey", {"key"s});
  EXPECT_EQ(outcome.raised, kTooDeep);
  EXPECT_EQ(host->describe(outcome.value), "[Int32 1]");
}

TEST_F(NestingTest, ADomainStandsAroundItsValues) {
  const std::string name = "nested";
  ask(defaults, "setVolatileDomain", {dictionaries(kDeepest + 1), name});
  EXPECT_EQ(levelsFor("volatileDomainForName", name), 257);
  ask(defaults, "setPersistentDomain", {dictionaries(kDeepest + 1), name});
  EXPECT_EQ(levelsFor("persistentDomainForName", name), 257);
  ask(defaults, "registerDefaults", {dictionaries(kDeepest + 1)});
  EXPECT_EQ(levelsFor("variantForKey", "inner"), 256);
  EXPECT_GE(levelsIn(*host, ask(defaults, "dictionaryRepresentation")), 257);
}

TEST_F(NestingTest, ADeeperDomainIsRefused) {
  const std::string name = "nested";
  expectTooDeep("setVolatileDomain", {dictionaries(kDeepest + 2), name});
  expectTooDeep("setPersistentDomain", {dictionaries(kDeepest + 2), name});
  expectTooDeep("registerDefaults", {dictionaries(kDeepest + 2)});
  EXPECT_EQ(ask(defaults, "volatileDomainForName", {name}), Value(ObjectRef()));
  EXPECT_EQ(ask(defaults, "persistentDomainForName", {name}), Value(ObjectRef()));
  answer("persistentDomainForName:", nativeDictionaries(kDeepest + 2));
  expectTooDeep("persistentDomainForName", {name}, ObjectRef());
}

TEST_F(NestingTest, TheNextValueIsNotConcerned) {
  expectTooDeep("setVariantValue", {"key"s, lists(kDeepest + 1)});
  ask(defaults, "setVariantValue", {"key"s, lists(kDeepest)});
  EXPECT_EQ(levelsFor("variantForKey"), 256);
}

}  // namespace
}  // namespace zel
