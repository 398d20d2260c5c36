// Native objects as host values: the order in which their kinds are tried, and those that the
// family knows.
#include <algorithm>
#include <map>

#include "bridge/native_to_variant.h"
#include "native/exceptions.h"
#include "plugin/host.h"
#include "tests/support/intercept.h"
#include "tests/support/plugin_test.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests
using namespace std::string_literals;

// What an object was asked, or the host for it.
Lines asked;

class NativeClassesTest : public PluginTest {
 protected:
  void SetUp() override {
    PluginTest::SetUp();
    asked.clear();
  }
  ObjectRef converted(id object) { return ObjectRef::adopt(NewVariantFromNSObject(object)); }
  std::string toHost(id object) { return host->describe(converted(object)); }
  static void recordClassNames() {
    intercept("PluginNewInstance", [](const char* name) {
      asked.emplace_back(name);
      return callHost<REALobject>("PluginNewInstance", name);
    });
  }
};

// --- the order of the tests

TEST_F(NativeClassesTest, KindsAreTriedInAFixedOrder) {
  foundation.addClass("ZELREALobjectWrapper", "NSObject");
  foundation.addClass("Anything", "NSObject");
  foundation.addMethod("Anything", "isKindOfClass:", [](id, SEL, Class* kind) -> BOOL {
    asked.emplace_back(object_getClassName(kind));
    return 0;
  });
  EXPECT_EQ(toHost(foundation.object("Anything")), "nil");
  EXPECT_EQ(asked, (Lines{"NSArray", "NSString", "NSData", "NSNumber", "NSDate", "NSDictionary",
                          "NSURL", "NSValue", "ZELREALobjectWrapper"}));
}

// The only kind that the object says it is of.
const char* firstKind = nullptr;

TEST_F(NativeClassesTest, TheKindThatFitsDecides) {
  foundation.addClass("Anything", "NSObject");
  foundation.addMethod("Anything", "isKindOfClass:", [](id, SEL, Class* kind) -> BOOL {
    asked.emplace_back(object_getClassName(kind));
    return asked.back() == firstKind ? 1 : 0;
  });
  // What the object is asked next, having been found to be of a kind.
  const std::map<std::string, std::string> questions = {
      {"NSArray", "-[Anything objectEnumerator]"},
      {"NSData", "-[Anything bytes]"},
      {"NSDate", "-[Anything timeIntervalSinceReferenceDate]"},
      {"NSDictionary", "-[Anything allKeys]"},
      {"NSValue", "-[Anything objCType]"}};
  for (const auto& [kind, question] : questions) {
    SCOPED_TRACE(kind);
    firstKind = kind.c_str();
    asked.clear();
    const id object = foundation.object("Anything");
    foundation.clearRecords();
    EXPECT_NE(catching([&] { toHost(object); }), nullptr);  // it doesn't know the question
    EXPECT_EQ(asked.back(), kind);
    EXPECT_NE(std::find(foundation.messages().begin(), foundation.messages().end(), question),
              foundation.messages().end());
  }
}

// How often a message of the class was sent.
long sent(const Lines& messages, const std::string& message) {
  return std::count(messages.begin(), messages.end(), message);
}

TEST_F(NativeClassesTest, TheKindOfAClassIsAskedForOnce) {
  foundation.clearRecords();
  EXPECT_EQ(toHost(foundation.number("i", 7)), "Int32 7");
  // It is no list, no text and no data, but a number.
  EXPECT_EQ(sent(foundation.messages(), "-[NSNumber isKindOfClass:]"), 4);
  foundation.clearRecords();
  EXPECT_EQ(toHost(foundation.number("i", 8)), "Int32 8");
  EXPECT_EQ(sent(foundation.messages(), "-[NSNumber isKindOfClass:]"), 0);
}

