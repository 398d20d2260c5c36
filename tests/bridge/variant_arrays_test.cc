// Host arrays as native lists.
#include "bridge/variant_to_native.h"
#include "native/exceptions.h"
#include "native/numbers.h"
#include "tests/support/intercept.h"
#include "tests/support/plugin_test.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests
using namespace std::string_literals;

class VariantArraysTest : public PluginTest {
 protected:
  id converted(const ObjectRef& value) { return GetVariantAsNSObject(value.handle()); }
  std::string toNative(const ObjectRef& value) { return foundation.describe(converted(value)); }
};

// --- arrays, in hosts whose arrays are read in place and in others

struct ArrayHost {
  double version;
  bool storage;
};

class ArrayTest : public VariantArraysTest, public testing::WithParamInterface<ArrayHost> {
 protected:
  void SetUp() override {
    VariantArraysTest::SetUp();
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

TEST_F(VariantArraysTest, WithoutUpperBoundsOneElementIsRead) {
  const ObjectRef array = host->array(4098, {std::int32_t{1}, std::int32_t{2}});
  host->hide("RuntimeUBound");
  EXPECT_EQ(toNative(array), "(1)");
}

TEST_F(VariantArraysTest, WithoutProceduresElementsAreNothing) {
  const ObjectRef array = host->array(4098, {std::int32_t{1}, std::int32_t{2}});
  host->hide("RuntimeArrayDirectGetGetProc");
  EXPECT_EQ(toNative(array), "(0, 0)");
}

TEST_F(VariantArraysTest, AnArrayWithoutAProcedureReadsNothing) {
  host->answerNull("RuntimeArrayDirectGetGetProc");
  EXPECT_EQ(toNative(host->array(4101, {1.5})), "(0)");
  EXPECT_EQ(toNative(host->array(4107, {std::int8_t{1}})), "(false)");
  const ObjectRef texts = host->array(4104, {"a"s});
  EXPECT_NE(catching([&] { converted(texts); }), nullptr);
  const ObjectRef objects = host->array(4105, {0.5});
  EXPECT_NE(catching([&] { converted(objects); }), nullptr);
}

// --- how long an element is held

TEST_P(ArrayTest, ATextIsHeldUntilTheListHoldsIt) {
  const ObjectRef array = host->array(4104, {"a"s});
  const Lines asked = traced([&] { converted(array); });
  EXPECT_EQ(asked,
            (Lines{"REALLoadGlobalMethod", "VarType", "+[NSMutableArray array]", "RuntimeUBound",
                   inPlace() ? "REALLockString" : "RuntimeArrayDirectGetGetProc",
                   "REALGetStringCFString", "CFStringCreateWithCharacters",
                   "-[NSString autorelease]", "-[NSMutableArray addObject:]", "REALUnlockString"}));
}

TEST_P(ArrayTest, AVariantIsHeldUntilTheListHoldsWhatItBecame) {
  const ObjectRef array = host->array(4105, {0.5});
  const Lines asked = traced([&] { converted(array); });
  EXPECT_EQ(asked,
            (Lines{"REALLoadGlobalMethod", "VarType", "+[NSMutableArray array]", "RuntimeUBound",
                   inPlace() ? "REALLockObject" : "RuntimeArrayDirectGetGetProc", "VarType",
                   "VariantToDouble", "+[NSNumber numberWithDouble:]",
                   "-[NSMutableArray addObject:]", "REALUnlockObject"}));
}

TEST_P(ArrayTest, ADateIsHeldUntilTheListHoldsIt) {
  const ObjectRef array = host->array(4103, {host->date({2001, 1, 1, 0, 0, 0})});
  const Lines asked = traced([&] { converted(array); });
  ASSERT_GE(asked.size(), 2U);
  EXPECT_EQ(asked.at(asked.size() - 2), "-[NSMutableArray addObject:]");
  EXPECT_EQ(asked.back(), "REALUnlockObject");
}

TEST_P(ArrayTest, AnElementThatTheListRefusesIsGivenBackToo) {
  foundation.addMethod("NSMutableArray", "addObject:", [](id, SEL, id) {
    objc_exception_throw(foundation_double::Foundation::shared().exception("Full", "No more."));
  });
  for (const std::int32_t code : {4103, 4104, 4105}) {
    const ObjectRef date = host->date({2001, 1, 1, 0, 0, 0});
    const ObjectRef array = code == 4104 ? host->array(code, {"a"s}) : host->array(code, {date});
    const Lines asked = traced([&] { EXPECT_NE(catching([&] { converted(array); }), nullptr); });
    ASSERT_GE(asked.size(), 2U);
    EXPECT_EQ(asked.at(asked.size() - 2), "-[NSMutableArray addObject:]");
    EXPECT_EQ(asked.back(), code == 4104 ? "REALUnlockString" : "REALUnlockObject");
    EXPECT_EQ(host->references(date.handle()), code == 4104 ? 1 : 2);
  }
}

// What the host gives for an element: the only reference on a host object that owns a native one.
ObjectRef onlyOwner;

TEST_F(VariantArraysTest, AnObjectThatDiesWithItsElementOutlivesItInTheList) {
  provideFamily();
  family->provideObjectClass("NSColorZEL");
  onlyOwner = family->objectOf("NSColorZEL", Foundation::asObject(foundation.string("red")));
  foundation.drainPool();
  const ObjectRef array = host->array(4105, {std::monostate{}});
  intercept("RuntimeArrayDirectGetGetProc", [](REALarray) {
    return +[](REALarray, std::int32_t, REALobject* element) { *element = onlyOwner.release(); };
  });
  EXPECT_EQ(toNative(array), R"(("red"))");
}

// Where the host puts the elements of an array while one of them is being read.
REALstring elementsInPlace[1];

TEST_F(VariantArraysTest, StorageThatAppearsWhileAnElementIsReadChangesNothing) {
  startHost({.version = 2013.9, .arraysWithStorage = false});
  static void (*readString)(REALarray, std::int32_t, REALstring*) = nullptr;
  intercept("RuntimeArrayDirectGetGetProc", [](REALarray array) {
    readString = callHost<decltype(readString)>("RuntimeArrayDirectGetGetProc", array);
    return +[](REALarray read, std::int32_t index, REALstring* element) {
      readString(read, index, element);
      elementsInPlace[0] = *element;
      reinterpret_cast<HostArrayRecord*>(read)->storage = elementsInPlace;
    };
  });
  const ObjectRef array = host->array(4104, {"a"s});
  host->clearRecords();
  EXPECT_EQ(toNative(array), R"(("a"))");
  EXPECT_EQ(host->calls("REALLockString"), 0);
  EXPECT_EQ(host->calls("REALUnlockString"), 1);
}

}  // namespace
}  // namespace zel
