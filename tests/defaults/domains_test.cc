// The store as a whole.
#include <functional>

#include "native/exceptions.h"
#include "plugin/host.h"
#include "plugin/methods.h"
#include "tests/support/intercept.h"
#include "tests/support/plugin_test.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests
using namespace std::string_literals;

const char* const kClass = "NSUserDefaultsZEL";

class DomainsTest : public PluginTest {
 protected:
  void SetUp() override {
    PluginTest::SetUp();
    provideFamily();
    defaults = host->construct(kClass);
    host->clearRecords();
    foundation.clearRecords();
  }
  void TearDown() override {
    defaults.reset();
    PluginTest::TearDown();
  }
  std::string call(const std::string& method, const std::vector<Value>& arguments = {}) {
    return host->describe(ask(defaults, method, arguments));
  }

  ObjectRef defaults;
};

// --- every method

struct MethodCase {
  const char* name;
  const char* method;
  const char* selector;
  std::function<std::vector<Value>(Host&)> arguments;
  const char* nothing;  // after an exception
};

void PrintTo(const MethodCase& row, std::ostream* out) { *out << row.name; }

class MethodTest : public DomainsTest, public testing::WithParamInterface<MethodCase> {
 protected:
  std::vector<Value> arguments() { return GetParam().arguments(*host); }
  Lines message() { return {"-[NSUserDefaults "s + GetParam().selector + "]"}; }
};

TEST_P(MethodTest, SendsItsMessage) {
  const std::vector<Value> values = arguments();
  foundation.clearRecords();
  call(GetParam().method, values);
  EXPECT_EQ(sentToDefaults(), message());
}

TEST_P(MethodTest, ReportsAnExceptionAndGivesTheDefault) {
  foundation.addMethod("NSUserDefaults", GetParam().selector, [](id, SEL) {
    objc_exception_throw(
        foundation_double::Foundation::shared().exception("Broken", "Store damaged."));
  });
  const Outcome outcome = host->call(defaults, GetParam().method, arguments());
  EXPECT_EQ(host->describe(outcome.value), GetParam().nothing);
  EXPECT_EQ(outcome.raised, (Raised{"NSExceptionZEL", "Store damaged.", 0}));
  EXPECT_EQ(foundation.log(), Lines{"A Broken: Store damaged., Info: (null)\n"});
}

TEST_P(MethodTest, IsNotAssignable) { EXPECT_FALSE(host->assignable(kClass, GetParam().method)); }

const std::function<std::vector<Value>(Host&)> kNoArguments = [](Host&) {
  return std::vector<Value>{};
};
const std::function<std::vector<Value>(Host&)> kOneName = [](Host&) {
  return std::vector<Value>{"name"s};
};
const std::function<std::vector<Value>(Host&)> kTwoNames = [](Host&) {
  return std::vector<Value>{"name"s, "domain"s};
};
const std::function<std::vector<Value>(Host&)> kContents = [](Host& host) {
  return std::vector<Value>{host.dictionary({{"a"s, std::int32_t{1}}})};
};
const std::function<std::vector<Value>(Host&)> kDomain = [](Host& host) {
  return std::vector<Value>{host.dictionary({{"a"s, std::int32_t{1}}}), "name"s};
};

