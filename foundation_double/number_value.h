// What a number of the double can hold.
#pragma once

#include <cstdint>
#include <type_traits>
#include <variant>

namespace foundation_double {

using NumberValue = std::variant<std::int64_t, std::uint64_t, float, double>;

/// Any C number, widened where it is an integer.
template <class T>
NumberValue numberValue(T value) {
  if constexpr (std::is_floating_point_v<T>) {
    return value;
  } else if constexpr (std::is_signed_v<T>) {
    return std::int64_t{value};
  } else {
    return std::uint64_t{value};
  }
}

}  // namespace foundation_double
