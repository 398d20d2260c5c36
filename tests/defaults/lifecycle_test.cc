// The life of an NSUserDefaultsZEL object, and the shared methods.
#include <algorithm>
#include <array>
#include <utility>

#include "plugin/errors.h"
#include "plugin/methods.h"
#include "plugin/tables.h"
#include "tests/support/plugin_test.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests

const char* const kClass = "NSUserDefaultsZEL";
const Raised kSecondConstruction{"UnsupportedOperationException",
                                 "Constructor called too often. Object is already initialized.", 0};

// The native object that a host object wraps, read where instance data begins.
NSUserDefaults* wrappedBy(const ObjectRef& object) {
  const auto* const start = reinterpret_cast<const char*>(object.handle());
  return *reinterpret_cast<NSUserDefaults* const*>(start + 24);
}

class LifecycleTest : public PluginTest {
 protected:
  ObjectRef standard() {
    const Outcome outcome = host->callShared(kClass, "standardUserDefaults");
    EXPECT_EQ(outcome.raised, std::nullopt);
    return std::get<ObjectRef>(outcome.value);
  }
  std::optional<Raised> construct(const ObjectRef& object,
                                  const std::vector<Value>& arguments = {}) {
    return host->call(object, "Constructor", arguments).raised;
  }
  // What stands in the family's map for the native object.
  const void* remembered(const NSUserDefaults* defaults) {
    const auto& entries = foundation.pointerTableEntries();
    const auto found = entries.find(defaults);
    return found == entries.end() ? nullptr : found->second;
  }
  [[nodiscard]] std::size_t rememberedObjects() { return foundation.pointerTableEntries().size(); }
  long messagesSent(const std::string& message) {
    return std::count(foundation.messages().begin(), foundation.messages().end(), message);
  }
};

// --- hooks

TEST_F(LifecycleTest, ANewObjectJoinsTheFamilyAndWrapsNothing) {
  provideFamily();
  const ObjectRef object = host->make(kClass);
  EXPECT_EQ(family->preparations(), 1);
  EXPECT_EQ(instances, foundation.pointerTable());
  EXPECT_EQ(wrappedBy(object), nullptr);
}

TEST_F(LifecycleTest, TheHookLeavesTheDataWordAlone) {
  char object[64] = {};
  NSUserDefaultsClass.base.systemUse = 24;
  object[24] = 0x5A;
  NSUserDefaultsConstructor(reinterpret_cast<REALobject>(object));
  EXPECT_EQ(object[24], 0x5A);
}

TEST_F(LifecycleTest, AnObjectThatWrapsNothingDiesQuietly) {
  provideFamily();
  host->make(kClass).reset();
  EXPECT_EQ(messagesSent("-[NSUserDefaults release]"), 0);
  EXPECT_EQ(foundation.calls(), Lines{});
}

TEST_F(LifecycleTest, TheDestructorGivesTheReferenceBackAndForgets) {
  provideFamily();
  ObjectRef object = host->construct(kClass);
  EXPECT_EQ(rememberedObjects(), 1U);
  object.reset();
  EXPECT_EQ(rememberedObjects(), 0U);
  EXPECT_EQ(foundation.unbalanced(), "");
}

TEST_F(LifecycleTest, TheDestructorClearsTheDataWord) {
  const ObjectRef object = host->construct(kClass);
  NSUserDefaultsDestructor(object.handle());
  EXPECT_EQ(wrappedBy(object), nullptr);
}

TEST_F(LifecycleTest, TheDestructorForgetsTheEntryWhoeverItNames) {
  provideFamily();
  ObjectRef object = host->construct(kClass);
  int somebodyElse = 0;
  CFDictionarySetValue(instances, wrappedBy(object), &somebodyElse);
  object.reset();
  EXPECT_EQ(rememberedObjects(), 0U);
}

TEST_F(LifecycleTest, TheDestructorForgetsInAMapThatItHasJustGot) {
  ObjectRef object = host->construct(kClass);
  provideFamily();
  object.reset();
  EXPECT_EQ(foundation.calls(), Lines{"CFDictionaryRemoveValue"});
}

TEST_F(LifecycleTest, TheDestructorGoesToTheFixedPosition) {
  ObjectRef object = host->construct(kClass);
  NSUserDefaultsClass.base.systemUse = 1000;
  object.reset();
  EXPECT_EQ(foundation.unbalanced(), "");
}

