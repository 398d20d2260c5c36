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

#pragma pack(push, 2)
/// What a volume's catalog knows of an item. Only what was asked for is filled.
struct FSCatalogInfo {
  std::uint16_t nodeFlags;
  std::int16_t volume;
  std::uint32_t parentDirID;
  std::uint32_t nodeID;  // within the volume; 2 for its root folder
  std::uint8_t unused[132];
};
#pragma pack(pop)

static_assert(sizeof(FSRef) == 80);
static_assert(sizeof(HFSUniStr255) == 512);
static_assert(sizeof(FSSpec) == 70);
static_assert(sizeof(FSCatalogInfo) == 144);

/// A result code: noErr, or what went wrong.
using OSErr = std::int16_t;
using OSStatus = std::int32_t;
inline constexpr OSErr noErr = 0;

/// What to fill of a catalog info record.
using FSCatalogInfoBitmap = std::uint32_t;
inline constexpr FSCatalogInfoBitmap kFSCatInfoNone = 0;
inline constexpr FSCatalogInfoBitmap kFSCatInfoNodeID = 0x10;

extern "C" {
/// Tells about an existing item. Every out-argument is nullable.
/// @param ref    not null.
/// @param info   the fields that `which` asks for.
/// @param name   its Unicode name.
/// @param spec   its old-style specification.
/// @param parent its folder; nothing to rely on for a volume's root, which is in none.
/// @returns noErr; an error when the item doesn't exist (any more) or can't be expressed so.
OSErr FSGetCatalogInfo(const FSRef* ref, FSCatalogInfoBitmap which, FSCatalogInfo* info,
                       HFSUniStr255* name, FSSpec* spec, FSRef* parent);
/// The reference of an existing item from its old-style specification.
OSErr FSpMakeFSRef(const FSSpec* spec, FSRef* ref);
/// The reference of an existing item from its path. @param path NUL-terminated UTF-8, absolute.
/// @param isFolder nullable.
OSStatus FSPathMakeRef(const std::uint8_t* path, FSRef* ref, Boolean* isFolder);
/// The path of an existing item, NUL-terminated UTF-8. @param size of the buffer, in bytes.
OSStatus FSRefMakePath(const FSRef* ref, std::uint8_t* path, std::uint32_t size);

/// The file URL of an existing item; owned by the caller, null on failure.
CFURLRef CFURLCreateFromFSRef(CFAllocatorRef allocator, const FSRef* ref);
/// The reference of the existing item that a file URL names; false, and nothing filled, for any
/// other URL.
Boolean CFURLGetFSRef(CFURLRef url, FSRef* ref);
}

}  // namespace zel
