// Names that may have been meant.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace runner {

/// The name that is nearest to a written one; "" when none is near.
std::string nearest(std::string_view written, const std::vector<std::string>& names);

}  // namespace runner
