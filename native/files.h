// The File Manager's records, which the host and Core Foundation both understand. They pass by
// address, in both directions.
#pragma once

#include "native/corefoundation.h"

namespace zel {

/// Names an existing file or folder; opaque. All zeros names nothing.
struct FSRef {
  std::uint8_t hidden[80];
};

/// A Unicode file name.
struct HFSUniStr255 {
  std::uint16_t length;  // UTF-16 units in use
  UniChar unicode[255];
};

#pragma pack(push, 2)
/// An old-style file specification.
struct FSSpec {
  std::int16_t vRefNum;   // volume
  std::int32_t parID;     // parent folder
  std::uint8_t name[64];  // length byte, then up to 63 bytes
};
#pragma pack(pop)

static_assert(sizeof(FSRef) == 80);
static_assert(sizeof(HFSUniStr255) == 512);
static_assert(sizeof(FSSpec) == 70);

}  // namespace zel
