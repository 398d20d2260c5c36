// Any host value as a native object.
#include "bridge/variant_to_native.h"

#include <algorithm>

#include "native/exceptions.h"
#include "native/numbers.h"
#include "tests/support/plugin_test.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests
using namespace std::string_literals;

class VariantToNativeTest : public PluginTest {
 protected:
  id converted(const ObjectRef& value) { return GetVariantAsNSObject(value.handle()); }
  std::string toNative(const ObjectRef& value) { return foundation.describe(converted(value)); }
  std::string toNative(const Value& value, std::optional<std::int32_t> type = std::nullopt) {
    return toNative(host->variant(value, type));
  }
  // The value with the type code of the number that it became.
  std::string numberOf(const Value& value, std::optional<std::int32_t> type = std::nullopt) {
    const id number = converted(host->variant(value, type));
    return zelNumberType(number) + " "s + foundation.describe(number);
  }
};

// --- nothing

TEST_F(VariantToNativeTest, NothingBecomesNil) {
  EXPECT_EQ(GetVariantAsNSObject(nullptr), nullptr);
  EXPECT_EQ(toNative(Value(std::monostate{})), "nil");
}

TEST_F(VariantToNativeTest, AnUnknownTypeCodeBecomesNil) {
  for (const std::int32_t code : {1, 10, 12, 22, 24, 4095, 4096}) {
    SCOPED_TRACE(code);
    EXPECT_EQ(toNative(std::int32_t{1}, code), "nil");
  }
}

// --- numbers

TEST_F(VariantToNativeTest, Numbers) {
  EXPECT_EQ(numberOf(std::int32_t{-5}), "l -5");
  EXPECT_EQ(numberOf(std::int32_t{7}, 16), "l 7");
  EXPECT_EQ(numberOf(std::int64_t{1} << 40), "q 1099511627776");
  EXPECT_EQ(numberOf(2.5F), "f 2.5");
  EXPECT_EQ(numberOf(0.1), "d 0.1");
  EXPECT_EQ(numberOf(0.25, 6), "d 0.25");
}

TEST_F(VariantToNativeTest, BooleansAreReadAsTheirLowByte) {
  EXPECT_EQ(numberOf(std::int8_t{1}), "c true");
  EXPECT_EQ(numberOf(std::int8_t{0}), "c false");
  EXPECT_EQ(numberOf(std::int32_t{256}, 11), "c false");
  EXPECT_EQ(numberOf(std::int32_t{257}, 11), "c true");
}

TEST_F(VariantToNativeTest, NumbersAreMadeByTheFactoryOfTheirType) {
  const struct {
    Value value;
    std::int32_t type;
    const char* factory;
  } rows[] = {{std::int32_t{1}, 2, "numberWithLong:"},
              {std::int32_t{1}, 16, "numberWithLong:"},
              {std::int64_t{1}, 3, "numberWithLongLong:"},
              {1.0F, 4, "numberWithFloat:"},
              {1.0, 5, "numberWithDouble:"},
              {1.0, 6, "numberWithDouble:"},
              {std::int8_t{1}, 11, "numberWithBool:"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.type);
    const ObjectRef variant = host->variant(row.value, row.type);
    foundation.clearRecords();
    converted(variant);
    EXPECT_EQ(foundation.messages(), Lines{"+[NSNumber "s + row.factory + "]"});
  }
}

TEST_F(VariantToNativeTest, ABooleanIsHandedOnAsItsByte) {
  static int handed = 0;
  foundation.addClassMethod("NSNumber", "numberWithBool:", [](id, SEL, BOOL byte) -> id {
    handed = static_cast<std::uint8_t>(byte);
    return nullptr;
  });
  EXPECT_EQ(toNative(std::int32_t{0x2FE}, 11), "nil");
  EXPECT_EQ(handed, 0xFE);
  EXPECT_EQ(host->calls("VariantToInt32"), 1);
}

TEST_F(VariantToNativeTest, ValuesAreReadByTheHostsRoutines) {
  const ObjectRef variant = host->variant(std::int32_t{3});
  host->clearRecords();
  EXPECT_EQ(toNative(variant), "3");
  EXPECT_EQ(host->sequence(), (Lines{"REALLoadGlobalMethod", "VarType", "VariantToInt32"}));
}

