// Values that are objects, by key, as the host calls for them.
#include <algorithm>
#include <functional>
#include <limits>

#include "native/exceptions.h"
#include "plugin/methods.h"
#include "tests/support/plugin_test.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests
using namespace std::string_literals;

const char* const kClass = "NSUserDefaultsZEL";

class ObjectsTest : public PluginTest {
 protected:
  void SetUp() override {
    PluginTest::SetUp();
    useHost({});
  }
  void TearDown() override {
    defaults.reset();
    PluginTest::TearDown();
  }
  void useHost(const HostOptions& options) {
    defaults.reset();
    startHost(options);
    foundation.makeFile("/folder/file.txt");
    provideFamily();
    defaults = host->construct(kClass);
    host->clearRecords();
    foundation.clearRecords();
  }
  std::string get(const std::string& getter, const std::string& key = "key") {
    return host->describe(ask(defaults, getter, {key}));
  }
  void set(const std::string& setter, const Value& value, const std::string& key = "key") {
    EXPECT_EQ(ask(defaults, setter, {key, value}), Value());
  }
  // What the next setObject:forKey: is handed, instead of being stored.
  void catchStored() {
    stored = "nothing was stored";
    foundation.addMethod("NSUserDefaults", "setObject:forKey:", [](id, SEL, id value, CFStringRef) {
      stored = foundation_double::Foundation::shared().describe(value);
    });
    foundation.addMethod("NSUserDefaults", "setURL:forKey:", [](id, SEL, id value, CFStringRef) {
      stored = foundation_double::Foundation::shared().describe(value);
    });
  }

  ObjectRef defaults;
  static inline std::string stored;
};

// --- every getter

struct GetterCase {
  const char* method;
  const char* selector;
  const char* nothing;  // for a key that isn't set, and after an exception
};

void PrintTo(const GetterCase& row, std::ostream* out) { *out << row.method; }

class ObjectGetterTest : public ObjectsTest, public testing::WithParamInterface<GetterCase> {};

TEST_P(ObjectGetterTest, GivesTheDefaultForAKeyThatIsNotSet) {
  EXPECT_EQ(get(GetParam().method), GetParam().nothing);
  EXPECT_EQ(sentToDefaults(), Lines{"-[NSUserDefaults "s + GetParam().selector + "]"});
}

TEST_P(ObjectGetterTest, ReportsAnExceptionAndGivesTheDefault) {
  foundation.addMethod("NSUserDefaults", GetParam().selector, [](id, SEL, CFStringRef) {
    objc_exception_throw(
        foundation_double::Foundation::shared().exception("Broken", "Store damaged."));
  });
  const Outcome outcome = host->call(defaults, GetParam().method, {"key"s});
  EXPECT_EQ(host->describe(outcome.value), GetParam().nothing);
  EXPECT_EQ(outcome.raised, (Raised{"NSExceptionZEL", "Store damaged.", 0}));
  EXPECT_EQ(foundation.log(), Lines{"A Broken: Store damaged., Info: (null)\n"});
}

TEST_P(ObjectGetterTest, LetsFoundationRejectAnEmptyKey) {
  const Outcome outcome = host->call(defaults, GetParam().method, {""s});
  EXPECT_EQ(host->describe(outcome.value), GetParam().nothing);
  EXPECT_EQ(outcome.raised.value_or(Raised{}).className, "NSExceptionZEL");
}

INSTANTIATE_TEST_SUITE_P(Getters, ObjectGetterTest,
                         testing::Values(GetterCase{"dataForKey", "dataForKey:", "nil"},
                                         GetterCase{"variantForKey", "objectForKey:", "nil"},
                                         GetterCase{"fileForKey", "URLForKey:", "nil"},
                                         GetterCase{"stringArrayForKey",
                                                    "stringArrayForKey:", "[]"},
                                         GetterCase{"dictionaryForKey", "dictionaryForKey:", "nil"},
                                         GetterCase{"arrayForKey", "arrayForKey:", "[]"}),
                         [](const auto& row) { return row.param.method; });

// --- every setter

struct SetterCase {
  const char* getter;
  const char* setter;
  const char* selector;
  std::function<Value(Host&)> value;
  const char* stored;
  const char* read;
  bool assignable;
};

void PrintTo(const SetterCase& row, std::ostream* out) { *out << row.setter; }

class ObjectSetterTest : public ObjectsTest, public testing::WithParamInterface<SetterCase> {
 protected:
  Value value() { return GetParam().value(*host); }
};

TEST_P(ObjectSetterTest, StoresWhatTheGetterReads) {
  set(GetParam().setter, value());
  EXPECT_EQ(get(GetParam().getter), GetParam().read);
}

