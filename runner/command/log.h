// What Foundation logs.
#pragma once

#include <ostream>

namespace runner {

/// Has Foundation log to a stream, each time one line: "log: " and the text without the time and
/// the process, on a terminal no wider than that.
/// @param messages the standard error stream; lives as long as the process.
void logTo(std::ostream& messages);

}  // namespace runner