struct FallbackCase {
  const char* routine;
  const char* property;
  Value value;
  const char* native;
  const char* failed;
};

void PrintTo(const FallbackCase& row, std::ostream* out) { *out << row.routine; }

class FallbackTest : public VariantToNativeTest,
                     public testing::WithParamInterface<FallbackCase> {};

TEST_P(FallbackTest, APropertyStandsInForTheRoutine) {
  host->hide(GetParam().routine);
  EXPECT_EQ(toNative(GetParam().value), GetParam().native);
  EXPECT_EQ(host->calls(GetParam().property), 1);
}

TEST_P(FallbackTest, WithoutEitherTheValueIsNothing) {
  host->hide(GetParam().routine);
  host->hide(GetParam().property);
  EXPECT_EQ(toNative(GetParam().value), GetParam().failed);
}

INSTANTIATE_TEST_SUITE_P(
    Types, FallbackTest,
    testing::Values(
        FallbackCase{"VariantToInt32", "REALGetPropValueInt", std::int32_t{3}, "3", "0"},
        FallbackCase{"VariantToInt64", "REALGetPropValueInt64", std::int64_t{4}, "4", "0"},
        FallbackCase{"VariantToSingle", "REALGetPropValueSingle", 2.5F, "2.5", "0"},
        FallbackCase{"VariantToDouble", "REALGetPropValueDouble", 3.5, "3.5", "0"},
        FallbackCase{"VariantToString", "REALGetPropValueString", "text"s, "\"text\"", "\"\""}),
    [](const auto& row) { return row.param.routine; });

TEST_F(VariantToNativeTest, TheTypeIsReadFromAPropertyToo) {
  host->hide("VarType");
  EXPECT_EQ(toNative("text"s), "\"text\"");
  host->unhide("VarType");
  EXPECT_EQ(toNative("text"s), "\"text\"");
  EXPECT_EQ(host->calls("VarType"), 1);
}

TEST_F(VariantToNativeTest, WithoutAnyTypeThereIsNothing) {
  host->hide("VarType");
  host->hide("REALGetPropValueInt");
  EXPECT_EQ(toNative("text"s), "nil");
}

// --- texts

TEST_F(VariantToNativeTest, Texts) {
  EXPECT_EQ(toNative("Grüße"s), "\"Grüße\"");
  for (const std::int32_t code : {18, 19, 20, 21, 23}) {
    SCOPED_TRACE(code);
    EXPECT_EQ(toNative("text"s, code), "\"text\"");
  }
}

TEST_F(VariantToNativeTest, AnEmptyTextBecomesAnEmptyText) {
  EXPECT_EQ(toNative(""s), "\"\"");
  EXPECT_EQ(toNative(""s, 23), "\"\"");
}

TEST_F(VariantToNativeTest, ATextThatCannotBeConvertedBecomesNil) {
  const ObjectRef variant = host->variant("text"s);
  host->answerNull("REALGetStringCFString");
  foundation.failCall("CFStringCreateWithCString");
  EXPECT_EQ(toNative(variant), "nil");
}

TEST_F(VariantToNativeTest, TheTextIsGivenBackWhenAnExceptionPasses) {
  const ObjectRef variant = host->variant("text"s);
  host->answerNull("REALGetStringCFString");
  foundation.throwAtCall("CFStringCreateWithCString");
  EXPECT_NE(catching([&] { converted(variant); }), nullptr);
}

// --- dates

TEST_F(VariantToNativeTest, Dates) {
  EXPECT_EQ(toNative(host->date({2001, 1, 2, 3, 4, 5})), "date(97445)");
}

TEST_F(VariantToNativeTest, ADateThatCannotBeReadBecomesNil) {
  const ObjectRef date = host->date({2001, 1, 2, 3, 4, 5});
  host->hide("REALGetPropValueObject");
  EXPECT_EQ(toNative(date), "nil");
}

TEST_F(VariantToNativeTest, TheDateIsGivenBackWhenAnExceptionPasses) {
  const ObjectRef date = host->date({2001, 1, 2, 3, 4, 5});
  foundation.throwAtMessage(1);
  EXPECT_NE(catching([&] { converted(date); }), nullptr);
  EXPECT_EQ(host->references(date.handle()), 1);
}

// --- arrays, in hosts whose arrays are read in place and in others

