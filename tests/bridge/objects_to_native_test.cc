// Host objects as native objects.
#include "bridge/objects_to_native.h"

#include <algorithm>

#include "bridge/struct_data.h"
#include "native/exceptions.h"
#include "tests/support/intercept.h"
#include "tests/support/plugin_test.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests
using namespace std::string_literals;

class ObjectsToNativeTest : public PluginTest {
 protected:
  id converted(const ObjectRef& object) { return fromHostObject(object.handle(), {}); }
  std::string toNative(const ObjectRef& object) { return foundation.describe(converted(object)); }
  ObjectRef objectOf(const std::string& className) {
    host->addClass(className, "", 32);
    return host->make(className);
  }
};

TEST_F(ObjectsToNativeTest, MemoryBlocksFilesAndDictionaries) {
  foundation.makeFile("/folder/file.txt");
  EXPECT_EQ(toNative(host->memoryBlock("ab")), "<6162>");
  EXPECT_EQ(toNative(host->folderItem("/folder/file.txt")), "url(\"file:///folder/file.txt\")");
  EXPECT_EQ(toNative(host->dictionary({{"a"s, std::int32_t{1}}})), R"({"a" = 1})");
}

TEST_F(ObjectsToNativeTest, AFileIsKnownByItsMethod) {
  const ObjectRef file = host->folderItem("/folder/file.txt");
  host->removeClass("FolderItem");
  EXPECT_EQ(toNative(file), "nil");  // no such folder
  foundation.makeFile("/folder/file.txt");
  EXPECT_EQ(toNative(file), "url(\"file:///folder/file.txt\")");
}

// --- wrapped native objects

class WrapperTest : public ObjectsToNativeTest, public testing::WithParamInterface<const char*> {};

TEST_P(WrapperTest, GivesWhatItWrapsAsItIs) {
  const ObjectRef wrapper = objectOf(GetParam());
  const id wrapped = foundation.object("NSObject");
  Host::data<id>(wrapper) = wrapped;
  foundation.clearRecords();
  EXPECT_EQ(converted(wrapper), wrapped);
  EXPECT_EQ(foundation.messages(), Lines{});
}

INSTANTIATE_TEST_SUITE_P(
    Classes, WrapperTest,
    testing::Values("QuartzFilterZEL", "NSImageZEL", "NSImageRepZEL", "NSFontZEL", "NSResponderZEL",
                    "NSAttributedStringZEL", "NSIndexSetZEL", "NSColorZEL", "NSToolbarItemZEL",
                    "NSToolbarZEL", "NSURLRequestZEL", "NSCharacterSetZEL", "NSParagraphStyleZEL",
                    "NSTextContainerZEL", "WebUIDelegateZEL", "WebResourceLoadDelegateZEL",
                    "WebFrameLoadDelegateZEL", "WebDownloadDelegateZEL", "DRBurnZEL",
                    "PDFAnnotationZEL", "PDFActionZEL", "WebPolicyDelegateZEL"),
    [](const auto& row) { return row.param; });

// What the host is asked for: classes by name, and methods by declaration.
Lines asked;

void recordQuestions() {
  asked.clear();
  intercept("pluginObjectType", [](const char* name) {
    asked.emplace_back(name);
    return callHost<REALclassRef>("pluginObjectType", name);
  });
  intercept("REALLoadObjectMethod", [](REALobject object, const char* declaration) {
    asked.emplace_back(declaration);
    return callHost<void*>("REALLoadObjectMethod", object, declaration);
  });
}

TEST_F(ObjectsToNativeTest, ClassesAreTriedInAFixedOrder) {
  recordQuestions();
  EXPECT_EQ(toNative(objectOf("Anything")), "nil");
  EXPECT_EQ(asked, (Lines{"MemoryBlock",
                          "TrueItem(Index as integer) as Folderitem",
                          "Dictionary",
                          "QuartzFilterZEL",
                          "NSImageZEL",
                          "NSImageRepZEL",
                          "NSFontZEL",
                          "NSResponderZEL",
                          "NSAttributedStringZEL",
                          "NSIndexSetZEL",
                          "NSColorZEL",
                          "NSAttributedStringZEL",
                          "NSToolbarItemZEL",
                          "NSToolbarZEL",
                          "NSURLRequestZEL",
                          "NSCharacterSetZEL",
                          "NSAttributedStringZEL",
                          "NSParagraphStyleZEL",
                          "NSTextContainerZEL",
                          "WebUIDelegateZEL",
                          "WebResourceLoadDelegateZEL",
                          "WebFrameLoadDelegateZEL",
                          "WebDownloadDelegateZEL",
                          "DRBurnZEL",
                          "PDFAnnotationZEL",
                          "PDFActionZEL",
                          "NSSizeZEL",
                          "NSRectZEL",
                          "NSRangeZEL",
                          "NSPointZEL",
                          "QTKitTimeZEL",
                          "QTKitTimeRangeZEL",
                          "CMTimeMappingZEL",
                          "CMTimeRangeZEL",
                          "CMTimeZEL",
                          "WebPolicyDelegateZEL",
                          "CFStringZEL",
                          "CFNumberZEL",
                          "CFBinaryDataZEL",
                          "CFURLZEL",
                          "CFArrayZEL",
                          "CFDictionaryZEL",
                          "CFDateZEL"}));
}

