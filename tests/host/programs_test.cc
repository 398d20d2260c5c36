// What the reference host offers to programs that run in it, beyond what plugins ask of it.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/prepared_call.h"
#include "tests/host/sample_plugin.h"

namespace tests {
namespace {

using host::Host;
using host::ObjectRef;
using host::PreparedCall;
using host::ReadyText;
using host::RegisteredMethod;
using host::Value;

class HostProgramsTest : public HostTest {
 protected:
  [[nodiscard]] host::Array in(const ObjectRef& array) const {
    return host->findArray(array).value();
  }
  /// A method of the sample class, or a shared one, ready to be called.
  [[nodiscard]] std::unique_ptr<PreparedCall> prepared(const std::string& declaration,
                                                       bool ofInstance = true) const {
    const host::RegisteredClass& sample = *host->findClass("SampleZEL");
    for (const RegisteredMethod& method : ofInstance ? sample.methods : sample.sharedMethods) {
      if (method.text == declaration)
        return std::make_unique<PreparedCall>(method.function, method.declaration, ofInstance);
    }
    throw std::invalid_argument(declaration);
  }
};

TEST_F(HostProgramsTest, KnowsTheNamesOfItsClasses) {
  load();
  const std::vector<std::string> names = host->classNames();
  EXPECT_EQ(names.front(), "Date");
  EXPECT_EQ(std::count(names.begin(), names.end(), "SampleZEL"), 1);
}

TEST_F(HostProgramsTest, FindsArraysAmongObjects) {
  EXPECT_FALSE(host->findArray(ObjectRef()));
  EXPECT_FALSE(host->findArray(host->dictionary()));
  EXPECT_FALSE(host->findArray(host->variant(5)));
  const ObjectRef array = host->array(4098, {7, 8});
  EXPECT_EQ(in(array).type(), 4098);
  EXPECT_EQ(in(array).size(), 2U);
  EXPECT_EQ(in(array).at(1), Value(8));
  EXPECT_EQ(in(host->array(Host::kObjectElements, {"boxed"})).at(0), Value("boxed"));
  EXPECT_EQ(in(host->array(Host::kObjectElements, {Value()})).at(0), Value());
}

TEST_F(HostProgramsTest, ChangesArraysInPlace) {
  const ObjectRef array = host->array(Host::kStringElements, {"a", "b"});
  in(array).append("c");
  in(array).insert(1, "new");
  EXPECT_EQ(host->describe(array), R"(["a", "new", "b", "c"])");
  in(array).replace(0, "first");
  in(array).remove(2);
  EXPECT_EQ(host->describe(array), R"(["first", "new", "c"])");
  in(array).resize(1);
  EXPECT_EQ(host->describe(array), R"(["first"])");
  in(array).resize(2);
  EXPECT_EQ(host->describe(array), R"(["first", ""])");
  EXPECT_THROW(in(array).insert(0, 5), std::invalid_argument);
}

TEST_F(HostProgramsTest, GivesUpTheElementsThatLeaveAnArray) {
  const ObjectRef element = host->make("RuntimeException");
  const ObjectRef array = host->array(Host::kObjectElements, {element, element, element});
  EXPECT_EQ(host->references(element.handle()), 4);
  in(array).remove(0);
  EXPECT_EQ(host->references(element.handle()), 3);
  in(array).replace(0, ObjectRef());
  EXPECT_EQ(host->references(element.handle()), 2);
  in(array).resize(0);
  EXPECT_EQ(host->references(element.handle()), 1);
}

TEST_F(HostProgramsTest, LooksKeysOfDictionariesUp) {
  const ObjectRef dictionary = host->dictionary({{"a", 1}, {2, "two"}, {"nothing", Value()}});
  EXPECT_TRUE(host->hasKey(dictionary, "a"));
  EXPECT_FALSE(host->hasKey(dictionary, "b"));
  EXPECT_EQ(host->lookUp(dictionary, "a"), Value(1));
  EXPECT_EQ(host->lookUp(dictionary, 2.0), Value("two"));
  EXPECT_EQ(host->lookUp(dictionary, "nothing"), Value());
  EXPECT_EQ(host->lookUp(dictionary, "b"), std::nullopt);
  EXPECT_FALSE(host->hasPending());
  EXPECT_THROW(host->removeKey(host->make("RuntimeException"), "a"), std::invalid_argument);
}

TEST_F(HostProgramsTest, RemovesKeysOfDictionaries) {
  const ObjectRef value = host->make("RuntimeException");
  const ObjectRef dictionary = host->dictionary({{"a", 1}, {"b", value}, {"c", 3}});
  EXPECT_TRUE(host->removeKey(dictionary, "b"));
  EXPECT_EQ(host->references(value.handle()), 1);
  EXPECT_FALSE(host->hasKey(dictionary, "b"));
  EXPECT_FALSE(host->removeKey(dictionary, "b"));
  EXPECT_EQ(host->describe(dictionary), R"({"a": Int32 1, "c": Int32 3})");
  EXPECT_EQ(host->property(dictionary, "Count"), Value(2));
  // What stood behind the removed key is still found.
  EXPECT_TRUE(host->hasKey(dictionary, "c"));
}

TEST_F(HostProgramsTest, LendsTheBytesOfMemoryBlocks) {
  const ObjectRef block = host->memoryBlock("abc");
  const std::span<std::byte> bytes = host->storageOf(block);
  ASSERT_EQ(bytes.size(), 3U);
  bytes[1] = std::byte{'x'};
  EXPECT_EQ(host->bytesOf(block), "axc");
  EXPECT_THROW(static_cast<void>(host->storageOf(host->dictionary())), std::invalid_argument);
}

TEST_F(HostProgramsTest, KnowsTheClassesOfObjects) {
  EXPECT_EQ(host->classOf(host->dictionary()), host->findClass("Dictionary"));
  EXPECT_EQ(host->classOf(host->array(Host::kStringElements)), nullptr);
  EXPECT_EQ(host->classOf(host->variant(5)), nullptr);
  EXPECT_EQ(host->classOf(ObjectRef()), nullptr);
}

TEST_F(HostProgramsTest, KnowsTheTypesOfValuesAsVariants) {
  EXPECT_EQ(host->typeOf(Value()), 0);
  EXPECT_EQ(host->typeOf(5), 2);
  EXPECT_EQ(host->typeOf(std::int64_t{5}), 3);
  EXPECT_EQ(host->typeOf("text"), 8);
  EXPECT_EQ(host->typeOf(host->variant(5, 16)), 16);
  EXPECT_EQ(host->typeOf(host->dictionary()), 9);
}

// --- calls that are prepared once

TEST_F(HostProgramsTest, CallsWhatIsPreparedAgainAndAgain) {
  load();
  const ObjectRef sample = host->make("SampleZEL");
  const auto mixed = prepared(
      "mixed(a as single, b as string, c as double, d as boolean, e as integer) as double");
  const std::vector<Value> arguments = {1.5F, "b", 20.25, std::int8_t{1}, 300};
  EXPECT_EQ(mixed->run(sample.handle(), arguments.data()), Value(1322.75));
  EXPECT_EQ(mixed->run(sample.handle(), arguments.data()), Value(1322.75));
  EXPECT_EQ(prepared("version as string", false)->run(nullptr, nullptr), Value(host::Text("1.0")));
}

TEST_F(HostProgramsTest, MakesVariantsOfArgumentsForTheTimeOfACall) {
  load();
  const ObjectRef sample = host->make("SampleZEL");
  const auto same = prepared("sameVariant(value as variant) as variant");
  const Value text = "boxed";
  const Value result = same->run(sample.handle(), &text);
  EXPECT_EQ(host->references(std::get<ObjectRef>(result).handle()), 1);
  EXPECT_EQ(host->valueOf(result), Value("boxed"));
  const Value object = sample;
  EXPECT_EQ(same->run(sample.handle(), &object), object);
  const Value nothing;
  EXPECT_EQ(same->run(sample.handle(), &nothing), Value(ObjectRef()));
}

TEST_F(HostProgramsTest, GivesArgumentsBackWhenACallThrows) {
  load();
  const ObjectRef sample = host->make("SampleZEL");
  const Value text = "text";
  EXPECT_THROW(prepared("throw(text as string)")->run(sample.handle(), &text), std::string);
}

TEST_F(HostProgramsTest, PassesAReadyTextWithoutMakingItAgain) {
  load();
  const ObjectRef sample = host->make("SampleZEL");
  std::vector<std::unique_ptr<ReadyText>> ready;
  ready.push_back(std::make_unique<ReadyText>("ready"));
  const auto echo = prepared("convert(text as string) as string");
  const Value ignored = "ignored";
  EXPECT_EQ(echo->run(sample.handle(), &ignored, ready), Value("ready"));
  const zel::REALstring string = ready[0]->handle();
  EXPECT_EQ(echo->run(sample.handle(), &ignored, ready), Value("ready"));
  EXPECT_EQ(ready[0]->handle(), string);
  EXPECT_EQ(host->references(string), 1);
  ready[0] = nullptr;
  EXPECT_EQ(host->references(string), 0);
  EXPECT_EQ(echo->run(sample.handle(), &ignored, ready), Value("ignored"));
}

TEST_F(HostProgramsTest, RefusesMoreParametersThanCallsHaveRoomFor) {
  host::Declaration declaration{"wide", {}, std::nullopt};
  declaration.parameters.resize(PreparedCall::kMostParameters + 1);
  EXPECT_THROW(PreparedCall([] {}, declaration, true), std::invalid_argument);
}

TEST_F(HostProgramsTest, GivesPendingExceptionsAsObjects) {
  const ObjectRef exception = host->make("OutOfBoundsException");
  entryPoint<void(zel::REALobject)>("RuntimeRaiseException")(exception.handle());
  EXPECT_TRUE(host->hasPending());
  EXPECT_EQ(host->takePendingObjects(), std::vector<ObjectRef>{exception});
  EXPECT_FALSE(host->hasPending());
  EXPECT_EQ(host->takePendingObjects(), std::vector<ObjectRef>{});
}

}  // namespace
}  // namespace tests
