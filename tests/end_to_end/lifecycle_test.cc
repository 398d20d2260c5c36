// Start-up, identity and the shared methods through the built plugin, in every host.
#include "tests/end_to_end/end_to_end_test.h"

namespace tests {
namespace {

using namespace std::string_literals;

const Raised kSecondConstruction{"UnsupportedOperationException",
                                 "Constructor called too often. Object is already initialized.", 0};

zel::id wrappedBy(const ObjectRef& object) {
  const auto* const start = reinterpret_cast<const char*>(object.handle());
  return *reinterpret_cast<const zel::id*>(start + 24);
}

std::uintptr_t nativeReferences(zel::id object) {
  return zel::send<std::uintptr_t, "retainCount">(object);
}

class LifecycleTest : public FamilyTest, public testing::WithParamInterface<double> {
 protected:
  void SetUp() override { startHost({.version = GetParam()}); }
  [[nodiscard]] bool older() const { return GetParam() < 2012.0; }
};

INSTANTIATE_TEST_SUITE_P(Hosts, LifecycleTest, testing::ValuesIn(amongThese(kHostVersions)));

TEST_P(LifecycleTest, TheInterfaceVersionFollowsTheHost) {
  const std::int32_t expected = GetParam() >= 2013.03  ? 12
                                : GetParam() >= 2013.0 ? 11
                                : GetParam() >= 2012.0 ? 10
                                                       : 9;
  EXPECT_EQ(host->announcedVersion(), expected);
  EXPECT_EQ(host->findClass(kClass)->version, expected);
}

TEST_P(LifecycleTest, TheClassIsRegisteredWhole) {
  const host::RegisteredClass* const registered = host->findClass(kClass);
  ASSERT_NE(registered, nullptr);
  EXPECT_EQ(registered->dataSize, 16);
  EXPECT_EQ(registered->superName, "");
  EXPECT_EQ(registered->flags, 4);
  EXPECT_EQ(registered->methods.size(), 43U);
  EXPECT_EQ(registered->sharedMethods.size(), 6U);
  EXPECT_EQ(registered->methods.at(9).text, "integerForKey(key as string) as integer");
  EXPECT_EQ(registered->methods.at(42).text,
            "volatileDomainForName(domainName as string) as dictionary");
  EXPECT_EQ(registered->sharedMethods.at(5).text, "standardUserDefaults as NSUserDefaultsZEL");
  EXPECT_TRUE(host->assignable(kClass, "integerForKey"));
  EXPECT_FALSE(host->assignable(kClass, "arrayForKey"));
  EXPECT_FALSE(host->assignable(kClass, "stringArrayForKey"));
}

TEST_P(LifecycleTest, TheStandardObjectIsOneObject) {
  const ObjectRef first = standard();
  const ObjectRef second = standard();
  EXPECT_EQ(first, second);
  EXPECT_EQ(host->references(first.handle()), 2);
}

TEST_P(LifecycleTest, TheNativeReferenceComesBack) {
  ObjectRef object = standard();
  const zel::id native = wrappedBy(object);
  drainPool();
  const std::uintptr_t references = nativeReferences(native);
  object.reset();
  EXPECT_EQ(nativeReferences(native), references - 1);
  object = standard();
  drainPool();
  EXPECT_EQ(wrappedBy(object), native);
  EXPECT_EQ(nativeReferences(native), references);
}

TEST_P(LifecycleTest, ConstructionIsRefusedASecondTime) {
  const ObjectRef shared = standard();
  EXPECT_EQ(host->call(shared, "Constructor").raised, kSecondConstruction);
  const ObjectRef object = host->construct(kClass);
  EXPECT_EQ(host->call(object, "Constructor").raised, kSecondConstruction);
  EXPECT_EQ(host->call(object, "Constructor", {"somebody"s}).raised, kSecondConstruction);
}

TEST_P(LifecycleTest, PrivateObjectsAreDistinct) {
  const ObjectRef first = host->construct(kClass);
  const ObjectRef second = host->construct(kClass);
  EXPECT_NE(wrappedBy(first), wrappedBy(second));
  EXPECT_NE(wrappedBy(first), wrappedBy(standard()));
}

TEST_P(LifecycleTest, AUsersDefaultsCanBeOpened) {
  for (const std::string& user : {""s, "no-such-user-anywhere"s}) {
    const ObjectRef object = host->construct(kClass, {user});
    EXPECT_NE(wrappedBy(object), nullptr);
  }
  EXPECT_EQ(host->takePending(), std::vector<Raised>{});
}

TEST_P(LifecycleTest, AResetGivesANewStandardObject) {
  const ObjectRef before = standard();
  askShared("resetStandardUserDefaults");
  const ObjectRef after = standard();
  EXPECT_NE(before, after);
  EXPECT_NE(wrappedBy(before), wrappedBy(after));
}

TEST_P(LifecycleTest, TheDomainNames) {
  EXPECT_EQ(askShared("NSGlobalDomain"), Value("NSGlobalDomain"s));
  EXPECT_EQ(askShared("NSArgumentDomain"), Value("NSArgumentDomain"s));
  EXPECT_EQ(askShared("NSRegistrationDomain"), Value("NSRegistrationDomain"s));
  EXPECT_EQ(askShared("NSUserDefaultsDidChangeNotification"),
            Value("NSUserDefaultsDidChangeNotification"s));
}

TEST_P(LifecycleTest, TheFamilyIsPreparedOnce) {
  const ObjectRef first = standard();
  const ObjectRef second = host->construct(kClass);
  EXPECT_EQ(family->preparations(), standInsRule() ? 1 : 0);
}

TEST_P(LifecycleTest, TheExceptionMethodGivesNothing) {
  EXPECT_EQ(ask(standard(), "_exception"), Value(ObjectRef()));
}

}  // namespace
}  // namespace tests