TEST_P(ObjectSetterTest, SendsItsMessage) {
  set(GetParam().setter, value());
  EXPECT_EQ(sentToDefaults(), Lines{"-[NSUserDefaults "s + GetParam().selector + "]"});
}

TEST_P(ObjectSetterTest, ListsCannotBeAssignedTo) {
  EXPECT_EQ(host->assignable(kClass, GetParam().getter), GetParam().assignable);
  if (!GetParam().assignable) return;
  EXPECT_EQ(host->assign(defaults, GetParam().getter, {"key"s}, value()).raised, std::nullopt);
  EXPECT_EQ(get(GetParam().getter), GetParam().read);
}

TEST_P(ObjectSetterTest, ReportsAnExceptionAndStoresNothing) {
  foundation.addMethod("NSUserDefaults", GetParam().selector, [](id, SEL, id, CFStringRef) {
    objc_exception_throw(
        foundation_double::Foundation::shared().exception("Broken", "Store damaged."));
  });
  const Outcome outcome = host->call(defaults, GetParam().setter, {"key"s, value()});
  EXPECT_EQ(outcome.raised, (Raised{"NSExceptionZEL", "Store damaged.", 0}));
}

TEST_P(ObjectSetterTest, HandsOnNilForNothing) {
  catchStored();
  set(GetParam().setter, ObjectRef());
  EXPECT_EQ(stored, "nil");
}

TEST_P(ObjectSetterTest, ConvertsTheKeyBeforeTheValue) {
  const Value converted = value();
  host->clearRecords();
  foundation.clearRecords();
  host->call(defaults, GetParam().setter, {"key"s, converted});
  ASSERT_FALSE(host->sequence().empty());
  EXPECT_EQ(host->sequence().at(0), "REALGetStringCFString");
}

INSTANTIATE_TEST_SUITE_P(
    Setters, ObjectSetterTest,
    testing::Values(
        SetterCase{"dataForKey", "setDataValue",
                   "setObject:forKey:", [](Host& host) { return host.memoryBlock("ab"); }, "<6162>",
                   "MemoryBlock 6162", true},
        SetterCase{"variantForKey", "setVariantValue", "setObject:forKey:",
                   [](Host& host) { return host.variant(std::int32_t{5}); }, "5", "Int32 5", true},
        SetterCase{"fileForKey", "setFileValue",
                   "setURL:forKey:", [](Host& host) { return host.folderItem("/folder/file.txt"); },
                   "", "FolderItem /folder/file.txt", true},
        SetterCase{"stringArrayForKey", "setStringArrayValue", "setObject:forKey:",
                   [](Host& host) {
                     return host.array(Host::kStringElements, {"a"s, "b"s});
                   },
                   "(\"a\", \"b\")", R"(["a", "b"])", false},
        SetterCase{"dictionaryForKey", "setDictionaryValue", "setObject:forKey:",
                   [](Host& host) {
                     return host.dictionary({{"a"s, std::int32_t{1}}});
                   },
                   R"({"a" = 1})", R"({"a": Int32 1})", true},
        SetterCase{"arrayForKey", "setArrayValue", "setObject:forKey:",
                   [](Host& host) {
                     return host.array(Host::kObjectElements, {std::int32_t{1}, "b"s});
                   },
                   R"((1, "b"))", R"([Int32 1, "b"])", false}),
    [](const auto& row) { return row.param.setter; });

// --- lists that are given

TEST_F(ObjectsTest, AHostThatMakesNoArraysGetsNothingAndHasNothingInserted) {
  set("setStringArrayValue", host->array(Host::kStringElements, {"a"s, "b"s}));
  host->clearRecords();
  host->hide("RuntimeArrayCreateSingleDimBoundedArray");
  EXPECT_EQ(get("stringArrayForKey"), "nil");
  EXPECT_EQ(get("arrayForKey"), "nil");
  host->unhide("RuntimeArrayCreateSingleDimBoundedArray");
  host->answerNull("RuntimeArrayCreateSingleDimBoundedArray");
  EXPECT_EQ(get("stringArrayForKey"), "nil");
  EXPECT_EQ(get("arrayForKey"), "nil");
  EXPECT_EQ(host->calls("RuntimeArrayDirectGetInsertProc"), 0);
  EXPECT_EQ(host->calls("REALBuildString"), 0);
  EXPECT_EQ(host->calls("StringToVariant"), 0);
}

