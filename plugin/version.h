// The version of the plugin; the build reads it here.
#pragma once

namespace zel {

inline constexpr char kVersion[] = "0.1.0";

}  // namespace zel