INSTANTIATE_TEST_SUITE_P(
    Methods, MethodTest,
    testing::Values(
        MethodCase{"synchronize", "synchronize", "synchronize", kNoArguments, "false"},
        MethodCase{"removeObject", "removeObjectForKey", "removeObjectForKey:", kOneName, "nil"},
        MethodCase{"removeVolatile", "removeVolatileDomainForName",
                   "removeVolatileDomainForName:", kOneName, "nil"},
        MethodCase{"removePersistent", "removePersistentDomainForName",
                   "removePersistentDomainForName:", kOneName, "nil"},
        MethodCase{"addSuite", "addSuiteNamed", "addSuiteNamed:", kOneName, "nil"},
        MethodCase{"removeSuite", "removeSuiteNamed", "removeSuiteNamed:", kOneName, "nil"},
        MethodCase{"register", "registerDefaults", "registerDefaults:", kContents, "nil"},
        MethodCase{"representation", "dictionaryRepresentation", "dictionaryRepresentation",
                   kNoArguments, "nil"},
        MethodCase{"forced", "objectIsForcedForKey", "objectIsForcedForKey:", kOneName, "false"},
        MethodCase{"forcedInDomain", "objectIsForcedForKey",
                   "objectIsForcedForKey:inDomain:", kTwoNames, "false"},
        MethodCase{"setPersistent", "setPersistentDomain", "setPersistentDomain:forName:", kDomain,
                   "nil"},
        MethodCase{"setVolatile", "setVolatileDomain", "setVolatileDomain:forName:", kDomain,
                   "nil"},
        MethodCase{"persistentNames", "persistentDomainNames", "persistentDomainNames",
                   kNoArguments, "[]"},
        MethodCase{"persistent", "persistentDomainForName", "persistentDomainForName:", kOneName,
                   "nil"},
        MethodCase{"volatileNames", "volatileDomainNames", "volatileDomainNames", kNoArguments,
                   "[]"},
        MethodCase{"volatile", "volatileDomainForName", "volatileDomainForName:", kOneName, "nil"}),
    [](const auto& row) { return row.param.name; });

// --- synchronise

std::uint8_t reply = 0;

TEST_F(DomainsTest, BooleanRepliesPassUnchanged) {
  foundation.addMethod("NSUserDefaults", "synchronize", [](id, SEL) -> BOOL { return reply; });
  foundation.addMethod("NSUserDefaults",
                       "objectIsForcedForKey:", [](id, SEL, CFStringRef) -> BOOL { return reply; });
  foundation.addMethod("NSUserDefaults", "objectIsForcedForKey:inDomain:",
                       [](id, SEL, CFStringRef, CFStringRef) -> BOOL { return reply; });
  for (const int byte : {0, 1, 2, 255}) {
    reply = static_cast<std::uint8_t>(byte);
    const Value expected(static_cast<std::int8_t>(reply));
    EXPECT_EQ(ask(defaults, "synchronize"), expected);
    EXPECT_EQ(ask(defaults, "objectIsForcedForKey", {"k"s}), expected);
    EXPECT_EQ(ask(defaults, "objectIsForcedForKey", {"k"s, "d"s}), expected);
  }
}

// --- keys and suites

TEST_F(DomainsTest, ARemovedKeyIsGone) {
  ask(defaults, "setIntegerValue", {"key"s, std::int32_t{5}});
  EXPECT_EQ(call("removeObjectForKey", {"key"s}), "nil");
  EXPECT_EQ(call("integerForKey", {"key"s}), "Int32 0");
}

TEST_F(DomainsTest, ASuitesValuesAreSeen) {
  call("setPersistentDomain", {host->dictionary({{"shared"s, std::int32_t{5}}}), "suite"s});
  EXPECT_EQ(call("integerForKey", {"shared"s}), "Int32 0");
  call("addSuiteNamed", {"suite"s});
  EXPECT_EQ(call("integerForKey", {"shared"s}), "Int32 5");
  call("removeSuiteNamed", {"suite"s});
  EXPECT_EQ(call("integerForKey", {"shared"s}), "Int32 0");
}

TEST_F(DomainsTest, RegisteredValuesStandInForKeysThatAreNotSet) {
  call("registerDefaults", {host->dictionary({{"key"s, std::int32_t{7}}, {"b"s, "text"s}})});
  EXPECT_EQ(call("integerForKey", {"key"s}), "Int32 7");
  ask(defaults, "setIntegerValue", {"key"s, std::int32_t{8}});
  EXPECT_EQ(call("dictionaryRepresentation"), R"({"b": "text", "key": Int32 8})");
}

// --- whole domains

TEST_F(DomainsTest, APersistentDomainIsWrittenReadAndRemoved) {
  EXPECT_EQ(call("persistentDomainForName", {"com.example.other"s}), "nil");
  call("setPersistentDomain", {host->dictionary({{"a"s, "x"s}}), "com.example.other"s});
  EXPECT_EQ(call("persistentDomainNames"), R"(["com.example.other"])");
  EXPECT_EQ(call("persistentDomainForName", {"com.example.other"s}), R"({"a": "x"})");
  call("removePersistentDomainForName", {"com.example.other"s});
  EXPECT_EQ(call("persistentDomainNames"), "[]");
}

