// Where a host object of the class keeps the native object that it wraps.
#pragma once

#include "plugin/instance_data.h"
#include "plugin/tables.h"

namespace zel {

struct NSUserDefaults;

// The data word holds one reference, or nil while the object is unconstructed. Most functions find
// it where the host has said, at registration, that instance data begins; some go to the fixed
// position. Both designate the same word.

inline NSUserDefaults*& wrapped(REALobject instance) {
  return dataAt<NSUserDefaults*>(instance, NSUserDefaultsClass.base.systemUse);
}

inline NSUserDefaults*& wrappedAtFixedPosition(REALobject instance) {
  return instanceData<NSUserDefaults*>(instance);
}

}  // namespace zel