struct ArrayHost {
  double version;
  bool storage;
};

class ArrayTest : public VariantToNativeTest, public testing::WithParamInterface<ArrayHost> {
 protected:
  void SetUp() override {
    VariantToNativeTest::SetUp();
    startHost({.version = GetParam().version, .arraysWithStorage = GetParam().storage});
  }
  [[nodiscard]] bool inPlace() const { return GetParam().storage && GetParam().version <= 2013.9; }
  std::string list(std::int32_t code, const std::vector<Value>& elements) {
    return toNative(host->array(code, elements));
  }
};

INSTANTIATE_TEST_SUITE_P(Hosts, ArrayTest,
                         testing::Values(ArrayHost{2011.04, true}, ArrayHost{2013.9, true},
                                         ArrayHost{2013.9, false}, ArrayHost{2013.91, true},
                                         ArrayHost{2014.0, false}));

TEST_P(ArrayTest, EveryKindOfElement) {
  EXPECT_EQ(list(4098, {std::int32_t{1}, std::int32_t{-2}}), "(1, -2)");
  EXPECT_EQ(list(4099, {std::int64_t{1} << 40}), "(1099511627776)");
  EXPECT_EQ(list(4100, {1.5F, -2.5F}), "(1.5, -2.5)");
  EXPECT_EQ(list(4101, {0.1, 0.2}), "(0.1, 0.2)");
  EXPECT_EQ(list(4103, {host->date({2001, 1, 2, 3, 4, 5})}), "(date(97445))");
  EXPECT_EQ(list(4104, {"a"s, "Grüße"s}), "(\"a\", \"Grüße\")");
  EXPECT_EQ(list(4105, {std::int32_t{1}, "b"s, host->memoryBlock("c")}), "(1, \"b\", <63>)");
  EXPECT_EQ(list(4107, {std::int8_t{1}, std::int8_t{0}}), "(true, false)");
}

TEST_P(ArrayTest, ElementsBecomeNumbersOfTheirType) {
  const auto typeOf = [&](std::int32_t code, const Value& element) {
    const id made = converted(host->array(code, {element}));
    return std::string(zelNumberType(send<id, "objectAtIndex:">(made, NSUInteger{0})));
  };
  EXPECT_EQ(typeOf(4098, std::int32_t{1}), "l");
  EXPECT_EQ(typeOf(4099, std::int64_t{1}), "q");
  EXPECT_EQ(typeOf(4100, 1.0F), "f");
  EXPECT_EQ(typeOf(4101, 1.0), "d");
  EXPECT_EQ(typeOf(4107, std::int8_t{1}), "c");
}

TEST_P(ArrayTest, AnEmptyArrayBecomesAnEmptyMutableList) {
  const id made = converted(host->array(4098, {}));
  EXPECT_EQ(foundation.describe(made), "()");
  EXPECT_TRUE(isKindOf<"NSMutableArray">(made));
}

TEST_P(ArrayTest, ArraysWithinArrays) {
  EXPECT_EQ(list(4105, {host->array(4098, {std::int32_t{1}}), host->array(4104, {})}), "((1), ())");
}

TEST_P(ArrayTest, AnUnlistedKindBecomesNil) {
  EXPECT_EQ(list(4102, {1.0}), "nil");
  EXPECT_EQ(list(4200, {1.0}), "nil");
}

TEST_P(ArrayTest, ElementsAreReadInPlaceOrThroughTheHost) {
  const ObjectRef array = host->array(4104, {"a"s, "b"s});
  host->clearRecords();
  EXPECT_EQ(toNative(array), "(\"a\", \"b\")");
  EXPECT_EQ(host->calls("RuntimeArrayDirectGetGetProc"), inPlace() ? 0 : 2);
  EXPECT_EQ(host->calls("REALLockString"), inPlace() ? 2 : 0);
  EXPECT_EQ(host->calls("REALUnlockString"), 2);
}

TEST_P(ArrayTest, ObjectsAreReadInPlaceOrThroughTheHost) {
  for (const std::int32_t code : {4103, 4105}) {
    const ObjectRef date = host->date({2001, 1, 1, 0, 0, 0});
    const ObjectRef array = host->array(code, {date, date});
    host->clearRecords();
    EXPECT_EQ(toNative(array), "(date(0), date(0))");
    EXPECT_EQ(host->calls("RuntimeArrayDirectGetGetProc"), inPlace() ? 0 : 2);
    EXPECT_EQ(host->calls("REALLockObject"), inPlace() ? 2 : 0);
    EXPECT_EQ(host->references(date.handle()), 3);  // this one's, and those of two elements
  }
}

