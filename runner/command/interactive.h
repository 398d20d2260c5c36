// Programs typed line by line on a terminal.
#pragma once

#include <ostream>

#include "runner/command/session.h"

namespace runner {

/// Runs what is typed until the end of the input, "quit" or "exit". Names are completed with Tab.
/// @param out what programs print to. @param messages receives what is wrong with them.
void interact(Session& session, std::ostream& out, std::ostream& messages);

}  // namespace runner
