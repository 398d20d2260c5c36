// From a program's text to its tree. The grammar stands in docs/language.md.
#pragma once

#include "runner/syntax/ast.h"

namespace runner {

/// Throws Problem, which says what was expected, at the first thing that is wrong.
/// @param hostVersion what the program knows as XojoVersion, such as 2014.0.
Program parse(const Source& source, double hostVersion);
/// The same for a text that is one expression.
ExpressionPtr parseExpression(const Source& source);

/// Whether a text that doesn't parse would if more lines followed: a block or a line is open.
bool isUnfinished(const Source& source, double hostVersion);

}  // namespace runner
