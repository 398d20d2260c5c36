// Arrays of the current host, as programs in it read and change them.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/value.h"

namespace host {

namespace internal {
class HostArray;
struct State;
}  // namespace internal

/// An array that Host::findArray has found, once for all that is done with it. It holds no
/// reference: it is good as long as somebody else keeps the array alive.
///
/// Those that take a value throw std::invalid_argument when it isn't of the elements' type; any
/// value is of the type of an object array, where it becomes a variant.
class Array {
 public:
  /// The type code that it has as a variant: kArrayType and that of its elements.
  [[nodiscard]] std::int32_t type() const;
  /// How many elements there are.
  [[nodiscard]] std::size_t size() const;
  /// An element; a variant as what it holds. @param index less than size().
  [[nodiscard]] Value at(std::size_t index) const;

  void append(const Value& value) { insert(size(), value); }
  /// @param index no more than size().
  void insert(std::size_t index, const Value& value);
  /// @param index less than size(), as for remove().
  void replace(std::size_t index, const Value& value);
  void remove(std::size_t index);
  /// Drops elements at the end, or adds some that are 0, "" or nothing.
  void resize(std::size_t size);

 private:
  friend class Host;
  Array(internal::State& state, internal::HostArray& array) : state_(&state), array_(&array) {}

  internal::State* state_;
  internal::HostArray* array_;
};

}  // namespace host