TEST_F(ObjectsTest, AListIsMadeBeforeAnythingElse) {
  get("stringArrayForKey");
  EXPECT_EQ(host->sequence().at(0), "RuntimeArrayCreateSingleDimBoundedArray");
  host->clearRecords();
  get("arrayForKey");
  EXPECT_EQ(host->sequence().at(0), "RuntimeArrayCreateSingleDimBoundedArray");
}

TEST_F(ObjectsTest, APartlyFilledListIsStillGivenAfterAnException) {
  foundation.addMethod("NSUserDefaults", "arrayForKey:", [](id, SEL, CFStringRef) {
    auto& kit = foundation_double::Foundation::shared();
    const id list = kit.array({kit.number("i", 1), kit.object("Poison"), kit.number("i", 3)});
    return list;
  });
  foundation.addClass("Poison", "NSObject");
  foundation.addMethod("Poison", "isKindOfClass:", [](id, SEL, Class*) -> BOOL {
    objc_exception_throw(foundation_double::Foundation::shared().exception("Bad", "Poisoned."));
  });
  const Outcome outcome = host->call(defaults, "arrayForKey", {"key"s});
  EXPECT_EQ(host->describe(outcome.value), "[Int32 1]");
  EXPECT_EQ(outcome.raised, (Raised{"NSExceptionZEL", "Poisoned.", 0}));
}

TEST_F(ObjectsTest, AnElementThatBecomesNothingKeepsItsPlace) {
  foundation.addMethod("NSUserDefaults", "arrayForKey:", [](id, SEL, CFStringRef) {
    auto& kit = foundation_double::Foundation::shared();
    return kit.array({kit.number("i", 1), kit.object("NSObject"), kit.number("i", 3)});
  });
  EXPECT_EQ(get("arrayForKey"), "[Int32 1, nil, Int32 3]");
}

TEST_F(ObjectsTest, WithoutInsertionTheListStaysEmpty) {
  set("setArrayValue", host->array(Host::kObjectElements, {std::int32_t{1}}));
  host->hide("RuntimeArrayDirectGetInsertProc");
  EXPECT_EQ(get("arrayForKey"), "[]");
}

// --- lists that are taken, in hosts whose arrays are read in place and in others

struct ArrayHost {
  double version;
  bool storage;
  bool inPlace;
};

class ListTest : public ObjectsTest, public testing::WithParamInterface<ArrayHost> {
 protected:
  void SetUp() override {
    ObjectsTest::SetUp();
    useHost({.version = GetParam().version, .arraysWithStorage = GetParam().storage});
    catchStored();
  }
  std::string storedStrings(const std::vector<Value>& elements) {
    set("setStringArrayValue", host->array(Host::kStringElements, elements));
    return stored;
  }
  std::string storedVariants(const std::vector<Value>& elements) {
    set("setArrayValue", host->array(Host::kObjectElements, elements));
    return stored;
  }
};

constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

INSTANTIATE_TEST_SUITE_P(
    Hosts, ListTest,
    testing::Values(ArrayHost{2011.04, true, true}, ArrayHost{2013.9, true, true},
                    ArrayHost{2013.9, false, false}, ArrayHost{2013.91, true, false},
                    ArrayHost{kNoNumber, true, true}, ArrayHost{kNoNumber, false, false},
                    ArrayHost{2014.0, true, false}));

TEST_P(ListTest, ElementsAreReadInPlaceUpToHost20139) {
  EXPECT_EQ(storedStrings({"a"s, "b"s}), R"(("a", "b"))");
  EXPECT_EQ(host->calls("RuntimeDirectReadStringArray"), GetParam().inPlace ? 0 : 2);
  EXPECT_EQ(host->calls("REALLockString"), GetParam().inPlace ? 2 : 0);
  EXPECT_EQ(storedVariants({std::int32_t{1}, "b"s}), R"((1, "b"))");
  EXPECT_EQ(host->calls("RuntimeDirectReadObjectArray"), GetParam().inPlace ? 0 : 2);
  EXPECT_EQ(host->calls("REALLockObject"), GetParam().inPlace ? 2 : 0);
}

TEST_P(ListTest, EmptyTextsAreLeftOut) {
  EXPECT_EQ(storedStrings({"a"s, ""s, "c"s, ""s}), R"(("a", "c"))");
  EXPECT_EQ(storedStrings({""s}), "()");
}

TEST_P(ListTest, WhatCannotBeConvertedIsLeftOut) {
  EXPECT_EQ(
      storedVariants({std::int32_t{1}, std::monostate{}, host->memoryBlock(""), std::int32_t{2}}),
      "(1, 2)");
}

TEST_P(ListTest, AnEmptyArrayIsAnEmptyList) {
  EXPECT_EQ(storedStrings({}), "()");
  EXPECT_EQ(storedVariants({}), "()");
}

