// Reading host arrays.
#pragma once

#include "plugin/host.h"

namespace zel {

// Element codes of the arrays that the plugin makes, and the upper bound of an empty one.
inline constexpr std::int32_t kStringElements = 3;
inline constexpr std::int32_t kObjectElements = 4;
inline constexpr std::int32_t kEmptyUpperBound = -1;

/// The last hosts whose arrays may be read in place: deliberately a strict comparison.
inline constexpr double kLastWithArrayStorage = 2013.9;

/// The array's elements in place, or null where they are read through the host.
/// @param array not null.
inline const void* directStorage(REALarray array) {
  if (rbversion > kLastWithArrayStorage) return nullptr;
  return reinterpret_cast<const HostArrayRecord*>(array)->storage;
}

}  // namespace zel