TEST_F(DomainsTest, AVolatileDomainIsWrittenReadAndRemoved) {
  call("setVolatileDomain", {host->dictionary({{"a"s, 0.5}}), "temporary"s});
  EXPECT_EQ(call("volatileDomainForName", {"temporary"s}), R"({"a": Double 0.5})");
  EXPECT_EQ(call("volatileDomainNames"),
            R"(["NSArgumentDomain", "NSRegistrationDomain", "temporary"])");
  call("removeVolatileDomainForName", {"temporary"s});
  EXPECT_EQ(call("volatileDomainForName", {"temporary"s}), "nil");
}

TEST_F(DomainsTest, ADomainThatExistsAlreadyIsAnException) {
  call("setVolatileDomain", {host->dictionary({{"a"s, 0.5}}), "temporary"s});
  const Outcome outcome =
      host->call(defaults, "setVolatileDomain", {host->dictionary({{"b"s, 1.5}}), "temporary"s});
  EXPECT_EQ(outcome.raised.value_or(Raised{}).className, "NSExceptionZEL");
  EXPECT_EQ(foundation.log().size(), 1U);
  EXPECT_EQ(call("volatileDomainForName", {"temporary"s}), R"({"a": Double 0.5})");
}

TEST_F(DomainsTest, TheNameIsConvertedBeforeTheContents) {
  for (const char* method : {"setPersistentDomain", "setVolatileDomain"}) {
    const ObjectRef contents = host->dictionary({{"a"s, std::int32_t{1}}});
    host->clearRecords();
    call(method, {contents, "name"s});
    EXPECT_EQ(host->sequence().at(0), "REALGetStringCFString");
    EXPECT_EQ(host->sequence().at(1), "REALGetPropValueInt");
  }
}

TEST_F(DomainsTest, TheKeyIsConvertedBeforeTheDomain) {
  static std::string handed;
  foundation.addMethod("NSUserDefaults", "objectIsForcedForKey:inDomain:",
                       [](id, SEL, CFStringRef key, CFStringRef domain) -> BOOL {
                         auto& kit = foundation_double::Foundation::shared();
                         handed = kit.utf8(key) + " in " + kit.utf8(domain);
                         return 1;
                       });
  EXPECT_EQ(call("objectIsForcedForKey", {"key"s, "domain"s}), "true");
  EXPECT_EQ(handed, "key in domain");
}

// The texts that are converted, in order.
Lines convertedTexts;

TEST_F(DomainsTest, TextsAreConvertedInOrder) {
  static Host* theHost = nullptr;
  defaults.reset();
  startHost({.version = 2011.04});  // asks for a conversion once
  provideFamily();
  theHost = host.get();
  intercept("REALGetStringCFString", [](REALstring text, unsigned char flag) {
    convertedTexts.push_back(theHost->bytes(text));
    return callHost<CFStringRef>("REALGetStringCFString", text, flag);
  });
  defaults = host->construct(kClass);
  convertedTexts.clear();
  call("objectIsForcedForKey", {"key"s, "domain"s});
  EXPECT_EQ(convertedTexts, (Lines{"key", "domain"}));
  convertedTexts.clear();
  call("setPersistentDomain", {host->dictionary({{"a"s, "b"s}}), "name"s});
  EXPECT_EQ(convertedTexts, (Lines{"name", "a", "b"}));
}

// What a message is handed.
std::string handed;

TEST_F(DomainsTest, AnEmptyNameIsHandedOnAsNil) {
  for (const char* method :
       {"removeObjectForKey", "removeVolatileDomainForName", "removePersistentDomainForName",
        "addSuiteNamed", "removeSuiteNamed", "persistentDomainForName", "volatileDomainForName"}) {
    SCOPED_TRACE(method);
    handed = "nothing";
    foundation.addMethod("NSUserDefaults", method + ":"s, [](id, SEL, id name) -> id {
      handed = foundation_double::Foundation::shared().describe(name);
      return nullptr;
    });
    call(method, {"name"s});
    EXPECT_EQ(handed, "\"name\"");
    call(method, {""s});
    EXPECT_EQ(handed, "nil");
  }
}

