// Values of the other plugins' classes through the built plugin. Few of them are property lists, so
// they go through a volatile domain, into which anything can be put.
#include "bridge/struct_data.h"
#include "host/family/erased.h"
#include "host/family/runtime.h"
#include "tests/end_to_end/end_to_end_test.h"
#include "tests/end_to_end/property_lists.h"

namespace tests {
namespace {

using namespace std::string_literals;
using zel::classNamed;
using zel::id;
using zel::send;

id nativeObject(const void* native) { return static_cast<id>(const_cast<void*>(native)); }
id text(const char* utf8) { return nativeObject(nativeText(utf8)); }

class FamilyValuesTest : public DefaultsTest {
 protected:
  static constexpr const char* kDomain = "family";

  void TearDown() override {
    ask(defaults, "removeVolatileDomainForName", {std::string(kDomain)});
    drainPool();
    defaults.reset();
    family->forgetKept();
    DefaultsTest::TearDown();
  }
  void put(const Value& value) {
    ask(defaults, "removeVolatileDomainForName", {std::string(kDomain)});
    ask(defaults, "setVolatileDomain",
        {host->dictionary({{"value"s, value}}), std::string(kDomain)});
  }
  void putNative(id value) {
    ask(defaults, "removeVolatileDomainForName", {std::string(kDomain)});
    const id standard = send<id, "standardUserDefaults">(classNamed<"NSUserDefaults">());
    const id domain = send<id, "dictionaryWithObject:forKey:">(classNamed<"NSDictionary">(), value,
                                                               nativeText("value"));
    send<void, "setVolatileDomain:forName:">(standard, domain, nativeText(kDomain));
  }
  // The native object that stands there.
  static id native() {
    const id standard = send<id, "standardUserDefaults">(classNamed<"NSUserDefaults">());
    const id domain = send<id, "volatileDomainForName:">(standard, nativeText(kDomain));
    return send<id, "objectForKey:">(domain, nativeText("value"));
  }
  Value taken() {
    const Value domain = ask(defaults, "volatileDomainForName", {std::string(kDomain)});
    return host->entries(std::get<ObjectRef>(domain)).at(0).second;
  }
  Value through(const Value& value) {
    put(value);
    return taken();
  }
  template <class Data>
  ObjectRef structure(const char* className, const Data& data) {
    ObjectRef made = host->make(className);
    Host::data<Data>(made) = data;
    return made;
  }
  // What came of the structure, which must be another object of its class.
  template <class Data>
  Data passed(const char* className, const Data& data) {
    const ObjectRef sent = structure(className, data);
    const Value back = through(sent);
    EXPECT_NE(back, Value(sent));
    EXPECT_EQ(host->describe(back), className);
    return Host::data<Data>(std::get<ObjectRef>(back));
  }
};

INSTANTIATE_TEST_SUITE_P(Hosts, FamilyValuesTest,
                         testing::ValuesIn(amongThese({2011.04, 2013.9, 2014.0})));

// --- structures

TEST_P(FamilyValuesTest, StructuresComeBackWithTheirNumbers) {
  family->provideStructures();
  const auto rect = passed("NSRectZEL", zel::HostRect{{1.5F, -2}, {3, 4.25F}});
  EXPECT_EQ(rect.origin.x, 1.5F);
  EXPECT_EQ(rect.origin.y, -2.0F);
  EXPECT_EQ(rect.size.width, 3.0F);
  EXPECT_EQ(rect.size.height, 4.25F);
  const auto size = passed("NSSizeZEL", zel::HostSize{0.1F, 1e30F});
  EXPECT_EQ(size.width, 0.1F);
  EXPECT_EQ(size.height, 1e30F);
  const auto point = passed("NSPointZEL", zel::HostPoint{-7.5F, 8});
  EXPECT_EQ(point.x, -7.5F);
  EXPECT_EQ(point.y, 8.0F);
  const auto range = passed("NSRangeZEL", zel::HostRange{4000000000U, 4294967295U});
  EXPECT_EQ(range.location, 4000000000U);
  EXPECT_EQ(range.length, 4294967295U);
}

TEST_P(FamilyValuesTest, FoundationReadsStructures) {
  family->provideStructures();
  put(structure("NSRectZEL", zel::HostRect{{1.5F, -2}, {3, 4.25F}}));
  const auto rect = send<zel::NSRect, "rectValue">(native());
  EXPECT_EQ(rect.origin.y, -2);
  EXPECT_EQ(rect.size.height, 4.25);
  put(structure("NSRangeZEL", zel::HostRange{4000000000U, 5}));
  const auto range = send<zel::NSRange, "rangeValue">(native());
  EXPECT_EQ(range.location, 4000000000U);
  EXPECT_EQ(range.length, 5U);
}

TEST_P(FamilyValuesTest, AStructureWithoutItsClassIsNothing) {
  family->provideStructures();
  put(structure("NSPointZEL", zel::HostPoint{1, 2}));
  host->removeClass("NSPointZEL");
  EXPECT_EQ(host->describe(taken()), "nil");
}

TEST_P(FamilyValuesTest, AStructureByKeyIsFoundationsToReject) {
  family->provideStructures();
  testing::internal::CaptureStderr();
  const Outcome outcome = host->call(defaults, "setVariantValue",
                                     {"size"s, structure("NSSizeZEL", zel::HostSize{1, 2})});
  EXPECT_NE(testing::internal::GetCapturedStderr().find("A NSInvalidArgumentException: "),
            std::string::npos);
  EXPECT_EQ(outcome.raised.value_or(Raised{}).className, "NSExceptionZEL");
}

// --- numbers

const char* octetType(id /*self*/, zel::SEL /*selector*/) { return "C"; }
unsigned char octetValue(id /*self*/, zel::SEL /*selector*/) { return 200; }

TEST_P(FamilyValuesTest, OnlyFoundationsOwnBooleansAreBooleans) {
  const host::AddMethod add = host::addToRuntime();
  add({"Octet", "NSNumber", false, "objCType", host::erased(octetType), "r*@:"});
  add({"Octet", "NSNumber", false, "unsignedCharValue", host::erased(octetValue), "C@:"});
  putNative(zel::autoreleased(send<id, "alloc">(classNamed<"Octet">())));
  EXPECT_EQ(taken(), Value(std::int32_t{200}));
  putNative(send<id, "numberWithBool:">(classNamed<"NSNumber">(), zel::BOOL{1}));
  EXPECT_EQ(taken(), Value(std::int8_t{1}));
  putNative(send<id, "numberWithBool:">(classNamed<"NSNumber">(), zel::BOOL{0}));
  EXPECT_EQ(taken(), Value(std::int8_t{0}));
}

// --- wrapper classes

TEST_P(FamilyValuesTest, EveryWrapperGivesWhatItKeeps) {
  for (const char* const name : {"QuartzFilterZEL",
                                 "NSImageZEL",
                                 "NSImageRepZEL",
                                 "NSFontZEL",
                                 "NSResponderZEL",
                                 "NSAttributedStringZEL",
                                 "NSIndexSetZEL",
                                 "NSColorZEL",
                                 "NSToolbarItemZEL",
                                 "NSToolbarZEL",
                                 "NSURLRequestZEL",
                                 "NSCharacterSetZEL",
                                 "NSParagraphStyleZEL",
                                 "NSTextContainerZEL",
                                 "WebUIDelegateZEL",
                                 "WebResourceLoadDelegateZEL",
                                 "WebFrameLoadDelegateZEL",
                                 "WebDownloadDelegateZEL",
                                 "DRBurnZEL",
                                 "PDFAnnotationZEL",
                                 "PDFActionZEL",
                                 "WebPolicyDelegateZEL"}) {
    SCOPED_TRACE(name);
    family->provideObjectClass(name);
    ask(defaults, "setVariantValue", {"wrapped"s, family->objectOf(name, text(name))});
    EXPECT_EQ(ask(defaults, "stringForKey", {"wrapped"s}), Value(std::string(name)));
  }
  ask(defaults, "removeObjectForKey", {"wrapped"s});
}

TEST_P(FamilyValuesTest, ANativeObjectComesBackInTheClassOfItsFamily) {
  const struct {
    const char* className;
    id native;
  } rows[] = {{"NSIndexSetZEL",
               send<id, "indexSetWithIndex:">(classNamed<"NSIndexSet">(), zel::NSUInteger{7})},
              {"NSCharacterSetZEL", send<id, "letterCharacterSet">(classNamed<"NSCharacterSet">())},
              {"NSURLRequestZEL",
               send<id, "requestWithURL:">(
                   classNamed<"NSURLRequest">(),
                   send<id, "URLWithString:">(classNamed<"NSURL">(), text("http://example.com/")))},
              {"NSAttributedStringZEL",
               zel::autoreleased(send<id, "initWithString:">(
                   send<id, "alloc">(classNamed<"NSAttributedString">()), text("attributed")))}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.className);
    family->provideObjectClass(row.className);
    const Value back = through(family->objectOf(row.className, row.native));
    EXPECT_EQ(host->describe(back), row.className);
    EXPECT_EQ(host::Family::nativeIn(std::get<ObjectRef>(back)), row.native);
    EXPECT_EQ(native(), row.native);
  }
}

TEST_P(FamilyValuesTest, ANativeObjectWithoutAClassIsNothing) {
  family->provideObjectClass("NSIndexSetZEL");
  put(family->objectOf("NSIndexSetZEL", send<id, "indexSet">(classNamed<"NSIndexSet">())));
  host->removeClass("NSIndexSetZEL");
  EXPECT_EQ(host->describe(taken()), "nil");
}

// --- Core Foundation classes

struct CoreFoundationRow {
  const char* className;
  id native;
  const char* read;
};

std::vector<CoreFoundationRow> coreFoundationRows() {
  const id number = send<id, "numberWithInt:">(classNamed<"NSNumber">(), 7);
  return {
      {"CFStringZEL", text("Grüße"), "\"Grüße\""},
      {"CFNumberZEL", number, "Int32 7"},
      {"CFBinaryDataZEL",
       send<id, "dataWithBytes:length:">(classNamed<"NSData">(), static_cast<const void*>("ab"),
                                         zel::NSUInteger{2}),
       "MemoryBlock 6162"},
      {"CFURLZEL", send<id, "URLWithString:">(classNamed<"NSURL">(), text("http://example.com/a")),
       "\"http://example.com/a\""},
      {"CFArrayZEL", send<id, "arrayWithObject:">(classNamed<"NSArray">(), number), "[Int32 7]"},
      {"CFDictionaryZEL",
       send<id, "dictionaryWithObject:forKey:">(classNamed<"NSDictionary">(), number, text("key")),
       R"({"key": Int32 7})"},
      {"CFDateZEL",
       send<id, "dateWithYear:month:day:hour:minute:second:timeZone:">(
           classNamed<"NSCalendarDate">(), zel::NSInteger{2013}, zel::NSUInteger{9},
           zel::NSUInteger{3}, zel::NSUInteger{12}, zel::NSUInteger{34}, zel::NSUInteger{56},
           send<id, "localTimeZone">(classNamed<"NSTimeZone">())),
       "Date 2013-09-03 12:34:56"}};
}

TEST_P(FamilyValuesTest, CoreFoundationObjectsAreFoundationObjects) {
  family->provideCoreFoundation();
  for (const CoreFoundationRow& row : coreFoundationRows()) {
    SCOPED_TRACE(row.className);
    const ObjectRef object = family->coreFoundationObject(row.className, row.native);
    EXPECT_EQ(host->describe(through(object)), row.read);
    EXPECT_EQ(host->describe(through(host->array(Host::kObjectElements, {object}))),
              "["s + row.read + "]");
  }
}

TEST_P(FamilyValuesTest, ACoreFoundationObjectWithoutItsMarkerIsNothing) {
  family->provideCoreFoundation();
  family->provideWrapper();  // which isn't tried
  for (const CoreFoundationRow& row : coreFoundationRows()) {
    SCOPED_TRACE(row.className);
    const ObjectRef object = family->coreFoundationObject(row.className, row.native, 0x46434252);
    EXPECT_EQ(host->describe(through(object)), "nil");
    ask(defaults, "setStringValue", {"marker"s, "before"s});
    ask(defaults, "setVariantValue", {"marker"s, object});
    EXPECT_EQ(host->describe(ask(defaults, "variantForKey", {"marker"s})), "nil");
  }
  EXPECT_EQ(family->keptCount(), 0U);
}

// --- any other object of the host

TEST_P(FamilyValuesTest, AnyOtherObjectIsWrappedAndComesBackItself) {
  family->provideWrapper();
  host->addClass("Window", "");
  const ObjectRef window = host->make("Window");
  EXPECT_EQ(through(window), Value(window));
  EXPECT_TRUE(zel::isKindOf<"ZELREALobjectWrapper">(native()));
  const Value list = through(host->array(Host::kObjectElements, {window, "text"s}));
  EXPECT_EQ(host->elements(std::get<ObjectRef>(list)), (Values{window, "text"s}));
}

TEST_P(FamilyValuesTest, AWrapperOfAnObjectThatIsGoneIsNothing) {
  family->provideWrapper();
  host->addClass("Window", "");
  put(host->make("Window"));
  family->forgetKept();
  EXPECT_EQ(host->describe(taken()), "nil");
}

// --- times

TEST_P(FamilyValuesTest, TimesComeBackThroughTheirFamily) {
  family->provideTimes();
  const struct {
    const char* className;
    const char* type;
  } rows[] = {{"QTKitTimeZEL", "{?=qll}"},
              {"QTKitTimeRangeZEL", "{?={?=qll}{?=qll}}"},
              {"CMTimeZEL", "{?=qiIq}"},
              {"CMTimeRangeZEL", "{?={?=qiIq}{?=qiIq}}"},
              {"CMTimeMappingZEL", "{?={?={?=qiIq}{?=qiIq}}{?={?=qiIq}{?=qiIq}}}"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.className);
    const ObjectRef time = host->make(row.className);
    EXPECT_EQ(through(time), Value(time));
    EXPECT_STREQ((send<const char*, "objCType">(native())), row.type);
    family->forgetKept();
    const Value made = taken();
    EXPECT_NE(made, Value(time));
    EXPECT_EQ(host->describe(made), row.className);
  }
}

}  // namespace
}  // namespace tests
