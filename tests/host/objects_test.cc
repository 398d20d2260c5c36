// Objects, classes, properties and exceptions of the reference host, and its accounts of them.
#include <cstring>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/host/sample_plugin.h"

namespace tests {
namespace {

using Lines = std::vector<std::string>;
using host::Host;
using host::ObjectRef;
using host::Raised;
using host::Text;
using host::Value;
using zel::REALboolean;
using zel::REALclassRef;
using zel::REALobject;
using zel::REALstring;

REALobject newInstance(const char* name) {
  return entryPoint<REALobject(const char*)>("PluginNewInstance")(name);
}
void lock(REALobject object) { entryPoint<void(REALobject)>("REALLockObject")(object); }
void unlock(REALobject object) { entryPoint<void(REALobject)>("REALUnlockObject")(object); }
void raise(REALobject object) { entryPoint<void(REALobject)>("RuntimeRaiseException")(object); }

unsigned char* dataOf(REALobject object) { return reinterpret_cast<unsigned char*>(object) + 24; }

TEST_F(HostTest, GivesNewInstancesOneReferenceAndZeroedData) {
  load();
  const REALobject object = newInstance("SampleZEL");
  ASSERT_NE(object, nullptr);
  EXPECT_EQ(host->references(object), 1);
  EXPECT_EQ(SamplePlugin::current().constructed, 1);
  const unsigned char zeros[16] = {};
  EXPECT_EQ(std::memcmp(dataOf(object), zeros, sizeof zeros), 0);
  lock(object);
  EXPECT_EQ(host->references(object), 2);
  unlock(object);
  EXPECT_EQ(SamplePlugin::current().destroyed, 0);
  unlock(object);
  EXPECT_EQ(SamplePlugin::current().destroyed, 1);
  EXPECT_EQ(host->references(object), 0);
}

TEST_F(HostTest, KnowsNoOtherClasses) {
  EXPECT_EQ(newInstance("Nothing"), nullptr);
  EXPECT_EQ(newInstance("runtimeexception"), nullptr);
  EXPECT_EQ(newInstance(nullptr), nullptr);
  EXPECT_EQ(takeFailures(), Lines{"PluginNewInstance was given no class name"});
}

TEST_F(HostTest, PoisonsTheDead) {
  load();
  const REALobject object = newInstance("SampleZEL");
  unlock(object);
  EXPECT_EQ(dataOf(object)[0], 0xDD);
  EXPECT_EQ(dataOf(object)[15], 0xDD);
}

TEST_F(HostTest, FindsOverReleaseAndUseOfTheDead) {
  const REALobject object = newInstance("RuntimeException");
  unlock(object);
  unlock(object);
  lock(object);
  EXPECT_EQ(takeFailures(),
            (Lines{"REALUnlockObject was given object of RuntimeException (#1), which is dead",
                   "REALLockObject was given object of RuntimeException (#1), which is dead"}));
}

TEST_F(HostTest, FindsHandlesThatAreNotItsOwn) {
  int nobody = 0;
  unlock(nullptr);
  unlock(reinterpret_cast<REALobject>(&nobody));
  const REALstring string = host->string("text");
  unlock(reinterpret_cast<REALobject>(string));
  host->unlock(string);
  EXPECT_EQ(takeFailures(),
            (Lines{"REALUnlockObject was given a null handle",
                   "REALUnlockObject was given a handle that isn't the host's",
                   "REALUnlockObject was given string \"text\" (#1), which isn't an object"}));
}

TEST_F(HostTest, FindsWritesOutsideOfTheData) {
  host->addClass("Small", "", 16);
  const REALobject behind = newInstance("Small");
  dataOf(behind)[16] = 1;
  unlock(behind);
  const REALobject before = newInstance("Small");
  dataOf(before)[-1] = 1;
  unlock(before);
  EXPECT_EQ(takeFailures(), (Lines{"object of Small (#1) was written to outside of its data",
                                   "object of Small (#2) was written to outside of its data"}));
  EXPECT_EQ(host->unbalanced(), "object of Small (#1): written to after its death\n");
  start({});
}

TEST_F(HostTest, FindsWritesToTheDead) {
  const REALobject object = newInstance("RuntimeException");
  unlock(object);
  std::memset(object, 0, 4);
  EXPECT_EQ(host->unbalanced(), "object of RuntimeException (#1): written to after its death\n");
  start({});
}

TEST_F(HostTest, TellsWhatIsLeft) {
  const ObjectRef object = host->make("RuntimeException");
  const ObjectRef again = ObjectRef::share(object.handle());
  const ObjectRef array = host->array(Host::kObjectElements, {object});
  EXPECT_EQ(host->unbalanced(),
            "object of RuntimeException (#1): 3 references\n"
            "object array of 1 (#2): 1 reference\n");
}

TEST_F(HostTest, RefusesToReviveTheDying) {
  load();
  zel::REALclassDefinition& record = SamplePlugin::current().record;
  record.base.name = "ClingingZEL";
  record.base.destructor = reinterpret_cast<zel::HostFunction>(lock);
  entryPoint<void(zel::REALclassDefinition*)>("PluginRegisterClass")(&record);
  unlock(newInstance("ClingingZEL"));
  EXPECT_EQ(takeFailures(),
            Lines{"REALLockObject was given object of ClingingZEL (#1), which is dying"});
}

TEST_F(HostTest, TellsClassesApart) {
  const auto classRef = entryPoint<REALclassRef(const char*)>("pluginObjectType");
  const auto isA = entryPoint<REALboolean(REALobject, REALclassRef)>("RuntimeObjectIsa");
  EXPECT_EQ(classRef("Nothing"), nullptr);
  host->addClass("Derived", "OutOfMemoryException");
  const ObjectRef object = host->make("Derived");
  const ObjectRef array = host->array(Host::kStringElements);
  EXPECT_EQ(isA(object.handle(), classRef("Derived")), 1);
  EXPECT_EQ(isA(object.handle(), classRef("RuntimeException")), 1);
  EXPECT_EQ(isA(object.handle(), classRef("NSExceptionZEL")), 0);
  EXPECT_EQ(isA(array.handle(), classRef("RuntimeException")), 0);
  EXPECT_EQ(isA(object.handle(), nullptr), 0);
  EXPECT_EQ(takeFailures(), Lines{"RuntimeObjectIsa was given no class of the host"});
}

TEST_F(HostTest, ForgetsRemovedClasses) {
  const ObjectRef object = host->make("NSExceptionZEL");
  host->removeClass("NSExceptionZEL");
  EXPECT_EQ(newInstance("NSExceptionZEL"), nullptr);
  EXPECT_EQ(host->findClass("NSExceptionZEL"), nullptr);
  EXPECT_EQ(host->property(object, "ErrorNumber"), Value(std::int32_t{0}));
  EXPECT_THROW(host->removeClass("NSExceptionZEL"), std::invalid_argument);
}

TEST_F(HostTest, RefusesClassesThatMakeNoSense) {
  EXPECT_THROW(host->addClass("RuntimeException", ""), std::invalid_argument);
  EXPECT_THROW(host->addClass("Orphan", "Nobody"), std::invalid_argument);
}

// --- properties

template <class T>
bool get(const char* name, const ObjectRef& object, const char* property, T* out) {
  return entryPoint<REALboolean(REALobject, const char*, T*)>(name)(object.handle(), property,
                                                                    out) != 0;
}

class HostPropertiesTest : public HostTest {
 protected:
  HostPropertiesTest() {
    host->addClass("Record", "");
    for (const char* const declaration : {"Year as integer", "Long as int64", "Size as single",
                                          "Exact as double", "Title as string", "Owner as Record"})
      host->addProperty("Record", declaration);
    record = host->make("Record");
  }
  void TearDown() override {
    record.reset();
    HostTest::TearDown();
  }
  ObjectRef record;
};

TEST_F(HostPropertiesTest, ReadsByTypeAndName) {
  host->setProperty(record, "Year", 2013);
  host->setProperty(record, "Size", 0.5F);
  host->setProperty(record, "Exact", 0.25);
  host->setProperty(record, "Long", std::int64_t{5000000000});
  std::int32_t year = 0;
  std::int64_t longest = -1;
  float size = 0;
  double exact = 0;
  EXPECT_TRUE(get("REALGetPropValueInt", record, "year", &year));
  EXPECT_EQ(year, 2013);
  EXPECT_TRUE(get("REALGetPropValueInt64", record, "Long", &longest));
  EXPECT_EQ(longest, 5000000000);
  EXPECT_EQ(host->property(record, "Long"), Value(std::int64_t{5000000000}));
  EXPECT_TRUE(get("REALGetPropValueSingle", record, "Size", &size));
  EXPECT_EQ(size, 0.5F);
  EXPECT_TRUE(get("REALGetPropValueDouble", record, "Exact", &exact));
  EXPECT_EQ(exact, 0.25);
  EXPECT_FALSE(get("REALGetPropValueInt", record, "Month", &year));
  EXPECT_FALSE(get("REALGetPropValueInt", record, "Title", &year));
  EXPECT_EQ(year, 2013);
}

TEST_F(HostPropertiesTest, GivesAReferenceOnWhatItReads) {
  const ObjectRef owner = host->make("Record");
  host->setProperty(record, "Owner", owner);
  host->setProperty(record, "Title", "name");
  REALstring title = nullptr;
  REALobject object = nullptr;
  ASSERT_TRUE(get("REALGetPropValueString", record, "Title", &title));
  ASSERT_TRUE(get("REALGetPropValueObject", record, "Owner", &object));
  EXPECT_EQ(host->bytes(title), "name");
  EXPECT_EQ(host->references(title), 2);
  EXPECT_EQ(object, owner.handle());
  EXPECT_EQ(host->references(object), 3);
  host->unlock(title);
  unlock(object);
  record.reset();
  EXPECT_EQ(host->references(title), 0);
  EXPECT_EQ(host->references(object), 1);
}

TEST_F(HostPropertiesTest, TakesItsOwnReferenceOnWhatIsSet) {
  const auto set = entryPoint<void(REALobject, const char*, REALstring)>("REALSetPropValueString");
  const REALstring first = host->string("first");
  const REALstring second = host->string("second", 0x600);
  set(record.handle(), "Title", first);
  EXPECT_EQ(host->references(first), 2);
  set(record.handle(), "Title", second);
  EXPECT_EQ(host->references(first), 1);
  EXPECT_EQ(host->property(record, "title"), Value(Text("second", 0x600)));
  set(record.handle(), "Title", nullptr);
  EXPECT_EQ(host->references(second), 1);
  EXPECT_EQ(host->property(record, "Title"), Value(""));
  host->unlock(first);
  host->unlock(second);
}

TEST_F(HostPropertiesTest, ReportsPropertiesThatThereAreNot) {
  entryPoint<void(REALobject, const char*, std::int32_t)>("REALSetPropValueInt")(record.handle(),
                                                                                 "Title", 1);
  EXPECT_EQ(takeFailures(), Lines{"an entry point that sets a property: object of Record has no "
                                  "property \"Title\" of that type"});
  EXPECT_THROW(host->setProperty(record, "Title", 1), std::invalid_argument);
  EXPECT_THROW(host->setProperty(record, "Year", "1"), std::invalid_argument);
  EXPECT_THROW((void)host->property(record, "Month"), std::invalid_argument);
  EXPECT_THROW(host->setProperty(record, "Long", 1), std::invalid_argument);
  EXPECT_THROW(host->addProperty("Record", "f(a as string) as string"), std::invalid_argument);
}

// --- exceptions

TEST_F(HostTest, KeepsWhatWasRaisedOutsideOfACall) {
  const ObjectRef first = host->make("OutOfMemoryException");
  host->setProperty(first, "Message", Text("Full.", 0x600));
  host->setProperty(first, "ErrorNumber", 7);
  raise(first.handle());
  EXPECT_EQ(host->references(first.handle()), 2);
  const REALobject second = newInstance("NSExceptionZEL");
  raise(second);
  unlock(second);
  const std::vector<Raised> raised = host->takePending();
  EXPECT_EQ(raised, (std::vector<Raised>{{"OutOfMemoryException", "Full.", 7},
                                         {"NSExceptionZEL", std::nullopt, 0}}));
  EXPECT_EQ(raised.at(0).messageEncoding, 0x600U);
  EXPECT_EQ(host->references(first.handle()), 1);
  EXPECT_EQ(host->references(second), 0);
}

TEST_F(HostTest, RaisesOnlyExceptions) {
  host->addClass("Plain", "");
  raise(host->make("Plain").handle());
  EXPECT_EQ(takeFailures(), Lines{"RuntimeRaiseException was given an object of Plain, which isn't "
                                  "an exception"});
}

TEST_F(HostTest, LeavesWhatAConstructorRaisedPending) {
  void (*const constructor)(REALobject) = [](REALobject) {
    raise(ObjectRef::adopt(newInstance("UnsupportedOperationException")).handle());
  };
  host->addClass("Raising", "");
  host->addMethod("Raising", "Constructor", reinterpret_cast<host::PluginFunction>(constructor));
  EXPECT_TRUE(host->construct("Raising"));
  EXPECT_EQ(host->unbalanced(), "object of UnsupportedOperationException (#2): 1 reference\n");
  EXPECT_EQ(host->takePending(),
            (std::vector<Raised>{{"UnsupportedOperationException", std::nullopt, 0}}));
}

using HostDeathTest = HostTest;

TEST_F(HostDeathTest, AbortsOnFailureByDefault) {
  host = nullptr;
  host = std::make_unique<Host>();
  EXPECT_DEATH(unlock(nullptr), "reference host: REALUnlockObject was given a null handle");
}

TEST_F(HostDeathTest, CannotBeAskedWhenItIsGone) {
  const auto stale = entryPoint<void(REALobject)>("REALLockObject");
  host = nullptr;
  EXPECT_DEATH(stale(nullptr), "REALLockObject was used while there is no host");
}

}  // namespace
}  // namespace tests
