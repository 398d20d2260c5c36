// What a plugin tells the frame of itself. Every plugin defines these two functions, once.
#pragma once

#include "plugin/records.h"

namespace zel {

/// The class that the plugin adds to the host's language. Written to at start-up (version, data
/// size, perhaps the older layout) and by the host at registration; it keeps the address for good.
REALclassDefinition& pluginClass();

/// What the plugin does at start beside registering its class, once the host's services are there.
/// @returns whether the class is to be registered.
bool startPlugin();

}  // namespace zel
