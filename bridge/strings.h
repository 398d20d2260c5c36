// Texts across the border. A host string keeps, on its way in, the encoding that the host has
// recorded for it; every string handed to the host is UTF-8.
#pragma once

#include "plugin/host.h"

namespace zel {

/// A native string of a host string, which is only borrowed. Owned by the caller; null for a null
/// string and when none can be built. Native exceptions pass.
[[nodiscard]] CFStringRef RBString2CFString(REALstring string);

/// The same, handed to the current autorelease pool: keys, names and values for one message.
inline CFStringRef autoreleasedCFString(REALstring string) {
  return autoreleased(RBString2CFString(string));
}

/// A host string, UTF-8, of a native one, which is only borrowed; it ends at the first U+0000. One
/// reference for the caller; null (never an empty string) for a null or empty string and when none
/// can be made. Native exceptions pass.
[[nodiscard]] REALstring CFString2RBString(CFStringRef string);

}  // namespace zel
