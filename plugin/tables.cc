#include "plugin/tables.h"

#include "plugin/method_records.h"
#include "plugin/methods.h"
#include "plugin/plugin.h"

namespace zel {

// The two list getters are the only ones without a setter in their record, deliberately: lists are
// written through their setter methods alone.
const REALmethodDefinition NSUserDefaultsMethods[43] = {
    METHOD("_exception as NSExceptionZEL", DummyException),
    METHOD("Constructor", Constructor),
    METHOD("Constructor(username as string)", ConstructorUser),
    METHOD("synchronize as boolean", synchronize),
    METHOD("removeObjectForKey(defaultName as string)", removeObjectForKey),
    METHOD("removeVolatileDomainForName(domainName as string)", removeVolatileDomainForName),
    METHOD("removePersistentDomainForName(domainName as string)", removePersistentDomainForName),
    METHOD("addSuiteNamed(suiteName as string)", addSuiteNamed),
    METHOD("removeSuiteNamed(suiteName as string)", removeSuiteNamed),
    PROPERTY("integerForKey(key as string) as integer", integerForKey, setIntegerForKey),
    PROPERTY("floatForKey(key as string) as single", floatForKey, setFloatForKey),
    PROPERTY("doubleForKey(key as string) as double", doubleForKey, setDoubleForKey),
    PROPERTY("boolForKey(key as string) as boolean", boolForKey, setBoolForKey),
    PROPERTY("stringForKey(key as string) as string", stringForKey, setStringForKey),
    PROPERTY("dataForKey(key as string) as memoryblock", dataForKey, setDataForKey),
    PROPERTY("variantForKey(key as string) as variant", objectForKey, setObjectForKey),
    PROPERTY("fileForKey(key as string) as folderitem", fileForKey, setFileForKey),
    PROPERTY("URLForKey(key as string) as string", URLForKey, setURLForKey),
    METHOD("stringArrayForKey(key as string) as string()", stringArrayForKey),
    PROPERTY("dictionaryForKey(key as string) as dictionary", dictionaryForKey,
             setDictionaryForKey),
    METHOD("arrayForKey(key as string) as variant()", arrayForKey),
    METHOD("setIntegerValue(key as string, value as integer)", setIntegerForKey),
    METHOD("setFloatValue(key as string, value as single)", setFloatForKey),
    METHOD("setDoubleValue(key as string, value as double)", setDoubleForKey),
    METHOD("setBoolValue(key as string, value as boolean)", setBoolForKey),
    METHOD("setStringValue(key as string, value as string)", setStringForKey),
    METHOD("setDataValue(key as string, value as memoryblock)", setDataForKey),
    METHOD("setVariantValue(key as string, value as variant)", setObjectForKey),
    METHOD("setFileValue(key as string, value as folderitem)", setFileForKey),
    METHOD("setURLValue(key as string, value as string)", setURLForKey),
    METHOD("setStringArrayValue(key as string, values() as string)", setStringArrayForKey),
    METHOD("setDictionaryValue(key as string, value as dictionary)", setDictionaryForKey),
    METHOD("setArrayValue(key as string, values() as variant)", setArrayForKey),
    METHOD("registerDefaults(dic as dictionary)", registerDefaults),
    METHOD("dictionaryRepresentation as dictionary", dictionaryRepresentation),
    METHOD("objectIsForcedForKey(key as string) as boolean", objectIsForcedForKey),
    METHOD("objectIsForcedForKey(key as string, domain as string) as boolean",
           objectIsForcedForKey2),
    METHOD("setPersistentDomain(domain as dictionary, domainName as string)", setPersistentDomain),
    METHOD("setVolatileDomain(domain as dictionary, domainName as string)", setVolatileDomain),
    METHOD("persistentDomainNames as string()", persistentDomainNames),
    METHOD("persistentDomainForName(domainName as string) as dictionary", persistentDomainForName),
    METHOD("volatileDomainNames as string()", volatileDomainNames),
    METHOD("volatileDomainForName(domainName as string) as dictionary", volatileDomainForName),
};

const REALmethodDefinition NSUserDefaultsSharedMethods[6] = {
    METHOD("NSGlobalDomain as string", getNSGlobalDomain),
    METHOD("NSArgumentDomain as string", getNSArgumentDomain),
    METHOD("NSRegistrationDomain as string", getNSRegistrationDomain),
    METHOD("NSUserDefaultsDidChangeNotification as string", getNSUserDefaultsDidChangeNotification),
    METHOD("resetStandardUserDefaults", resetStandardUserDefaults),
    METHOD("standardUserDefaults as NSUserDefaultsZEL", standardUserDefaults),
};

REALclassDefinition NSUserDefaultsClass = {
    .base =
        {
            .version = kCurrentControlVersion,
            .name = "NSUserDefaultsZEL",
            .superName = nullptr,
            .dataSize = 4,
            .systemUse = 0,
            .constructor = HOST_FUNCTION(NSUserDefaultsConstructor),
            .destructor = HOST_FUNCTION(NSUserDefaultsDestructor),
            .properties = nullptr,
            .propertyCount = 0,
            .methods = NSUserDefaultsMethods,
            .methodCount = 43,
            .events = nullptr,
            .eventCount = 0,
            .eventInstances = nullptr,
            .eventInstanceCount = 0,
            .interfaces = nullptr,
            .attributes = nullptr,
            .attributeCount = 0,
            .constants = nullptr,
            .constantCount = 0,
            .flags = kFlags,
            .sharedProperties = nullptr,
            .sharedPropertyCount = 0,
            .sharedMethods = NSUserDefaultsSharedMethods,
            .sharedMethodCount = 6,
        },
    .delegates = nullptr,
    .delegateCount = 0,
    .enums = nullptr,
    .enumCount = 0,
};

REALclassDefinition& pluginClass() { return NSUserDefaultsClass; }

bool startPlugin() { return true; }

}  // namespace zel
