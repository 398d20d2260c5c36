// The language's own functions, and the methods of the host's classes that no record declares. Each
// table stands in the unit that has the functions.
#pragma once

#include <span>

#include "runner/run/callable.h"

namespace runner {

// --- functions. Those of texts and numbers can be called on their first argument.
std::span<const NativeRow> textFunctions();
std::span<const NativeRow> numberFunctions();
std::span<const NativeRow> hostFunctions();
std::span<const NativeRow> fileFunctions();

// --- members of classes, properties among them. A constructor with a result makes the object
// itself.
std::span<const NativeRow> exceptionMembers();
std::span<const NativeRow> dictionaryMembers();
std::span<const NativeRow> dateMembers();
std::span<const NativeRow> memoryBlockMembers();
std::span<const NativeRow> folderItemMembers();
std::span<const NativeRow> variantMembers();
/// Shared methods.
std::span<const NativeRow> systemMembers();
/// Of arrays; "T" stands for the type of the elements.
std::span<const NativeRow> arrayMembers();

/// The live array of a value; raises NilObjectException for Nil.
host::internal::HostArray& arrayIn(Machine& machine, const Value& value);
/// An element, and its assignment; raise OutOfBoundsException.
Value elementOf(Machine& machine, const Value& array, const Value& index);
void setElement(Machine& machine, const Value& array, const Value& index, const Value& value);
/// A new array. @param type of arrays.
Value newArray(Machine& machine, const Type& type, const std::vector<Value>& elements);
/// Redim.
void resizeArray(Machine& machine, const Value& array, const Value& bound);

}  // namespace runner
