// Single values by key, as the host calls for them.
#include <algorithm>
#include <cmath>
#include <limits>

#include "native/exceptions.h"
#include "plugin/methods.h"
#include "tests/support/plugin_test.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests
using namespace std::string_literals;

const char* const kClass = "NSUserDefaultsZEL";

class ScalarsTest : public PluginTest {
 protected:
  void SetUp() override {
    PluginTest::SetUp();
    provideFamily();
    useNewObject();
  }
  void TearDown() override {
    defaults.reset();
    PluginTest::TearDown();
  }
  void useNewObject() {
    defaults = host->construct(kClass);
    host->clearRecords();
    foundation.clearRecords();
  }
  Value get(const std::string& getter, const std::string& key = "key") {
    return ask(defaults, getter, {key});
  }
  void set(const std::string& setter, const Value& value, const std::string& key = "key") {
    EXPECT_EQ(ask(defaults, setter, {key, value}), Value());
  }

  ObjectRef defaults;
};

// --- every getter

struct GetterCase {
  const char* method;
  const char* selector;
  Value nothing;
  bool asksFirst;  // whether the object knows the message
};

void PrintTo(const GetterCase& row, std::ostream* out) { *out << row.method; }

class GetterTest : public ScalarsTest, public testing::WithParamInterface<GetterCase> {
 protected:
  Lines expectedMessages() {
    Lines sent;
    if (GetParam().asksFirst) sent.emplace_back("-[NSUserDefaults respondsToSelector:]");
    sent.push_back("-[NSUserDefaults "s + GetParam().selector + "]");
    return sent;
  }
};

TEST_P(GetterTest, GivesTheDefaultForAKeyThatIsNotSet) {
  EXPECT_EQ(get(GetParam().method), GetParam().nothing);
}

TEST_P(GetterTest, SendsItsMessage) {
  get(GetParam().method);
  EXPECT_EQ(sentToDefaults(), expectedMessages());
}

TEST_P(GetterTest, ReportsAnExceptionAndGivesTheDefault) {
  foundation.addMethod("NSUserDefaults", GetParam().selector, [](id, SEL, CFStringRef) {
    objc_exception_throw(
        foundation_double::Foundation::shared().exception("Broken", "Store damaged."));
  });
  const Outcome outcome = host->call(defaults, GetParam().method, {"key"s});
  EXPECT_EQ(outcome.value, GetParam().nothing);
  EXPECT_EQ(outcome.raised, (Raised{"NSExceptionZEL", "Store damaged.", 0}));
  EXPECT_EQ(outcome.raisedCount, 1);
  EXPECT_EQ(foundation.log(), Lines{"A Broken: Store damaged., Info: (null)\n"});
}

TEST_P(GetterTest, LetsFoundationRejectAnEmptyKey) {
  const Outcome outcome = host->call(defaults, GetParam().method, {""s});
  EXPECT_EQ(outcome.value, GetParam().nothing);
  EXPECT_EQ(outcome.raised.value_or(Raised{}).className, "NSExceptionZEL");
  EXPECT_EQ(sentToDefaults(), expectedMessages());
}

