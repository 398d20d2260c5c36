// Programs as they come from files.
#pragma once

#include <string>

#include "runner/text/source.h"

namespace runner {

/// Reads a program; a byte-order mark at its start is none of it. Throws std::system_error, whose
/// text names the file, when it can't be read.
/// @param file "-" is the standard input.
Source readProgram(const std::string& file);

}  // namespace runner