TEST_P(ListTest, NoArrayIsNil) {
  set("setStringArrayValue", ObjectRef());
  EXPECT_EQ(stored, "nil");
  set("setArrayValue", ObjectRef());
  EXPECT_EQ(stored, "nil");
}

TEST_P(ListTest, ElementsAreGivenBackWhenAnExceptionPasses) {
  const ObjectRef array = host->array(Host::kObjectElements, {std::int32_t{1}, std::int32_t{2}});
  for (long n = 2; n < 7; ++n) {
    SCOPED_TRACE(n);
    foundation.throwAtMessage(n);
    EXPECT_TRUE(host->call(defaults, "setArrayValue", {"key"s, array}).raised.has_value());
  }
}

TEST_F(ObjectsTest, AListIsMadeWithTheCapacityThatItNeeds) {
  static std::optional<NSUInteger> capacity;
  foundation.addMethod("NSUserDefaults", "setObject:forKey:", [](id, SEL, id value, CFStringRef) {
    capacity = foundation_double::Foundation::shared().capacity(value);
  });
  set("setStringArrayValue", host->array(Host::kStringElements, {"a"s, "b"s, "c"s}));
  EXPECT_EQ(capacity, std::optional<NSUInteger>(3));
  set("setArrayValue", host->array(Host::kObjectElements, {}));
  EXPECT_EQ(capacity, std::optional<NSUInteger>(0));
}

TEST_F(ObjectsTest, AListThatCannotBeMadeIsNil) {
  catchStored();
  foundation.addClassMethod(
      "NSMutableArray", "arrayWithCapacity:", [](id, SEL, NSUInteger) -> id { return nullptr; });
  host->clearRecords();
  set("setStringArrayValue", host->array(Host::kStringElements, {"a"s}));
  EXPECT_EQ(stored, "nil");
  EXPECT_EQ(host->calls("REALGetStringCFString"), 1);  // the key's: no element is converted
}

TEST_F(ObjectsTest, WithoutUpperBoundsOneElementIsRead) {
  catchStored();
  host->hide("RuntimeUBound");
  set("setStringArrayValue", host->array(Host::kStringElements, {"a"s, "b"s}));
  EXPECT_EQ(stored, R"(("a"))");
}

TEST_F(ObjectsTest, ElementsThatTheHostCannotReadAreSkipped) {
  catchStored();
  host->hide("RuntimeDirectReadStringArray");
  host->hide("RuntimeDirectReadObjectArray");
  set("setStringArrayValue", host->array(Host::kStringElements, {"a"s, "b"s}));
  EXPECT_EQ(stored, "()");
  set("setArrayValue", host->array(Host::kObjectElements, {std::int32_t{1}}));
  EXPECT_EQ(stored, "()");
}

// --- files

TEST_F(ObjectsTest, AStoredWebAddressIsNoFile) {
  set("setURLValue", "http://example.com/"s);
  EXPECT_EQ(get("fileForKey"), "nil");
}

TEST_F(ObjectsTest, AFileThatDoesNotExistYetIsStoredToo) {
  set("setFileValue", host->folderItem("/folder/new.txt"));
  EXPECT_EQ(get("fileForKey"), "FolderItem /folder/new.txt");
  EXPECT_EQ(host->describe(ask(defaults, "URLForKey", {"key"s})), "\"file:///folder/new.txt\"");
}

// --- variants

TEST_F(ObjectsTest, AnyKindOfValueGoesThroughAVariant) {
  const struct {
    Value value;
    const char* read;
  } rows[] = {
      {host->variant("text"s), "\"text\""},
      {host->variant(0.5), "Double 0.5"},
      {host->variant(std::int8_t{1}), "true"},
      {host->memoryBlock("ab"), "MemoryBlock 6162"},
      {host->date({2001, 1, 2, 3, 4, 5}), "Date 2001-01-02 03:04:05"},
      {host->dictionary({{"a"s, host->array(Host::kStringElements, {"x"s})}}), R"({"a": ["x"]})"},
      {host->array(Host::kObjectElements, {std::int64_t{1} << 40}), "[Int64 1099511627776]"}};
  for (const auto& row : rows) {
    set("setVariantValue", row.value);
    EXPECT_EQ(get("variantForKey"), row.read);
  }
}

TEST_F(ObjectsTest, TheHostsNamesAreNotTheSelectors) {
  EXPECT_THROW(host->call(defaults, "objectForKey", {"key"s}), std::invalid_argument);
  EXPECT_THROW(host->call(defaults, "setObjectValue", {"key"s, host->variant(0.5)}),
               std::invalid_argument);
}

}  // namespace
}  // namespace zel