TEST_P(ArrayTest, NumbersAreReadInPlaceOrThroughTheHost) {
  const ObjectRef arrays[] = {host->array(4098, {std::int32_t{1}, std::int32_t{2}}),
                              host->array(4099, {std::int64_t{1}, std::int64_t{2}}),
                              host->array(4100, {1.0F, 2.0F}), host->array(4101, {1.0, 2.0})};
  for (const ObjectRef& array : arrays) {
    host->clearRecords();
    EXPECT_EQ(toNative(array), "(1, 2)");
    EXPECT_EQ(host->calls("RuntimeArrayDirectGetGetProc"), inPlace() ? 0 : 2);
  }
  const ObjectRef booleans = host->array(4107, {std::int8_t{0}, std::int8_t{1}});
  host->clearRecords();
  EXPECT_EQ(toNative(booleans), "(false, true)");
  EXPECT_EQ(host->calls("RuntimeArrayDirectGetGetProc"), inPlace() ? 0 : 2);
}

TEST_P(ArrayTest, ADateThatCannotBeReadIsRejectedByFoundation) {
  const ObjectRef array = host->array(4103, {host->date({2001, 1, 1, 0, 0, 0})});
  host->answerNull("REALGetPropValueInt");
  EXPECT_NE(catching([&] { converted(array); }), nullptr);
}

TEST_P(ArrayTest, AnUnlistedKindIsNotEvenAskedForItsBound) {
  const ObjectRef array = host->array(4102, {1.0});
  host->clearRecords();
  EXPECT_EQ(toNative(array), "nil");
  EXPECT_EQ(host->calls("RuntimeUBound"), 0);
}

TEST_P(ArrayTest, AnEmptyTextAmongTheElementsIsRejectedByFoundation) {
  const ObjectRef array = host->array(4104, {"a"s, ""s});
  const id left = catching([&] { converted(array); });
  ASSERT_NE(left, nullptr);
  EXPECT_EQ(foundation.utf8(send<CFStringRef, "name">(left)), "NSInvalidArgumentException");
}

TEST_P(ArrayTest, AVariantThatBecomesNilIsRejectedByFoundation) {
  const ObjectRef array = host->array(4105, {std::monostate{}});
  EXPECT_NE(catching([&] { converted(array); }), nullptr);
}

TEST_P(ArrayTest, ElementsAreGivenBackWhenAnExceptionPasses) {
  const ObjectRef array = host->array(4105, {host->date({2001, 1, 1, 0, 0, 0})});
  for (long n = 1; n < 5; ++n) {
    foundation.throwAtMessage(n);
    EXPECT_NE(catching([&] { converted(array); }), nullptr);
  }
}

TEST_F(VariantToNativeTest, WithoutUpperBoundsOneElementIsRead) {
  const ObjectRef array = host->array(4098, {std::int32_t{1}, std::int32_t{2}});
  host->hide("RuntimeUBound");
  EXPECT_EQ(toNative(array), "(1)");
}

TEST_F(VariantToNativeTest, WithoutProceduresElementsAreNothing) {
  const ObjectRef array = host->array(4098, {std::int32_t{1}, std::int32_t{2}});
  host->hide("RuntimeArrayDirectGetGetProc");
  EXPECT_EQ(toNative(array), "(0, 0)");
}

TEST_F(VariantToNativeTest, AnArrayWithoutAProcedureReadsNothing) {
  host->answerNull("RuntimeArrayDirectGetGetProc");
  EXPECT_EQ(toNative(host->array(4101, {1.5})), "(0)");
  EXPECT_EQ(toNative(host->array(4107, {std::int8_t{1}})), "(false)");
  const ObjectRef texts = host->array(4104, {"a"s});
  EXPECT_NE(catching([&] { converted(texts); }), nullptr);
  const ObjectRef objects = host->array(4105, {0.5});
  EXPECT_NE(catching([&] { converted(objects); }), nullptr);
}

}  // namespace
}  // namespace zel