TEST_F(LifecycleTest, AnExceptionInTheDestructorReachesTheHost) {
  provideFamily();
  ObjectRef object = host->construct(kClass);
  foundation.throwAtCall("CFDictionaryRemoveValue");
  NSUserDefaultsDestructor(object.handle());
  EXPECT_EQ(host->takePending(), (std::vector<Raised>{{"NSExceptionZEL", "told to fail", 0}}));
  EXPECT_NE(wrappedBy(object), nullptr);
}

TEST_F(LifecycleTest, TheExceptionMethodGivesNothing) {
  const ObjectRef object = host->construct(kClass);
  host->clearRecords();
  foundation.clearRecords();
  EXPECT_EQ(std::get<ObjectRef>(ask(object, "_exception")), ObjectRef());
  EXPECT_EQ(DummyException(nullptr), nullptr);
  EXPECT_EQ(foundation.messages(), Lines{});
  EXPECT_EQ(host->sequence(), Lines{});
}

TEST_F(LifecycleTest, WhatIsNoNSExceptionLeavesTheDestructor) {
  static id thrown = nullptr;
  const ObjectRef object = host->construct(kClass);
  thrown = foundation.object("NSObject");
  foundation.addMethod("NSUserDefaults", "release", [](id, SEL) { objc_exception_throw(thrown); });
  EXPECT_EQ(catching([&] { NSUserDefaultsDestructor(object.handle()); }), thrown);
  EXPECT_EQ(foundation.log(), Lines{});
  EXPECT_EQ(host->takePending(), std::vector<Raised>{});
  foundation.addMethod("NSUserDefaults", "release", [](id self, SEL) { CFRelease(self); });
}

// --- both constructors

class ConstructorTest : public LifecycleTest,
                        public testing::WithParamInterface<std::vector<Value>> {};

TEST_P(ConstructorTest, WrapsWhereTheHostSays) {
  ObjectRef object = host->make(kClass);
  auto& words = Host::data<std::array<NSUserDefaults*, 2>>(object);
  NSUserDefaultsClass.base.systemUse = 24 + sizeof(void*);
  EXPECT_EQ(construct(object, GetParam()), std::nullopt);
  EXPECT_EQ(words[0], nullptr);
  EXPECT_EQ(foundation.references(words[1]), 1);
  EXPECT_EQ(construct(object, GetParam()), kSecondConstruction);
  words[0] = std::exchange(words[1], nullptr);  // where the destructor finds it
}

INSTANTIATE_TEST_SUITE_P(Constructors, ConstructorTest,
                         testing::Values(std::vector<Value>{},
                                         std::vector<Value>{std::string("alice")}),
                         [](const auto& row) {
                           return row.param.empty() ? "Constructor" : "ConstructorUser";
                         });

// --- Constructor

TEST_F(LifecycleTest, ConstructorWrapsAPrivateObject) {
  const ObjectRef object = host->make(kClass);
  foundation.clearRecords();
  EXPECT_EQ(construct(object), std::nullopt);
  EXPECT_NE(wrappedBy(object), nullptr);
  EXPECT_NE(wrappedBy(object), foundation.standardDefaults());
  EXPECT_EQ(foundation.references(wrappedBy(object)), 1);
  EXPECT_EQ(messagesSent("+[NSUserDefaults alloc]"), 1);
  EXPECT_EQ(messagesSent("-[NSUserDefaults init]"), 1);
}

TEST_F(LifecycleTest, ConstructorRemembersTheObject) {
  provideFamily();
  const ObjectRef object = host->construct(kClass);
  EXPECT_EQ(remembered(wrappedBy(object)), object.handle());
  EXPECT_EQ(rememberedObjects(), 1U);
  EXPECT_EQ(host->references(object.handle()), 1);
}

TEST_F(LifecycleTest, ConstructorReplacesAnEarlierEntry) {
  provideFamily();
  const ObjectRef object = host->make(kClass);
  // A native object that the family knows under another host object already.
  foundation.addMethod("NSUserDefaults", "init", [](id self, SEL) {
    CFDictionarySetValue(foundation_double::Foundation::shared().pointerTable(), self, self);
    return self;
  });
  EXPECT_EQ(construct(object), std::nullopt);
  EXPECT_EQ(remembered(wrappedBy(object)), object.handle());
}

