// Arrays of the reference host.
#include <chrono>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/host/sample_plugin.h"

namespace tests {
namespace {

using Lines = std::vector<std::string>;
using host::Host;
using host::ObjectRef;
using host::Raised;
using host::Value;
using zel::HostArrayRecord;
using zel::REALarray;
using zel::REALobject;
using zel::REALobjectArray;
using zel::REALstring;
using zel::REALstringArray;

constexpr std::int32_t kStrings = 3;
constexpr std::int32_t kObjects = 4;

REALarray create(std::int32_t elementType, std::int32_t upperBound) {
  return entryPoint<REALarray(std::int32_t, std::int32_t)>(
      "RuntimeArrayCreateSingleDimBoundedArray")(elementType, upperBound);
}
std::int32_t upperBound(const ObjectRef& array) {
  return entryPoint<std::int32_t(REALarray)>("RuntimeUBound")(array.as<REALarray>());
}
template <class Element>
void insert(const ObjectRef& array, std::int32_t index, Element element) {
  const auto procedureOf = entryPoint<void (*(REALarray))(REALarray, std::int32_t, Element)>(
      "RuntimeArrayDirectGetInsertProc");
  procedureOf(array.as<REALarray>())(array.as<REALarray>(), index, element);
}
template <class Element>
Element read(const ObjectRef& array, std::int32_t index) {
  const auto procedureOf = entryPoint<void (*(REALarray))(REALarray, std::int32_t, Element*)>(
      "RuntimeArrayDirectGetGetProc");
  Element element{};
  procedureOf(array.as<REALarray>())(array.as<REALarray>(), index, &element);
  return element;
}
REALstring readString(const ObjectRef& array, std::int32_t index) {
  return entryPoint<REALstring(REALstringArray, std::int32_t)>("RuntimeDirectReadStringArray")(
      array.as<REALstringArray>(), index);
}
REALobject readObject(const ObjectRef& array, std::int32_t index) {
  return entryPoint<REALobject(REALobjectArray, std::int32_t)>("RuntimeDirectReadObjectArray")(
      array.as<REALobjectArray>(), index);
}
ObjectRef adopt(REALarray array) { return ObjectRef::adopt(reinterpret_cast<REALobject>(array)); }

TEST_F(HostTest, CreatesArraysWithOneReference) {
  const ObjectRef empty = adopt(create(kStrings, -1));
  ASSERT_TRUE(empty);
  EXPECT_EQ(host->references(empty.handle()), 1);
  EXPECT_EQ(upperBound(empty), -1);
  const ObjectRef two = adopt(create(kObjects, 1));
  EXPECT_EQ(upperBound(two), 1);
  EXPECT_EQ(host->elements(two), (std::vector<Value>{Value(), Value()}));
  EXPECT_EQ(create(99, -1), nullptr);
  EXPECT_EQ(create(kStrings, -2), nullptr);
  EXPECT_EQ(takeFailures(),
            Lines{"RuntimeArrayCreateSingleDimBoundedArray was given the upper bound -2"});
}

TEST_F(HostTest, InsertsStringsWithTheArraysOwnReference) {
  const ObjectRef array = adopt(create(kStrings, -1));
  const REALstring string = host->string("b");
  insert<REALstring>(array, 0, string);
  EXPECT_EQ(host->references(string), 2);
  host->unlock(string);
  insert<REALstring>(array, 1, nullptr);
  const REALstring first = host->string("a");
  insert<REALstring>(array, 0, first);
  host->unlock(first);
  EXPECT_EQ(host->elements(array), (std::vector<Value>{"a", "b", ""}));
  EXPECT_EQ(upperBound(array), 2);
}

TEST_F(HostTest, ReadsElementsWithAReferenceForTheCaller) {
  const ObjectRef element = host->make("RuntimeException");
  const ObjectRef objects = host->array(kObjects, {element, Value()});
  const ObjectRef strings = host->array(kStrings, {"text", ""});
  for (const REALobject object : {readObject(objects, 0), read<REALobject>(objects, 0)})
    EXPECT_EQ(ObjectRef::adopt(object), element);
  EXPECT_EQ(host->references(element.handle()), 2);
  for (const REALstring string : {readString(strings, 0), read<REALstring>(strings, 0)}) {
    EXPECT_EQ(host->bytes(string), "text");
    host->unlock(string);
  }
  EXPECT_EQ(readObject(objects, 1), nullptr);
  EXPECT_EQ(read<REALobject>(objects, 1), nullptr);
  EXPECT_EQ(readString(strings, 1), nullptr);
  EXPECT_EQ(read<REALstring>(strings, 1), nullptr);
}

TEST_F(HostTest, RaisesOutOfBounds) {
  const ObjectRef array = host->array(kStrings, {"only"});
  EXPECT_EQ(readString(array, 1), nullptr);
  EXPECT_EQ(readString(array, -1), nullptr);
  EXPECT_EQ(read<REALstring>(array, 1), nullptr);
  insert<REALstring>(array, 2, nullptr);
  insert<REALstring>(array, -1, nullptr);
  EXPECT_EQ(host->takePending(), std::vector<Raised>(5, {"OutOfBoundsException", std::nullopt, 0}));
  EXPECT_EQ(host->elements(array), std::vector<Value>{"only"});
}

TEST_F(HostTest, FindsElementsAndArraysOfTheWrongType) {
  const ObjectRef strings = host->array(kStrings, {"text"});
  const ObjectRef objects = host->array(kObjects, {strings});
  EXPECT_EQ(readString(objects, 0), nullptr);
  EXPECT_EQ(readObject(strings, 0), nullptr);
  insert<REALobject>(strings, 0, strings.handle());
  EXPECT_EQ(takeFailures(),
            (Lines{"RuntimeDirectReadStringArray was given object array of 1, which has other "
                   "elements",
                   "RuntimeDirectReadObjectArray was given string array of 1, which has other "
                   "elements",
                   "an array's insert procedure was given string array of 1 (#1), which isn't a "
                   "string"}));
  EXPECT_EQ(host->elements(strings), std::vector<Value>{"text"});
  EXPECT_THROW(host->array(kStrings, {5}), std::invalid_argument);
  EXPECT_THROW(host->array(99), std::invalid_argument);
}

// --- arrays of every type

template <class Element>
void expectElements(Host& host, std::int32_t type, const std::vector<Value>& values,
                    const std::vector<Element>& elements, Element added) {
  const ObjectRef array = host.array(type, values);
  EXPECT_EQ(host.typeOf(array), type);
  EXPECT_EQ(host.elements(array), values);
  insert<Element>(array, upperBound(array) + 1, added);
  std::vector<Element> found;
  const auto* const storage = static_cast<const Element*>(array.as<HostArrayRecord*>()->storage);
  for (std::int32_t i = 0; i <= upperBound(array); ++i) {
    found.push_back(read<Element>(array, i));
    EXPECT_EQ(storage[i], found.back());
  }
  std::vector<Element> wanted = elements;
  wanted.push_back(added);
  EXPECT_EQ(found, wanted);
}

TEST_F(HostTest, HasArraysOfEveryNumber) {
  expectElements<std::int32_t>(*host, 4098, {7, -1}, {7, -1}, 3);
  expectElements<std::int64_t>(*host, 4099, {std::int64_t{5000000000}}, {5000000000}, -3);
  expectElements<float>(*host, 4100, {0.5F, -1.5F}, {0.5F, -1.5F}, 3.0F);
  expectElements<double>(*host, 4101, {0.25}, {0.25}, 3.0);
  expectElements<double>(*host, 4102, {0.125}, {0.125}, 3.0);
  expectElements<std::uint8_t>(*host, 4107, {std::int8_t{1}, std::int8_t{0}}, {1, 0}, 1);
  EXPECT_EQ(upperBound(host->array(4098)), -1);
  EXPECT_THROW(host->array(4098, {0.5}), std::invalid_argument);
  EXPECT_THROW(host->array(4107, {1}), std::invalid_argument);
  EXPECT_THROW(host->array(4096), std::invalid_argument);
  EXPECT_EQ(create(4098, -1), nullptr);
}

TEST_F(HostTest, HasArraysOfDates) {
  const ObjectRef date = host->date({2020, 1, 2, 3, 4, 5});
  const ObjectRef array = host->array(4103, {date, Value()});
  EXPECT_EQ(host->describe(array), "[Date 2020-01-02 03:04:05, nil]");
  EXPECT_EQ(ObjectRef::adopt(read<REALobject>(array, 0)), date);
  EXPECT_EQ(read<REALobject>(array, 1), nullptr);
  EXPECT_THROW(host->array(4103, {5}), std::invalid_argument);
  EXPECT_THROW(host->array(4103, {host->memoryBlock("")}), std::invalid_argument);
}

TEST_F(HostTest, HasArraysOfVariants) {
  const ObjectRef block = host->memoryBlock("abc");
  const ObjectRef array = host->array(4105, {1, "text", Value(), block, ObjectRef()});
  EXPECT_EQ(host->elements(array), (std::vector<Value>{1, "text", Value(), block, Value()}));
  EXPECT_EQ(host->references(block.handle()), 2);
  const ObjectRef first = ObjectRef::adopt(readObject(array, 0));
  EXPECT_EQ(host->typeOf(first), 2);
  EXPECT_EQ(host->references(first.handle()), 2);
  EXPECT_EQ(host->elements(host->array(4104, {"a", ""})), (std::vector<Value>{"a", ""}));
}

TEST_F(HostTest, FindsReadsOfTheWrongElementType) {
  const ObjectRef array = host->array(4098, {7});
  EXPECT_EQ(readObject(array, 0), nullptr);
  EXPECT_EQ(takeFailures(), Lines{"RuntimeDirectReadObjectArray was given Int32 array of 1, which "
                                  "has other elements"});
}

TEST_F(HostTest, TakesManyElements) {
  constexpr std::int32_t kMany = 100000;
  start({.keepSequence = false});
  const ObjectRef array = host->array(Host::kObjectElements);
  const ObjectRef element = host->variant(1);
  const auto started = std::chrono::steady_clock::now();
  for (std::int32_t i = 0; i < kMany; ++i) insert<REALobject>(array, i, element.handle());
  EXPECT_EQ(upperBound(array), kMany - 1);
  EXPECT_EQ(host->references(element.handle()), kMany + 1);
  // Plenty for work that grows with the elements, and far too few for their square.
  EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(10));
}

struct ArrayRecord {
  void* words[2];
  void** storage;
};

TEST_F(HostTest, ShowsTheStorageOfArrays) {
  const ObjectRef array = host->array(kObjects);
  const auto* const record = array.as<const ArrayRecord*>();
  ASSERT_NE(record->storage, nullptr);
  const ObjectRef element = host->make("RuntimeException");
  for (std::int32_t i = 0; i < 100; ++i) insert<REALobject>(array, i, element.handle());
  EXPECT_EQ(record->storage[0], element.handle());
  EXPECT_EQ(record->storage[99], element.handle());
  EXPECT_EQ(host->references(element.handle()), 101);
}

TEST_F(HostTest, MayKeepTheStorageOfArraysToItself) {
  start({.arraysWithStorage = false});
  const ObjectRef array = host->array(kStrings, {"text"});
  EXPECT_EQ(array.as<const ArrayRecord*>()->storage, nullptr);
}

TEST_F(HostTest, DropsTheElementsOfADeadArray) {
  const ObjectRef element = host->make("RuntimeException");
  ObjectRef array = host->array(kObjects, {element});
  EXPECT_EQ(host->references(element.handle()), 2);
  array.reset();
  EXPECT_EQ(host->references(element.handle()), 1);
}

}  // namespace
}  // namespace tests
