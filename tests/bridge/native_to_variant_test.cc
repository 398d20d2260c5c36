// Any native object as a host value.
#include "bridge/native_to_variant.h"

#include <algorithm>

#include "bridge/struct_data.h"
#include "native/exceptions.h"
#include "plugin/host.h"
#include "tests/support/intercept.h"
#include "tests/support/plugin_test.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests
using namespace std::string_literals;

class NativeToVariantTest : public PluginTest {
 protected:
  ObjectRef converted(id object) { return ObjectRef::adopt(NewVariantFromNSObject(object)); }
  std::string toHost(id object) { return host->describe(converted(object)); }
  id text(std::string_view utf8) { return Foundation::asObject(foundation.string(utf8)); }
};

// --- nothing

TEST_F(NativeToVariantTest, NothingBecomesNothing) {
  EXPECT_EQ(NewVariantFromNSObject(nullptr), nullptr);
  EXPECT_EQ(NewVariantFromNSObject(foundation.null()), nullptr);
  EXPECT_EQ(host->sequence(), Lines{});
}

// --- texts

TEST_F(NativeToVariantTest, TextsBecomeStrings) {
  EXPECT_EQ(toHost(text("Grüße")), "\"Grüße\"");
  EXPECT_EQ(toHost(text(std::string(200, 'x'))), '"' + std::string(200, 'x') + '"');
}

TEST_F(NativeToVariantTest, AnEmptyTextIsAVariantOfNoString) {
  host->clearRecords();
  const ObjectRef made = converted(text(""));
  EXPECT_EQ(host->typeOf(made), 8);
  EXPECT_EQ(host->sequence().at(0), "StringToVariant");
  EXPECT_EQ(host->calls("REALUnlockString"), 0);
}

TEST_F(NativeToVariantTest, TheHostStringIsGivenBackEvenWithoutAVariant) {
  host->hide("StringToVariant");
  EXPECT_EQ(toHost(text("x")), "nil");
  EXPECT_EQ(host->calls("REALUnlockString"), 1);
}

TEST_F(NativeToVariantTest, TheHostStringIsGivenBackWhenANativeExceptionPasses) {
  static id thrown = nullptr;
  thrown = foundation.exception("Name", "Reason");
  intercept("StringToVariant", [](REALstring) -> REALobject { objc_exception_throw(thrown); });
  EXPECT_EQ(catching([&] { converted(text("x")); }), thrown);
  EXPECT_EQ(host->calls("REALUnlockString"), 1);
}

// --- numbers

struct NumberCase {
  const char* code;
  long long value;
  const char* host;
  const char* accessor;
  const char* routine;
};

void PrintTo(const NumberCase& row, std::ostream* out) { *out << row.code << ' ' << row.value; }

class NumberTest : public NativeToVariantTest, public testing::WithParamInterface<NumberCase> {};

TEST_P(NumberTest, ItsTypeCodeDecides) {
  const id number = foundation.number(GetParam().code, GetParam().value);
  EXPECT_EQ(toHost(number), GetParam().host);
  EXPECT_EQ(foundation.messages().back(), "-[NSNumber "s + GetParam().accessor + "]");
  EXPECT_EQ(host->sequence().at(0), GetParam().routine);
}