TEST_F(DomainsTest, EmptyKeysAndDomainsAreHandedOnAsNil) {
  foundation.addMethod("NSUserDefaults", "objectIsForcedForKey:", [](id, SEL, id key) -> BOOL {
    handed = foundation_double::Foundation::shared().describe(key);
    return 1;
  });
  foundation.addMethod("NSUserDefaults",
                       "objectIsForcedForKey:inDomain:", [](id, SEL, id key, id domain) -> BOOL {
                         auto& kit = foundation_double::Foundation::shared();
                         handed = kit.describe(key) + " in " + kit.describe(domain);
                         return 1;
                       });
  EXPECT_EQ(call("objectIsForcedForKey", {""s}), "true");
  EXPECT_EQ(handed, "nil");
  EXPECT_EQ(call("objectIsForcedForKey", {""s, "domain"s}), "true");
  EXPECT_EQ(handed, "nil in \"domain\"");
  EXPECT_EQ(call("objectIsForcedForKey", {"key"s, ""s}), "true");
  EXPECT_EQ(handed, "\"key\" in nil");
}

TEST_F(DomainsTest, ContentsAndNamesAreHandedOnAsTheyAre) {
  for (const char* method : {"setPersistentDomain", "setVolatileDomain"}) {
    SCOPED_TRACE(method);
    foundation.addMethod("NSUserDefaults", method + ":forName:"s,
                         [](id, SEL, id contents, id name) {
                           auto& kit = foundation_double::Foundation::shared();
                           handed = kit.describe(contents) + " as " + kit.describe(name);
                         });
    call(method, {host->dictionary({{"a"s, 0.5}}), "name"s});
    EXPECT_EQ(handed, R"({"a" = 0.5} as "name")");
    call(method, {host->dictionary(), "name"s});
    EXPECT_EQ(handed, R"({} as "name")");
    call(method, {ObjectRef(), ""s});
    EXPECT_EQ(handed, "nil as nil");
  }
}

TEST_F(DomainsTest, AnUnknownDomainMakesNoHostDictionary) {
  EXPECT_EQ(call("persistentDomainForName", {"unknown"s}), "nil");
  EXPECT_EQ(call("volatileDomainForName", {"unknown"s}), "nil");
  EXPECT_EQ(host->calls("PluginNewInstance"), 0);
}

TEST_F(DomainsTest, ForcedKeysAreForced) {
  foundation.force("key");
  EXPECT_EQ(call("objectIsForcedForKey", {"key"s}), "true");
  EXPECT_EQ(call("objectIsForcedForKey", {"other"s}), "false");
  EXPECT_EQ(call("objectIsForcedForKey", {"key"s, "com.example.program"s}), "true");
  EXPECT_EQ(call("objectIsForcedForKey", {"key"s, "elsewhere"s}), "false");
}

TEST_F(DomainsTest, NoContentsAreHandedOnAsNil) {
  static bool nil = false;
  foundation.addMethod("NSUserDefaults", "registerDefaults:", [](id, SEL, id contents) {
    nil = contents == nullptr;
  });
  call("registerDefaults", {ObjectRef()});
  EXPECT_TRUE(nil);
}

TEST_F(DomainsTest, NameListsAreMadeBeforeAnythingElse) {
  for (const char* method : {"persistentDomainNames", "volatileDomainNames"}) {
    host->clearRecords();
    call(method);
    EXPECT_EQ(host->sequence().at(0), "RuntimeArrayCreateSingleDimBoundedArray");
  }
  host->answerNull("RuntimeArrayCreateSingleDimBoundedArray");
  EXPECT_EQ(call("persistentDomainNames"), "nil");
  EXPECT_EQ(call("volatileDomainNames"), "nil");
}

}  // namespace
}  // namespace zel