TEST_F(ObjectsToNativeTest, TheFirstOfThreeTestsOfOneClassDecides) {
  const ObjectRef wrapper = objectOf("NSAttributedStringZEL");
  Host::data<id>(wrapper) = foundation.null();
  recordQuestions();
  EXPECT_EQ(toNative(wrapper), "null");
  EXPECT_EQ(asked, (Lines{"MemoryBlock", "TrueItem(Index as integer) as Folderitem", "Dictionary",
                          "QuartzFilterZEL", "NSImageZEL", "NSImageRepZEL", "NSFontZEL",
                          "NSResponderZEL", "NSAttributedStringZEL"}));
}

TEST_F(ObjectsToNativeTest, AnEmptyWrapperIsNothingAndNothingElseIsTried) {
  host->addClass("NSImageRepZEL", "");
  foundation.addClass("ZELREALobjectWrapper", "NSObject");
  const ObjectRef wrapper = objectOf("NSImageZEL");
  foundation.clearRecords();
  EXPECT_EQ(converted(wrapper), nullptr);
  EXPECT_EQ(foundation.messages(), Lines{});
}

TEST_F(ObjectsToNativeTest, AHostThatTellsNoClassesApartKnowsOnlyFiles) {
  foundation.makeFile("/folder/file.txt");
  host->hide("RuntimeObjectIsa");
  EXPECT_EQ(toNative(host->memoryBlock("ab")), "nil");
  EXPECT_EQ(toNative(host->folderItem("/folder/file.txt")), "url(\"file:///folder/file.txt\")");
}

TEST_F(ObjectsToNativeTest, ASubclassOfAWrapperIsAWrapper) {
  host->addClass("NSResponderZEL", "");
  host->addClass("NSViewZEL", "NSResponderZEL");
  const ObjectRef wrapper = host->make("NSViewZEL");
  Host::data<id>(wrapper) = foundation.null();
  EXPECT_EQ(toNative(wrapper), "null");
}

// --- structures

TEST_F(ObjectsToNativeTest, Structures) {
  const ObjectRef size = objectOf("NSSizeZEL");
  Host::data<HostSize>(size) = {1.5F, 2};
  EXPECT_EQ(toNative(size), "size(1.5, 2)");
  const ObjectRef rect = objectOf("NSRectZEL");
  Host::data<HostRect>(rect) = {{1, 2}, {3, 4.5F}};
  EXPECT_EQ(toNative(rect), "rect(1, 2, 3, 4.5)");
  const ObjectRef range = objectOf("NSRangeZEL");
  Host::data<HostRange>(range) = {4000000000U, 5};
  EXPECT_EQ(toNative(range), "range(4000000000, 5)");
  const ObjectRef point = objectOf("NSPointZEL");
  Host::data<HostPoint>(point) = {-1, 0.25F};
  EXPECT_EQ(toNative(point), "point(-1, 0.25)");
}

struct TimeCase {
  const char* className;
  const char* factory;
};

class HostTimeTest : public ObjectsToNativeTest, public testing::WithParamInterface<TimeCase> {};

TEST_P(HostTimeTest, AnotherPluginMakesTheValueOfTheObject) {
  static REALobject handed = nullptr;
  foundation.addClassMethod("NSValue", GetParam().factory, [](id, SEL, REALobject object) -> id {
    handed = object;
    return foundation_double::Foundation::shared().null();
  });
  const ObjectRef object = objectOf(GetParam().className);
  foundation.clearRecords();
  EXPECT_EQ(toNative(object), "null");
  EXPECT_EQ(handed, object.handle());
  EXPECT_EQ(foundation.messages(), Lines{"+[NSValue "s + GetParam().factory + "]"});
}

TEST_P(HostTimeTest, IsSentWithoutAskingWhetherAnybodyAnswers) {
  const ObjectRef object = objectOf(GetParam().className);
  foundation.clearRecords();
  const id left = catching([&] { converted(object); });
  EXPECT_EQ(foundation.messages(), Lines{"+[NSValue "s + GetParam().factory + "]"});
  ASSERT_NE(left, nullptr);
  EXPECT_EQ(foundation.utf8(send<CFStringRef, "name">(left)), "NSInvalidArgumentException");
}

