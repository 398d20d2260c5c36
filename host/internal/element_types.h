// What host arrays can hold, and how one element is stored, passed and read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <typeinfo>

#include "host/value.h"

namespace host::internal {

struct State;

struct ElementType {
  std::int32_t type;  // the type code of such an array as a variant
  const char* name;
  const std::type_info* element;
  std::size_t size;  // bytes
  bool counted;      // whether an element is a handle with a reference of the array
  /// The array's procedures; see arrays.h.
  void* insert;
  void* read;
  Value (*toValue)(State& state, const std::byte* element);
  /// The value as an element, with a reference if it is counted. False when it isn't of the type.
  bool (*fromValue)(State& state, const Value& value, std::byte* element);
};

/// The size of an element, in bytes; that of a handle is its own.
template <class Element>
inline constexpr std::size_t kSizeOf = sizeof(Element);  // NOLINT(bugprone-sizeof-expression)
/// The largest element, in bytes.
inline constexpr std::size_t kLargestElement = 8;

/// The elements of an array of that type code, Doubles for one that isn't known.
const ElementType& elementTypeOf(std::int32_t arrayType);

}  // namespace host::internal
