// A host whose resolver knows nothing: every call ends, with nothing.
#include <string>

#include "plugin/host.h"
#include "plugin/methods.h"
#include "plugin/tables.h"
#include "tests/support/plugin_test.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests
using namespace std::string_literals;

class EmptyHostTest : public PluginTest {
 protected:
  void SetUp() override {
    PluginTest::SetUp();
    provideFamily();
    family->giveNoExceptions();
    gResolver = [](const char* /*name*/) -> void* { return nullptr; };
    NSUserDefaultsClass.base.systemUse = 24;
  }
  // What Foundation answers, and what it is handed, whatever the key.
  void answer(const char* selector, id reply) {
    replied = reply;
    foundation.addMethod("NSUserDefaults", selector, [](id, SEL, CFStringRef) { return replied; });
  }
  void catchHanded(const char* selector) {
    handed = "nothing";
    foundation.addMethod("NSUserDefaults", selector, [](id, SEL, id value, CFStringRef name) {
      auto& kit = foundation_double::Foundation::shared();
      handed = kit.describe(value) + " for " + kit.describe(name);
    });
  }
  template <class Handle>
  Handle as() {
    return reinterpret_cast<Handle>(value_);
  }

  char object_[64] = {};
  char string_[64] = {};
  char value_[64] = {};
  REALobject object = reinterpret_cast<REALobject>(object_);
  REALstring string = reinterpret_cast<REALstring>(string_);
  static inline id replied = nullptr;
  static inline std::string handed;
};

TEST_F(EmptyHostTest, EveryGetterGivesItsDefault) {
  Constructor(object);
  EXPECT_EQ(integerForKey(object, string), 0);
  EXPECT_EQ(floatForKey(object, string), 0.0F);
  EXPECT_EQ(doubleForKey(object, string), 0.0);
  EXPECT_EQ(boolForKey(object, string), 0);
  EXPECT_EQ(stringForKey(object, string), nullptr);
  EXPECT_EQ(URLForKey(object, string), nullptr);
  NSUserDefaultsDestructor(object);
}

TEST_F(EmptyHostTest, EverySetterStoresNothing) {
  ConstructorUser(object, string);
  setIntegerForKey(object, string, 1);
  setFloatForKey(object, string, 1);
  setDoubleForKey(object, string, 1);
  setBoolForKey(object, string, 1);
  setStringForKey(object, string, string);
  setURLForKey(object, string, string);
  EXPECT_EQ(foundation.log().size(), 6U);  // each handed on a nil key, which Foundation rejects
  NSUserDefaultsDestructor(object);
}

TEST_F(EmptyHostTest, TheOtherMethodsEndToo) {
  NSUserDefaultsConstructor(object);
  Constructor(object);
  Constructor(object);
  EXPECT_EQ(synchronize(object), 1);
  EXPECT_EQ(standardUserDefaults(), nullptr);
  resetStandardUserDefaults();
  EXPECT_EQ(getNSGlobalDomain(), nullptr);
  EXPECT_EQ(DummyException(object), nullptr);
  NSUserDefaultsDestructor(object);
}

TEST_F(EmptyHostTest, EveryGetterOfObjectsGivesNothing) {
  foundation.makeFile("/folder/file.txt");
  Constructor(object);
  answer("dataForKey:", foundation.data("ab"));
  EXPECT_EQ(dataForKey(object, string), nullptr);
  answer("URLForKey:",
         foundation_double::Foundation::asObject(foundation.fileUrl("/folder/file.txt")));
  EXPECT_EQ(fileForKey(object, string), nullptr);
  const id list =
      foundation.array({foundation_double::Foundation::asObject(foundation.string("a"))});
  answer("stringArrayForKey:", list);
  EXPECT_EQ(stringArrayForKey(object, string), nullptr);
  answer("arrayForKey:", list);
  EXPECT_EQ(arrayForKey(object, string), nullptr);
  answer("dictionaryForKey:", foundation.dictionary({{"a"s, list}}));
  EXPECT_EQ(dictionaryForKey(object, string), nullptr);
  EXPECT_EQ(foundation.log(), Lines{});
  NSUserDefaultsDestructor(object);
}

