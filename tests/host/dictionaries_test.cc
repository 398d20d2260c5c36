// The reference host's class Dictionary.
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/host/sample_plugin.h"

namespace tests {
namespace {

using Lines = std::vector<std::string>;
using host::Entries;
using host::ObjectRef;
using host::Raised;
using host::Value;
using zel::REALboolean;
using zel::REALobject;

constexpr char kValue[] = "Value(key As Variant) As Variant";
constexpr char kSetValue[] = "Value(key As Variant, Assigns _value As Variant)";
constexpr char kKey[] = "Key(index As Integer) As Variant";

void* methodOf(const ObjectRef& object, const char* declaration) {
  return entryPoint<void*(REALobject, const char*)>("REALLoadObjectMethod")(object.handle(),
                                                                            declaration);
}
ObjectRef value(const ObjectRef& dictionary, const ObjectRef& key) {
  const auto method =
      reinterpret_cast<REALobject (*)(REALobject, REALobject)>(methodOf(dictionary, kValue));
  return ObjectRef::adopt(method(dictionary.handle(), key.handle()));
}
void setValue(const ObjectRef& dictionary, const ObjectRef& key, const ObjectRef& wanted) {
  const auto method = reinterpret_cast<void (*)(REALobject, REALobject, REALobject)>(
      methodOf(dictionary, kSetValue));
  method(dictionary.handle(), key.handle(), wanted.handle());
}
ObjectRef key(const ObjectRef& dictionary, std::int32_t index) {
  const auto method =
      reinterpret_cast<REALobject (*)(REALobject, std::int32_t)>(methodOf(dictionary, kKey));
  return ObjectRef::adopt(method(dictionary.handle(), index));
}
std::int32_t count(const ObjectRef& dictionary) {
  std::int32_t found = -1;
  EXPECT_EQ(entryPoint<REALboolean(REALobject, const char*, std::int32_t*)>("REALGetPropValueInt")(
                dictionary.handle(), "Count", &found),
            1);
  return found;
}

TEST_F(HostTest, MakesDictionariesByName) {
  const ObjectRef dictionary =
      ObjectRef::adopt(entryPoint<REALobject(const char*)>("PluginNewInstance")("Dictionary"));
  ASSERT_TRUE(dictionary);
  EXPECT_EQ(host->references(dictionary.handle()), 1);
  EXPECT_EQ(count(dictionary), 0);
  EXPECT_EQ(host->entries(dictionary), Entries{});
}

TEST_F(HostTest, SetsAndReadsEntriesWithTheirReferences) {
  ObjectRef dictionary = host->dictionary();
  const ObjectRef name = host->variant("name");
  const ObjectRef first = host->variant(1);
  const ObjectRef second = host->variant(2);
  setValue(dictionary, name, first);
  EXPECT_EQ(host->references(name.handle()), 2);
  EXPECT_EQ(host->references(first.handle()), 2);
  EXPECT_EQ(value(dictionary, host->variant("name")), first);
  EXPECT_EQ(key(dictionary, 0), name);
  setValue(dictionary, host->variant("name"), second);
  EXPECT_EQ(count(dictionary), 1);
  EXPECT_EQ(host->references(name.handle()), 2);
  EXPECT_EQ(host->references(first.handle()), 1);
  EXPECT_EQ(host->references(second.handle()), 2);
  dictionary.reset();
  EXPECT_EQ(host->references(name.handle()), 1);
  EXPECT_EQ(host->references(second.handle()), 1);
}

TEST_F(HostTest, KeepsEntriesInTheirOrder) {
  const ObjectRef block = host->memoryBlock("");
  const ObjectRef dictionary =
      host->dictionary({{"b", 1}, {"a", Value()}, {Value(), "nil"}, {block, 2.5}});
  EXPECT_EQ(host->entries(dictionary),
            (Entries{{"b", 1}, {"a", Value()}, {Value(), "nil"}, {block, 2.5}}));
  EXPECT_EQ(count(dictionary), 4);
  EXPECT_FALSE(key(dictionary, 2));
  EXPECT_EQ(host->valueOf(value(dictionary, ObjectRef())), Value("nil"));
  EXPECT_FALSE(value(dictionary, host->variant("a")));
  EXPECT_EQ(host->takePending(), std::vector<Raised>{});
}

TEST_F(HostTest, ComparesKeysAsItSays) {
  const ObjectRef dictionary = host->dictionary({{"a", 1},
                                                 {"A", 2},
                                                 {1, 3},
                                                 {std::int64_t{1}, 4},
                                                 {1.0, 5},
                                                 {1.5, 6},
                                                 {1.5F, 7},
                                                 {std::uint64_t{18446744073709551615U}, 8},
                                                 {std::int8_t{1}, 9},
                                                 {host::Text("a", 0x600), 10},
                                                 {host->memoryBlock("x"), 11},
                                                 {host->memoryBlock("x"), 12},
                                                 {"1", 13}});
  EXPECT_EQ(count(dictionary), 8);
  EXPECT_EQ(host->valueOf(value(dictionary, host->variant("a"))), Value(10));
  EXPECT_EQ(host->valueOf(value(dictionary, host->variant("A"))), Value(10));
  EXPECT_EQ(host->valueOf(value(dictionary, host->variant(1))), Value(5));
  EXPECT_EQ(host->valueOf(value(dictionary, host->variant(1.5))), Value(7));
  EXPECT_EQ(host->valueOf(value(dictionary, host->variant(std::int8_t{7}))), Value(9));
  EXPECT_EQ(host->entries(dictionary).at(0), (std::pair<Value, Value>("a", 10)));
}

TEST_F(HostTest, ComparesTextsAsKeysWithoutRegardToCase) {
  const ObjectRef dictionary = host->dictionary({{"Größe", 1}, {"ΣΊΣΥΦΟΣ", 2}, {"café", 3}});
  setValue(dictionary, host->variant("GRÖSSE"), host->variant(4));
  setValue(dictionary, host->variant("σίσυφος"), host->variant(5));
  setValue(dictionary, host->variant(host::Text("CAF\xC9", 0x201)), host->variant(6));
  // The spelling that was there first stays.
  EXPECT_EQ(host->entries(dictionary), (Entries{{"Größe", 4}, {"ΣΊΣΥΦΟΣ", 5}, {"café", 6}}));
  const std::string utf16("C\0a\0f\0\xE9\0", 8);
  EXPECT_TRUE(host->hasKey(dictionary, host::Text(utf16, 0x100)));
  EXPECT_FALSE(host->hasKey(dictionary, "cafe"));
  // What is no text in its encoding is equal to itself only.
  setValue(dictionary, host->variant("a\xFF"), host->variant(7));
  EXPECT_TRUE(host->hasKey(dictionary, "a\xFF"));
  EXPECT_FALSE(host->hasKey(dictionary, "A\xFF"));
  EXPECT_TRUE(host->removeKey(dictionary, "Σίσυφος"));
  EXPECT_EQ(count(dictionary), 3);
}

TEST_F(HostTest, RaisesForWhatADictionaryHasNot) {
  const ObjectRef dictionary = host->dictionary({{"a", 1}});
  EXPECT_FALSE(value(dictionary, host->variant("b")));
  EXPECT_FALSE(value(dictionary, ObjectRef()));
  EXPECT_FALSE(key(dictionary, 1));
  EXPECT_FALSE(key(dictionary, -1));
  EXPECT_EQ(host->takePending(), (std::vector<Raised>{{"KeyNotFoundException", std::nullopt, 0},
                                                      {"KeyNotFoundException", std::nullopt, 0},
                                                      {"OutOfBoundsException", std::nullopt, 0},
                                                      {"OutOfBoundsException", std::nullopt, 0}}));
}

TEST_F(HostTest, ControlsTheMethodsOfDictionaries) {
  const ObjectRef dictionary = host->dictionary({{"a", 1}});
  host->clearRecords();
  host->hideFirst("Dictionary.SetValue", 1);
  EXPECT_EQ(methodOf(dictionary, kSetValue), nullptr);
  EXPECT_NE(methodOf(dictionary, "value(KEY as variant, assigns v as variant)"), nullptr);
  EXPECT_EQ(methodOf(dictionary, "Value(key As String) As Variant"), nullptr);
  EXPECT_EQ(host->lookups("Dictionary.SetValue"), 2);
  host->answerNull("Dictionary.Key", 1);
  EXPECT_FALSE(key(dictionary, 0));
  EXPECT_TRUE(key(dictionary, 0));
  EXPECT_EQ(host->calls("Dictionary.Key"), 2);
  EXPECT_EQ(host->sequence(), (Lines{"REALLoadObjectMethod", "REALLoadObjectMethod",
                                     "REALLoadObjectMethod", "REALLoadObjectMethod",
                                     "Dictionary.Key", "REALLoadObjectMethod", "Dictionary.Key"}));
}

TEST_F(HostTest, FindsKeysAndValuesOfTheWrongKind) {
  const ObjectRef dictionary = host->dictionary();
  const zel::REALstring string = host->string("text");
  const auto set = reinterpret_cast<void (*)(REALobject, REALobject, REALobject)>(
      methodOf(dictionary, kSetValue));
  const ObjectRef one = host->variant(1);
  set(dictionary.handle(), one.handle(), reinterpret_cast<REALobject>(string));
  set(one.handle(), one.handle(), one.handle());
  EXPECT_EQ(host->references(one.handle()), 1);
  EXPECT_EQ(count(dictionary), 0);
  host->unlock(string);
  EXPECT_EQ(takeFailures(),
            (Lines{"Dictionary.SetValue was given string \"text\" (#2), which isn't an object",
                   "Dictionary.SetValue was given variant of type 2 (#3), which isn't a "
                   "Dictionary"}));
}

TEST_F(HostTest, DescribesADictionaryThatHoldsItself) {
  start({});
  const ObjectRef shared = host->array(host::Host::kObjectElements, {std::int32_t{1}});
  const ObjectRef dictionary =
      host->dictionary({{std::string("a"), shared}, {std::string("b"), shared}});
  const ObjectRef key = host->variant(std::string("self"));
  const auto set = reinterpret_cast<void (*)(REALobject, REALobject, REALobject)>(
      methodOf(dictionary, kSetValue));
  set(dictionary.handle(), key.handle(), dictionary.handle());
  EXPECT_EQ(host->describe(dictionary), R"({"a": [Int32 1], "b": [Int32 1], "self": ...})");
  set(dictionary.handle(), key.handle(), nullptr);
  EXPECT_EQ(host->describe(dictionary), R"({"a": [Int32 1], "b": [Int32 1], "self": nil})");
}

TEST_F(HostTest, TakesManyEntries) {
  constexpr std::int32_t kMany = 100000;
  start({.keepSequence = false});
  const ObjectRef dictionary = host->dictionary();
  const auto set = reinterpret_cast<void (*)(REALobject, REALobject, REALobject)>(
      methodOf(dictionary, kSetValue));
  for (std::int32_t i = 0; i < kMany; ++i) {
    const ObjectRef number = host->variant(i);
    set(dictionary.handle(), number.handle(), number.handle());
  }
  EXPECT_EQ(count(dictionary), kMany);
  EXPECT_EQ(host->valueOf(key(dictionary, kMany - 1)), Value(kMany - 1));
}

}  // namespace
}  // namespace tests
