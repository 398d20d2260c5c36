// The family's values: their classes in the host and the methods on the native side.
#include <gtest/gtest.h>
#include <string>

#include "tests/host/native_side.h"
#include "tests/host/sample_plugin.h"

namespace tests {
namespace {

using host::Family;
using host::Host;
using host::ObjectRef;
using zel::id;
using zel::REALobject;
using zel::send;

class FamilyTest : public HostTest {
 protected:
  Pool pool;
  Family family{*host, addToNativeSide()};
};

id string(const char* text) {
  const auto* const made =
      zel::CFStringCreateWithCString(zel::kDefaultAllocator, text, zel::kCFStringEncodingASCII);
  return reinterpret_cast<id>(const_cast<zel::CFStringObject*>(zel::autoreleased(made)));
}
zel::NSUInteger references(id object) { return send<zel::NSUInteger, "retainCount">(object); }

TEST_F(FamilyTest, GivesStructuresTheirData) {
  family.provideStructures();
  const ObjectRef rectangle = host->make("NSRectZEL");
  Host::data<zel::HostRect>(rectangle) = {{1, 2}, {3, 4}};
  EXPECT_EQ(Host::data<float[4]>(rectangle)[3], 4.0F);
  EXPECT_EQ(host->findClass("NSRectZEL")->dataSize, 16);
  EXPECT_EQ(host->findClass("NSSizeZEL")->dataSize, 8);
  EXPECT_EQ(host->findClass("NSRangeZEL")->dataSize, 8);
  EXPECT_EQ(host->findClass("NSPointZEL")->dataSize, 8);
  EXPECT_EQ(host->describe(rectangle), "NSRectZEL");
}

TEST_F(FamilyTest, GivesUpNativeObjectsWithTheirHostObjects) {
  family.provideObjectClass("NSImageZEL");
  family.provideObjectClass("DerivedZEL", "NSImageZEL");
  family.provideCoreFoundation();
  const id native = string("some longer text, so that it is an object of its own");
  const zel::NSUInteger before = references(native);
  for (const char* const name : {"NSImageZEL", "DerivedZEL"}) {
    ObjectRef object = family.objectOf(name, native);
    EXPECT_EQ(Family::nativeIn(object), native);
    EXPECT_EQ(references(native), before + 1);
    object.reset();
    EXPECT_EQ(references(native), before);
  }
  ObjectRef whole = family.coreFoundationObject("CFStringZEL", native);
  EXPECT_EQ(Host::data<zel::CoreFoundationData>(whole).object, native);
  EXPECT_EQ(Host::data<zel::CoreFoundationData>(whole).marker, 0x52424346U);
  EXPECT_EQ(references(native), before + 1);
  whole.reset();
  EXPECT_EQ(references(native), before);
  const ObjectRef broken = family.coreFoundationObject("CFDateZEL", nullptr, 7);
  EXPECT_EQ(Host::data<zel::CoreFoundationData>(broken).marker, 7U);
}

TEST_F(FamilyTest, WrapsHostObjects) {
  family.provideWrapper();
  const ObjectRef object = host->memoryBlock("abc");
  zel::Class* const wrapperClass = zel::lookUpClass("ZELREALobjectWrapper");
  ASSERT_NE(wrapperClass, nullptr);
  const id wrapper = send<id, "wrap:">(wrapperClass, object.handle());
  EXPECT_TRUE(zel::isKindOf<"ZELREALobjectWrapper">(wrapper));
  EXPECT_EQ(host->references(object.handle()), 2);
  {
    const ObjectRef unwrapped = ObjectRef::adopt(send<REALobject, "unwrap">(wrapper));
    EXPECT_EQ(unwrapped, object);
    EXPECT_EQ(host->references(object.handle()), 3);
  }
  EXPECT_EQ(family.keptCount(), 1U);
  family.forgetKept();
  EXPECT_EQ(host->references(object.handle()), 1);
  EXPECT_EQ((send<REALobject, "unwrap">(wrapper)), nullptr);
}

template <zel::Name factory, zel::Name accessor>
void expectTime(Host& host, const char* className, const std::string& type) {
  const ObjectRef time = host.make(className);
  zel::Class* const values = zel::classNamed<"NSValue">();
  const id value = send<id, factory>(values, time.handle());
  ASSERT_TRUE(zel::isKindOf<"NSValue">(value)) << className;
  EXPECT_EQ((send<const char*, "objCType">(value)), type);
  ASSERT_TRUE(zel::respondsTo<accessor>(value)) << className;
  EXPECT_EQ(ObjectRef::adopt(send<REALobject, accessor>(value)), time);
  // Of any other value it makes an object.
  const id other = send<id, "valueWithSize:">(values, zel::NSSize{1, 2});
  const ObjectRef made = ObjectRef::adopt(send<REALobject, accessor>(other));
  EXPECT_EQ(host.describe(made), className);
  EXPECT_EQ(host.references(made.handle()), 1);
}

TEST_F(FamilyTest, MakesTimes) {
  family.provideTimes();
  expectTime<"valueWithQTTimeZEL:", "QTTimeValueZEL">(*host, "QTKitTimeZEL", "{?=qll}");
  expectTime<"valueWithQTTimeRangeZEL:", "QTTimeRangeValueZEL">(*host, "QTKitTimeRangeZEL",
                                                                "{?={?=qll}{?=qll}}");
  expectTime<"valueWithCMTimeZEL:", "CMTimeValueZEL">(*host, "CMTimeZEL", "{?=qiIq}");
  expectTime<"valueWithCMTimeRangeZEL:", "CMTimeRangeValueZEL">(*host, "CMTimeRangeZEL",
                                                                "{?={?=qiIq}{?=qiIq}}");
  expectTime<"valueWithCMTimeMappingZEL:", "CMTimeMappingValueZEL">(
      *host, "CMTimeMappingZEL", "{?={?={?=qiIq}{?=qiIq}}{?={?=qiIq}{?=qiIq}}}");
  EXPECT_EQ(family.keptCount(), 5U);
  family.forgetKept();
}

}  // namespace
}  // namespace tests
