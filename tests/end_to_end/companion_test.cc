// The built companion plugin beside the built plugin, in a process without any other plugin of the
// family, whichever of the two is loaded first.
#include <filesystem>
#include <unistd.h>

#include "native/exceptions.h"
#include "tests/end_to_end/end_to_end_test.h"
#include "tests/support/folder.h"

namespace tests {
namespace {

using namespace std::string_literals;
using zel::CFMutableDictionaryRef;
using zel::id;
using zel::send;

id text(const char* utf8) {
  const auto* const made =
      zel::CFStringCreateWithCString(zel::kDefaultAllocator, utf8, zel::kCFStringEncodingUTF8);
  return reinterpret_cast<id>(const_cast<zel::CFStringObject*>(zel::autoreleased(made)));
}

zel::Class* exceptions() { return zel::classNamed<"NSException">(); }

id newException(const char* name, const char* reason, id userInfo) {
  return send<id, "exceptionWithName:reason:userInfo:">(exceptions(), text(name), text(reason),
                                                        userInfo);
}

ObjectRef hostObjectOf(id exception) {
  return ObjectRef::adopt(send<zel::REALobject, "NewNSExceptionZEL:">(exceptions(), exception));
}

CFMutableDictionaryRef familyMap() {
  return send<CFMutableDictionaryRef, "GetInstancesDictionaryZEL">(exceptions());
}

std::uintptr_t nativeReferences(id object) { return send<std::uintptr_t, "retainCount">(object); }

class CompanionProductTest : public FamilyTest, public testing::WithParamInterface<double> {
 protected:
  void SetUp() override {
    startHost({.version = GetParam()});
    if (companion == nullptr)
      GTEST_FAIL() << "set ZEL_FAMILY to companion-first or companion-last, as CTest does";
  }
};

INSTANTIATE_TEST_SUITE_P(Hosts, CompanionProductTest, testing::ValuesIn(kHostVersions));

TEST_P(CompanionProductTest, TheClassIsRegisteredWhole) {
  const host::RegisteredClass* const registered = host->findClass("NSExceptionZEL");
  ASSERT_NE(registered, nullptr);
  EXPECT_EQ(registered->version, host->announcedVersion());
  EXPECT_EQ(registered->superName, "RuntimeException");
  EXPECT_EQ(registered->dataSize, 16);
  EXPECT_EQ(registered->flags, 4);
  ASSERT_EQ(registered->methods.size(), 3U);
  EXPECT_EQ(registered->methods.at(0).text, "name as string");
  EXPECT_EQ(registered->methods.at(1).text, "reason as string");
  EXPECT_EQ(registered->methods.at(2).text, "userInfo as dictionary");
  EXPECT_TRUE(registered->sharedMethods.empty());
  EXPECT_EQ(host->findClass(kClass)->methods.size(), 43U);
}

TEST_P(CompanionProductTest, AFoundationExceptionArrivesInTheHost) {
  const ObjectRef defaults = standard();
  testing::internal::CaptureStderr();
  const Outcome outcome = host->call(defaults, "setIntegerValue", {""s, std::int32_t{1}});
  const std::string log = testing::internal::GetCapturedStderr();
  ASSERT_TRUE(outcome.raised.has_value());
  EXPECT_EQ(outcome.raisedCount, 1);
  EXPECT_EQ(outcome.raised->className, "NSExceptionZEL");
  EXPECT_EQ(outcome.raised->errorNumber, 0);
  ASSERT_TRUE(outcome.raised->message.has_value());
  EXPECT_NE(log.find("A NSInvalidArgumentException: " + *outcome.raised->message + ", Info: "),
            std::string::npos)
      << log;
}

TEST_P(CompanionProductTest, AnObjectTellsOfItsException) {
  const id info = send<id, "dictionaryWithObject:forKey:">(zel::classNamed<"NSDictionary">(),
                                                           text("value"), text("key"));
  const ObjectRef object = hostObjectOf(newException("NSRangeException", "Zu groß", info));
  ASSERT_TRUE(object);
  EXPECT_EQ(host->property(object, "Message"), Value("Zu groß"s));
  EXPECT_EQ(host->property(object, "ErrorNumber"), Value(std::int32_t{0}));
  EXPECT_EQ(ask(object, "name"), Value("NSRangeException"s));
  EXPECT_EQ(ask(object, "reason"), Value("Zu groß"s));
  EXPECT_EQ(host->describe(ask(object, "userInfo")), "{\"key\": \"value\"}");
}

TEST_P(CompanionProductTest, AnObjectKeepsItsExceptionAndGivesItUp) {
  const id exception = newException("Name", "Reason", nullptr);
  const std::uintptr_t before = nativeReferences(exception);
  ObjectRef object = hostObjectOf(exception);
  EXPECT_EQ(nativeReferences(exception), before + 1);
  EXPECT_EQ(ask(object, "userInfo"), Value(ObjectRef()));
  object.reset();
  EXPECT_EQ(nativeReferences(exception), before);
}

TEST_P(CompanionProductTest, AnObjectOfTheProgramsOwnTellsNothing) {
  const ObjectRef object = host->make("NSExceptionZEL");
  EXPECT_EQ(ask(object, "name"), Value(""s));
  EXPECT_EQ(ask(object, "reason"), Value(""s));
  EXPECT_EQ(ask(object, "userInfo"), Value(ObjectRef()));
}

TEST_P(CompanionProductTest, TheStandardObjectHasAnIdentity) {
  ObjectRef first = standard();
  EXPECT_EQ(standard(), first);
  const zel::REALobject before = first.handle();
  first.reset();
  const ObjectRef next = standard();
  EXPECT_NE(next.handle(), before);
  EXPECT_EQ(standard(), next);
}

TEST_P(CompanionProductTest, PrivateObjectsStandInTheMapWhileTheyLive) {
  ObjectRef object = host->construct(kClass);
  const id native = Host::data<id>(object);
  EXPECT_EQ(zel::CFDictionaryGetValue(familyMap(), native), object.handle());
  object.reset();
  EXPECT_EQ(zel::CFDictionaryGetValue(familyMap(), native), nullptr);
}

TEST_P(CompanionProductTest, TheMethodsOutliveTheHost) {
  const CFMutableDictionaryRef map = familyMap();
  TearDown();
  EXPECT_NE(map, nullptr);
  EXPECT_EQ(familyMap(), map);
  send<void, "PrepareNSExceptionZEL">(exceptions());
}

TEST_P(CompanionProductTest, OthersThatComeLaterDoNotReplaceTheMethods) {
  const CFMutableDictionaryRef map = familyMap();
  addStandIns();
  EXPECT_EQ(familyMap(), map);
  send<void, "PrepareNSExceptionZEL">(exceptions());
  EXPECT_EQ(family->preparations(), 0);
  const ObjectRef object = hostObjectOf(newException("Name", "Reason", nullptr));
  EXPECT_EQ(ask(object, "name"), Value("Name"s));
}

TEST_P(CompanionProductTest, ASecondCopyChangesNothing) {
  const CFMutableDictionaryRef map = familyMap();
  const TemporaryFolder temporary;
  const std::filesystem::path& folder = temporary.path();
  const std::filesystem::path original = pluginFile("NSExceptionZEL");
  std::filesystem::copy(original, folder / original.filename(),
                        std::filesystem::copy_options::recursive);
  {
    const host::PluginLibrary second(folder / original.filename());
    host->load(second.main());
  }
  EXPECT_EQ(familyMap(), map);
  const ObjectRef object = hostObjectOf(newException("Name", "Reason", nullptr));
  EXPECT_EQ(ask(object, "reason"), Value("Reason"s));
}

}  // namespace
}  // namespace tests
