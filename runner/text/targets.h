// The constants that tell a program what it runs on.
#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace runner {

/// True or False, a number, or a text.
using PlatformValue = std::variant<bool, double, std::string>;

struct PlatformConstant {
  std::string_view name;
  PlatformValue value;
};

/// As the host names them. The runner is a program without windows, on Linux.
/// @param hostVersion such as 2014.0; 0 for a host that doesn't say.
std::vector<PlatformConstant> platformConstants(double hostVersion);

}  // namespace runner