TEST_F(EmptyHostTest, NoObjectBecomesAVariant) {
  Constructor(object);
  foundation.addClass("NSColor", "NSObject");
  for (const id value :
       {foundation_double::Foundation::asObject(foundation.string("a")), foundation.boolean(true),
        foundation.number("i", 1), foundation.number("d", 1), foundation.date(0),
        foundation.data("ab"), foundation.array({foundation.boolean(true)}),
        foundation.dictionary({{"a"s, foundation.boolean(true)}}),
        foundation_double::Foundation::asObject(foundation.url("http://example.com/")),
        foundation.value(NSRange{1, 2}), foundation.object("NSColor")}) {
    SCOPED_TRACE(foundation.describe(value));
    answer("objectForKey:", value);
    EXPECT_EQ(objectForKey(object, string), nullptr);
  }
  EXPECT_EQ(foundation.log(), Lines{});
  NSUserDefaultsDestructor(object);
}

TEST_F(EmptyHostTest, EverySetterOfObjectsHandsOnWhatIsLeft) {
  Constructor(object);
  catchHanded("setObject:forKey:");
  setDataForKey(object, string, as<REALmemoryBlock>());
  EXPECT_EQ(handed, "nil for nil");
  setObjectForKey(object, string, as<REALobject>());
  EXPECT_EQ(handed, "nil for nil");
  setStringArrayForKey(object, string, as<REALstringArray>());
  EXPECT_EQ(handed, "() for nil");
  setArrayForKey(object, string, as<REALobjectArray>());
  EXPECT_EQ(handed, "() for nil");
  setDictionaryForKey(object, string, as<REALdictionary>());
  EXPECT_EQ(handed, "{} for nil");
  catchHanded("setURL:forKey:");
  setFileForKey(object, string, as<REALfolderItem>());
  EXPECT_EQ(handed, "nil for nil");
  NSUserDefaultsDestructor(object);
}

TEST_F(EmptyHostTest, EveryMessageToTheStoreIsSentWithoutNames) {
  Constructor(object);
  foundation.clearRecords();
  removeObjectForKey(object, string);
  removeVolatileDomainForName(object, string);
  removePersistentDomainForName(object, string);
  addSuiteNamed(object, string);
  removeSuiteNamed(object, string);
  registerDefaults(object, as<REALdictionary>());
  setPersistentDomain(object, as<REALdictionary>(), string);
  setVolatileDomain(object, as<REALdictionary>(), string);
  EXPECT_EQ(objectIsForcedForKey(object, string), 0);
  EXPECT_EQ(objectIsForcedForKey2(object, string, string), 0);
  EXPECT_EQ(
      sentToDefaults(),
      (Lines{
          "-[NSUserDefaults removeObjectForKey:]", "-[NSUserDefaults removeVolatileDomainForName:]",
          "-[NSUserDefaults removePersistentDomainForName:]", "-[NSUserDefaults addSuiteNamed:]",
          "-[NSUserDefaults removeSuiteNamed:]", "-[NSUserDefaults registerDefaults:]",
          "-[NSUserDefaults setPersistentDomain:forName:]",
          "-[NSUserDefaults setVolatileDomain:forName:]", "-[NSUserDefaults objectIsForcedForKey:]",
          "-[NSUserDefaults objectIsForcedForKey:inDomain:]"}));
  NSUserDefaultsDestructor(object);
}

TEST_F(EmptyHostTest, NothingComesBackFromTheStore) {
  Constructor(object);
  const id contents = foundation.dictionary({{"a"s, foundation.boolean(true)}});
  answer("dictionaryRepresentation", contents);
  EXPECT_EQ(dictionaryRepresentation(object), nullptr);
  answer("persistentDomainForName:", contents);
  EXPECT_EQ(persistentDomainForName(object, string), nullptr);
  answer("volatileDomainForName:", contents);
  EXPECT_EQ(volatileDomainForName(object, string), nullptr);
  EXPECT_EQ(persistentDomainNames(object), nullptr);
  EXPECT_EQ(volatileDomainNames(object), nullptr);
  EXPECT_EQ(foundation.log(), Lines{});
  NSUserDefaultsDestructor(object);
}

}  // namespace
}  // namespace zel
