#include "native/objc.h"

#include "native/corefoundation.h"
#include "tests/native/support.h"

extern "C" {
zel::Class* objc_allocateClassPair(zel::Class* superclass, const char* name, std::size_t extra);
void objc_registerClassPair(zel::Class* made);
zel::id class_createInstance(zel::Class* isa, std::size_t extra);
zel::id object_dispose(zel::id object);
}

namespace native_test {
namespace {

using zel::id;
using zel::send;

class ObjcTest : public NativeTest {
 protected:
  id object_ = zel::autoreleased(send<id, "new">(zel::classNamed<"NSObject">()));
};

TEST_F(ObjcTest, MessageToNilYieldsNothing) {
  const id nil = nullptr;
  EXPECT_EQ((send<float, "floatValue">(nil)), 0.0F);
  EXPECT_EQ((send<double, "doubleValue">(nil)), 0.0);
  EXPECT_EQ((send<zel::NSInteger, "integerValue">(nil)), 0);
  EXPECT_EQ((send<zel::BOOL, "boolValue">(nil)), 0);
  EXPECT_EQ((send<id, "description">(nil)), nullptr);
  send<void, "release">(nil);
}

TEST_F(ObjcTest, ArgumentsAndRepliesKeepTheirTypes) {
  zel::Class* const number = zel::classNamed<"NSNumber">();
  const id single = send<id, "numberWithFloat:">(number, 1.5F);
  EXPECT_EQ((send<float, "floatValue">(single)), 1.5F);
  const id large = send<id, "numberWithDouble:">(number, 1e300);
  EXPECT_EQ((send<double, "doubleValue">(large)), 1e300);
  const id small = send<id, "numberWithChar:">(number, static_cast<signed char>(-3));
  EXPECT_EQ((send<signed char, "charValue">(small)), -3);
  const id wide = send<id, "numberWithLongLong:">(number, -9'000'000'000LL);
  EXPECT_EQ((send<long long, "longLongValue">(wide)), -9'000'000'000LL);
}

TEST_F(ObjcTest, RepeatedMessageIsAnsweredEachTime) {
  const id list = send<id, "arrayWithObjects:">(zel::classNamed<"NSArray">(), string("a"),
                                                string("b"), id{nullptr});
  const zel::Repeated<id, "nextObject"> next(send<id, "objectEnumerator">(list));
  EXPECT_EQ(text(next()), "a");
  EXPECT_EQ(text(next()), "b");
  EXPECT_EQ(next(), nullptr);
  const zel::Repeated<id, "objectAtIndex:", zel::NSInteger> at(list);
  EXPECT_EQ(text(at(1)), "b");
  EXPECT_EQ(text(at(0)), "a");
}

TEST_F(ObjcTest, RepeatedMessageToNilYieldsNothing) {
  const id nil = nullptr;
  const zel::Repeated<id, "objectAtIndex:", zel::NSInteger> object(nil);
  EXPECT_EQ(object(0), nullptr);
  const zel::Repeated<double, "doubleValue"> number(nil);
  EXPECT_EQ(number(), 0.0);
  const zel::Repeated<void, "release"> release(nil);
  release();
}

TEST_F(ObjcTest, ClassesAreFoundByName) {
  zel::Class* const found = zel::classNamed<"NSString">();
  ASSERT_NE(found, nullptr);
  EXPECT_EQ((zel::classNamed<"NSString">()), found);
  EXPECT_EQ((send<zel::Class*, "class">(found)), found);
  EXPECT_EQ((zel::classNamed<"NoSuchClass">()), nullptr);
}

TEST_F(ObjcTest, ClassThatIsDefinedLateIsFoundThen) {
  EXPECT_EQ((zel::classNamed<"DefinedLate">()), nullptr);
  zel::Class* const made = objc_allocateClassPair(zel::classNamed<"NSObject">(), "DefinedLate", 0);
  objc_registerClassPair(made);
  EXPECT_EQ((zel::classNamed<"DefinedLate">()), made);
}

TEST_F(ObjcTest, ClassesAreWalkedUpwardsAndNamed) {
  zel::Class* const root = zel::classNamed<"NSObject">();
  zel::Class* const text = zel::classNamed<"NSString">();
  EXPECT_EQ(zel::class_getSuperclass(zel::classNamed<"NSMutableString">()), text);
  EXPECT_EQ(zel::class_getSuperclass(text), root);
  EXPECT_EQ(zel::class_getSuperclass(root), nullptr);
  EXPECT_STREQ(zel::object_getClassName(object_), "NSObject");
  EXPECT_STREQ(zel::object_getClassName(text), "NSString");  // a class's own name
}

TEST_F(ObjcTest, PrivateSubclassLeadsToItsPublicOne) {
  const id list = send<id, "array">(zel::classNamed<"NSArray">());
  zel::Class* walked = send<zel::Class*, "class">(list);
  EXPECT_NE(walked, zel::classNamed<"NSArray">());
  while (walked != nullptr && walked != zel::classNamed<"NSArray">()) {
    walked = zel::class_getSuperclass(walked);
  }
  EXPECT_EQ(walked, zel::classNamed<"NSArray">());
}

TEST_F(ObjcTest, SelectorIsRegisteredUnderItsName) {
  const zel::SEL first = zel::selector<"one:two:">();
  EXPECT_EQ(first, (zel::selector<"one:two:">()));
  EXPECT_NE(first, (zel::selector<"one:">()));
  EXPECT_EQ((zel::selector<"init">()), zel::sel_registerName("init"));
}

TEST_F(ObjcTest, TellsWhatIsAnswered) {
  EXPECT_TRUE(zel::respondsTo<"description">(object_));
  EXPECT_FALSE(zel::respondsTo<"noSuchMessage">(object_));
  EXPECT_TRUE(zel::respondsTo<"alloc">(zel::classNamed<"NSObject">()));
  EXPECT_FALSE(zel::respondsTo<"description">(id{nullptr}));
}

TEST_F(ObjcTest, TellsWhatKindAnObjectIs) {
  const id list = send<id, "array">(zel::classNamed<"NSMutableArray">());
  EXPECT_TRUE(zel::isKindOf<"NSArray">(list));
  EXPECT_TRUE(zel::isKindOf<"NSMutableArray">(list));
  EXPECT_FALSE(zel::isKindOf<"NSString">(list));
  EXPECT_FALSE(zel::isKindOf<"NoSuchClass">(list));
  EXPECT_FALSE(zel::isKindOf<"NSArray">(id{nullptr}));
}

TEST_F(ObjcTest, TellsWhatAnObjectIsWithoutAMessage) {
  const id list = send<id, "array">(zel::classNamed<"NSMutableArray">());
  EXPECT_TRUE(zel::isInstanceOf<"NSArray">(list));
  EXPECT_TRUE(zel::isInstanceOf<"NSMutableArray">(list));
  EXPECT_FALSE(zel::isInstanceOf<"NSString">(list));
  EXPECT_FALSE(zel::isInstanceOf<"NoSuchClass">(list));
}

TEST_F(ObjcTest, AnObjectThatAnswersNothingIsToldToo) {
  // A root class without a method: any message would end the process.
  zel::Class* const made = objc_allocateClassPair(nullptr, "Mute", 0);
  objc_registerClassPair(made);
  const id mute = class_createInstance(made, sizeof(void*));
  EXPECT_EQ(zel::classOf(mute), made);
  EXPECT_TRUE(zel::isInstanceOf<"Mute">(mute));
  EXPECT_FALSE(zel::isInstanceOf<"NSObject">(mute));
  object_dispose(mute);
}

TEST_F(ObjcTest, TellsWhatAnswersAsNSObjectDoes) {
  const id list = send<id, "array">(zel::classNamed<"NSMutableArray">());
  EXPECT_TRUE(zel::inheritsFromRoot<"isKindOfClass:">(zel::classOf(list)));
  EXPECT_TRUE(zel::inheritsFromRoot<"isKindOfClass:">(zel::classNamed<"NSObject">()));
  EXPECT_FALSE(zel::inheritsFromRoot<"description">(zel::classOf(list)));
  // Proxies answer for what they stand for.
  EXPECT_FALSE(zel::inheritsFromRoot<"isKindOfClass:">(zel::classNamed<"NSProxy">()));
  EXPECT_FALSE(zel::inheritsFromRoot<"isKindOfClass:">(zel::classNamed<"NSDistantObject">()));
}

TEST_F(ObjcTest, TheNSNullIsThatOfFoundation) {
  EXPECT_EQ(zel::nullObject(), (send<id, "null">(zel::lookUpClass("NSNull"))));
  EXPECT_NE(zel::nullObject(), nullptr);
}

TEST_F(ObjcTest, ReferencesAreCounted) {
  id object = send<id, "new">(zel::classNamed<"NSObject">());
  EXPECT_EQ(referencesOf(object), 1);
  EXPECT_EQ(zel::retained(object), object);
  EXPECT_EQ(referencesOf(object), 2);
  EXPECT_EQ(zel::autoreleased(object), object);
  EXPECT_EQ(referencesOf(object), 2);  // the pool drains when the test is over
  zel::release(object);
  EXPECT_EQ(referencesOf(object), 1);
  EXPECT_EQ(zel::CFRetain(object), object);
  EXPECT_EQ(referencesOf(object), 2);
  zel::CFRelease(object);
  EXPECT_EQ(referencesOf(object), 1);
}

}  // namespace
}  // namespace native_test
