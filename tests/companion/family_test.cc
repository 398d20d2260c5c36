// The methods that the family asks of NSException.
#include "companion/family.h"

#include "native/methods.h"
#include "plugin/errors.h"
#include "tests/companion/companion_test.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests

class FamilyMethodsTest : public CompanionTest {
 protected:
  static Class* exceptions() { return classNamed<"NSException">(); }
  static CFMutableDictionaryRef map() {
    return send<CFMutableDictionaryRef, "GetInstancesDictionaryZEL">(exceptions());
  }
  // As if another plugin had been there first: its methods, then this plugin's start.
  template <class Function>
  void startAfter(const char* selector, Function function) {
    foundation.reset();
    foundation.addClassMethod("NSException", selector, function);
    startHost({});
  }
};

TEST_F(FamilyMethodsTest, AreThereFromTheStart) {
  EXPECT_TRUE(respondsTo<"GetInstancesDictionaryZEL">(exceptions()));
  EXPECT_TRUE(respondsTo<"PrepareNSExceptionZEL">(exceptions()));
  EXPECT_TRUE(respondsTo<"NewNSExceptionZEL:">(exceptions()));
}

// Whoever asks the runtime for a signature before a message is sent gets this one.
TEST_F(FamilyMethodsTest, SayWhatTheyTakeAndGive) {
  EXPECT_EQ(foundation.typesOfAdded("NSException", "GetInstancesDictionaryZEL"), "^v@:");
  EXPECT_EQ(foundation.typesOfAdded("NSException", "PrepareNSExceptionZEL"), "v@:");
  EXPECT_EQ(foundation.typesOfAdded("NSException", "NewNSExceptionZEL:"), "^v@:@");
}

TEST_F(FamilyMethodsTest, AreThoseOfTheClassAlone) {
  const id exception = foundation.exception("Name", "Reason");
  EXPECT_FALSE(respondsTo<"GetInstancesDictionaryZEL">(exception));
  EXPECT_FALSE(respondsTo<"PrepareNSExceptionZEL">(exception));
  EXPECT_FALSE(respondsTo<"NewNSExceptionZEL:">(exception));
}

TEST_F(FamilyMethodsTest, GiveOneMapForTheWholeProcess) {
  const CFMutableDictionaryRef first = map();
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(map(), first);
}

TEST_F(FamilyMethodsTest, TheMapHoldsPointersAndRetainsNothing) {
  const id key = foundation.object("NSObject");
  char value = 0;
  CFDictionarySetValue(map(), key, &value);
  EXPECT_EQ(foundation.references(key), 1);
  EXPECT_EQ(CFDictionaryGetValue(map(), key), &value);
  CFDictionaryRemoveValue(map(), key);
  EXPECT_EQ(CFDictionaryGetValue(map(), key), nullptr);
}

TEST_F(FamilyMethodsTest, AMapThatCannotBeMadeIsTriedAgain) {
  foundation.failCall("CFDictionaryCreateMutable");
  EXPECT_EQ(map(), nullptr);
  EXPECT_NE(map(), nullptr);
}

TEST_F(FamilyMethodsTest, ThePluginsOfTheFamilyFindThem) {
  instances = nullptr;
  ExceptionsInitialized = false;
  CocoaInit();
  EXPECT_EQ(instances, map());
  EXPECT_TRUE(ExceptionsInitialized);
}

TEST_F(FamilyMethodsTest, PreparingChangesNothing) {
  foundation.clearRecords();
  send<void, "PrepareNSExceptionZEL">(exceptions());
  EXPECT_EQ(foundation.messages(), (Lines{"+[NSException PrepareNSExceptionZEL]"}));
  EXPECT_EQ(foundation.calls(), Lines{});
  EXPECT_EQ(familyInstances, nullptr);
}

TEST_F(FamilyMethodsTest, AnExceptionOfAMethodArrivesInTheHost) {
  reportNativeException(foundation.exception("NSRangeException", "Too large"));
  const std::vector<Raised> raised = host->takePending();
  EXPECT_EQ(raised, (std::vector<Raised>{{kExceptionClass, "Too large", 0}}));
  EXPECT_EQ(foundation.log(), (Lines{"A NSRangeException: Too large, Info: (null)\n"}));
}

// --- another plugin has added a method: it stays, and the others are added

CFMutableDictionaryRef othersMap() {
  return foundation_double::Foundation::shared().pointerTable();
}

TEST_F(FamilyMethodsTest, AMapOfAnotherPluginStays) {
  startAfter("GetInstancesDictionaryZEL", [](id, SEL) { return othersMap(); });
  EXPECT_EQ(map(), othersMap());
  EXPECT_EQ(familyInstances, nullptr);
  EXPECT_TRUE(respondsTo<"PrepareNSExceptionZEL">(exceptions()));
  EXPECT_TRUE(respondsTo<"NewNSExceptionZEL:">(exceptions()));
}

int othersPreparations = 0;

TEST_F(FamilyMethodsTest, APreparationOfAnotherPluginStays) {
  startAfter("PrepareNSExceptionZEL", [](id, SEL) { ++othersPreparations; });
  othersPreparations = 0;
  send<void, "PrepareNSExceptionZEL">(exceptions());
  EXPECT_EQ(othersPreparations, 1);
  EXPECT_NE(map(), nullptr);
  EXPECT_TRUE(respondsTo<"NewNSExceptionZEL:">(exceptions()));
}

TEST_F(FamilyMethodsTest, ExceptionsOfAnotherPluginStay) {
  startAfter("NewNSExceptionZEL:", [](id, SEL, id) -> REALobject { return nullptr; });
  EXPECT_FALSE(newHostObject(foundation.exception("Name", "Reason")));
  EXPECT_NE(map(), nullptr);
  EXPECT_TRUE(respondsTo<"PrepareNSExceptionZEL">(exceptions()));
}

// A runtime that refuses the second method.
class RefusedMethodTest : public CompanionTest {
 protected:
  void prepareHost() override {
    CompanionTest::prepareHost();
    foundation.failCall("class_addMethod", 2);
  }
};

TEST_F(RefusedMethodTest, LeavesTheOthers) {
  Class* const exceptions = classNamed<"NSException">();
  EXPECT_TRUE(respondsTo<"GetInstancesDictionaryZEL">(exceptions));
  EXPECT_FALSE(respondsTo<"PrepareNSExceptionZEL">(exceptions));
  EXPECT_TRUE(respondsTo<"NewNSExceptionZEL:">(exceptions));
}

// --- the seam itself

TEST_F(FamilyMethodsTest, NoClassGetsNoMethod) {
  EXPECT_EQ(objc_getMetaClass("NoSuchClass"), nullptr);
  EXPECT_EQ(class_addMethod(
                nullptr, sel_registerName("anything"), [] {}, "v@:"),
            0);
}

}  // namespace
}  // namespace zel
