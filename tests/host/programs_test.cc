// What the reference host offers to programs that run in it, beyond what plugins ask of it.
#include <algorithm>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/internal/dictionaries.h"
#include "host/internal/state.h"
#include "tests/host/sample_plugin.h"

namespace tests {
namespace {

using host::Host;
using host::ObjectRef;
using host::internal::HostArray;
using host::internal::State;

State& state() { return host::internal::currentState("a test"); }

class HostProgramsTest : public HostTest {
 protected:
  static HostArray& in(const ObjectRef& array) {
    return host::internal::thingOf<HostArray>(state(), array);
  }
};

TEST_F(HostProgramsTest, KnowsTheNamesOfItsClasses) {
  load();
  const std::vector<std::string> names = host->classNames();
  EXPECT_EQ(names.front(), "Date");
  EXPECT_EQ(std::count(names.begin(), names.end(), "SampleZEL"), 1);
}

TEST_F(HostProgramsTest, ChangesArraysInPlace) {
  const ObjectRef array = host->array(Host::kStringElements, {"a", "b", "c"});
  in(array).insert(state(), 1, "new");
  EXPECT_EQ(host->describe(array), R"(["a", "new", "b", "c"])");
  in(array).replace(state(), 0, "first");
  in(array).remove(state(), 2);
  EXPECT_EQ(host->describe(array), R"(["first", "new", "c"])");
  in(array).resize(state(), 1);
  EXPECT_EQ(host->describe(array), R"(["first"])");
  in(array).resize(state(), 2);
  EXPECT_EQ(host->describe(array), R"(["first", ""])");
  EXPECT_THROW(in(array).insert(state(), 0, 5), std::invalid_argument);
}

TEST_F(HostProgramsTest, GivesUpTheElementsThatLeaveAnArray) {
  const ObjectRef element = host->make("RuntimeException");
  const ObjectRef array = host->array(Host::kObjectElements, {element, element, element});
  EXPECT_EQ(host->references(element.handle()), 4);
  in(array).remove(state(), 0);
  EXPECT_EQ(host->references(element.handle()), 3);
  in(array).replace(state(), 0, ObjectRef());
  EXPECT_EQ(host->references(element.handle()), 2);
  in(array).resize(state(), 0);
  EXPECT_EQ(host->references(element.handle()), 1);
}

TEST_F(HostProgramsTest, RemovesKeysOfDictionaries) {
  const ObjectRef value = host->make("RuntimeException");
  const ObjectRef dictionary = host->dictionary({{"a", 1}, {"b", value}, {"c", 3}});
  const ObjectRef key = host->variant(std::string("b"));
  EXPECT_TRUE(host::internal::hasDictionaryKey(state(), dictionary.handle(), key.handle()));
  EXPECT_TRUE(host::internal::removeDictionaryKey(state(), dictionary.handle(), key.handle()));
  EXPECT_EQ(host->references(value.handle()), 1);
  EXPECT_FALSE(host::internal::hasDictionaryKey(state(), dictionary.handle(), key.handle()));
  EXPECT_FALSE(host::internal::removeDictionaryKey(state(), dictionary.handle(), key.handle()));
  EXPECT_EQ(host->describe(dictionary), R"({"a": Int32 1, "c": Int32 3})");
  EXPECT_EQ(host->property(dictionary, "Count"), host::Value(2));
  // What stood behind the removed key is still found.
  const ObjectRef last = host->variant(std::string("c"));
  EXPECT_TRUE(host::internal::hasDictionaryKey(state(), dictionary.handle(), last.handle()));
}

TEST_F(HostProgramsTest, GivesPendingExceptionsAsObjects) {
  const ObjectRef exception = host->make("OutOfBoundsException");
  entryPoint<void(zel::REALobject)>("RuntimeRaiseException")(exception.handle());
  EXPECT_EQ(host->takePendingObjects(), std::vector<ObjectRef>{exception});
  EXPECT_EQ(host->takePendingObjects(), std::vector<ObjectRef>{});
}

}  // namespace
}  // namespace tests
