// Objects by key, domains and suites of the double's NSUserDefaults.

#include "native/geometry.h"
#include "tests/foundation_double/fixture.h"

namespace {

using zel::BOOL;
using zel::CFStringRef;
using zel::id;
using zel::NSUInteger;
using zel::NSUserDefaults;
using zel::send;

class FoundationDomainsTest : public FoundationTest {
 protected:
  void SetUp() override {
    FoundationTest::SetUp();
    defaults_ = foundation_.standardDefaults();
  }

  CFStringRef text(const char* utf8) { return foundation_.string(utf8); }
  void set(const char* key, id value) {
    send<void, "setObject:forKey:">(defaults_, value, text(key));
  }
  template <zel::Name Message>
  std::string read(const char* key) {
    return foundation_.describe(send<id, Message>(defaults_, text(key)));
  }
  std::string value(const char* key) { return read<"objectForKey:">(key); }
  template <zel::Name Message>
  std::string ask() {
    return foundation_.describe(send<id, Message>(defaults_));
  }
  template <zel::Name Message>
  void tell(const char* name) {
    send<void, Message>(defaults_, text(name));
  }
  template <zel::Name Message>
  void setDomain(const char* name, id dictionary) {
    send<void, Message>(defaults_, dictionary, text(name));
  }
  id one(const char* key, int number) {
    return foundation_.dictionary({{key, foundation_.number("i", number)}});
  }

