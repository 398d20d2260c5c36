// Any host value as a native object.
#include "bridge/variant_to_native.h"

#include <algorithm>

#include "native/exceptions.h"
#include "native/numbers.h"
#include "tests/support/intercept.h"
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

// Lets the host refuse a property, having written the value all the same.
template <class T>
void refuse(const char* routine) {
  intercept(routine, [](REALobject, const char*, T* value) {
    *value = T(8);
    return REALboolean{0};
  });
}

TEST_F(VariantToNativeTest, APropertyThatIsRefusedLeavesNoValue) {
  refuse<std::int32_t>("REALGetPropValueInt");
  refuse<std::int64_t>("REALGetPropValueInt64");
  refuse<float>("REALGetPropValueSingle");
  refuse<double>("REALGetPropValueDouble");
  refuse<REALstring>("REALGetPropValueString");
  for (const char* routine : {"VariantToInt32", "VariantToInt64", "VariantToSingle",
                              "VariantToDouble", "VariantToString"})
    host->hide(routine);
  EXPECT_EQ(numberOf(std::int32_t{3}), "l 0");
  EXPECT_EQ(numberOf(std::int64_t{3}), "q 0");
  EXPECT_EQ(numberOf(3.0F), "f 0");
  EXPECT_EQ(numberOf(3.0), "d 0");
  EXPECT_EQ(numberOf(std::int8_t{1}), "c false");
  EXPECT_EQ(toNative("text"s), "\"\"");
}

TEST_F(VariantToNativeTest, ATypeThatIsRefusedIsNoType) {
  refuse<std::int32_t>("REALGetPropValueInt");  // 8 would be a text
  host->hide("VarType");
  EXPECT_EQ(toNative("text"s), "nil");
}

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

TEST_F(VariantToNativeTest, TheEmptyTextIsOneObjectForGood) {
  const id empty = converted(host->variant(""s));
  foundation.drainPool();
  const ObjectRef another = host->variant(""s, 21);
  foundation.clearRecords();
  EXPECT_EQ(converted(another), empty);
  EXPECT_EQ(foundation.messages(), Lines{});
  EXPECT_EQ(foundation.calls(), Lines{});
  EXPECT_EQ(foundation.references(empty), 1);
}

TEST_F(VariantToNativeTest, AnEmptyTextThatCannotBeMadeIsTriedAgain) {
  foundation.failCall("CFStringCreateWithCString");
  EXPECT_EQ(toNative(""s), "nil");
  EXPECT_EQ(toNative(""s), "\"\"");
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

TEST_F(VariantToNativeTest, ADateThatIsRefusedBecomesNil) {
  const ObjectRef date = host->date({2001, 1, 2, 3, 4, 5});
  refuse<REALobject>("REALGetPropValueObject");
  EXPECT_EQ(toNative(date), "nil");
}

TEST_F(VariantToNativeTest, ADateVariantOfNoDateBecomesNil) {
  const ObjectRef date = host->date({2001, 1, 2, 3, 4, 5});
  intercept("REALGetPropValueObject", [](REALobject, const char*, REALobject* value) {
    *value = nullptr;
    return REALboolean{1};
  });
  foundation.clearRecords();
  EXPECT_EQ(toNative(date), "nil");
  EXPECT_EQ(foundation.messages(), Lines{});
  EXPECT_EQ(host->calls("REALUnlockObject"), 0);
}

TEST_F(VariantToNativeTest, TheDateIsGivenBackWhenAnExceptionPasses) {
  const ObjectRef date = host->date({2001, 1, 2, 3, 4, 5});
  foundation.throwAtMessage(1);
  EXPECT_NE(catching([&] { converted(date); }), nullptr);
  EXPECT_EQ(host->references(date.handle()), 1);
}

}  // namespace
}  // namespace zel
