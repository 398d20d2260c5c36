// What every plugin of the family asks of the class NSException: methods that one of them adds.
#pragma once

#include "native/corefoundation.h"

namespace zel {

/// The family's map from native objects to the host objects that wrap them, as this plugin gives
/// it: null until somebody asks for it, never released.
extern CFMutableDictionaryRef familyInstances;

/// Adds the family's methods to NSException, for good. A method that is there already, whoever
/// added it, stays as it is.
void addFamilyMethods();

}  // namespace zel