constexpr NumberCase kNumbers[] = {
    {"c", 1, "true", "boolValue", "BooleanToVariant"},
    {"c", 0, "false", "boolValue", "BooleanToVariant"},
    {"c", 7, "Boolean 7", "boolValue", "BooleanToVariant"},
    {"C", 255, "Int32 255", "unsignedCharValue", "Int32ToVariant"},
    {"s", -32768, "Int32 -32768", "shortValue", "Int32ToVariant"},
    {"S", 65535, "Int32 65535", "unsignedShortValue", "Int32ToVariant"},
    {"i", -2147483648LL, "Int32 -2147483648", "intValue", "Int32ToVariant"},
    {"I", 4294967295LL, "UInt32 4294967295", "unsignedIntValue", "UInt32ToVariant"},
    {"l", -5, "Int32 -5", "longValue", "Int32ToVariant"},
    {"l", 2147483647, "Int32 2147483647", "longValue", "Int32ToVariant"},
    {"L", 4294967295LL, "UInt32 4294967295", "unsignedLongValue", "UInt32ToVariant"},
    {"q", -9223372036854775807LL, "Int64 -9223372036854775807", "longLongValue", "Int64ToVariant"},
    {"Q", 4294967301LL, "UInt64 5", "unsignedLongValue", "UInt64ToVariant"},
    {"Q", 7, "UInt64 7", "unsignedLongValue", "UInt64ToVariant"},
    {"f", 3, "Single 3", "floatValue", "SingleToVariant"},
    {"d", 3, "Double 3", "doubleValue", "DoubleToVariant"},
    {"B", 1, "Double 1", "doubleValue", "DoubleToVariant"},
    {"ii", 4, "Double 4", "doubleValue", "DoubleToVariant"},
    {"", 5, "Double 5", "doubleValue", "DoubleToVariant"}};

INSTANTIATE_TEST_SUITE_P(Codes, NumberTest, testing::ValuesIn(kNumbers));

TEST_P(NumberTest, WithoutItsRoutineThereIsNothing) {
  host->hide(GetParam().routine);
  EXPECT_EQ(toHost(foundation.number(GetParam().code, GetParam().value)), "nil");
  EXPECT_EQ(host->sequence(), Lines{});
}

TEST_F(NativeToVariantTest, NumbersWithFractions) {
  EXPECT_EQ(toHost(foundation.number("f", 2.5F)), "Single 2.5");
  EXPECT_EQ(toHost(foundation.number("d", 2.5)), "Double 2.5");
}

TEST_F(NativeToVariantTest, ABooleanIsABoolean) {
  EXPECT_EQ(toHost(foundation.boolean(true)), "true");
  EXPECT_EQ(toHost(foundation.boolean(false)), "false");
}

TEST_F(NativeToVariantTest, ABooleansByteIsZeroExtended) {
  static REALboolean handed = 0;
  static Resolver hostResolver = nullptr;
  hostResolver = gResolver;
  gResolver = [](const char* name) -> void* {
    if (name != "BooleanToVariant"s) return hostResolver(name);
    return reinterpret_cast<void*>(+[](REALboolean value) -> REALobject {
      handed = value;
      return nullptr;
    });
  };
  foundation.addMethod("NSNumber", "boolValue", [](id, SEL) -> BOOL { return 0x80; });
  EXPECT_EQ(NewVariantFromNSObject(foundation.boolean(true)), nullptr);
  EXPECT_EQ(handed, 0x80);
}

TEST_F(NativeToVariantTest, ANumberIsNotTakenForAValue) {
  foundation.clearRecords();
  toHost(foundation.number("{_NSPoint=ff}", 1));
  EXPECT_EQ(std::count(foundation.messages().begin(), foundation.messages().end(),
                       "-[NSNumber pointValue]"),
            0);
}

// --- other kinds

TEST_F(NativeToVariantTest, DataDatesAndDictionaries) {
  EXPECT_EQ(toHost(foundation.data("ab")), "MemoryBlock 6162");
  EXPECT_EQ(toHost(foundation.date(97445.5)), "Date 2001-01-02 03:04:05");
  EXPECT_EQ(toHost(foundation.dictionary({{"a"s, foundation.boolean(true)}})), R"({"a": true})");
}

TEST_F(NativeToVariantTest, AFilesAddressIsAFile) {
  foundation.makeFile("/folder/file.txt");
  EXPECT_EQ(toHost(Foundation::asObject(foundation.fileUrl("/folder/file.txt"))),
            "FolderItem /folder/file.txt");
}

TEST_F(NativeToVariantTest, AFileInAMissingFolderIsItsText) {
  EXPECT_EQ(toHost(Foundation::asObject(foundation.fileUrl("/nowhere/new.txt"))),
            "\"file:///nowhere/new.txt\"");
}

