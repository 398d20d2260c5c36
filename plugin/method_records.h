// Writing the method tables of a class.
#pragma once

#include "plugin/records.h"

namespace zel {

/// What this value means is the host's: it expects it on the class and on every method.
inline constexpr std::int32_t kFlags = 4;

}  // namespace zel

// The host calls every function by the declaration beside it. Macros, because no constant
// expression may change a function's type.
#define HOST_FUNCTION(function) reinterpret_cast<zel::HostFunction>(function)
#define METHOD(declaration, function) \
  { HOST_FUNCTION(function), nullptr, declaration, zel::kFlags, 0, nullptr }
// A getter that the host can also assign to: it then calls the setter.
#define PROPERTY(declaration, getter, setter) \
  { HOST_FUNCTION(getter), HOST_FUNCTION(setter), declaration, zel::kFlags, 0, nullptr }
