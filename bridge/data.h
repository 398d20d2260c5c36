// Bytes across the border.
#pragma once

#include "native/objc.h"
#include "plugin/handles.h"

namespace zel {

/// An autoreleased NSData with a copy of the block's bytes; the block is only borrowed. Nil for a
/// null block and for one without bytes (never an empty data object). Native exceptions pass.
id NewNSData(REALmemoryBlock block);

/// A new block with a copy of the data's bytes, with one reference for the caller. Null for nil,
/// for empty data and for 2 GB or more. A block that the host can't make raises a host exception
/// and gives null. Native exceptions pass.
[[nodiscard]] REALmemoryBlock NSDataRB(id data);

}  // namespace zel
