// The language's own functions, and the methods of the host's classes that no record declares. Each
// table stands in the unit that has the functions.
#pragma once

#include <span>

#include "runner/library/callable.h"

namespace runner {

// --- functions. Those of texts and numbers can be called on their first argument.
std::span<const NativeRow> textFunctions();
std::span<const NativeRow> numberFunctions();
std::span<const NativeRow> hostFunctions();
std::span<const NativeRow> encodingFunctions();
std::span<const NativeRow> colorFunctions();
std::span<const NativeRow> fileFunctions();

// --- members of classes, properties among them. A constructor with a result makes the object
// itself.
std::span<const NativeRow> exceptionMembers();
std::span<const NativeRow> dictionaryMembers();
std::span<const NativeRow> pairMembers();
std::span<const NativeRow> dateMembers();
std::span<const NativeRow> memoryBlockMembers();
std::span<const NativeRow> folderItemMembers();
std::span<const NativeRow> variantMembers();
std::span<const NativeRow> colorMembers();
std::span<const NativeRow> dateTimeMembers();
std::span<const NativeRow> textEncodingMembers();
/// Shared methods.
std::span<const NativeRow> systemMembers();
std::span<const NativeRow> specialFolderMembers();
std::span<const NativeRow> encodingsMembers();
std::span<const NativeRow> dateTimeShared();
/// Of arrays; "T" stands for the type of the elements.
std::span<const NativeRow> arrayMembers();

}  // namespace runner
