// The description of NSExceptionZEL, as the host is told about it.
#pragma once

#include "plugin/records.h"

namespace zel {

/// The class: see pluginClass(). Its system-use word is 0 while the class isn't registered.
extern REALclassDefinition NSExceptionClass;

extern const REALmethodDefinition NSExceptionMethods[3];

}  // namespace zel
