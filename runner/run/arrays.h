// Arrays at run time.
#pragma once

#include <cstddef>
#include <vector>

#include "host/array.h"
#include "runner/run/machine.h"
#include "runner/run/types.h"

namespace runner {

/// The array that a value is; raises NilObjectException for Nil.
host::Array arrayIn(Machine& machine, const Value& value);
/// A position in an array; raises OutOfBoundsException for one that it doesn't have.
/// @param extra 1 where the one behind the last element is good, too.
std::size_t checkedIndex(Machine& machine, const host::Array& array, const Value& index,
                         std::size_t extra = 0);
/// An element, and its assignment; raise OutOfBoundsException.
Value elementOf(Machine& machine, const Value& array, const Value& index);
void setElement(Machine& machine, const Value& array, const Value& index, const Value& value);
/// A new array. @param type of arrays.
Value newArray(Machine& machine, Type type, const std::vector<Value>& elements);
/// Redim: lets an array end at an index; raises OutOfBoundsException for one that none can end at.
void resizeArray(Machine& machine, const Value& array, const Value& bound);

}  // namespace runner
