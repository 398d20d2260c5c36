// Values by key through the built plugin, in every host.
#include <cmath>
#include <limits>

#include "tests/end_to_end/end_to_end_test.h"

namespace tests {
namespace {

using namespace std::string_literals;

class ValuesTest : public DefaultsTest {
 protected:
  Value get(const std::string& getter, const std::string& key) {
    return ask(defaults, getter, {key});
  }
  void set(const std::string& setter, const std::string& key, const Value& value) {
    EXPECT_EQ(ask(defaults, setter, {key, value}), Value());
  }
};

INSTANTIATE_TEST_SUITE_P(Hosts, ValuesTest, testing::ValuesIn(amongThese(kHostVersions)));

TEST_P(ValuesTest, Integers) {
  for (const std::int32_t value : {std::numeric_limits<std::int32_t>::min(), -1, 0, 1, 42,
                                   std::numeric_limits<std::int32_t>::max()}) {
    set("setIntegerValue", "integer", value);
    EXPECT_EQ(get("integerForKey", "integer"), Value(value));
  }
}

TEST_P(ValuesTest, Singles) {
  for (const float value : {-1.5F, 0.0F, 0.1F, 3.4e38F, 1e-38F}) {
    set("setFloatValue", "single", value);
    EXPECT_EQ(get("floatForKey", "single"), Value(value));
  }
}

TEST_P(ValuesTest, Doubles) {
  for (const double value : {-1.5, 0.0, 0.1, 1e300, -1e-300}) {
    set("setDoubleValue", "double", value);
    EXPECT_EQ(get("doubleForKey", "double"), Value(value));
  }
}

TEST_P(ValuesTest, Booleans) {
  set("setBoolValue", "boolean", std::int8_t{1});
  EXPECT_EQ(get("boolForKey", "boolean"), Value(std::int8_t{1}));
  set("setBoolValue", "boolean", std::int8_t{0});
  EXPECT_EQ(get("boolForKey", "boolean"), Value(std::int8_t{0}));
}

TEST_P(ValuesTest, Strings) {
  for (const std::string& value :
       {"plain"s, "Grüße, 世界 🎈"s, std::string(99, 'x'), std::string(100, 'y'),
        "e\xCC\x81 and \xC3\xA9"s, std::string(100000, 'z')}) {
    set("setStringValue", "string", value);
    EXPECT_EQ(get("stringForKey", "string"), Value(value));
  }
}

TEST_P(ValuesTest, Urls) {
  for (const std::string& value : {"https://example.com/caf%C3%A9?q=1#part"s,
                                   "mailto:somebody@example.com"s, "ftp://example.com/"s}) {
    set("setURLValue", "url", value);
    EXPECT_EQ(get("URLForKey", "url"), Value(value));
  }
}

TEST_P(ValuesTest, KeysOfEveryScript) {
  for (const std::string& key : {"ключ"s, "鍵"s, "🔑"s, "a key with spaces"s}) {
    set("setIntegerValue", key, std::int32_t{7});
    EXPECT_EQ(get("integerForKey", key), Value(std::int32_t{7}));
    set("setStringValue", key, ""s);  // GNUstep can't write every one of them to disk
  }
}

TEST_P(ValuesTest, KeysInOtherEncodings) {
  set("setIntegerValue", "Schlüssel", std::int32_t{8});
  EXPECT_EQ(ask(defaults, "integerForKey", {Text("Schl\xFCssel", 0x201)}), Value(std::int32_t{8}));
  EXPECT_EQ(ask(defaults, "integerForKey", {Text("Schl\x9Fssel", 0)}), Value(std::int32_t{8}));
  EXPECT_EQ(ask(defaults, "integerForKey", {Text("Schl\x9Fssel", 0xFFFF)}), Value(std::int32_t{8}));
}

TEST_P(ValuesTest, KeysThatAreNotSet) {
  EXPECT_EQ(get("integerForKey", "unset"), Value(std::int32_t{0}));
  EXPECT_EQ(get("floatForKey", "unset"), Value(0.0F));
  EXPECT_EQ(get("doubleForKey", "unset"), Value(0.0));
  EXPECT_EQ(get("boolForKey", "unset"), Value(std::int8_t{0}));
  EXPECT_EQ(get("stringForKey", "unset"), Value(""s));
  EXPECT_EQ(get("URLForKey", "unset"), Value(""s));
}

TEST_P(ValuesTest, AssignmentThroughTheGetter) {
  const struct {
    const char* getter;
    Value value;
  } rows[] = {{"integerForKey", std::int32_t{5}},
              {"floatForKey", 0.5F},
              {"doubleForKey", 0.25},
              {"boolForKey", std::int8_t{1}},
              {"stringForKey", "assigned"s},
              {"URLForKey", "http://example.com/assigned"s}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.getter);
    EXPECT_EQ(host->assign(defaults, row.getter, {"assigned"s}, row.value).raised, std::nullopt);
    EXPECT_EQ(get(row.getter, "assigned"), row.value);
  }
}

TEST_P(ValuesTest, AnEmptyTextRemovesTheKey) {
  set("setStringValue", "removed", "text"s);
  set("setStringValue", "removed", ""s);
  EXPECT_EQ(get("stringForKey", "removed"), Value(""s));
}

TEST_P(ValuesTest, ATextThatIsNoUrlRemovesTheKey) {
  set("setURLValue", "noUrl", "http://example.com/"s);
  set("setURLValue", "noUrl", "no url at all"s);
  EXPECT_EQ(get("URLForKey", "noUrl"), Value(""s));
}

TEST_P(ValuesTest, OneTypeIsReadAsAnother) {
  set("setIntegerValue", "number", std::int32_t{3});
  EXPECT_EQ(get("doubleForKey", "number"), Value(3.0));
  EXPECT_EQ(get("boolForKey", "number"), Value(std::int8_t{1}));
  set("setStringValue", "number", "17"s);
  EXPECT_EQ(get("integerForKey", "number"), Value(std::int32_t{17}));
}

TEST_P(ValuesTest, AnEmptyKeyIsAnException) {
  testing::internal::CaptureStderr();
  const Outcome outcome = host->call(defaults, "setIntegerValue", {""s, std::int32_t{1}});
  const std::string log = testing::internal::GetCapturedStderr();
  ASSERT_TRUE(outcome.raised.has_value());
  EXPECT_EQ(outcome.raised->className, "NSExceptionZEL");
  EXPECT_EQ(outcome.raised->errorNumber, 0);
  const std::string reason = outcome.raised->message.value_or("");
  EXPECT_NE(reason, "");
  EXPECT_NE(log.find("A NSInvalidArgumentException: " + reason + ", Info: (null)\n"),
            std::string::npos)
      << log;
}

TEST_P(ValuesTest, AnUnconstructedObjectReadsDefaults) {
  const ObjectRef object = host->make(kClass);
  EXPECT_EQ(ask(object, "integerForKey", {"integer"s}), Value(std::int32_t{0}));
  EXPECT_EQ(ask(object, "floatForKey", {"single"s}), Value(0.0F));
  EXPECT_EQ(ask(object, "doubleForKey", {"double"s}), Value(0.0));
  EXPECT_EQ(ask(object, "stringForKey", {"string"s}), Value(""s));
  EXPECT_EQ(ask(object, "setIntegerValue", {"integer"s, std::int32_t{1}}), Value());
}

TEST_P(ValuesTest, APrivateObjectReadsWhatItStored) {
  EXPECT_EQ(ask(defaults, "synchronize"), Value(std::int8_t{1}));
  const ObjectRef object = host->construct(kClass);
  EXPECT_EQ(ask(object, "setStringValue", {"private"s, "kept"s}), Value());
  EXPECT_EQ(ask(object, "stringForKey", {"private"s}), Value("kept"s));
  EXPECT_EQ(ask(object, "synchronize"), Value(std::int8_t{1}));
  const ObjectRef other = host->construct(kClass);
  EXPECT_EQ(ask(other, "stringForKey", {"private"s}), Value("kept"s));
}

TEST_P(ValuesTest, NothingIsLeftBehindByManyCalls) {
  for (int i = 0; i < 1000; ++i) {
    set("setStringValue", "many", std::to_string(i) + std::string(100, 'x'));
    EXPECT_EQ(get("stringForKey", "many"), Value(std::to_string(i) + std::string(100, 'x')));
  }
}

}  // namespace
}  // namespace tests
