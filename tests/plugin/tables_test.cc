// The description of the class: what the host language sees, in order.
#include "plugin/tables.h"

#include <gtest/gtest.h>

#include "plugin/methods.h"
#include "tests/support/fresh_plugin.h"

namespace zel {
namespace {

struct Row {
  const char* declaration;
  HostFunction function;
  HostFunction setter;
};

template <class Function>
HostFunction address(Function* function) {
  return reinterpret_cast<HostFunction>(function);
}

const Row kMethods[43] = {
    {"_exception as NSExceptionZEL", address(DummyException), nullptr},
    {"Constructor", address(Constructor), nullptr},
    {"Constructor(username as string)", address(ConstructorUser), nullptr},
    {"synchronize as boolean", address(synchronize), nullptr},
    {"removeObjectForKey(defaultName as string)", address(removeObjectForKey), nullptr},
    {"removeVolatileDomainForName(domainName as string)", address(removeVolatileDomainForName),
     nullptr},
    {"removePersistentDomainForName(domainName as string)", address(removePersistentDomainForName),
     nullptr},
    {"addSuiteNamed(suiteName as string)", address(addSuiteNamed), nullptr},
    {"removeSuiteNamed(suiteName as string)", address(removeSuiteNamed), nullptr},
    {"integerForKey(key as string) as integer", address(integerForKey), address(setIntegerForKey)},
    {"floatForKey(key as string) as single", address(floatForKey), address(setFloatForKey)},
    {"doubleForKey(key as string) as double", address(doubleForKey), address(setDoubleForKey)},
    {"boolForKey(key as string) as boolean", address(boolForKey), address(setBoolForKey)},
    {"stringForKey(key as string) as string", address(stringForKey), address(setStringForKey)},
    {"dataForKey(key as string) as memoryblock", address(dataForKey), address(setDataForKey)},
    {"variantForKey(key as string) as variant", address(objectForKey), address(setObjectForKey)},
    {"fileForKey(key as string) as folderitem", address(fileForKey), address(setFileForKey)},
    {"URLForKey(key as string) as string", address(URLForKey), address(setURLForKey)},
    {"stringArrayForKey(key as string) as string()", address(stringArrayForKey), nullptr},
    {"dictionaryForKey(key as string) as dictionary", address(dictionaryForKey),
     address(setDictionaryForKey)},
    {"arrayForKey(key as string) as variant()", address(arrayForKey), nullptr},
    {"setIntegerValue(key as string, value as integer)", address(setIntegerForKey), nullptr},
    {"setFloatValue(key as string, value as single)", address(setFloatForKey), nullptr},
    {"setDoubleValue(key as string, value as double)", address(setDoubleForKey), nullptr},
    {"setBoolValue(key as string, value as boolean)", address(setBoolForKey), nullptr},
    {"setStringValue(key as string, value as string)", address(setStringForKey), nullptr},
    {"setDataValue(key as string, value as memoryblock)", address(setDataForKey), nullptr},
    {"setVariantValue(key as string, value as variant)", address(setObjectForKey), nullptr},
    {"setFileValue(key as string, value as folderitem)", address(setFileForKey), nullptr},
    {"setURLValue(key as string, value as string)", address(setURLForKey), nullptr},
    {"setStringArrayValue(key as string, values() as string)", address(setStringArrayForKey),
     nullptr},
    {"setDictionaryValue(key as string, value as dictionary)", address(setDictionaryForKey),
     nullptr},
    {"setArrayValue(key as string, values() as variant)", address(setArrayForKey), nullptr},
    {"registerDefaults(dic as dictionary)", address(registerDefaults), nullptr},
    {"dictionaryRepresentation as dictionary", address(dictionaryRepresentation), nullptr},
    {"objectIsForcedForKey(key as string) as boolean", address(objectIsForcedForKey), nullptr},
    {"objectIsForcedForKey(key as string, domain as string) as boolean",
     address(objectIsForcedForKey2), nullptr},
    {"setPersistentDomain(domain as dictionary, domainName as string)",
     address(setPersistentDomain), nullptr},
    {"setVolatileDomain(domain as dictionary, domainName as string)", address(setVolatileDomain),
     nullptr},
    {"persistentDomainNames as string()", address(persistentDomainNames), nullptr},
    {"persistentDomainForName(domainName as string) as dictionary",
     address(persistentDomainForName), nullptr},
    {"volatileDomainNames as string()", address(volatileDomainNames), nullptr},
    {"volatileDomainForName(domainName as string) as dictionary", address(volatileDomainForName),
     nullptr},
};

const Row kSharedMethods[6] = {
    {"NSGlobalDomain as string", address(getNSGlobalDomain), nullptr},
    {"NSArgumentDomain as string", address(getNSArgumentDomain), nullptr},
    {"NSRegistrationDomain as string", address(getNSRegistrationDomain), nullptr},
    {"NSUserDefaultsDidChangeNotification as string",
     address(getNSUserDefaultsDidChangeNotification), nullptr},
    {"resetStandardUserDefaults", address(resetStandardUserDefaults), nullptr},
    {"standardUserDefaults as NSUserDefaultsZEL", address(standardUserDefaults), nullptr},
};

template <std::size_t Count>
void expectRecords(const REALmethodDefinition (&records)[Count], const Row (&expected)[Count]) {
  for (std::size_t i = 0; i < Count; ++i) {
    SCOPED_TRACE(expected[i].declaration);
    EXPECT_STREQ(records[i].declaration, expected[i].declaration);
    EXPECT_EQ(records[i].function, expected[i].function);
    EXPECT_EQ(records[i].setter, expected[i].setter);
    EXPECT_EQ(records[i].flags, 4);
    EXPECT_EQ(records[i].attributeCount, 0);
    EXPECT_EQ(records[i].attributes, nullptr);
  }
}

TEST(TablesTest, InstanceMethods) { expectRecords(NSUserDefaultsMethods, kMethods); }

TEST(TablesTest, SharedMethods) { expectRecords(NSUserDefaultsSharedMethods, kSharedMethods); }

TEST(TablesTest, TheClassAsDeclared) {
  tests::makePluginFresh();
  const OlderClassRecord& record = NSUserDefaultsClass.base;
  EXPECT_EQ(record.version, 12);
  EXPECT_STREQ(record.name, "NSUserDefaultsZEL");
  EXPECT_EQ(record.superName, nullptr);
  EXPECT_EQ(record.dataSize, 4);
  EXPECT_EQ(record.systemUse, 0);
  EXPECT_EQ(record.constructor, address(NSUserDefaultsConstructor));
  EXPECT_EQ(record.destructor, address(NSUserDefaultsDestructor));
  EXPECT_EQ(record.properties, nullptr);
  EXPECT_EQ(record.propertyCount, 0);
  EXPECT_EQ(record.methods, NSUserDefaultsMethods);
  EXPECT_EQ(record.methodCount, 43);
  EXPECT_EQ(record.events, nullptr);
  EXPECT_EQ(record.eventCount, 0);
  EXPECT_EQ(record.eventInstances, nullptr);
  EXPECT_EQ(record.eventInstanceCount, 0);
  EXPECT_EQ(record.interfaces, nullptr);
  EXPECT_EQ(record.attributes, nullptr);
  EXPECT_EQ(record.attributeCount, 0);
  EXPECT_EQ(record.constants, nullptr);
  EXPECT_EQ(record.constantCount, 0);
  EXPECT_EQ(record.flags, 4);
  EXPECT_EQ(record.sharedProperties, nullptr);
  EXPECT_EQ(record.sharedPropertyCount, 0);
  EXPECT_EQ(record.sharedMethods, NSUserDefaultsSharedMethods);
  EXPECT_EQ(record.sharedMethodCount, 6);
  EXPECT_EQ(NSUserDefaultsClass.delegates, nullptr);
  EXPECT_EQ(NSUserDefaultsClass.delegateCount, 0);
  EXPECT_EQ(NSUserDefaultsClass.enums, nullptr);
  EXPECT_EQ(NSUserDefaultsClass.enumCount, 0);
}

}  // namespace
}  // namespace zel