TEST_F(NativeToVariantTest, AFileThatTheHostMakesNothingOfIsItsText) {
  foundation.makeFile("/folder/file.txt");
  host->hide("REALFolderItemFromParentFSRef");
  host->hide("FolderItemFromFSSpec");
  EXPECT_EQ(toHost(Foundation::asObject(foundation.fileUrl("/folder/file.txt"))),
            "\"file:///folder/file.txt\"");
  EXPECT_EQ(toHost(Foundation::asObject(foundation.fileUrl("/folder/new.txt"))),
            "\"file:///folder/new.txt\"");
  EXPECT_EQ(toHost(Foundation::asObject(foundation.fileUrl("/"))), "\"file:///\"");
}

TEST_F(NativeToVariantTest, AnyOtherAddressIsItsText) {
  EXPECT_EQ(toHost(Foundation::asObject(foundation.url("http://example.com/a?b"))),
            "\"http://example.com/a?b\"");
}

TEST_F(NativeToVariantTest, AnAddressWithoutTextIsAVariantOfNoString) {
  foundation.addMethod("NSURL", "absoluteString", [](id, SEL) -> id { return nullptr; });
  const ObjectRef made = converted(Foundation::asObject(foundation.url("http://example.com/")));
  EXPECT_EQ(host->typeOf(made), 8);
}

// --- lists

TEST_F(NativeToVariantTest, ListsBecomeArrays) {
  EXPECT_EQ(toHost(foundation.array({foundation.number("i", 1), text("b"),
                                     foundation.array({foundation.boolean(false)})})),
            R"([Int32 1, "b", [false]])");
  EXPECT_EQ(toHost(foundation.array({})), "[]");
}

TEST_F(NativeToVariantTest, AnElementThatBecomesNothingKeepsItsPlace) {
  EXPECT_EQ(toHost(foundation.array({foundation.null(), foundation.number("i", 1),
                                     foundation.object("NSObject"), foundation.number("i", 2)})),
            "[nil, Int32 1, nil, Int32 2]");
}

TEST_F(NativeToVariantTest, AHostThatMakesNoArraysGetsNothing) {
  host->hide("RuntimeArrayCreateSingleDimBoundedArray");
  EXPECT_EQ(toHost(foundation.array({foundation.number("i", 1)})), "nil");
}

TEST_F(NativeToVariantTest, AHostThatInsertsNothingGetsAnEmptyArray) {
  host->hide("RuntimeArrayDirectGetInsertProc");
  EXPECT_EQ(toHost(foundation.array({foundation.number("i", 1)})), "[]");
}

TEST_F(NativeToVariantTest, TheHalfMadeArrayIsGivenBackWhenAnExceptionPasses) {
  const id list = foundation.array({foundation.number("i", 1), foundation.number("i", 2)});
  constexpr long kMessages = 9;
  for (long n = 1; n <= kMessages; ++n) {
    SCOPED_TRACE(n);
    KnownKinds = {};  // so that each object is asked what it is
    foundation.throwAtMessage(n);
    EXPECT_NE(catching([&] { toHost(list); }), nullptr);
    EXPECT_EQ(host->unbalanced(), "");
  }
}

// What a list of one element has been asked for.
int asked;
id onlyElement;

TEST_F(NativeToVariantTest, TheHalfMadeArrayIsGivenBackWhenTheListRaisesOnTheWay) {
  asked = 0;
  onlyElement = foundation.number("i", 1);
  foundation.addMethod("NSEnumerator", "nextObject", [](id, SEL) -> id {
    if (++asked == 1) return onlyElement;
    objc_exception_throw(
        foundation_double::Foundation::shared().exception("Changed", "On the way."));
  });
  const id list = foundation.array({onlyElement});
  EXPECT_NE(catching([&] { toHost(list); }), nullptr);
  EXPECT_EQ(asked, 2);
  EXPECT_EQ(host->calls("Int32ToVariant"), 1);
  EXPECT_EQ(host->unbalanced(), "");
}

