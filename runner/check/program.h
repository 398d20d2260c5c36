// Whole programs, checked in phases: types, signatures, bodies.
#pragma once

#include <optional>
#include <vector>

#include "runner/library/library.h"
#include "runner/syntax/ast.h"
#include "runner/text/diagnostic.h"

namespace runner {

/// A program that was checked.
struct Executable {
  Action body;
  std::size_t slotCount = 0;
  std::vector<Diagnostic> diagnostics;  // when there are any, it can't run
};

/// Checks a program after those that ran in the library's session. @param keep whether its
/// variables and methods stay there, if nothing is wrong.
Executable checkProgram(Library& library, Machine& machine, const Source& source,
                        const Program& program, bool keep);
/// The type that an expression would have; used for completion. nullopt when it is wrong.
std::optional<Type> typeOfExpression(Library& library, Machine& machine, const Source& source,
                                     const Expression& expression);
/// Code that prints an expression's value as a text for people.
Executable checkShown(Library& library, Machine& machine, const Source& source,
                      const Expression& expression);

}  // namespace runner
