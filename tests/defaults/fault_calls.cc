#include "tests/defaults/fault_calls.h"

#include <ostream>
#include <utility>

#include "tests/defaults/fault_rows.h"

namespace tests {
namespace {

using namespace std::string_literals;
using zel::id;

// --- the life of an object, and the shared methods

FaultCall shared(const char* method, const std::string& gives, const Lines& failed,
                 bool guarded = true) {
  FaultCall call{method, method, fixed({}), gives, failed};
  call.shared = true;
  call.guarded = guarded;
  return call;
}

FaultCall constructor(const char* name, const Arguments& arguments) {
  FaultCall call{name, "Constructor", fixed(arguments)};
  call.constructs = true;
  call.repeatable = false;
  return call;
}

Calls lifecycleCalls() {
  return {constructor("Constructor", {}),
          constructor("ConstructorUser", {"alice"s}),
          shared("standardUserDefaults", "NSUserDefaultsZEL", {"nil"}),
          shared("resetStandardUserDefaults", "nil", {"nil"}),
          shared("NSGlobalDomain", "\"NSGlobalDomain\"", {}, false),
          shared("NSArgumentDomain", "\"NSArgumentDomain\"", {}, false),
          shared("NSRegistrationDomain", "\"NSRegistrationDomain\"", {}, false),
          shared("NSUserDefaultsDidChangeNotification", "\"NSUserDefaultsDidChangeNotification\"",
                 {}, false)};
}

// --- single values

FaultCall plainSetter(const char* method, const Value& value, const char* readBy,
                      const std::string& without, const std::string& with) {
  return setter(
      method, method, [value](Kit&) { return value; }, readBy, without, with);
}

Calls scalarCalls() {
  const auto number = storing([](Kit& kit) { return kit.foundation.number("d", 2.5); });
  return {getter("integerForKey", "integerForKey", number, "Int32 2", {"Int32 0"}),
          getter("floatForKey", "floatForKey", number, "Single 2.5", {"Single 0"}),
          getter("doubleForKey", "doubleForKey", number, "Double 2.5", {"Double 0"}),
          getter("boolForKey", "boolForKey", number, "true", {"false"}),
          getter("stringForKey", "stringForKey",
                 storing([](Kit& kit) { return text(kit, kLongText); }), kLongLine, {"\"\""}),
          getter("URLForKey", "URLForKey",
                 replying("URLForKey:",
                          [](Kit& kit) {
                            return foundation_double::Foundation::asObject(
                                kit.foundation.url("http://example.com/" + kLongText));
                          }),
                 "\"http://example.com/" + kLongText + '"', {"\"\""}),
          plainSetter("setIntegerValue", std::int32_t{5}, "integerForKey", "Int32 0", "Int32 5"),
          plainSetter("setFloatValue", 0.5F, "floatForKey", "Single 0", "Single 0.5"),
          plainSetter("setDoubleValue", 0.5, "doubleForKey", "Double 0", "Double 0.5"),
          plainSetter("setBoolValue", std::int8_t{1}, "boolForKey", "false", "true"),
          plainSetter("setStringValue", kLongText, "stringForKey", "\"\"", kLongLine),
          plainSetter("setURLValue", "http://example.com"s, "URLForKey", "\"\"",
                      "\"http://example.com\"")};
}

// --- the store as a whole

void makeDomains(Kit& kit) {
  zel::NSUserDefaults* const defaults = kit.foundation.standardDefaults();
  const auto contents = reinterpret_cast<zel::CFDictionaryRef>(
      kit.foundation.dictionary({{"shared"s, kit.foundation.number("i", 5)}}));
  for (const char* const name : {"suite", "kept"}) {
    zel::send<void, "setPersistentDomain:forName:">(defaults, contents,
                                                    kit.foundation.string(name));
  }
  zel::send<void, "setVolatileDomain:forName:">(defaults, contents,
                                                kit.foundation.string("volatile"));
}

void useSuite(Kit& kit) {
  makeDomains(kit);
  zel::send<void, "addSuiteNamed:">(kit.foundation.standardDefaults(),
                                    kit.foundation.string("suite"));
}

FaultCall named(const char* method, const std::string& name, std::function<void(Kit&)> before,
                Trace trace) {
  FaultCall call{method, method, fixed({name})};
  call.before = std::move(before);
  call.trace = std::move(trace);
  call.fixedPosition = true;
  return call;
}

FaultCall reader(const char* name, const char* method, const Arguments& arguments,
                 const std::string& gives, const Lines& failed) {
  FaultCall call{name, method, fixed(arguments), gives, failed};
  call.before = makeDomains;
  return call;
}

FaultCall writer(const char* method, const Arguments& more, Trace trace) {
  FaultCall call{method, method, [more](Kit& kit) {
                   Arguments arguments{hostDictionary(kit)};
                   arguments.insert(arguments.end(), more.begin(), more.end());
                   return arguments;
                 }};
  call.trace = std::move(trace);
  return call;
}

Calls domainCalls() {
  const std::string contents = R"({"shared": Int32 5})";
  FaultCall representation =
      reader("dictionaryRepresentation", "dictionaryRepresentation", {}, kMixedDictionary, {"nil"});
  representation.before = replying("dictionaryRepresentation", mixedDictionary);
  representation.blocks = 1;
  FaultCall synchronize = reader("synchronize", "synchronize", {}, "true", {"false"});
  synchronize.fixedPosition = true;
  FaultCall setVolatile = writer("setVolatileDomain", {"new"s},
                                 {"volatileDomainForName", {"new"s}, "nil", kStoredDictionary});
  setVolatile.repeatable = false;
  const auto number = storing([](Kit& kit) { return kit.foundation.number("i", 5); });
  return {
      synchronize,
      named("removeObjectForKey", "key", number, {"integerForKey", {"key"s}, "Int32 5", "Int32 0"}),
      named("removeVolatileDomainForName", "volatile", makeDomains,
            {"volatileDomainForName", {"volatile"s}, contents, "nil"}),
      named("removePersistentDomainForName", "kept", makeDomains,
            {"persistentDomainForName", {"kept"s}, contents, "nil"}),
      named("addSuiteNamed", "suite", makeDomains,
            {"integerForKey", {"shared"s}, "Int32 0", "Int32 5"}),
      named("removeSuiteNamed", "suite", useSuite,
            {"integerForKey", {"shared"s}, "Int32 5", "Int32 0"}),
      writer("registerDefaults", {}, {"integerForKey", {"a"s}, "Int32 0", "Int32 1"}),
      representation,
      reader("objectIsForcedForKey", "objectIsForcedForKey", {"key"s}, "false", {"false"}),
      reader("objectIsForcedForKey2", "objectIsForcedForKey", {"key"s, "kept"s}, "false",
             {"false"}),
      writer("setPersistentDomain", {"new"s},
             {"persistentDomainForName", {"new"s}, "nil", kStoredDictionary}),
      setVolatile,
      reader("persistentDomainNames", "persistentDomainNames", {}, R"(["kept", "suite"])",
             {"[]", R"(["kept"])", R"(["kept", "suite"])"}),
      reader("persistentDomainForName", "persistentDomainForName", {"kept"s}, contents, {"nil"}),
      reader("volatileDomainNames", "volatileDomainNames", {},
             R"(["NSArgumentDomain", "NSRegistrationDomain", "volatile"])",
             {"[]", R"(["NSArgumentDomain"])", R"(["NSArgumentDomain", "NSRegistrationDomain"])",
              R"(["NSArgumentDomain", "NSRegistrationDomain", "volatile"])"}),
      reader("volatileDomainForName", "volatileDomainForName", {"volatile"s}, contents, {"nil"})};
}

}  // namespace

void PrintTo(const FaultCall& call, std::ostream* out) { *out << call.name; }

std::vector<FaultCall> faultCalls() {
  return joined({lifecycleCalls(), scalarCalls(), objectCalls(), domainCalls()});
}

}  // namespace tests
