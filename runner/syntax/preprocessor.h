// The lines that begin with "#": a pass over the tokens of a program.
#pragma once

#include <vector>

#include "runner/syntax/lexer.h"

namespace runner {

/// The tokens without directives and without the branches of "#If" that don't count. "#Pragma" and
/// the "#tag" lines of exported projects say nothing to this runner. Throws Problem.
/// @param hostVersion what XojoVersion is, such as 2014.0.
/// @param open receives whether an "#If" isn't closed, which is no problem then; nullable.
std::vector<Token> preprocessed(std::vector<Token> tokens, double hostVersion,
                                bool* open = nullptr);

}  // namespace runner
