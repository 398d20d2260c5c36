// The description of the class, as the host is told about it.
#pragma once

#include "plugin/records.h"

namespace zel {

/// Version 12 of the plugin interface, which the records are written for.
inline constexpr std::int32_t kCurrentControlVersion = 12;

/// The class. Written to at start-up (version, data size, perhaps the older layout) and by the host
/// at registration; it keeps the address for good.
extern REALclassDefinition NSUserDefaultsClass;

extern const REALmethodDefinition NSUserDefaultsMethods[43];
extern const REALmethodDefinition NSUserDefaultsSharedMethods[6];

}  // namespace zel