TEST_F(LifecycleTest, ASecondConstructionIsRefused) {
  const ObjectRef object = host->construct(kClass);
  NSUserDefaults* const first = wrappedBy(object);
  EXPECT_EQ(construct(object), kSecondConstruction);
  EXPECT_EQ(wrappedBy(object), first);
  EXPECT_EQ(construct(object, {std::string("user")}), kSecondConstruction);
  EXPECT_EQ(wrappedBy(object), first);
  EXPECT_EQ(foundation.references(first), 1);
}

TEST_F(LifecycleTest, ASecondConstructionIsRefusedBeforeAnythingElse) {
  const ObjectRef object = host->construct(kClass);
  provideFamily();
  foundation.clearRecords();
  EXPECT_EQ(construct(object), kSecondConstruction);
  EXPECT_EQ(construct(object, {std::string("user")}), kSecondConstruction);
  EXPECT_EQ(foundation.messages(), Lines{});
  EXPECT_EQ(family->preparations(), 0);
}

TEST_F(LifecycleTest, AnInitThatGivesNilLeavesTheObjectUnconstructed) {
  provideFamily();
  const ObjectRef object = host->make(kClass);
  foundation.initGivesNil(true);
  EXPECT_EQ(construct(object), std::nullopt);
  EXPECT_EQ(wrappedBy(object), nullptr);
  EXPECT_EQ(rememberedObjects(), 0U);
  foundation.initGivesNil(false);
  EXPECT_EQ(construct(object), std::nullopt);
  EXPECT_NE(wrappedBy(object), nullptr);
}

TEST_F(LifecycleTest, AnExceptionInConstructorReachesTheHost) {
  provideFamily();
  const ObjectRef object = host->make(kClass);
  foundation.addClassMethod("NSUserDefaults", "alloc", [](id, SEL) -> id {
    objc_exception_throw(foundation_double::Foundation::shared().exception("Bad", "No memory."));
  });
  EXPECT_EQ(construct(object), (Raised{"NSExceptionZEL", "No memory.", 0}));
  EXPECT_EQ(wrappedBy(object), nullptr);
}

// --- Constructor(username)

TEST_F(LifecycleTest, ConstructorUserOpensTheUsersDefaults) {
  provideFamily();
  const ObjectRef object = host->make(kClass);
  EXPECT_EQ(construct(object, {std::string("alice")}), std::nullopt);
  EXPECT_EQ(foundation.lastUserName(), std::optional<std::string>("alice"));
  EXPECT_EQ(foundation.references(wrappedBy(object)), 1);
  EXPECT_EQ(remembered(wrappedBy(object)), object.handle());
}

TEST_F(LifecycleTest, ConstructorUserPassesNilForNoName) {
  const ObjectRef object = host->make(kClass);
  EXPECT_EQ(construct(object, {std::string()}), std::nullopt);
  EXPECT_EQ(foundation.lastUserName(), std::make_optional(std::optional<std::string>()));
  EXPECT_NE(wrappedBy(object), nullptr);
}

TEST_F(LifecycleTest, AUserWhoseDefaultsCannotBeOpenedLeavesTheObjectUnconstructed) {
  provideFamily();
  const ObjectRef object = host->make(kClass);
  foundation.initWithUserGivesNil(true);
  EXPECT_EQ(construct(object, {std::string("nobody")}), std::nullopt);
  EXPECT_EQ(wrappedBy(object), nullptr);
  EXPECT_EQ(rememberedObjects(), 0U);
  foundation.initWithUserGivesNil(false);
  EXPECT_EQ(construct(object, {std::string("alice")}), std::nullopt);
  EXPECT_NE(wrappedBy(object), nullptr);
}

TEST_F(LifecycleTest, AnExceptionInConstructorUserReachesTheHost) {
  provideFamily();
  const ObjectRef object = host->make(kClass);
  host->answerNull("REALGetStringCFString");
  foundation.throwAtCall("CFStringCreateWithCString");
  EXPECT_EQ(construct(object, {std::string("alice")}),
            (Raised{"NSExceptionZEL", "told to fail", 0}));
  EXPECT_EQ(wrappedBy(object), nullptr);
}

// --- standardUserDefaults

