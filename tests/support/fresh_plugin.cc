#include "tests/support/fresh_plugin.h"

#include <cstdlib>

#include "bridge/dictionaries.h"
#include "bridge/native_to_variant.h"
#include "bridge/variant_to_native.h"
#include "plugin/errors.h"
#include "plugin/host.h"
#include "plugin/main.h"
#include "plugin/plugin.h"

namespace tests {
namespace {

// The plugin's values as they are in the process that first asks for them, which no test has
// touched: what a test finds is what the plugin declares, not what this file believes.
struct LoadedState {
  zel::REALclassDefinition definition = zel::pluginClass();
  zel::Resolver resolver = zel::gResolver;
  double hostVersion = zel::rbversion;
  std::int32_t controlVersion = zel::CurrentREALControlVersion;
  zel::CFMutableDictionaryRef instances = zel::instances;
  bool exceptionsInitialized = zel::ExceptionsInitialized;
  zel::REALobject lastDictionary = zel::LastDictionary;
  zel::CFStringRef emptyText = zel::EmptyText;
  zel::ClassMemory<zel::NativeKind> knownKinds = zel::KnownKinds;
#define HOST_ROUTINE(wrapper, entryPoint, doc, ...) decltype(zel::wrapper) wrapper = zel::wrapper;
#define ARRAY_ROUTINE HOST_ROUTINE
#define FRAMEWORK_METHOD HOST_ROUTINE
#include "plugin/host_routines.def"
#undef HOST_ROUTINE
#undef ARRAY_ROUTINE
#undef FRAMEWORK_METHOD
};

// What an older host keeps for good goes with the host of a test.
void freeOlderTable(const void* table, const void* declared) {
  if (table != declared) std::free(const_cast<void*>(table));
}

}  // namespace

void makePluginFresh() {
  static const LoadedState loaded;
  zel::REALclassDefinition& definition = zel::pluginClass();
  freeOlderTable(definition.base.methods, loaded.definition.base.methods);
  freeOlderTable(definition.base.sharedMethods, loaded.definition.base.sharedMethods);
  definition = loaded.definition;
  zel::gResolver = loaded.resolver;
  zel::rbversion = loaded.hostVersion;
  zel::CurrentREALControlVersion = loaded.controlVersion;
  zel::instances = loaded.instances;
  zel::ExceptionsInitialized = loaded.exceptionsInitialized;
  zel::LastDictionary = loaded.lastDictionary;
  zel::EmptyText = loaded.emptyText;
  zel::KnownKinds = loaded.knownKinds;
#define HOST_ROUTINE(wrapper, entryPoint, doc, ...) zel::wrapper = loaded.wrapper;
#define ARRAY_ROUTINE HOST_ROUTINE
#define FRAMEWORK_METHOD HOST_ROUTINE
#include "plugin/host_routines.def"
#undef HOST_ROUTINE
#undef ARRAY_ROUTINE
#undef FRAMEWORK_METHOD
}

void giveBackConstants() {
  if (zel::EmptyText != nullptr) zel::CFRelease(zel::EmptyText);
  zel::EmptyText = nullptr;
}

}  // namespace tests
