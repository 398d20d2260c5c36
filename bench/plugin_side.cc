#include "bench/plugin_side.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>

#include "plugin/records.h"

namespace bench {

Methods plugin;

namespace {

const zel::REALclassDefinition* registered = nullptr;

void registerClass(zel::REALclassDefinition* definition) {
  definition->base.systemUse = zel::kInstanceDataOffset;
  registered = definition;
}

void* resolve(const char* name) {
  if (std::strcmp(name, "PluginRegisterClass") == 0) return reinterpret_cast<void*>(registerClass);
  return leanResolve(name);
}

[[noreturn]] void fail(const char* what, const char* which) {
  std::fprintf(stderr, "%s %s\n", what, which);
  std::exit(1);
}

template <class Function>
void find(Function*& method, const void* list, std::int32_t count, const char* declaration) {
  const auto* const methods = static_cast<const zel::REALmethodDefinition*>(list);
  for (std::int32_t i = 0; i < count; ++i) {
    if (std::strcmp(methods[i].declaration, declaration) != 0) continue;
    method = reinterpret_cast<Function*>(methods[i].function);
    return;
  }
  fail("the plugin declares no", declaration);
}

template <class Function>
void find(Function*& method, const char* declaration) {
  find(method, registered->base.methods, registered->base.methodCount, declaration);
}

void findReaders() {
  find(plugin.integerForKey, "integerForKey(key as string) as integer");
  find(plugin.floatForKey, "floatForKey(key as string) as single");
  find(plugin.doubleForKey, "doubleForKey(key as string) as double");
  find(plugin.boolForKey, "boolForKey(key as string) as boolean");
  find(plugin.stringForKey, "stringForKey(key as string) as string");
  find(plugin.URLForKey, "URLForKey(key as string) as string");
  find(plugin.dataForKey, "dataForKey(key as string) as memoryblock");
  find(plugin.fileForKey, "fileForKey(key as string) as folderitem");
  find(plugin.objectForKey, "variantForKey(key as string) as variant");
  find(plugin.stringArrayForKey, "stringArrayForKey(key as string) as string()");
  find(plugin.arrayForKey, "arrayForKey(key as string) as variant()");
  find(plugin.dictionaryForKey, "dictionaryForKey(key as string) as dictionary");
}

void findWriters() {
  find(plugin.setIntegerForKey, "setIntegerValue(key as string, value as integer)");
  find(plugin.setFloatForKey, "setFloatValue(key as string, value as single)");
  find(plugin.setDoubleForKey, "setDoubleValue(key as string, value as double)");
  find(plugin.setBoolForKey, "setBoolValue(key as string, value as boolean)");
  find(plugin.setStringForKey, "setStringValue(key as string, value as string)");
  find(plugin.setURLForKey, "setURLValue(key as string, value as string)");
  find(plugin.setDataForKey, "setDataValue(key as string, value as memoryblock)");
  find(plugin.setFileForKey, "setFileValue(key as string, value as folderitem)");
  find(plugin.setObjectForKey, "setVariantValue(key as string, value as variant)");
  find(plugin.setStringArrayForKey, "setStringArrayValue(key as string, values() as string)");
  find(plugin.setArrayForKey, "setArrayValue(key as string, values() as variant)");
  find(plugin.setDictionaryForKey, "setDictionaryValue(key as string, value as dictionary)");
}

void findStoreMethods() {
  find(plugin.dictionaryRepresentation, "dictionaryRepresentation as dictionary");
  find(plugin.persistentDomainNames, "persistentDomainNames as string()");
  find(plugin.persistentDomainForName,
       "persistentDomainForName(domainName as string) as dictionary");
  find(plugin.setPersistentDomain,
       "setPersistentDomain(domain as dictionary, domainName as string)");
  find(plugin.volatileDomainForName, "volatileDomainForName(domainName as string) as dictionary");
  find(plugin.setVolatileDomain, "setVolatileDomain(domain as dictionary, domainName as string)");
  find(plugin.removeVolatileDomainForName, "removeVolatileDomainForName(domainName as string)");
  find(plugin.registerDefaults, "registerDefaults(dic as dictionary)");
  find(plugin.removeObjectForKey, "removeObjectForKey(defaultName as string)");
  find(plugin.objectIsForcedForKey, "objectIsForcedForKey(key as string) as boolean");
  find(plugin.synchronize, "synchronize as boolean");
}

}  // namespace

void loadPlugin(const char* path) {
  void* const library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) fail("the plugin can't be loaded:", dlerror());
  using Main = void (*)(void* (*)(const char*));
  const auto main = reinterpret_cast<Main>(dlsym(library, "REALPluginMain"));
  if (main == nullptr) fail("this is no plugin:", path);
  main(resolve);
  findReaders();
  findWriters();
  findStoreMethods();
}

zel::REALobject standardDefaults() {
  static zel::REALobject object = nullptr;
  if (object != nullptr) return object;
  decltype(zel::standardUserDefaults)* shared = nullptr;
  find(shared, registered->base.sharedMethods, registered->base.sharedMethodCount,
       "standardUserDefaults as NSUserDefaultsZEL");
  object = shared();
  return object;
}

}  // namespace bench