TEST_F(LifecycleTest, StandardUserDefaultsWrapsTheSharedObject) {
  provideFamily();
  const long before = foundation.references(foundation.standardDefaults());
  ObjectRef object = standard();
  EXPECT_EQ(wrappedBy(object), foundation.standardDefaults());
  EXPECT_EQ(host->references(object.handle()), 1);
  EXPECT_EQ(remembered(foundation.standardDefaults()), object.handle());
  foundation.drainPool();
  EXPECT_EQ(foundation.references(foundation.standardDefaults()), before + 1);
  object.reset();
  EXPECT_EQ(foundation.references(foundation.standardDefaults()), before);
}

TEST_F(LifecycleTest, StandardUserDefaultsGivesTheSameObjectWhileItLives) {
  provideFamily();
  const ObjectRef first = standard();
  const ObjectRef second = standard();
  EXPECT_EQ(first, second);
  EXPECT_EQ(host->references(first.handle()), 2);
  EXPECT_EQ(host->calls("REALLockObject"), 1);
  EXPECT_EQ(host->calls("PluginNewInstance"), 1);
}

TEST_F(LifecycleTest, StandardUserDefaultsGivesANewObjectOnceTheOldOneIsDead) {
  provideFamily();
  ObjectRef object = standard();
  NSUserDefaults* const native = wrappedBy(object);
  foundation.drainPool();
  const long references = foundation.references(native);
  object.reset();
  EXPECT_EQ(rememberedObjects(), 0U);
  object = standard();
  foundation.drainPool();
  EXPECT_EQ(wrappedBy(object), native);
  EXPECT_EQ(foundation.references(native), references);
  EXPECT_EQ(host->calls("PluginNewInstance"), 2);
}

TEST_F(LifecycleTest, StandardUserDefaultsHasNoIdentityWithoutTheFamily) {
  const ObjectRef first = standard();
  const ObjectRef second = standard();
  EXPECT_NE(first, second);
  EXPECT_EQ(wrappedBy(first), wrappedBy(second));
}

TEST_F(LifecycleTest, EveryWrapperWithoutTheFamilyHoldsAReferenceOfItsOwn) {
  const long before = foundation.references(foundation.standardDefaults());
  ObjectRef first = standard();
  ObjectRef second = standard();
  foundation.drainPool();
  EXPECT_EQ(foundation.references(foundation.standardDefaults()), before + 2);
  first.reset();
  EXPECT_EQ(foundation.references(foundation.standardDefaults()), before + 1);
  second.reset();
  EXPECT_EQ(foundation.references(foundation.standardDefaults()), before);
}

TEST_F(LifecycleTest, ConstructorOnTheStandardObjectIsRefused) {
  const ObjectRef object = standard();
  EXPECT_EQ(construct(object), kSecondConstruction);
  EXPECT_EQ(construct(object, {std::string("alice")}), kSecondConstruction);
  EXPECT_EQ(wrappedBy(object), foundation.standardDefaults());
}

TEST_F(LifecycleTest, StandardUserDefaultsGivesNothingForNil) {
  provideFamily();
  foundation.standardDefaultsGivesNil(true);
  EXPECT_EQ(standard(), ObjectRef());
  EXPECT_EQ(host->calls("PluginNewInstance"), 0);
}

TEST_F(LifecycleTest, StandardUserDefaultsGivesNothingInAHostThatMakesNoObjects) {
  provideFamily();
  host->hide("PluginNewInstance");
  EXPECT_EQ(standard(), ObjectRef());
  host->unhide("PluginNewInstance");
  host->answerNull("PluginNewInstance");
  EXPECT_EQ(standard(), ObjectRef());
  EXPECT_EQ(rememberedObjects(), 0U);
  EXPECT_EQ(messagesSent("-[NSUserDefaults retain]"), 0);
}

TEST_F(LifecycleTest, AKnownObjectIsGivenWithoutAReferenceInAHostThatCannotLock) {
  provideFamily();
  const ObjectRef first = standard();
  host->hide("REALLockObject");
  const REALobject second = standardUserDefaults();
  EXPECT_EQ(second, first.handle());
  EXPECT_EQ(host->references(second), 1);
}

TEST_F(LifecycleTest, StandardUserDefaultsUsesTheFixedPosition) {
  NSUserDefaultsClass.base.systemUse = 1000;
  const ObjectRef object = standard();
  EXPECT_EQ(wrappedBy(object), foundation.standardDefaults());
}