  NSUserDefaults* defaults_ = nullptr;
};

// --- objects by key

TEST_F(FoundationDomainsTest, AGetterGivesOnlyWhatIsOfItsKind) {
  set("data", foundation_.data("\x01"));
  set("texts", foundation_.array({object("a"), object("b")}));
  set("list", foundation_.array({object("a"), foundation_.number("i", 1)}));
  set("dictionary", one("a", 1));
  EXPECT_EQ(read<"dataForKey:">("data"), "<01>");
  EXPECT_EQ(read<"dataForKey:">("list"), "nil");
  EXPECT_EQ(read<"stringArrayForKey:">("texts"), "(\"a\", \"b\")");
  EXPECT_EQ(read<"stringArrayForKey:">("list"), "nil");
  EXPECT_EQ(read<"stringArrayForKey:">("data"), "nil");
  EXPECT_EQ(read<"arrayForKey:">("list"), "(\"a\", 1)");
  EXPECT_EQ(read<"arrayForKey:">("dictionary"), "nil");
  EXPECT_EQ(read<"dictionaryForKey:">("dictionary"), "{\"a\" = 1}");
  EXPECT_EQ(read<"dictionaryForKey:">("texts"), "nil");
  EXPECT_EQ(read<"dictionaryForKey:">("absent"), "nil");
}

TEST_F(FoundationDomainsTest, TheStoreKeepsAnImmutableCopyOfACollection) {
  const id list = send<id, "array">(zel::lookUpClass("NSMutableArray"));
  send<void, "addObject:">(list, object("a"));
  set("outer", foundation_.dictionary({{"list", list}}));
  send<void, "addObject:">(list, object("b"));
  EXPECT_EQ(value("outer"), "{\"list\" = (\"a\")}");
  const id outer = send<id, "objectForKey:">(defaults_, text("outer"));
  const id inner = send<id, "objectForKey:">(outer, text("list"));
  EXPECT_FALSE(zel::isKindOf<"NSMutableArray">(inner));
}

TEST_F(FoundationDomainsTest, OnlyPropertyListsAreStored) {
  const id null = foundation_.null();
  EXPECT_EQ(raised([&] { set("k", null); }),
            "NSInvalidArgumentException: the value for the key NSString \"k\" is no property list: "
            "NSNull \"<null>\"");
  EXPECT_EQ(raised([&] { set("k", foundation_.array({foundation_.array({null})})); }),
            "NSInvalidArgumentException: the value for the key NSString \"k\" is no property list: "
            "NSArray");
  const id odd = foundation_.dictionary({std::pair{foundation_.number("i", 1), object("v")}});
  EXPECT_EQ(raised([&] { set("k", odd); }),
            "NSInvalidArgumentException: the value for the key NSString \"k\" is no property list: "
            "NSDictionary");
  EXPECT_EQ(value("k"), "nil");
  set("date", foundation_.date(1));
  EXPECT_EQ(value("date"), "date(1)");
}

// --- the search list

TEST_F(FoundationDomainsTest, TheStrongestDomainWins) {
  send<void, "registerDefaults:">(defaults_, one("k", 1));
  EXPECT_EQ(value("k"), "1");
  setDomain<"setPersistentDomain:forName:">("NSGlobalDomain", one("k", 2));
  EXPECT_EQ(value("k"), "2");
  setDomain<"setPersistentDomain:forName:">("first", one("k", 3));
  tell<"addSuiteNamed:">("first");
  EXPECT_EQ(value("k"), "3");
  setDomain<"setPersistentDomain:forName:">("second", one("k", 4));
  tell<"addSuiteNamed:">("second");
  EXPECT_EQ(value("k"), "4");
  tell<"addSuiteNamed:">("first");
  EXPECT_EQ(value("k"), "3");
  set("k", foundation_.number("i", 5));
  EXPECT_EQ(value("k"), "5");
  tell<"removeVolatileDomainForName:">("NSArgumentDomain");
  setDomain<"setVolatileDomain:forName:">("NSArgumentDomain", one("k", 6));
  EXPECT_EQ(value("k"), "6");
}

TEST_F(FoundationDomainsTest, ARemovedSuiteIsSearchedNoMore) {
  setDomain<"setPersistentDomain:forName:">("suite", one("k", 1));
  EXPECT_EQ(value("k"), "nil");
  tell<"addSuiteNamed:">("suite");
  EXPECT_EQ(value("k"), "1");
  tell<"removeSuiteNamed:">("suite");
  tell<"removeSuiteNamed:">("unknown");
  send<void, "removeSuiteNamed:">(defaults_, CFStringRef{nullptr});
  EXPECT_EQ(value("k"), "nil");
}

TEST_F(FoundationDomainsTest, RemovingAKeyUncoversWeakerDomains) {
  send<void, "registerDefaults:">(defaults_, one("k", 1));
  set("k", foundation_.number("i", 2));
  tell<"removeObjectForKey:">("k");
  tell<"removeObjectForKey:">("k");
  EXPECT_EQ(value("k"), "1");
}

TEST_F(FoundationDomainsTest, RegisteredValuesAddUp) {
  send<void, "registerDefaults:">(defaults_, one("a", 1));
  send<void, "registerDefaults:">(defaults_, one("b", 2));
  send<void, "registerDefaults:">(defaults_, one("a", 3));
  send<void, "registerDefaults:">(defaults_, id{nullptr});
  EXPECT_EQ(read<"volatileDomainForName:">("NSRegistrationDomain"), "{\"a\" = 3, \"b\" = 2}");
}

TEST_F(FoundationDomainsTest, TheRepresentationIsOfAllDomainsTogether) {
  EXPECT_EQ(ask<"dictionaryRepresentation">(), "{}");
  send<void, "registerDefaults:">(defaults_, one("b", 1));
  send<void, "registerDefaults:">(defaults_, one("a", 1));
  set("b", object("own"));
  setDomain<"setPersistentDomain:forName:">("suite", one("c", 3));
  EXPECT_EQ(ask<"dictionaryRepresentation">(), "{\"a\" = 1, \"b\" = \"own\"}");
  tell<"addSuiteNamed:">("suite");
  EXPECT_EQ(ask<"dictionaryRepresentation">(), "{\"a\" = 1, \"b\" = \"own\", \"c\" = 3}");
}

// --- persistent domains

TEST_F(FoundationDomainsTest, PersistentDomainsAreReplacedAndRemoved) {
  EXPECT_EQ(ask<"persistentDomainNames">(), "()");
  EXPECT_EQ(read<"persistentDomainForName:">("d"), "nil");
  setDomain<"setPersistentDomain:forName:">("d", one("a", 1));
  setDomain<"setPersistentDomain:forName:">("d", one("b", 2));
  setDomain<"setPersistentDomain:forName:">("c", foundation_.dictionary({}));
  EXPECT_EQ(ask<"persistentDomainNames">(), "(\"c\", \"d\")");
  EXPECT_EQ(read<"persistentDomainForName:">("d"), "{\"b\" = 2}");
  EXPECT_EQ(read<"persistentDomainForName:">("c"), "{}");
  tell<"removePersistentDomainForName:">("d");
  tell<"removePersistentDomainForName:">("d");
  EXPECT_EQ(ask<"persistentDomainNames">(), "(\"c\")");
}

TEST_F(FoundationDomainsTest, ValuesByKeyGoToTheApplicationsDomain) {
  set("k", foundation_.number("i", 1));
  EXPECT_EQ(read<"persistentDomainForName:">("com.example.program"), "{\"k\" = 1}");
  tell<"removePersistentDomainForName:">("com.example.program");
  EXPECT_EQ(value("k"), "nil");
}

TEST_F(FoundationDomainsTest, BadPersistentDomainsRaise) {
  const CFStringRef none = nullptr;
  EXPECT_EQ(
      raised([&] { send<void, "setPersistentDomain:forName:">(defaults_, one("a", 1), none); }),
      "NSInvalidArgumentException: the name is nil");
  EXPECT_EQ(raised([&] { setDomain<"setPersistentDomain:forName:">("d", nullptr); }),
            "NSInvalidArgumentException: the dictionary is nil");
  const id null = foundation_.dictionary({{"k", foundation_.null()}});
  EXPECT_EQ(raised([&] { setDomain<"setPersistentDomain:forName:">("d", null); }),
            "NSInvalidArgumentException: the value for the key NSString \"k\" is no property list: "
            "NSNull \"<null>\"");
  const id odd = foundation_.dictionary({std::pair{foundation_.number("i", 1), object("v")}});
  EXPECT_EQ(raised([&] { setDomain<"setPersistentDomain:forName:">("d", odd); }),
            "NSInvalidArgumentException: a key is no property list: NSNumber \"1\"");
  EXPECT_EQ((send<id, "persistentDomainForName:">(defaults_, none)), nullptr);
  send<void, "removePersistentDomainForName:">(defaults_, none);
  EXPECT_EQ(ask<"persistentDomainNames">(), "()");
}

// --- volatile domains

TEST_F(FoundationDomainsTest, VolatileDomainsAreMadeOnce) {
  EXPECT_EQ(ask<"volatileDomainNames">(), "(\"NSArgumentDomain\", \"NSRegistrationDomain\")");
  setDomain<"setVolatileDomain:forName:">("v", one("a", 1));
  EXPECT_EQ(raised([&] { setDomain<"setVolatileDomain:forName:">("v", one("a", 2)); }),
            "NSInvalidArgumentException: there is a volatile domain NSString \"v\" already");
  EXPECT_EQ(read<"volatileDomainForName:">("v"), "{\"a\" = 1}");
  EXPECT_EQ(value("a"), "nil");
  tell<"removeVolatileDomainForName:">("v");
  EXPECT_EQ(read<"volatileDomainForName:">("v"), "nil");
  setDomain<"setVolatileDomain:forName:">("v", foundation_.dictionary({{"k", foundation_.null()}}));
  EXPECT_EQ(read<"volatileDomainForName:">("v"), "{\"k\" = null}");
}

TEST_F(FoundationDomainsTest, NilNamesRaiseWhereTheyWouldBeKept) {
  const CFStringRef none = nullptr;
  const std::string expected = "NSInvalidArgumentException: the name is nil";
  EXPECT_EQ(raised([&] { send<void, "addSuiteNamed:">(defaults_, none); }), expected);
  EXPECT_EQ(raised([&] { send<void, "setVolatileDomain:forName:">(defaults_, one("a", 1), none); }),
            expected);
  EXPECT_EQ((send<id, "volatileDomainForName:">(defaults_, none)), nullptr);
  send<void, "removeVolatileDomainForName:">(defaults_, none);
  EXPECT_EQ(ask<"volatileDomainNames">(), "(\"NSArgumentDomain\", \"NSRegistrationDomain\")");
}

TEST_F(FoundationDomainsTest, UsersHaveTheirOwnDomains) {
  NSUserDefaults* const other = send<NSUserDefaults*, "initWithUser:">(
      send<NSUserDefaults*, "alloc">(zel::lookUpClass("NSUserDefaults")), text("other"));
  setDomain<"setPersistentDomain:forName:">("d", one("a", 1));
  EXPECT_EQ(foundation_.describe(send<id, "persistentDomainNames">(other)), "()");
  zel::release(other);
}

// --- forced values

TEST_F(FoundationDomainsTest, AnAdministratorForcesKeysInDomains) {
  foundation_.force("own");
  foundation_.force("shared", "NSGlobalDomain");
  const auto forced = [&](const char* key) {
    return send<BOOL, "objectIsForcedForKey:">(defaults_, text(key));
  };
  const auto forcedIn = [&](const char* key, const char* domain) {
    return send<BOOL, "objectIsForcedForKey:inDomain:">(defaults_, text(key), text(domain));
  };
  EXPECT_EQ(forced("own"), 1);
  EXPECT_EQ(forced("shared"), 1);
  EXPECT_EQ(forced("other"), 0);
  EXPECT_EQ(forced("ow"), 0);
  EXPECT_EQ(forcedIn("own", "com.example.program"), 1);
  EXPECT_EQ(forcedIn("own", "NSGlobalDomain"), 0);
  EXPECT_EQ(forcedIn("shared", "NSGlobalDomain"), 1);
  foundation_.reset();
  defaults_ = foundation_.standardDefaults();
  EXPECT_EQ(forced("own"), 0);
}

}  // namespace
