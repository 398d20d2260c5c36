// Rewriting a class description into the layout that hosts before 2012.0 read.
#pragma once

#include "plugin/records.h"

namespace zel {

/// Older property records made from current ones, which stay as they are.
/// @param count signed, as records hold it.
/// @returns a new array, which the host keeps for good; null for a null list, a count of 0, a
///          size that the host can't count, or one that can't be allocated.
OlderPropertyRecord* FixProperties(const REALproperty* properties, std::int32_t count);

/// Rewrites the record in place: its lists become arrays of older records, which the host keeps for
/// good, and its version word becomes the given one. A list that can't be allocated has no records:
/// its count becomes 0. Delegates and enums stay as they were: the older record ends before them.
void downgrade(REALclassDefinition& definition, std::int32_t version);

}  // namespace zel