// --- structures

class NativeStructureTest : public NativeToVariantTest {
 protected:
  void SetUp() override {
    NativeToVariantTest::SetUp();
    for (const char* name : {"NSRectZEL", "NSSizeZEL", "NSPointZEL", "NSRangeZEL"})
      host->addClass(name, "");
  }
};

TEST_F(NativeStructureTest, ARectangle) {
  const ObjectRef made = converted(foundation.value(NSRect{{1.5, -2}, {3, 4.25}}));
  EXPECT_EQ(host->describe(made), "NSRectZEL");
  const auto& data = Host::data<HostRect>(made);
  EXPECT_EQ(data.origin.x, 1.5F);
  EXPECT_EQ(data.origin.y, -2.0F);
  EXPECT_EQ(data.size.width, 3.0F);
  EXPECT_EQ(data.size.height, 4.25F);
}

TEST_F(NativeStructureTest, ASize) {
  const ObjectRef made = converted(foundation.value(NSSize{5, 6}));
  EXPECT_EQ(host->describe(made), "NSSizeZEL");
  EXPECT_EQ(Host::data<HostSize>(made).width, 5.0F);
  EXPECT_EQ(Host::data<HostSize>(made).height, 6.0F);
}

TEST_F(NativeStructureTest, APoint) {
  const ObjectRef made = converted(foundation.value(NSPoint{7, 8}));
  EXPECT_EQ(host->describe(made), "NSPointZEL");
  EXPECT_EQ(Host::data<HostPoint>(made).x, 7.0F);
  EXPECT_EQ(Host::data<HostPoint>(made).y, 8.0F);
}

TEST_F(NativeStructureTest, ARange) {
  const ObjectRef made = converted(foundation.value(NSRange{4000000000U, 9}));
  EXPECT_EQ(host->describe(made), "NSRangeZEL");
  EXPECT_EQ(Host::data<HostRange>(made).location, 4000000000U);
  EXPECT_EQ(Host::data<HostRange>(made).length, 9U);
}

TEST_F(NativeStructureTest, AClassThatIsNotThereGivesNothing) {
  host->removeClass("NSPointZEL");
  EXPECT_EQ(toHost(foundation.value(NSPoint{1, 2})), "nil");
}

TEST_F(NativeStructureTest, AnUnlistedStructureGivesNothing) {
  host->addClass("NSValueZEL", "");
  EXPECT_EQ(toHost(foundation.value("{CGVector=ff}")), "nil");
  EXPECT_EQ(host->calls("PluginNewInstance"), 0);
}

struct TimeCase {
  const char* encoding;
  const char* method;
};

class NativeTimeTest : public NativeToVariantTest, public testing::WithParamInterface<TimeCase> {};

TEST_P(NativeTimeTest, AnotherPluginMakesIt) {
  host->addClass("Made", "");
  static Host* maker = nullptr;
  maker = host.get();
  foundation.addMethod("NSValue", GetParam().method,
                       [](id, SEL) -> REALobject { return maker->make("Made").release(); });
  EXPECT_EQ(toHost(foundation.value(GetParam().encoding)), "Made");
}

TEST_P(NativeTimeTest, WithoutThatPluginItIsNothing) {
  EXPECT_EQ(toHost(foundation.value(GetParam().encoding)), "nil");
  EXPECT_EQ(foundation.messages().back(), "-[NSValue respondsToSelector:]");
}

INSTANTIATE_TEST_SUITE_P(Times, NativeTimeTest,
                         testing::Values(TimeCase{"{?=qll}", "QTTimeValueZEL"},
                                         TimeCase{"{?={?=qll}{?=qll}}", "QTTimeRangeValueZEL"},
                                         TimeCase{"{?=qiIq}", "CMTimeValueZEL"},
                                         TimeCase{"{?={?=qiIq}{?=qiIq}}", "CMTimeRangeValueZEL"},
                                         TimeCase{"{?={?={?=qiIq}{?=qiIq}}{?={?=qiIq}{?=qiIq}}}",
                                                  "CMTimeMappingValueZEL"}),
                         [](const auto& row) { return row.param.method; });

