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

// What an older host keeps for good goes with the host of a test.
void freeOlderTable(const void* table, const void* declared) {
  if (table != declared) std::free(const_cast<void*>(table));
}

}  // namespace

void makePluginFresh() {
  zel::REALclassDefinition& definition = zel::pluginClass();
  static const zel::REALclassDefinition declared = definition;
  freeOlderTable(definition.base.methods, declared.base.methods);
  freeOlderTable(definition.base.sharedMethods, declared.base.sharedMethods);
  definition = declared;
  zel::gResolver = nullptr;
  zel::rbversion = 0.0;
  zel::CurrentREALControlVersion = zel::kCurrentControlVersion;
  zel::instances = nullptr;
  zel::ExceptionsInitialized = false;
  zel::LastDictionary = nullptr;
  zel::EmptyText = nullptr;
  zel::KnownKinds = {};
#define HOST_ROUTINE(wrapper, entryPoint, doc, ...) \
  zel::wrapper = decltype(zel::wrapper){entryPoint};
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
