// The functions that the host calls as the methods of NSUserDefaultsZEL, for the class's tables.
// They are named after the message they send; the declarations that the host knows stand in
// tables.cc. The instance comes first, then the declared arguments in order.
#pragma once

#include "plugin/handles.h"

namespace zel {
extern "C" {

// --- life of an instance, and the shared methods
/// Class hook: a new object. Its data word is nil.
void NSUserDefaultsConstructor(REALobject instance);
/// Class hook: the object dies.
void NSUserDefaultsDestructor(REALobject instance);
/// Does nothing and returns null; its declaration makes the class refer to NSExceptionZEL.
REALobject DummyException(REALobject instance);
void Constructor(REALobject instance);
void ConstructorUser(REALobject instance, REALstring username);
/// One reference for the caller; null when Foundation or the host gives no object.
REALobject standardUserDefaults();
void resetStandardUserDefaults();
REALstring getNSGlobalDomain();
REALstring getNSArgumentDomain();
REALstring getNSRegistrationDomain();
REALstring getNSUserDefaultsDidChangeNotification();

// --- single values
std::int32_t integerForKey(REALobject instance, REALstring key);
void setIntegerForKey(REALobject instance, REALstring key, std::int32_t value);
float floatForKey(REALobject instance, REALstring key);
void setFloatForKey(REALobject instance, REALstring key, float value);
double doubleForKey(REALobject instance, REALstring key);
void setDoubleForKey(REALobject instance, REALstring key, double value);
HostBoolean boolForKey(REALobject instance, REALstring key);
void setBoolForKey(REALobject instance, REALstring key, HostBoolean value);
REALstring stringForKey(REALobject instance, REALstring key);
void setStringForKey(REALobject instance, REALstring key, REALstring value);
REALstring URLForKey(REALobject instance, REALstring key);
void setURLForKey(REALobject instance, REALstring key, REALstring value);

// --- values that are objects
REALmemoryBlock dataForKey(REALobject instance, REALstring key);
void setDataForKey(REALobject instance, REALstring key, REALmemoryBlock value);
REALobject objectForKey(REALobject instance, REALstring key);
void setObjectForKey(REALobject instance, REALstring key, REALobject value);
REALfolderItem fileForKey(REALobject instance, REALstring key);
void setFileForKey(REALobject instance, REALstring key, REALfolderItem value);
REALstringArray stringArrayForKey(REALobject instance, REALstring key);
void setStringArrayForKey(REALobject instance, REALstring key, REALstringArray values);
REALobject dictionaryForKey(REALobject instance, REALstring key);
void setDictionaryForKey(REALobject instance, REALstring key, REALdictionary value);
REALobjectArray arrayForKey(REALobject instance, REALstring key);
void setArrayForKey(REALobject instance, REALstring key, REALobjectArray values);

// --- the store as a whole
HostBoolean synchronize(REALobject instance);
void removeObjectForKey(REALobject instance, REALstring key);
void removeVolatileDomainForName(REALobject instance, REALstring domainName);
void removePersistentDomainForName(REALobject instance, REALstring domainName);
void addSuiteNamed(REALobject instance, REALstring suiteName);
void removeSuiteNamed(REALobject instance, REALstring suiteName);
void registerDefaults(REALobject instance, REALdictionary values);
REALobject dictionaryRepresentation(REALobject instance);
HostBoolean objectIsForcedForKey(REALobject instance, REALstring key);
HostBoolean objectIsForcedForKey2(REALobject instance, REALstring key, REALstring domain);
void setPersistentDomain(REALobject instance, REALdictionary domain, REALstring domainName);
void setVolatileDomain(REALobject instance, REALdictionary domain, REALstring domainName);
REALstringArray persistentDomainNames(REALobject instance);
REALobject persistentDomainForName(REALobject instance, REALstring domainName);
REALstringArray volatileDomainNames(REALobject instance);
REALobject volatileDomainForName(REALobject instance, REALstring domainName);

}  // extern "C"
}  // namespace zel
