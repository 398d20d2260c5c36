// A program that is typed line by line, on a terminal.
#pragma once

#include "runner/command/session.h"

namespace runner {

/// Reads, runs and prints until the end of the input. Lines can be edited and called back, and the
/// tabulator key completes names.
void interact(Session& session);

}  // namespace runner
