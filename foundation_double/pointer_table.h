// A dictionary from pointers to pointers that retains nothing, as the plugin family shares one.
#pragma once

#include <map>

#include "foundation_double/accounts.h"
#include "native/corefoundation.h"

namespace foundation_double::objc {

struct PointerTableBody : Body {
  std::map<const void*, const void*> entries;
};

/// A new, empty table with one reference for the caller.
zel::CFMutableDictionaryRef createPointerTable();
/// The table that a test's family of plugins shares; always the same one, immortal.
zel::CFMutableDictionaryRef sharedPointerTable();

inline std::map<const void*, const void*>& tableEntries(zel::CFDictionaryRef table) {
  return bodyOf<PointerTableBody>(table, "dictionary").entries;
}

}  // namespace foundation_double::objc
