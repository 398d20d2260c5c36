// The operators of the language: what they take, and what they do.
#pragma once

#include <optional>

#include "runner/run/values.h"
#include "runner/text/operators.h"

namespace runner {

/// The type of what an operator gives; nullopt when it doesn't take such operands.
std::optional<Type> resultOf(Operator op, Type left, Type right);
std::optional<Type> resultOf(Operator op, Type operand);

/// Raises TypeMismatchException for operands out of Variants that it doesn't take.
Value operate(Machine& machine, Operator op, const Value& left, const Value& right);
Value operate(Machine& machine, Operator op, const Value& operand);

/// Whether values are the same to "=": texts without regard to case, numbers of any types, Dates of
/// the same time, else the same object.
bool areEqual(Machine& machine, const Value& left, const Value& right);

}  // namespace runner
