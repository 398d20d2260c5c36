// The store as a whole through the built plugin, in every host.
#include <filesystem>

#include "tests/end_to_end/end_to_end_test.h"
#include "tests/support/process.h"

namespace tests {
namespace {

using namespace std::string_literals;

class DomainsTest : public DefaultsTest {
 protected:
  void TearDown() override {
    ask(defaults, "synchronize");
    DefaultsTest::TearDown();
  }
  std::string call(const std::string& method, const Values& arguments = {}) {
    return host->describe(ask(defaults, method, arguments));
  }
  // Whether a list of names that a method gives has this one.
  bool lists(const std::string& method, const std::string& name) {
    return call(method).find('"' + name + '"') != std::string::npos;
  }
};

INSTANTIATE_TEST_SUITE_P(Hosts, DomainsTest, testing::ValuesIn(amongThese(kHostVersions)));

TEST_P(DomainsTest, ARemovedKeyIsGone) {
  call("setIntegerValue", {"removed"s, std::int32_t{5}});
  EXPECT_EQ(call("removeObjectForKey", {"removed"s}), "nil");
  EXPECT_EQ(call("integerForKey", {"removed"s}), "Int32 0");
}

TEST_P(DomainsTest, RegisteredValuesStandInForKeysThatAreNotSet) {
  call("removeObjectForKey", {"registered"s});
  call("registerDefaults", {host->dictionary({{"registered"s, std::int32_t{7}}})});
  EXPECT_EQ(call("integerForKey", {"registered"s}), "Int32 7");
  call("setIntegerValue", {"registered"s, std::int32_t{8}});
  EXPECT_EQ(call("integerForKey", {"registered"s}), "Int32 8");
  call("removeObjectForKey", {"registered"s});
  EXPECT_EQ(call("integerForKey", {"registered"s}), "Int32 7");
}

TEST_P(DomainsTest, APersistentDomainIsWrittenReadAndRemoved) {
  const std::string name = "com.example.persistent";
  call("setPersistentDomain", {host->dictionary({{"a"s, "x"s}, {"b"s, std::int32_t{2}}}), name});
  EXPECT_EQ(call("synchronize"), "true");
  EXPECT_TRUE(lists("persistentDomainNames", name));
  const auto domain = std::get<ObjectRef>(ask(defaults, "persistentDomainForName", {name}));
  EXPECT_EQ(host->entries(domain).size(), 2U);
  call("removePersistentDomainForName", {name});
  EXPECT_FALSE(lists("persistentDomainNames", name));
  EXPECT_EQ(call("persistentDomainForName", {name}), "nil");
}

TEST_P(DomainsTest, FoundationsToolReadsAPersistentDomain) {
  const std::string name = "com.example.tool";
  call("setPersistentDomain", {host->dictionary({{"a"s, "x"s}}), name});
  EXPECT_EQ(call("synchronize"), "true");
  EXPECT_EQ(outputOf(ZEL_DEFAULTS_TOOL, {"defaults", "read", name, "a"}), name + " a x\n");
  call("removePersistentDomainForName", {name});
}

TEST_P(DomainsTest, AVolatileDomainIsWrittenReadAndRemoved) {
  const std::string name = "temporary";
  call("setVolatileDomain", {host->dictionary({{"a"s, 0.5}}), name});
  EXPECT_TRUE(lists("volatileDomainNames", name));
  EXPECT_EQ(call("volatileDomainForName", {name}), R"({"a": Double 0.5})");
  call("removeVolatileDomainForName", {name});
  EXPECT_FALSE(lists("volatileDomainNames", name));
  EXPECT_EQ(call("volatileDomainForName", {name}), "nil");
}

TEST_P(DomainsTest, ADomainThatExistsAlreadyIsAnException) {
  call("setVolatileDomain", {host->dictionary({{"a"s, 0.5}}), "twice"s});
  testing::internal::CaptureStderr();
  const Outcome outcome =
      host->call(defaults, "setVolatileDomain", {host->dictionary({{"b"s, 1.5}}), "twice"s});
  const std::string log = testing::internal::GetCapturedStderr();
  EXPECT_EQ(outcome.raised.value_or(Raised{}).className, "NSExceptionZEL");
  EXPECT_NE(log.find(", Info: (null)\n"), std::string::npos) << log;
  EXPECT_EQ(call("volatileDomainForName", {"twice"s}), R"({"a": Double 0.5})");
  call("removeVolatileDomainForName", {"twice"s});
}

TEST_P(DomainsTest, ASuitesValuesAreSeen) {
  call("setPersistentDomain",
       {host->dictionary({{"fromSuite"s, std::int32_t{5}}}), "com.example.suite"s});
  EXPECT_EQ(call("integerForKey", {"fromSuite"s}), "Int32 0");
  call("addSuiteNamed", {"com.example.suite"s});
  EXPECT_EQ(call("integerForKey", {"fromSuite"s}), "Int32 5");
  call("removeSuiteNamed", {"com.example.suite"s});
  EXPECT_EQ(call("integerForKey", {"fromSuite"s}), "Int32 0");
  call("removePersistentDomainForName", {"com.example.suite"s});
}

TEST_P(DomainsTest, TheRepresentationHoldsWhatIsSet) {
  call("setStringValue", {"represented"s, "here"s});
  const auto all = std::get<ObjectRef>(ask(defaults, "dictionaryRepresentation"));
  bool found = false;
  for (const auto& [key, value] : host->entries(all)) {
    if (key == Value("represented"s)) {
      found = true;
      EXPECT_EQ(value, Value("here"s));
    }
  }
  EXPECT_TRUE(found);
}

TEST_P(DomainsTest, NothingIsForced) {
  EXPECT_EQ(call("objectIsForcedForKey", {"key"s}), "false");
  EXPECT_EQ(call("objectIsForcedForKey", {"key"s, "NSGlobalDomain"s}), "false");
}

TEST_P(DomainsTest, UnknownDomainsAreNothing) {
  EXPECT_EQ(call("persistentDomainForName", {"com.example.nowhere"s}), "nil");
  EXPECT_EQ(call("volatileDomainForName", {"nowhere"s}), "nil");
}

}  // namespace
}  // namespace tests
