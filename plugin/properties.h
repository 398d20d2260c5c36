// Reading the properties of host objects.
#pragma once

#include "plugin/host.h"

namespace zel {

/// The property's value; T{} when the host lacks the routine or can't read the property, whatever
/// the routine has written.
/// @param read one of the host's routines for properties.
template <class T, class Routine>
inline T propertyValue(Routine& read, REALobject object, const char* name) {
  T value{};
  return read(object, name, &value) != 0 ? value : T{};
}

}  // namespace zel
