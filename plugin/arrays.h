// Reading host arrays.
#pragma once

#include "plugin/references.h"

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

/// An element that is a host reference, with one reference for the caller; nullable.
/// @param array not null.
/// @param read  reads it through the host, which adds the reference: (array, index) -> element.
template <class Handle, class Read>
inline Handle heldElement(REALarray array, std::int32_t index, Read read) {
  const auto* const elements = static_cast<const Handle*>(directStorage(array));
  if (elements == nullptr) return read(array, index);
  const Handle element = elements[index];
  lock(element);
  return element;
}

}  // namespace zel
