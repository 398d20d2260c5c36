// Variants of the reference host.
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/host/sample_plugin.h"

namespace tests {
namespace {

using Lines = std::vector<std::string>;
using host::Host;
using host::ObjectRef;
using host::Text;
using host::Value;
using zel::REALboolean;
using zel::REALobject;
using zel::REALstring;

template <class T>
ObjectRef make(const char* name, T value) {
  return ObjectRef::adopt(entryPoint<REALobject(T)>(name)(value));
}
template <class T>
T read(const char* name, const ObjectRef& variant) {
  return entryPoint<T(REALobject)>(name)(variant.handle());
}
template <class T>
bool get(const char* name, const ObjectRef& object, const char* property, T* out) {
  return entryPoint<REALboolean(REALobject, const char*, T*)>(name)(object.handle(), property,
                                                                    out) != 0;
}
std::int32_t varType(const ObjectRef& variant) {
  const auto load = entryPoint<void*(REALobject, const char*)>("REALLoadGlobalMethod");
  void* const method = load(nullptr, "VarType(value As Variant) As Int32");
  return reinterpret_cast<std::int32_t (*)(REALobject)>(method)(variant.handle());
}

TEST_F(HostTest, MakesVariantsOfEveryNumber) {
  const ObjectRef int32 = make<std::int32_t>("Int32ToVariant", -7);
  EXPECT_EQ(host->references(int32.handle()), 1);
  EXPECT_EQ(varType(int32), 2);
  EXPECT_EQ(host->valueOf(int32), Value(std::int32_t{-7}));
  const ObjectRef int64 = make<std::int64_t>("Int64ToVariant", -5000000000);
  EXPECT_EQ(varType(int64), 3);
  EXPECT_EQ(host->valueOf(int64), Value(std::int64_t{-5000000000}));
  const ObjectRef single = make<float>("SingleToVariant", 0.5F);
  EXPECT_EQ(varType(single), 4);
  EXPECT_EQ(host->valueOf(single), Value(0.5F));
  const ObjectRef real = make<double>("DoubleToVariant", 0.25);
  EXPECT_EQ(varType(real), 5);
  EXPECT_EQ(host->valueOf(real), Value(0.25));
  const ObjectRef boolean = make<REALboolean>("BooleanToVariant", 1);
  EXPECT_EQ(varType(boolean), 11);
  EXPECT_EQ(host->valueOf(boolean), Value(std::int8_t{1}));
  const ObjectRef uint32 = make<std::uint32_t>("UInt32ToVariant", 4000000000U);
  EXPECT_EQ(varType(uint32), 24);
  EXPECT_EQ(host->valueOf(uint32), Value(std::uint32_t{4000000000}));
  const ObjectRef uint64 = make<std::uint64_t>("UInt64ToVariant", 5);
  EXPECT_EQ(varType(uint64), 25);
  EXPECT_EQ(host->valueOf(uint64), Value(std::uint64_t{5}));
}

TEST_F(HostTest, MakesVariantsOfStringsWithTheirOwnReference) {
  const REALstring string = host->string("text");
  ObjectRef variant = make<REALstring>("StringToVariant", string);
  EXPECT_EQ(varType(variant), 8);
  EXPECT_EQ(host->references(string), 2);
  EXPECT_EQ(host->valueOf(variant), Value("text"));
  const auto again = read<REALstring>("VariantToString", variant);
  EXPECT_EQ(again, string);
  EXPECT_EQ(host->references(string), 3);
  host->unlock(again);
  variant.reset();
  EXPECT_EQ(host->references(string), 1);
  host->unlock(string);
  const ObjectRef empty = make<REALstring>("StringToVariant", nullptr);
  EXPECT_EQ(varType(empty), 8);
  EXPECT_EQ(host->valueOf(empty), Value(""));
  EXPECT_EQ(read<REALstring>("VariantToString", empty), nullptr);
}

TEST_F(HostTest, ReadsNumbersAsOtherTypes) {
  const ObjectRef boolean = host->variant(256, 11);
  EXPECT_EQ(varType(boolean), 11);
  EXPECT_EQ(read<std::int32_t>("VariantToInt32", boolean), 256);
  const ObjectRef real = host->variant(-2.75);
  EXPECT_EQ(read<std::int32_t>("VariantToInt32", real), -2);
  EXPECT_EQ(read<std::int64_t>("VariantToInt64", real), -2);
  EXPECT_EQ(read<float>("VariantToSingle", real), -2.75F);
  EXPECT_EQ(read<double>("VariantToDouble", real), -2.75);
  EXPECT_EQ(read<REALstring>("VariantToString", real), nullptr);
  EXPECT_EQ(read<std::int32_t>("VariantToInt32", host->variant(3e9)), 0);
  EXPECT_EQ(read<std::int32_t>("VariantToInt32", host->variant(2147483647.0)), 2147483647);
  EXPECT_EQ(read<std::int64_t>("VariantToInt64", host->variant(std::nan(""))), 0);
  EXPECT_EQ(read<double>("VariantToDouble", host->variant("2.5")), 0.0);
  EXPECT_EQ(read<double>("VariantToDouble", host->memoryBlock("2.5")), 0.0);
}

TEST_F(HostTest, GivesVariantsProperties) {
  const ObjectRef number = host->variant(std::int64_t{5000000000}, 16);
  const ObjectRef text = host->variant("text");
  std::int32_t type = 0;
  std::int32_t int32 = -1;
  std::int64_t int64 = -1;
  float single = -1;
  double real = -1;
  EXPECT_TRUE(get("REALGetPropValueInt", number, "Type", &type));
  EXPECT_EQ(type, 16);
  EXPECT_TRUE(get("REALGetPropValueInt", text, "Int32Value", &int32));
  EXPECT_EQ(int32, 0);
  EXPECT_TRUE(get("REALGetPropValueInt64", number, "LongValue", &int64));
  EXPECT_EQ(int64, 5000000000);
  EXPECT_TRUE(get("REALGetPropValueSingle", number, "SingleValue", &single));
  EXPECT_EQ(single, 5e9F);
  EXPECT_TRUE(get("REALGetPropValueDouble", number, "DoubleValue", &real));
  EXPECT_EQ(real, 5e9);
  REALstring string = nullptr;
  EXPECT_TRUE(get("REALGetPropValueString", text, "StringValue", &string));
  EXPECT_EQ(host->bytes(string), "text");
  host->unlock(string);
  REALobject date = nullptr;
  EXPECT_FALSE(get("REALGetPropValueObject", host->variant(1, 7), "DateValue", &date));
  EXPECT_FALSE(get("REALGetPropValueInt", number, "LongValue", &int32));
  EXPECT_FALSE(get("REALGetPropValueInt", number, "Value", &int32));
}

TEST_F(HostTest, TakesObjectsAndArraysForVariants) {
  const ObjectRef date = host->date({2020, 2, 29, 1, 2, 3});
  EXPECT_EQ(varType(date), 7);
  REALobject same = nullptr;
  EXPECT_TRUE(get("REALGetPropValueObject", date, "DateValue", &same));
  EXPECT_EQ(same, date.handle());
  EXPECT_EQ(host->references(same), 2);
  EXPECT_EQ(ObjectRef::adopt(same), date);
  const ObjectRef block = host->memoryBlock("abc");
  EXPECT_EQ(varType(block), 9);
  EXPECT_EQ(host->valueOf(block), Value(block));
  EXPECT_EQ(varType(host->array(Host::kStringElements)), 4104);
  EXPECT_EQ(varType(host->array(Host::kObjectElements)), 4105);
  EXPECT_EQ(varType(host->array(4102)), 4102);
  EXPECT_EQ(varType(ObjectRef()), 0);
  EXPECT_EQ(host->typeOf(date), 7);
  EXPECT_EQ(host->valueOf(ObjectRef()), Value());
  EXPECT_THROW(host->variant(block), std::invalid_argument);
}

TEST_F(HostTest, HasVariantsOfNothing) {
  const ObjectRef nothing = host->variant({});
  ASSERT_TRUE(nothing);
  EXPECT_EQ(varType(nothing), 0);
  EXPECT_EQ(host->valueOf(nothing), Value());
  EXPECT_EQ(read<std::int32_t>("VariantToInt32", nothing), 0);
}

TEST_F(HostTest, FindsVariantsThatAreNone) {
  const REALstring string = host->string("text");
  EXPECT_EQ(varType(ObjectRef::adopt(nullptr)), 0);
  EXPECT_EQ(
      entryPoint<std::int32_t(REALobject)>("VariantToInt32")(reinterpret_cast<REALobject>(string)),
      0);
  EXPECT_EQ(read<REALstring>("VariantToString", ObjectRef()), nullptr);
  EXPECT_EQ(entryPoint<REALobject(REALstring)>("StringToVariant")(
                reinterpret_cast<REALstring>(host->memoryBlock("").handle())),
            nullptr);
  host->unlock(string);
  EXPECT_EQ(takeFailures(),
            (Lines{"an entry point that reads a variant was given string \"text\" (#1), which "
                   "isn't an object",
                   "VariantToString was given a null handle",
                   "StringToVariant was given object of MemoryBlock (#2), which isn't a string"}));
}

TEST_F(HostTest, HidesGlobalMethods) {
  const auto load = entryPoint<void*(REALobject, const char*)>("REALLoadGlobalMethod");
  host->hideFirst("VarType", 1);
  EXPECT_EQ(load(nullptr, "VarType(value As Variant) As Int32"), nullptr);
  EXPECT_NE(load(nullptr, "vartype(v as variant) as int32"), nullptr);
  EXPECT_EQ(host->lookups("VarType"), 2);
}

TEST_F(HostTest, DescribesValues) {
  EXPECT_EQ(host->describe({}), "nil");
  EXPECT_EQ(host->describe(ObjectRef()), "nil");
  EXPECT_EQ(host->describe(7), "Int32 7");
  EXPECT_EQ(host->describe("say \"a\\b\""), "\"say \\\"a\\\\b\\\"\"");
  EXPECT_EQ(host->describe(Text("x", 0x600)), "Text(\"x\", 0x600)");
  EXPECT_EQ(host->describe(host->variant(std::uint64_t{5})), "UInt64 5");
  EXPECT_EQ(host->describe(host->variant(std::int8_t{1})), "true");
  EXPECT_EQ(host->describe(host->variant(std::int8_t{7})), "Boolean 7");
  EXPECT_EQ(host->describe(host->variant(7, 13)), "Variant(13) Int32 7");
  EXPECT_EQ(host->describe(host->variant(host::Currency{-25000})), "Currency -2.5");
  EXPECT_EQ(host->describe(host->variant(host::Color{0xFF0080})), "Color &cFF0080");
  EXPECT_EQ(host->typeOf(host->variant(host::Currency{15})), 6);
  EXPECT_EQ(host->typeOf(host->variant(host::Color{7})), 16);
  EXPECT_EQ(host->valueOf(host->variant(host::Currency{12345678})),
            Value(host::Currency{12345678}));
  EXPECT_EQ(host->describe(host->variant({})), "Variant(0) nil");
  EXPECT_EQ(host->describe(host->memoryBlock(std::string("\x01\xff\x00", 3))),
            "MemoryBlock 01ff00");
  EXPECT_EQ(host->describe(host->date({2020, 1, 31, 23, 59, 9})), "Date 2020-01-31 23:59:09");
  EXPECT_EQ(host->describe(host->make("RuntimeException")), "RuntimeException");
  const ObjectRef inner = host->array(Host::kObjectElements, {0.1, 2.5F, {}, host->variant(1, 6)});
  EXPECT_EQ(host->describe(host->dictionary({{"list", inner}, {1, std::int8_t{0}}})),
            "{\"list\": [Double 0.1, Single 2.5, nil, Variant(6) Int32 1], Int32 1: false}");
  EXPECT_EQ(host->describe(host->array(Host::kStringElements, {"a", ""})), "[\"a\", \"\"]");
}

}  // namespace
}  // namespace tests
