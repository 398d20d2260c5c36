// Where a host object of the class keeps the native object that it wraps.
#pragma once

#include "plugin/handles.h"
#include "plugin/tables.h"

namespace zel {

struct NSUserDefaults;

// The data word holds one reference, or nil while the object is unconstructed. Most functions find
// it where the host has said, at registration, that instance data begins; some go to the fixed
// position. Both designate the same word.

/// @param offset bytes from the start of the object.
inline NSUserDefaults*& dataWordAt(REALobject instance, std::int32_t offset) {
  return *reinterpret_cast<NSUserDefaults**>(reinterpret_cast<char*>(instance) + offset);
}

inline NSUserDefaults*& wrapped(REALobject instance) {
  return dataWordAt(instance, NSUserDefaultsClass.base.systemUse);
}

inline NSUserDefaults*& wrappedAtFixedPosition(REALobject instance) {
  return dataWordAt(instance, kInstanceDataOffset);
}

}  // namespace zel
