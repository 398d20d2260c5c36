// The built plugin, loaded by the lean host: its methods as functions.
#pragma once

#include "bench/lean_host.h"
#include "plugin/methods.h"

namespace bench {

/// Loads the plugin and finds its methods. Says on stderr what is missing, and ends the process
/// then.
void loadPlugin(const char* path);

/// The plugin's standard object, made at the first call.
zel::REALobject standardDefaults();

/// The plugin's methods, after loadPlugin; each has the name of the plugin's own function.
struct Methods {
  decltype(zel::integerForKey)* integerForKey;
  decltype(zel::floatForKey)* floatForKey;
  decltype(zel::doubleForKey)* doubleForKey;
  decltype(zel::boolForKey)* boolForKey;
  decltype(zel::stringForKey)* stringForKey;
  decltype(zel::URLForKey)* URLForKey;
  decltype(zel::dataForKey)* dataForKey;
  decltype(zel::fileForKey)* fileForKey;
  decltype(zel::objectForKey)* objectForKey;
  decltype(zel::stringArrayForKey)* stringArrayForKey;
  decltype(zel::arrayForKey)* arrayForKey;
  decltype(zel::dictionaryForKey)* dictionaryForKey;
  decltype(zel::setIntegerForKey)* setIntegerForKey;
  decltype(zel::setFloatForKey)* setFloatForKey;
  decltype(zel::setDoubleForKey)* setDoubleForKey;
  decltype(zel::setBoolForKey)* setBoolForKey;
  decltype(zel::setStringForKey)* setStringForKey;
  decltype(zel::setURLForKey)* setURLForKey;
  decltype(zel::setDataForKey)* setDataForKey;
  decltype(zel::setFileForKey)* setFileForKey;
  decltype(zel::setObjectForKey)* setObjectForKey;
  decltype(zel::setStringArrayForKey)* setStringArrayForKey;
  decltype(zel::setArrayForKey)* setArrayForKey;
  decltype(zel::setDictionaryForKey)* setDictionaryForKey;
  decltype(zel::dictionaryRepresentation)* dictionaryRepresentation;
  decltype(zel::persistentDomainNames)* persistentDomainNames;
  decltype(zel::persistentDomainForName)* persistentDomainForName;
  decltype(zel::setPersistentDomain)* setPersistentDomain;
  decltype(zel::volatileDomainForName)* volatileDomainForName;
  decltype(zel::setVolatileDomain)* setVolatileDomain;
  decltype(zel::removeVolatileDomainForName)* removeVolatileDomainForName;
  decltype(zel::registerDefaults)* registerDefaults;
  decltype(zel::removeObjectForKey)* removeObjectForKey;
  decltype(zel::objectIsForcedForKey)* objectIsForcedForKey;
  decltype(zel::synchronize)* synchronize;
};
extern Methods plugin;

}  // namespace bench
