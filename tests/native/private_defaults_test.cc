// Private defaults objects see what the standard object sees, and the standard object is what it
// would be without libzelnative.
#include <filesystem>
#include <pwd.h>
#include <unistd.h>

#include "host/store/private_store.h"
#include "native/corefoundation.h"
#include "tests/native/support.h"

namespace native_test {
namespace {

using zel::BOOL;
using zel::CFStringRef;
using zel::id;
using zel::send;

class PrivateDefaultsTest : public NativeTest {
 protected:
  static zel::Class* userDefaults() { return zel::classNamed<"NSUserDefaults">(); }
  static id standard() { return send<id, "standardUserDefaults">(userDefaults()); }
  static id made() {
    return zel::autoreleased(send<id, "init">(send<id, "alloc">(userDefaults())));
  }
  static id madeForUser(const char* name) {
    const CFStringRef user = name == nullptr ? nullptr : string(name);
    return zel::autoreleased(send<id, "initWithUser:">(send<id, "alloc">(userDefaults()), user));
  }
  static void set(id defaults, const char* key, const char* value) {
    send<void, "setObject:forKey:">(defaults, string(value), string(key));
  }
  static std::string get(id defaults, const char* key) {
    return text(send<id, "stringForKey:">(defaults, string(key)));
  }
  static void synchronize(id defaults) { EXPECT_NE((send<BOOL, "synchronize">(defaults)), 0); }
  /// The names that the object searches, in order, with a blank after each.
  static std::string searchList(id defaults) {
    const id list = send<id, "searchList">(defaults);
    return text(send<id, "componentsJoinedByString:">(list, string(" ")));
  }
};

TEST_F(PrivateDefaultsTest, WhatIsSetIsReadBack) {
  const id defaults = made();
  ASSERT_NE(defaults, nullptr);
  EXPECT_NE(defaults, standard());
  EXPECT_EQ(get(defaults, "own"), "(null)");
  set(defaults, "own", "value");
  EXPECT_EQ(get(defaults, "own"), "value");
  send<void, "removeObjectForKey:">(defaults, string("own"));
  EXPECT_EQ(get(defaults, "own"), "(null)");
}

TEST_F(PrivateDefaultsTest, NewObjectBelongsToTheCaller) {
  id defaults = send<id, "init">(send<id, "alloc">(userDefaults()));
  EXPECT_EQ(referencesOf(defaults), 1);
  zel::release(defaults);
}

TEST_F(PrivateDefaultsTest, ValuesReachTheDiskAndEveryoneElse) {
  const id defaults = made();
  set(defaults, "shared", "for all");
  synchronize(defaults);
  EXPECT_TRUE(std::filesystem::exists(host::storedDomain(ownDomain())));
  EXPECT_EQ(get(made(), "shared"), "for all");
  synchronize(standard());
  EXPECT_EQ(get(standard(), "shared"), "for all");
  EXPECT_EQ(probe({"string", "shared"}), "for all");
  EXPECT_EQ(probe({"private", "shared"}), "for all");
}

TEST_F(PrivateDefaultsTest, CommandLineToolReadsThem) {
  const id defaults = made();
  set(defaults, "forTheTool", "plain");
  synchronize(defaults);
  EXPECT_EQ(outputOf(ZEL_DEFAULTS_TOOL, {"defaults", "read", ownDomain(), "forTheTool"}),
            ownDomain() + " forTheTool plain\n");
}

TEST_F(PrivateDefaultsTest, WhatOthersWroteIsRead) {
  EXPECT_EQ(probe({"set", "fromOutside", "hello"}), "");
  EXPECT_EQ(get(made(), "fromOutside"), "hello");
}

TEST_F(PrivateDefaultsTest, WhatIsNotSynchronisedIsOnDiskWhenTheProgramHasEnded) {
  EXPECT_EQ(probe({"keep", "kept", "value"}), "");
  EXPECT_EQ(probe({"string", "kept"}), "value");
}

TEST_F(PrivateDefaultsTest, GlobalDomainIsSearched) {
  const id defaults = standard();
  const id global = send<id, "dictionaryWithObject:forKey:">(
      zel::classNamed<"NSDictionary">(), string("everywhere"), string("inGlobal"));
  send<void, "setPersistentDomain:forName:">(defaults, global,
                                             zel::zelFoundationConstant("NSGlobalDomain"));
  synchronize(defaults);
  EXPECT_EQ(get(made(), "inGlobal"), "everywhere");
}

TEST_F(PrivateDefaultsTest, RegisteredDefaultsAreSearchedLast) {
  const id registered = send<id, "dictionaryWithObject:forKey:">(
      zel::classNamed<"NSDictionary">(), string("fallback"), string("registered"));
  send<void, "registerDefaults:">(standard(), registered);
  const id defaults = made();
  EXPECT_EQ(get(defaults, "registered"), "fallback");
  set(defaults, "registered", "set");
  EXPECT_EQ(get(defaults, "registered"), "set");

  const id more = send<id, "dictionaryWithObject:forKey:">(
      zel::classNamed<"NSDictionary">(), string("mine"), string("registeredHere"));
  send<void, "registerDefaults:">(defaults, more);
  EXPECT_EQ(get(defaults, "registeredHere"), "mine");
  EXPECT_EQ(get(standard(), "registeredHere"), "(null)");
}

TEST_F(PrivateDefaultsTest, ArgumentsComeFirst) {
  EXPECT_EQ(probe({"set", "argued", "stored"}), "");
  EXPECT_EQ(probe({"-argued", "from the line", "private", "argued"}), "from the line");
  EXPECT_EQ(probe({"-argued", "from the line", "string", "argued"}), "from the line");
  EXPECT_EQ(probe({"private", "argued"}), "stored");
}

TEST_F(PrivateDefaultsTest, SearchesWhatANewStandardObjectSearches) {
  send<void, "resetStandardUserDefaults">(userDefaults());
  EXPECT_EQ(searchList(made()), searchList(standard()));
}

TEST_F(PrivateDefaultsTest, StandardObjectIsAsEver) {
  const std::string languages = text(send<id, "componentsJoinedByString:">(
      send<id, "userLanguages">(userDefaults()), string(" ")));
  const std::string expected = "GSPrimaryDomain NSArgumentDomain " + ownDomain() +
                               " NSGlobalDomain GSConfigDomain " + languages +
                               " NSRegistrationDomain";
  EXPECT_EQ(searchList(standard()), expected);
  EXPECT_EQ(standard(), standard());
  const id before = zel::retained(standard());
  send<void, "resetStandardUserDefaults">(userDefaults());
  EXPECT_NE(standard(), before);
  EXPECT_EQ(searchList(standard()), expected);
  zel::CFRelease(before);
}

TEST_F(PrivateDefaultsTest, SuitesOfTheStandardObjectStayItsOwn) {
  send<void, "addSuiteNamed:">(standard(), string("a.suite"));
  EXPECT_EQ(searchList(made()).find("a.suite"), std::string::npos);
  const id defaults = made();
  send<void, "addSuiteNamed:">(defaults, string("another.suite"));
  EXPECT_NE(searchList(defaults).find(" " + ownDomain() + " another.suite NSGlobalDomain"),
            std::string::npos);
  send<void, "removeSuiteNamed:">(standard(), string("a.suite"));
}

TEST_F(PrivateDefaultsTest, EveryUserNameGivesAnObject) {
  for (const char* const name : {static_cast<const char*>(nullptr), "", "no-such-user"}) {
    const id defaults = madeForUser(name);
    ASSERT_NE(defaults, nullptr);
    set(defaults, "forUser", "kept");
    EXPECT_EQ(get(defaults, "forUser"), "kept");
  }
}

TEST_F(PrivateDefaultsTest, OwnUserNameGivesTheOwnDefaults) {
  const std::string name =
      text(send<id, "lastPathComponent">(send<id, "stringByExpandingTildeInPath">(string("~"))));
  const id defaults = madeForUser(name.c_str());
  set(defaults, "byName", "mine");
  synchronize(defaults);
  EXPECT_EQ(get(made(), "byName"), "mine");
  EXPECT_EQ(probe({"string", "byName"}), "mine");
}

TEST_F(PrivateDefaultsTest, WhatTheStandardObjectHoldsIsSeen) {
  set(standard(), "heldByStandard", "not written yet");
  EXPECT_EQ(get(made(), "heldByStandard"), "not written yet");
}

TEST_F(PrivateDefaultsTest, FirstValuesOfADomainAreAllKept) {
  const std::string domain = "never.used.before";
  ASSERT_FALSE(std::filesystem::exists(host::storedDomain(domain)));
  EXPECT_EQ(outputOf(ZEL_PROBE, {domain, "both", "key", "value"}), "");
  EXPECT_EQ(outputOf(ZEL_PROBE, {domain, "string", "key"}), "value");
  EXPECT_EQ(outputOf(ZEL_PROBE, {domain, "string", "key2"}), "value");
}

TEST_F(PrivateDefaultsTest, ManyObjectsAndProcessesKeepAllValues) {
  const id first = made();
  set(first, "existing", "1");
  synchronize(first);
  const id second = made();
  set(first, "ofFirst", "1");
  set(second, "ofSecond", "2");
  EXPECT_EQ(probe({"set", "ofProbe", "3"}), "");
  synchronize(first);
  synchronize(second);
  const id last = made();
  EXPECT_EQ(get(last, "existing"), "1");
  EXPECT_EQ(get(last, "ofFirst"), "1");
  EXPECT_EQ(get(last, "ofSecond"), "2");
  EXPECT_EQ(get(last, "ofProbe"), "3");
}

}  // namespace
}  // namespace native_test
