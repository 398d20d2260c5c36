// The double's runtime: classes, messages and reference accounts.

#include <cstdio>
#include <stdexcept>

#include "tests/foundation_double/fixture.h"

namespace {

using zel::CFStringRef;
using zel::id;
using zel::NSInteger;
using zel::send;

zel::CFStringRef newString(const char* text) {
  return zel::CFStringCreateWithCString(nullptr, text, zel::kCFStringEncodingUTF8);
}

// --- selectors and classes

TEST_F(FoundationTest, SelectorsAreInterned) {
  const std::string sameText = "integerForKey:";
  EXPECT_EQ(zel::sel_registerName("integerForKey:"), zel::sel_registerName(sameText.c_str()));
  EXPECT_NE(zel::sel_registerName("integerForKey:"), zel::sel_registerName("floatForKey:"));
}

TEST_F(FoundationTest, ClassesAreFoundByName) {
  EXPECT_NE(zel::lookUpClass("NSUserDefaults"), nullptr);
  EXPECT_EQ(zel::lookUpClass("NSUserDefaults"), zel::lookUpClass("NSUserDefaults"));
  EXPECT_EQ(zel::lookUpClass("NSNothing"), nullptr);
}

TEST_F(FoundationTest, AnObjectBeginsWithItsClass) {
  const id string = object("text");
  EXPECT_EQ(*reinterpret_cast<zel::Class**>(string), zel::lookUpClass("NSString"));
}

TEST_F(FoundationTest, ObjectsKnowTheirKind) {
  const id string = object("text");
  EXPECT_TRUE(zel::isKindOf<"NSString">(string));
  EXPECT_TRUE(zel::isKindOf<"NSObject">(string));
  EXPECT_FALSE(zel::isKindOf<"NSException">(string));
  EXPECT_TRUE(zel::isKindOf<"NSObject">(zel::lookUpClass("NSString")));
  EXPECT_FALSE(zel::isKindOf<"NSString">(zel::lookUpClass("NSString")));
  EXPECT_EQ((send<zel::Class*, "class">(string)), zel::lookUpClass("NSString"));
}

TEST_F(FoundationTest, ObjectsKnowWhatTheyAnswer) {
  const id string = object("text");
  zel::Class* const exceptions = zel::lookUpClass("NSException");
  EXPECT_TRUE(zel::respondsTo<"length">(string));
  EXPECT_TRUE(zel::respondsTo<"retain">(string));
  EXPECT_FALSE(zel::respondsTo<"exceptionWithName:reason:userInfo:">(string));
  EXPECT_TRUE(zel::respondsTo<"exceptionWithName:reason:userInfo:">(exceptions));
  EXPECT_FALSE(zel::respondsTo<"reason">(exceptions));
}

TEST_F(FoundationTest, AnUnknownMessageRaises) {
  const id string = object("text");
  char address[32];
  std::snprintf(address, sizeof address, "%p", static_cast<void*>(string));
  EXPECT_EQ(raised([=] { send<void, "frob:">(string, NSInteger{1}); }),
            "NSInvalidArgumentException: -[NSString frob:]: unrecognized selector sent to "
            "instance " +
                std::string(address));
  zel::Class* const strings = zel::lookUpClass("NSString");
  EXPECT_EQ(raised([=] { send<void, "length">(strings); })
                .rfind("NSInvalidArgumentException: +[NSString length]: unrecognized selector sent "
                       "to class 0x",
                       0),
            0U);
}

TEST_F(FoundationTest, MethodsCanBeAddedForOneTest) {
  zel::Class* const exceptions = zel::lookUpClass("NSException");
  foundation_.addClassMethod(
      "NSException",
      "AnswerZEL:", [](id /*self*/, zel::SEL /*selector*/, double half) { return half * 2; });
  foundation_.addMethod("NSString", "length",
                        [](id /*self*/, zel::SEL /*selector*/) { return NSInteger{-7}; });
  EXPECT_TRUE(zel::respondsTo<"AnswerZEL:">(exceptions));
  EXPECT_EQ((send<double, "AnswerZEL:">(exceptions, 20.25)), 40.5);
  EXPECT_EQ((send<NSInteger, "length">(object("abc"))), -7);

  foundation_.reset();
  EXPECT_FALSE(zel::respondsTo<"AnswerZEL:">(exceptions));
  EXPECT_EQ((send<NSInteger, "length">(object("abc"))), 3);
}

TEST_F(FoundationTest, ClassesCanBeAddedForOneTest) {
  zel::Class* const added = foundation_.addClass("OddException", "NSException");
  EXPECT_EQ(zel::lookUpClass("OddException"), added);
  foundation_.addMethod("OddException", "oddity",
                        [](id /*self*/, zel::SEL /*selector*/) { return NSInteger{9}; });
  const id odd = foundation_.exception("Odd", "why", "OddException");
  EXPECT_TRUE(zel::isKindOf<"NSException">(odd));
  EXPECT_EQ((send<NSInteger, "oddity">(odd)), 9);
  EXPECT_EQ(foundation_.utf8(send<CFStringRef, "reason">(odd)), "why");

  foundation_.reset();
  EXPECT_EQ(zel::lookUpClass("OddException"), nullptr);
  EXPECT_EQ(foundation_.addClass("OddException", "NSObject"), added);
  EXPECT_FALSE(zel::isKindOf<"NSException">(foundation_.object("OddException")));
  EXPECT_FALSE(zel::respondsTo<"oddity">(foundation_.object("OddException")));
}

TEST_F(FoundationTest, AClassCanLoseItsNameForOneTest) {
  zel::Class* const added = foundation_.addClass("Nameless", "NSObject");
  const id nameless = foundation_.object("Nameless");
  foundation_.hideClassName("Nameless");
  EXPECT_EQ(zel::object_getClassName(added), nullptr);
  EXPECT_STREQ(zel::object_getClassName(nameless), "Nameless");

  foundation_.reset();
  EXPECT_STREQ(zel::object_getClassName(added), "Nameless");
}

TEST_F(FoundationTest, ClassesAreToldWithoutAMessage) {
  foundation_.addClass("Odd", "NSException");
  const id odd = foundation_.exception("Odd", "why", "Odd");
  zel::Class* const isa = zel::lookUpClass("NSException");
  foundation_.clearRecords();
  EXPECT_EQ(zel::classOf(odd), zel::lookUpClass("Odd"));
  EXPECT_TRUE(zel::isInstanceOf<"Odd">(odd));
  EXPECT_TRUE(zel::isInstanceOf<"NSException">(odd));
  EXPECT_TRUE(zel::isInstanceOf<"NSObject">(odd));
  EXPECT_FALSE(zel::isInstanceOf<"NSString">(odd));
  EXPECT_FALSE(zel::isInstanceOf<"NoSuchClass">(odd));
  EXPECT_FALSE(zel::isInstanceOf<"NSException">(foundation_.asObject(isa)));  // a class isn't one
  EXPECT_EQ(foundation_.messages(), Lines{});
}

TEST_F(FoundationTest, AMessageToAClassThatIsGoneIsAFailure) {
  zel::Class* const added = foundation_.addClass("Passing", "NSObject");
  foundation_.reset();
  collectFailures();
  EXPECT_EQ((send<id, "alloc">(added)), nullptr);
  EXPECT_EQ(failures_, Lines{"+[Passing alloc] sent to a class that is gone"});
}

TEST_F(FoundationTest, SelectorsCanBeHiddenForOneTest) {
  zel::NSUserDefaults* const defaults = foundation_.standardDefaults();
  foundation_.hideSelector("NSUserDefaults", "doubleForKey:");
  EXPECT_FALSE(zel::respondsTo<"doubleForKey:">(defaults));
  EXPECT_TRUE(zel::respondsTo<"floatForKey:">(defaults));
  EXPECT_EQ(raised([&] {
              send<double, "doubleForKey:">(defaults, foundation_.string("k"));
            }).substr(0, 56),
            "NSInvalidArgumentException: -[NSUserDefaults doubleForKe");
  foundation_.reset();
  EXPECT_TRUE(zel::respondsTo<"doubleForKey:">(foundation_.standardDefaults()));
}

// --- reference accounts

TEST_F(FoundationTest, ACreatedObjectHasOneReference) {
  const CFStringRef string = newString("key");
  EXPECT_EQ(foundation_.references(string), 1);
  EXPECT_EQ((send<long, "retainCount">(string)), 1);
  EXPECT_EQ(foundation_.unbalanced(), "NSString \"key\": 1 reference\n");
  EXPECT_EQ(zel::retained(string), string);
  EXPECT_EQ(foundation_.unbalanced(), "NSString \"key\": 2 references\n");
  zel::CFRelease(string);
  zel::release(string);
  EXPECT_EQ(foundation_.references(string), 0);
}

TEST_F(FoundationTest, CoreFoundationCountsTheSameReferences) {
  const CFStringRef string = newString("key");
  EXPECT_EQ(zel::CFRetain(string), string);
  EXPECT_EQ(foundation_.references(string), 2);
  zel::CFRelease(string);
  EXPECT_EQ(foundation_.references(string), 1);
  zel::release(string);
  collectFailures();
  EXPECT_THROW(zel::CFRelease(nullptr), std::logic_error);
  EXPECT_EQ(failures_, Lines{"a Core Foundation call with what is no object"});
}

TEST_F(FoundationTest, ThePoolDropsWhatWasAutoreleased) {
  const CFStringRef string = zel::autoreleased(zel::retained(newString("key")));
  EXPECT_EQ(foundation_.references(string), 2);
  foundation_.drainPool();
  EXPECT_EQ(foundation_.references(string), 1);
  zel::release(string);
}

TEST_F(FoundationTest, UnbalancedListsEveryObject) {
  const CFStringRef first = newString("first");
  const id second = send<id, "alloc">(zel::lookUpClass("NSUserDefaults"));
  EXPECT_EQ(foundation_.unbalanced(),
            "NSString \"first\": 1 reference\nNSUserDefaults: 1 reference\n");
  zel::release(first);
  zel::release(second);
}

TEST_F(FoundationTest, AnOverReleaseFailsAtOnce) {
  const CFStringRef string = zel::autoreleased(newString("key"));
  collectFailures();
  zel::release(string);  // the pool's reference is not the caller's
  zel::autoreleased(string);
  zel::CFRelease(string);
  EXPECT_EQ(failures_, (Lines{"release without a reference: NSString \"key\"",
                              "autorelease without a reference: NSString \"key\"",
                              "release without a reference: NSString \"key\""}));
  EXPECT_EQ(foundation_.references(string), 1);
}

TEST_F(FoundationTest, AMessageToADeadObjectFailsAtOnce) {
  const CFStringRef string = newString("key");
  zel::release(string);
  collectFailures();
  EXPECT_EQ((send<NSInteger, "length">(string)), 0);
  zel::CFRelease(string);
  EXPECT_EQ(failures_, (Lines{"-[NSString length] sent to a dead object",
                              "release without a reference: dead NSString"}));
  EXPECT_THROW(zel::CFStringGetLength(string), std::logic_error);
  EXPECT_EQ(failures_.back(), "not a live string");
}

TEST_F(FoundationTest, AMessageToWhatIsNoObjectFailsAtOnce) {
  std::intptr_t nothing[4] = {};
  collectFailures();
  EXPECT_EQ((send<NSInteger, "length">(&nothing[0])), 0);
  EXPECT_EQ(failures_, Lines{"length sent to what is no object"});
}

TEST_F(FoundationTest, MisuseAbortsByDefault) {
  const CFStringRef string = foundation_.string("key");
  EXPECT_DEATH(zel::release(string),
               "Foundation double: release without a reference: NSString \"key\"");
}

TEST_F(FoundationTest, FoundationsOwnReferencesAreNobodysToBalance) {
  const id exception = zel::retained(foundation_.exception("Name", "reason"));
  EXPECT_EQ(foundation_.unbalanced(), "NSException \"reason\": 1 reference\n");
  collectFailures();
  zel::release(send<id, "name">(exception));
  EXPECT_EQ(failures_, Lines{"release without a reference: NSString \"Name\""});
  zel::release(exception);
}

TEST_F(FoundationTest, ClassesAndConstantsLiveForEver) {
  zel::Class* const strings = zel::lookUpClass("NSString");
  const CFStringRef constant = zel::zelFoundationConstant("NSGlobalDomain");
  for (int i = 0; i < 3; ++i) zel::release(strings);
  for (int i = 0; i < 3; ++i) zel::release(constant);
  EXPECT_EQ(foundation_.utf8(constant), "NSGlobalDomain");
  foundation_.reset();
  EXPECT_EQ(zel::zelFoundationConstant("NSGlobalDomain"), constant);
}

TEST_F(FoundationTest, ResetFreesWhatWasLeftOver) {
  const id exception = zel::retained(foundation_.exception("Name", "reason"));
  foundation_.pointerTable();
  foundation_.reset();
  EXPECT_EQ(foundation_.references(exception), 0);
  EXPECT_EQ(foundation_.unbalanced(), "");
}

}  // namespace