TEST_F(NativeClassesTest, ObjectsThatAnswerForThemselvesAreAskedEachTime) {
  foundation.addClass("Anything", "NSObject");
  foundation.addMethod("Anything", "isKindOfClass:", [](id, SEL, Class* kind) -> BOOL {
    asked.emplace_back(object_getClassName(kind));
    return asked.back() == firstKind ? 1 : 0;
  });
  foundation.addMethod("Anything", "objCType", [](id, SEL) -> const char* { return "?"; });
  foundation.addMethod("Anything", "absoluteString", [](id, SEL) -> id { return nullptr; });
  const id object = foundation.object("Anything");
  firstKind = "NSValue";
  EXPECT_EQ(toHost(object), "nil");
  EXPECT_EQ(asked.back(), "NSValue");
  asked.clear();
  // The same object says something else now.
  firstKind = "";
  EXPECT_EQ(toHost(object), "nil");
  EXPECT_EQ(asked.size(), 8U);  // there is no wrappers' class to ask for
}

TEST_F(NativeClassesTest, WhatIsOfNoKindIsAskedEachTime) {
  foundation.addClass("Anything", "NSObject");
  const id object = foundation.object("Anything");
  for (int turn = 0; turn < 2; ++turn) {
    foundation.clearRecords();
    EXPECT_EQ(toHost(object), "nil");
    EXPECT_EQ(sent(foundation.messages(), "-[Anything isKindOfClass:]"), 8);
  }
  // For the family may define its class at any time.
  foundation.addClass("ZELREALobjectWrapper", "NSObject");
  foundation.clearRecords();
  EXPECT_EQ(toHost(object), "nil");
  EXPECT_EQ(sent(foundation.messages(), "-[Anything isKindOfClass:]"), 9);
}

TEST_F(NativeClassesTest, TheNSNullIsAskedForOnce) {
  EXPECT_EQ(nullObject(), foundation.null());
  foundation.clearRecords();
  EXPECT_EQ(nullObject(), foundation.null());
  EXPECT_EQ(foundation.messages(), Lines{});
}

TEST_F(NativeClassesTest, OnlyTheOneNSNullIsNothing) {
  foundation.addClass("SpecialNull", "NSNull");
  recordClassNames();
  EXPECT_EQ(toHost(foundation.null()), "nil");
  EXPECT_EQ(asked, Lines{});
  EXPECT_EQ(toHost(foundation.object("SpecialNull")), "nil");
  EXPECT_EQ(asked, (Lines{"SpecialNullZEL", "NSNullZEL", "NSObjectZEL"}));
}

// --- arrays

TEST_F(NativeClassesTest, AListBecomesAnArrayOfObjects) {
  EXPECT_EQ(host->typeOf(converted(foundation.array({}))), 4105);
}

TEST_F(NativeClassesTest, TheInsertProcedureIsAskedForForEveryElement) {
  const id list = foundation.array({foundation.number("i", 1), foundation.number("i", 2)});
  host->clearRecords();
  EXPECT_EQ(toHost(list), "[Int32 1, Int32 2]");
  EXPECT_EQ(host->sequence(),
            (Lines{"RuntimeArrayCreateSingleDimBoundedArray", "Int32ToVariant",
                   "RuntimeArrayDirectGetInsertProc", "REALUnlockObject", "Int32ToVariant",
                   "RuntimeArrayDirectGetInsertProc", "REALUnlockObject"}));
}

TEST_F(NativeClassesTest, WithoutAProcedureNothingIsInserted) {
  host->answerNull("RuntimeArrayDirectGetInsertProc");
  EXPECT_EQ(toHost(foundation.array({foundation.number("i", 1)})), "[]");
}

// Where elements are inserted, and whether they are there.
Lines inserted;

TEST_F(NativeClassesTest, EveryElementCountsWhetherItBecomesAValueOrNot) {
  inserted.clear();
  intercept("RuntimeArrayDirectGetInsertProc", [](REALarray) {
    return +[](REALarray, std::int32_t index, REALobject value) {
      inserted.push_back(std::to_string(index) + (value == nullptr ? " nothing" : " something"));
    };
  });
  toHost(foundation.array({foundation.null(), foundation.number("i", 1),
                           foundation.object("NSObject"), foundation.number("i", 2)}));
  EXPECT_EQ(inserted, (Lines{"0 nothing", "1 something", "2 nothing", "3 something"}));
}

// --- structures