// --- wrapped host objects, and classes of the family

TEST_F(NativeToVariantTest, AWrapperGivesBackWhatItWraps) {
  static ObjectRef kept;
  kept = host->memoryBlock("kept");
  foundation.addClass("ZELREALobjectWrapper", "NSObject");
  foundation.addMethod("ZELREALobjectWrapper", "unwrap",
                       [](id, SEL) -> REALobject { return ObjectRef(kept).release(); });
  foundation.addClass("SpecialWrapper", "ZELREALobjectWrapper");
  EXPECT_EQ(converted(foundation.object("ZELREALobjectWrapper")), kept);
  EXPECT_EQ(converted(foundation.object("SpecialWrapper")), kept);
  kept.reset();
}

class ClassWalkTest : public NativeToVariantTest {
 protected:
  // What the classes are asked for, from the object's own upwards.
  ObjectRef walk(const std::string& nativeClass) {
    native = foundation.object(nativeClass);
    return converted(native);
  }
  id native = nullptr;
};

TEST_F(ClassWalkTest, TheHostClassOfTheNativeOneWrapsIt) {
  foundation.addClass("NSColor", "NSObject");
  host->addClass("NSColorZEL", "");
  const ObjectRef made = walk("NSColor");
  EXPECT_EQ(host->describe(made), "NSColorZEL");
  EXPECT_EQ(Host::data<id>(made), native);
  foundation.drainPool();
  EXPECT_EQ(foundation.references(native), 1);
  release(native);  // as that plugin does when its object dies
}

TEST_F(ClassWalkTest, ASuperClassStandsInForAPrivateClass) {
  foundation.addClass("NSColor", "NSObject");
  foundation.addClass("NSConcreteColor", "NSColor");
  host->addClass("NSColorZEL", "");
  const ObjectRef made = walk("NSConcreteColor");
  EXPECT_EQ(host->describe(made), "NSColorZEL");
  release(native);
}

TEST_F(ClassWalkTest, WithoutAHostClassThereIsNothing) {
  foundation.addClass("NSColor", "NSObject");
  EXPECT_EQ(host->describe(walk("NSColor")), "nil");
  EXPECT_EQ(host->calls("PluginNewInstance"), 2);  // NSColorZEL, NSObjectZEL
}

TEST_F(ClassWalkTest, AHostThatMakesNoObjectsIsAskedForEveryClass) {
  foundation.addClass("NSColor", "NSObject");
  host->hide("PluginNewInstance");
  EXPECT_EQ(host->describe(walk("NSColor")), "nil");
  EXPECT_EQ(host->lookups("PluginNewInstance"), 2);
}

TEST_F(ClassWalkTest, ALongNameIsSkipped) {
  const std::string longest(199, 'L');
  const std::string tooLong(200, 'M');
  foundation.addClass(longest, "NSObject");
  foundation.addClass(tooLong, longest);
  host->addClass(longest + "ZEL", "");
  host->addClass(tooLong + "ZEL", "");
  const ObjectRef made = walk(tooLong);
  EXPECT_EQ(host->describe(made), longest + "ZEL");
  release(native);
}

TEST_F(ClassWalkTest, ARetainThatRaisesLosesNothing) {
  foundation.addClass("NSColor", "NSObject");
  foundation.addMethod("NSColor", "retain", [](id, SEL) -> id {
    objc_exception_throw(foundation_double::Foundation::shared().exception("Bad", "No."));
  });
  host->addClass("NSColorZEL", "");
  const id color = foundation.object("NSColor");
  EXPECT_NE(catching([&] { converted(color); }), nullptr);
  EXPECT_EQ(host->unbalanced(), "");
}

}  // namespace
}  // namespace zel