TEST_P(GetterTest, ConvertsTheKeyOnceAndKeepsNothing) {
  get(GetParam().method);
  EXPECT_EQ(host->calls("REALGetStringCFString"), 1);
  EXPECT_EQ(host->calls("REALLockString"), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Getters, GetterTest,
    testing::Values(GetterCase{"integerForKey", "integerForKey:", std::int32_t{0}, false},
                    GetterCase{"floatForKey", "floatForKey:", 0.0F, false},
                    GetterCase{"doubleForKey", "doubleForKey:", 0.0, true},
                    GetterCase{"boolForKey", "boolForKey:", std::int8_t{0}, false},
                    GetterCase{"stringForKey", "stringForKey:", ""s, false},
                    GetterCase{"URLForKey", "URLForKey:", ""s, false}),
    [](const auto& row) { return row.param.method; });

// --- every setter

struct SetterCase {
  const char* getter;
  const char* setter;
  const char* selector;
  Value value;
  bool asksFirst;
};

void PrintTo(const SetterCase& row, std::ostream* out) { *out << row.setter; }

class SetterTest : public ScalarsTest, public testing::WithParamInterface<SetterCase> {
 protected:
  Lines expectedMessages() {
    Lines sent;
    if (GetParam().asksFirst) sent.emplace_back("-[NSUserDefaults respondsToSelector:]");
    sent.push_back("-[NSUserDefaults "s + GetParam().selector + "]");
    return sent;
  }
};

TEST_P(SetterTest, StoresWhatTheGetterReads) {
  set(GetParam().setter, GetParam().value);
  EXPECT_EQ(get(GetParam().getter), GetParam().value);
}

TEST_P(SetterTest, CanBeReachedByAssigningToTheGetter) {
  EXPECT_TRUE(host->assignable(kClass, GetParam().getter));
  const Outcome outcome = host->assign(defaults, GetParam().getter, {"key"s}, GetParam().value);
  EXPECT_EQ(outcome.raised, std::nullopt);
  EXPECT_EQ(sentToDefaults(), expectedMessages());
  EXPECT_EQ(get(GetParam().getter), GetParam().value);
}

TEST_P(SetterTest, SendsItsMessage) {
  set(GetParam().setter, GetParam().value);
  EXPECT_EQ(sentToDefaults(), expectedMessages());
}

TEST_P(SetterTest, ReportsAnExceptionAndStoresNothing) {
  foundation.throwAtMessage(GetParam().asksFirst ? 3 : 2);  // after the key's autorelease
  const Outcome outcome = host->call(defaults, GetParam().setter, {"key"s, GetParam().value});
  EXPECT_EQ(outcome.raised, (Raised{"NSExceptionZEL", "told to fail", 0}));
  EXPECT_EQ(foundation.log(), Lines{"A TestException: told to fail, Info: (null)\n"});
  EXPECT_NE(get(GetParam().getter), GetParam().value);
}

TEST_P(SetterTest, LetsFoundationRejectAnEmptyKey) {
  const Outcome outcome = host->call(defaults, GetParam().setter, {""s, GetParam().value});
  EXPECT_EQ(outcome.raised.value_or(Raised{}).className, "NSExceptionZEL");
  EXPECT_EQ(sentToDefaults(), expectedMessages());
}

INSTANTIATE_TEST_SUITE_P(
    Setters, SetterTest,
    testing::Values(
        SetterCase{"integerForKey", "setIntegerValue", "setInteger:forKey:", std::int32_t{-42},
                   false},
        SetterCase{"floatForKey", "setFloatValue", "setFloat:forKey:", 1.25F, false},
        SetterCase{"doubleForKey", "setDoubleValue", "setDouble:forKey:", 0.1, true},
        SetterCase{"boolForKey", "setBoolValue", "setBool:forKey:", std::int8_t{1}, false},
        SetterCase{"stringForKey", "setStringValue", "setObject:forKey:", "Grüße, 世界"s, false},
        SetterCase{"URLForKey", "setURLValue", "setURL:forKey:", "https://example.com/a?b=c#d"s,
                   false}),
    [](const auto& row) { return row.param.setter; });

// --- numbers at their limits

TEST_F(ScalarsTest, IntegersKeepEveryBit) {
  for (const std::int32_t value : {std::numeric_limits<std::int32_t>::min(), -1, 0, 1,
                                   std::numeric_limits<std::int32_t>::max()}) {
    set("setIntegerValue", value);
    EXPECT_EQ(get("integerForKey"), Value(value));
  }
}

TEST_F(ScalarsTest, SinglesKeepEveryBit) {
  for (const float value :
       {-0.0F, 0.1F, std::numeric_limits<float>::max(), std::numeric_limits<float>::denorm_min(),
        std::numeric_limits<float>::infinity()}) {
    set("setFloatValue", value);
    const auto back = std::get<float>(get("floatForKey"));
    EXPECT_EQ(back, value);
    EXPECT_EQ(std::signbit(back), std::signbit(value));
  }
}

TEST_F(ScalarsTest, DoublesKeepEveryBit) {
  for (const double value :
       {-0.0, 0.1, std::numeric_limits<double>::max(), std::numeric_limits<double>::denorm_min(),
        -std::numeric_limits<double>::infinity()}) {
    set("setDoubleValue", value);
    const auto back = std::get<double>(get("doubleForKey"));
    EXPECT_EQ(back, value);
    EXPECT_EQ(std::signbit(back), std::signbit(value));
  }
}

// --- Foundations without messages for doubles

TEST_F(ScalarsTest, WithoutDoublesASingleIsReadAndWidened) {
  set("setFloatValue", 0.1F);
  foundation.hideSelector("NSUserDefaults", "doubleForKey:");
  foundation.clearRecords();
  EXPECT_EQ(get("doubleForKey"), Value(0.100000001490116119384765625));
  EXPECT_EQ(sentToDefaults(),
            (Lines{"-[NSUserDefaults respondsToSelector:]", "-[NSUserDefaults floatForKey:]"}));
  EXPECT_EQ(foundation.log(), Lines{});
}

TEST_F(ScalarsTest, WithoutDoublesASingleIsStored) {
  foundation.hideSelector("NSUserDefaults", "setDouble:forKey:");
  set("setDoubleValue", 0.1);
  EXPECT_EQ(sentToDefaults(),
            (Lines{"-[NSUserDefaults respondsToSelector:]", "-[NSUserDefaults setFloat:forKey:]"}));
  EXPECT_EQ(get("floatForKey"), Value(0.1F));
  EXPECT_EQ(get("doubleForKey"), Value(0.100000001490116119384765625));
  EXPECT_EQ(foundation.log(), Lines{});
}

TEST_F(ScalarsTest, NarrowingRoundsToTheNearestSingle) {
  foundation.hideSelector("NSUserDefaults", "setDouble:forKey:");
  set("setDoubleValue", 16777217.0);  // halfway between two singles: the even one
  EXPECT_EQ(get("floatForKey"), Value(16777216.0F));
  set("setDoubleValue", 16777219.0);
  EXPECT_EQ(get("floatForKey"), Value(16777220.0F));
}

// --- booleans

TEST_F(ScalarsTest, BooleanBytesPassUnchangedBothWays) {
  for (const int number : {0, 1, 2, 7, 127, -1, -128}) {
    const auto byte = static_cast<std::int8_t>(number);
    set("setBoolValue", byte);
    EXPECT_EQ(get("boolForKey"), Value(byte));
  }
}

// --- strings

TEST_F(ScalarsTest, AnEmptyTextIsHandedOnAsNil) {
  static CFStringRef handed = nullptr;
  handed = foundation.string("not nil");
  foundation.addMethod("NSUserDefaults", "setObject:forKey:",
                       [](id, SEL, CFStringRef value, CFStringRef) { handed = value; });
  set("setStringValue", ""s);
  EXPECT_EQ(handed, nullptr);
}

TEST_F(ScalarsTest, AStringAndItsKeyKeepTheirEncodings) {
  EXPECT_EQ(ask(defaults, "setStringValue",
                {Text("Schl\xFCssel", 0x201), Text("caf\x8E", zel::kNoEncoding)}),
            Value());
  EXPECT_EQ(get("stringForKey", "Schlüssel"), Value("café"s));
}

TEST_F(ScalarsTest, AKeyIsConvertedBeforeAValue) {
  host->answerNull("REALGetStringCFString");  // so that the bytes of each are read
  set("setStringValue", "value"s, "k");
  EXPECT_EQ(foundation.calls(), (Lines{"CFStringCreateWithCString", "CFStringCreateWithCString"}));
  EXPECT_EQ(get("stringForKey", "k"), Value("value"s));
  EXPECT_EQ(get("stringForKey", "value"), Value(""s));
}

// --- URLs

TEST_F(ScalarsTest, AUrlIsReadAsItsAbsoluteText) {
  set("setURLValue", "http://example.com/%C3%A9?q=1"s);
  foundation.clearRecords();
  EXPECT_EQ(get("URLForKey"), Value("http://example.com/%C3%A9?q=1"s));
  EXPECT_EQ(std::count(foundation.messages().begin(), foundation.messages().end(),
                       "-[NSURL absoluteString]"),
            1);
}

class NilUrlTest : public ScalarsTest, public testing::WithParamInterface<std::string> {
 protected:
  void SetUp() override {
    ScalarsTest::SetUp();
    foundation.addMethod("NSUserDefaults", "setURL:forKey:",
                         [](id, SEL, CFURLRef url, CFStringRef) { handed = url; });
    handed = reinterpret_cast<CFURLRef>(&handed);
  }
  static inline CFURLRef handed = nullptr;
};

TEST_P(NilUrlTest, IsHandedOnAsNil) {
  set("setURLValue", GetParam());
  EXPECT_EQ(handed, nullptr);
  EXPECT_EQ(sentToDefaults(), Lines{"-[NSUserDefaults setURL:forKey:]"});
}

INSTANTIATE_TEST_SUITE_P(Texts, NilUrlTest,
                         testing::Values("", "no url at all", "http://example.com/%zz"));

TEST_F(ScalarsTest, ATextThatCannotBeConvertedIsHandedOnAsNilUrl) {
  host->answerNull("REALGetStringCFString");
  EXPECT_EQ(ask(defaults, "setURLValue", {"key"s, Text("\xFF\xFE", 0x08000100)}), Value());
  EXPECT_EQ(foundation.calls(), (Lines{"CFStringCreateWithCString", "CFStringCreateWithCString"}));
  EXPECT_EQ(get("URLForKey"), Value(""s));
}

TEST_F(ScalarsTest, TheTextOfAUrlIsGivenBackWhenAnExceptionPasses) {
  foundation.throwAtCall("CFURLCreateWithString");
  const Outcome outcome = host->call(defaults, "setURLValue", {"key"s, "http://example.com"s});
  EXPECT_EQ(outcome.raised, (Raised{"NSExceptionZEL", "told to fail", 0}));
  EXPECT_EQ(std::count(foundation.calls().begin(), foundation.calls().end(), "CFRelease"), 1);
}

TEST_F(ScalarsTest, AUrlWithoutTextGivesTheEmptyString) {
  set("setURLValue", "http://example.com"s);
  foundation.addMethod("NSURL", "absoluteString", [](id, SEL) -> id { return nullptr; });
  EXPECT_EQ(get("URLForKey"), Value(""s));
}

// --- the deliberate mismatch of names

TEST_F(ScalarsTest, TheHostsNamesAreNotTheSelectors) {
  EXPECT_THROW(host->call(defaults, "setInteger", {"key"s, std::int32_t{1}}),
               std::invalid_argument);
  EXPECT_THROW(host->call(defaults, "setObject", {"key"s, "text"s}), std::invalid_argument);
  EXPECT_THROW(host->call(defaults, "setIntegerForKey", {"key"s, std::int32_t{1}}),
               std::invalid_argument);
}

}  // namespace
}  // namespace zel