TEST_F(NativeClassesTest, AStructureIsReadBeforeItsHostObjectIsMade) {
  const id value = foundation.value(NSPoint{1, 2});  // the host has no class for it
  foundation.clearRecords();
  recordClassNames();
  EXPECT_EQ(toHost(value), "nil");
  EXPECT_EQ(foundation.messages().back(), "-[NSValue pointValue]");
  EXPECT_EQ(asked, Lines{"NSPointZEL"});
}

TEST_F(NativeClassesTest, TypesOfStructuresAreComparedToTheirEnd) {
  recordClassNames();
  for (const char* type : {"{?=qll", "{?=qll}}", "?=qll}", "{?=qlq}", "", "{_NSPoint=ff}{",
                           "{_NSPoint=dd}{", "{_NSRange=}"}) {
    SCOPED_TRACE(type);
    foundation.clearRecords();
    EXPECT_EQ(toHost(foundation.value(type)), "nil");
    EXPECT_EQ(foundation.messages().back(), "-[NSValue objCType]");
  }
  EXPECT_EQ(asked, Lines{});
}

// --- wrapped host objects

TEST_F(NativeClassesTest, AWrappersClassMayComeLate) {
  foundation.addClass("Early", "NSObject");
  EXPECT_EQ(toHost(foundation.object("Early")), "nil");
  foundation.addClass("ZELREALobjectWrapper", "NSObject");
  foundation.addMethod("ZELREALobjectWrapper", "unwrap",
                       [](id, SEL) -> REALobject { return REALNewVariantInteger(5); });
  EXPECT_EQ(toHost(foundation.object("ZELREALobjectWrapper")), "Int32 5");
}

TEST_F(NativeClassesTest, AnEmptyWrapperIsNothingAndNothingElseIsTried) {
  foundation.addClass("ZELREALobjectWrapper", "NSObject");
  foundation.addMethod("ZELREALobjectWrapper", "unwrap",
                       [](id, SEL) -> REALobject { return nullptr; });
  recordClassNames();
  EXPECT_EQ(toHost(foundation.object("ZELREALobjectWrapper")), "nil");
  EXPECT_EQ(asked, Lines{});
}

// --- classes of the family

TEST_F(NativeClassesTest, ClassesAreAskedForByNameFromTheObjectsOwnUpwards) {
  foundation.addClass("NSColor", "NSObject");
  foundation.addClass("NSConcreteColor", "NSColor");
  recordClassNames();
  EXPECT_EQ(toHost(foundation.object("NSConcreteColor")), "nil");
  EXPECT_EQ(asked, (Lines{"NSConcreteColorZEL", "NSColorZEL", "NSObjectZEL"}));
}

TEST_F(NativeClassesTest, TheWalkEndsWhereTheHostHasAClass) {
  foundation.addClass("NSColor", "NSObject");
  foundation.addClass("NSConcreteColor", "NSColor");
  host->addClass("NSColorZEL", "");
  host->addClass("NSObjectZEL", "");
  recordClassNames();
  const id color = foundation.object("NSConcreteColor");
  foundation.clearRecords();
  EXPECT_EQ(toHost(color), "NSColorZEL");
  EXPECT_EQ(asked, (Lines{"NSConcreteColorZEL", "NSColorZEL"}));
  EXPECT_EQ(foundation.messages().back(), "-[NSConcreteColor retain]");
  release(color);  // as that plugin does when its object dies
}

TEST_F(NativeClassesTest, AClassWithoutANameIsNotEvenAskedFor) {
  foundation.addClass("NSColor", "NSObject");
  foundation.addClass("Nameless", "NSColor");
  foundation.hideClassName("Nameless");
  recordClassNames();
  EXPECT_EQ(toHost(foundation.object("Nameless")), "nil");
  EXPECT_EQ(asked, (Lines{"NSColorZEL", "NSObjectZEL"}));
}

TEST_F(NativeClassesTest, ANameOf200CharactersIsNotEvenAskedFor) {
  const std::string tooLong(200, 'M');
  const std::string longest(199, 'L');
  foundation.addClass(longest, "NSObject");
  foundation.addClass(tooLong, longest);
  recordClassNames();
  EXPECT_EQ(toHost(foundation.object(tooLong)), "nil");
  EXPECT_EQ(asked, (Lines{longest + "ZEL", "NSObjectZEL"}));
}

}  // namespace
}  // namespace zel
