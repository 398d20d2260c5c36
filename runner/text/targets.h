// The constants that tell a program what it runs on.
#pragma once

#include <span>
#include <string_view>

namespace runner {

struct PlatformConstant {
  std::string_view name;
  bool value;
};

/// As the host names them. The runner is a program without windows, on Linux.
std::span<const PlatformConstant> platformConstants();

}  // namespace runner
