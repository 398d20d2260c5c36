// The plugin's entry point, the same in every plugin: plugin.h has what makes them differ.
#pragma once

#include "plugin/host.h"

namespace zel {

/// The version of the plugin interface in use: 12, 11, 10 or 9. Settled at start-up.
extern std::int32_t CurrentREALControlVersion;

extern "C" {
/// Called by the host once, before anything else, with its resolver: tells the host which interface
/// this plugin speaks and registers its class. Nothing is ever unregistered.
__attribute__((visibility("default"))) void REALPluginMain(Resolver resolver);
}

}  // namespace zel