TEST_F(LifecycleTest, StandardUserDefaultsLosesNothingWhenItsBookkeepingRaises) {
  provideFamily();
  foundation.throwAtCall("CFDictionarySetValue");
  const Outcome outcome = host->callShared(kClass, "standardUserDefaults");
  EXPECT_EQ(outcome.raised, (Raised{"NSExceptionZEL", "told to fail", 0}));
  EXPECT_EQ(outcome.value, Value(ObjectRef()));
}

TEST_F(LifecycleTest, AnExceptionInStandardUserDefaultsReachesTheHost) {
  provideFamily();
  foundation.addClassMethod("NSUserDefaults", "standardUserDefaults", [](id, SEL) -> id {
    objc_exception_throw(foundation_double::Foundation::shared().exception("Bad", "Locked."));
  });
  const Outcome outcome = host->callShared(kClass, "standardUserDefaults");
  EXPECT_EQ(outcome.raised, (Raised{"NSExceptionZEL", "Locked.", 0}));
  EXPECT_EQ(outcome.value, Value(ObjectRef()));
}

// --- resetStandardUserDefaults

TEST_F(LifecycleTest, ResetLetsTheNextStandardObjectBeANewOne) {
  provideFamily();
  const ObjectRef before = standard();
  NSUserDefaults* const native = wrappedBy(before);
  EXPECT_EQ(host->callShared(kClass, "resetStandardUserDefaults").raised, std::nullopt);
  EXPECT_EQ(wrappedBy(before), native);
  EXPECT_EQ(remembered(native), before.handle());
  const ObjectRef after = standard();
  EXPECT_NE(after, before);
  EXPECT_NE(wrappedBy(after), native);
  EXPECT_EQ(rememberedObjects(), 2U);
}

TEST_F(LifecycleTest, ResetSendsItsMessage) {
  EXPECT_EQ(host->callShared(kClass, "resetStandardUserDefaults").raised, std::nullopt);
  EXPECT_EQ(messagesSent("+[NSUserDefaults resetStandardUserDefaults]"), 1);
}

TEST_F(LifecycleTest, AnExceptionInResetReachesTheHost) {
  provideFamily();
  foundation.addClassMethod("NSUserDefaults", "resetStandardUserDefaults", [](id, SEL) {
    objc_exception_throw(foundation_double::Foundation::shared().exception("Bad", "Busy."));
  });
  EXPECT_EQ(host->callShared(kClass, "resetStandardUserDefaults").raised,
            (Raised{"NSExceptionZEL", "Busy.", 0}));
}

// --- the domain names

struct NameCase {
  const char* method;
  const char* text;
};

class DomainNameTest : public LifecycleTest, public testing::WithParamInterface<NameCase> {};

TEST_P(DomainNameTest, IsTheTextOfFoundationsConstant) {
  const Outcome outcome = host->callShared(kClass, GetParam().method);
  EXPECT_EQ(outcome.raised, std::nullopt);
  EXPECT_EQ(std::get<std::string>(outcome.value), GetParam().text);
}

TEST_P(DomainNameTest, IsEmptyWhenTheConstantIsMissing) {
  foundation.hideConstant(GetParam().method);
  EXPECT_EQ(host->callShared(kClass, GetParam().method).value, Value(std::string()));
  EXPECT_EQ(host->calls("REALBuildString"), 0);
}

TEST_P(DomainNameTest, NeitherJoinsTheFamilyNorGuards) {
  provideFamily();
  EXPECT_EQ(host->callShared(kClass, GetParam().method).raised, std::nullopt);
  EXPECT_EQ(family->preparations(), 0);
  EXPECT_EQ(foundation.messages(), Lines{});
  foundation.throwAtCall("CFStringGetCString");
  EXPECT_NE(catching([&] { host->callShared(kClass, GetParam().method); }), nullptr);
  EXPECT_EQ(foundation.log(), Lines{});
}

INSTANTIATE_TEST_SUITE_P(Names, DomainNameTest,
                         testing::Values(NameCase{"NSGlobalDomain", "NSGlobalDomain"},
                                         NameCase{"NSArgumentDomain", "NSArgumentDomain"},
                                         NameCase{"NSRegistrationDomain", "NSRegistrationDomain"},
                                         NameCase{"NSUserDefaultsDidChangeNotification",
                                                  "NSUserDefaultsDidChangeNotification"}),
                         [](const auto& row) { return row.param.method; });

}  // namespace
}  // namespace zel
