// The description of NSUserDefaultsZEL, as the host is told about it.
#pragma once

#include "plugin/records.h"

namespace zel {

/// The class: see pluginClass().
extern REALclassDefinition NSUserDefaultsClass;

extern const REALmethodDefinition NSUserDefaultsMethods[43];
extern const REALmethodDefinition NSUserDefaultsSharedMethods[6];

}  // namespace zel