INSTANTIATE_TEST_SUITE_P(Classes, HostTimeTest,
                         testing::Values(TimeCase{"QTKitTimeZEL", "valueWithQTTimeZEL:"},
                                         TimeCase{"QTKitTimeRangeZEL", "valueWithQTTimeRangeZEL:"},
                                         TimeCase{"CMTimeMappingZEL", "valueWithCMTimeMappingZEL:"},
                                         TimeCase{"CMTimeRangeZEL", "valueWithCMTimeRangeZEL:"},
                                         TimeCase{"CMTimeZEL", "valueWithCMTimeZEL:"}),
                         [](const auto& row) { return row.param.className; });

// --- Core Foundation objects

class CoreFoundationTest : public ObjectsToNativeTest,
                           public testing::WithParamInterface<const char*> {};

TEST_P(CoreFoundationTest, AMarkedObjectGivesWhatItKeeps) {
  const ObjectRef object = objectOf(GetParam());
  Host::data<CoreFoundationData>(object) = {foundation.null(), 0, 0x52424346};
  EXPECT_EQ(toNative(object), "null");
}

TEST_P(CoreFoundationTest, WithoutTheMarkerItIsNothingAndNothingElseIsTried) {
  foundation.addClass("ZELREALobjectWrapper", "NSObject");
  const ObjectRef object = objectOf(GetParam());
  Host::data<CoreFoundationData>(object) = {foundation.null(), 0, 0x46434252};
  foundation.clearRecords();
  EXPECT_EQ(toNative(object), "nil");
  EXPECT_EQ(foundation.messages(), Lines{});
}

INSTANTIATE_TEST_SUITE_P(Classes, CoreFoundationTest,
                         testing::Values("CFStringZEL", "CFNumberZEL", "CFBinaryDataZEL",
                                         "CFURLZEL", "CFArrayZEL", "CFDictionaryZEL", "CFDateZEL"),
                         [](const auto& row) { return row.param; });

TEST_F(ObjectsToNativeTest, TheMarkerIsTheThirdWord) {
  struct Words {
    id object;
    std::uint32_t second;
    std::uint32_t third;
  };
  const ObjectRef object = objectOf("CFStringZEL");
  Host::data<Words>(object) = {foundation.null(), 0x52424346, 0};
  EXPECT_EQ(toNative(object), "nil");
  Host::data<Words>(object) = {foundation.null(), 0, 0x52424346};
  EXPECT_EQ(toNative(object), "null");
}

// --- everything else

TEST_F(ObjectsToNativeTest, AnUnknownObjectIsWrapped) {
  static REALobject handed = nullptr;
  foundation.addClass("ZELREALobjectWrapper", "NSObject");
  foundation.addClassMethod("ZELREALobjectWrapper", "wrap:", [](id, SEL, REALobject object) -> id {
    handed = object;
    return foundation_double::Foundation::shared().object("ZELREALobjectWrapper");
  });
  const ObjectRef object = objectOf("Anything");
  EXPECT_EQ(toNative(object), "ZELREALobjectWrapper");
  EXPECT_EQ(handed, object.handle());
}

TEST_F(ObjectsToNativeTest, WithoutWrappersAnUnknownObjectIsNothing) {
  EXPECT_EQ(toNative(objectOf("Anything")), "nil");
}

TEST_F(ObjectsToNativeTest, AHostWithoutClassesKnowsOnlyWrappers) {
  host->hide("pluginObjectType");
  EXPECT_EQ(toNative(host->memoryBlock("ab")), "nil");
}

TEST_F(ObjectsToNativeTest, AClassThatTheHostDoesNotKnowIsNotAskedFor) {
  const ObjectRef object = objectOf("Anything");
  host->clearRecords();
  EXPECT_EQ(toNative(object), "nil");
  EXPECT_EQ(host->calls("RuntimeObjectIsa"), 2);  // MemoryBlock and Dictionary
}

TEST_F(ObjectsToNativeTest, TheWrappersClassMayComeLate) {
  const ObjectRef object = objectOf("Anything");
  EXPECT_EQ(toNative(object), "nil");
  foundation.addClass("ZELREALobjectWrapper", "NSObject");
  foundation.addClassMethod("ZELREALobjectWrapper", "wrap:", [](id, SEL, REALobject) -> id {
    return foundation_double::Foundation::shared().object("ZELREALobjectWrapper");
  });
  EXPECT_EQ(toNative(object), "ZELREALobjectWrapper");
}

}  // namespace
}  // namespace zel
