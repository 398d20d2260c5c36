// The host's handle types. All are opaque and reached through host routines, apart from the records
// that are written out here. An empty host string is a null handle; every handle is nullable.
#pragma once

#include <cstdint>

#include "native/libc.h"

namespace zel {

struct REALobjectStruct;
struct REALstringStruct;
struct REALmemoryBlockStruct;
struct REALfolderItemStruct;
struct REALarrayStruct;
struct REALstringArrayStruct;
struct REALobjectArrayStruct;
struct REALclassRefStruct;
struct _REALdictionary;
struct _REALdate;

using REALobject = REALobjectStruct*;  // a Variant is an object too
using REALstring = REALstringStruct*;
using REALmemoryBlock = REALmemoryBlockStruct*;
using REALfolderItem = REALfolderItemStruct*;
using REALarray = REALarrayStruct*;
using REALstringArray = REALstringArrayStruct*;
using REALobjectArray = REALobjectArrayStruct*;
using REALclassRef = REALclassRefStruct*;
using REALdictionary = _REALdictionary*;
using REALdate = _REALdate*;

/// A boolean that a host routine gives or takes: one byte, true when not zero.
using REALboolean = std::uint8_t;
/// The host language's own boolean: one signed byte, passed on unchanged.
using HostBoolean = std::int8_t;

/// A host string's bytes, as REALGetStringData hands them out.
struct REALstringData {
  void* data;              // owned by whoever asked; four uncounted zero bytes follow the text
  std::uint32_t length;    // bytes
  std::uint32_t encoding;  // the encoding that was asked for; kNoEncoding: as stored
};
static_assert(sizeof(void*) != 4 || sizeof(REALstringData) == 12);

/// The encoding value of a host string whose encoding the host doesn't know.
inline constexpr std::uint32_t kNoEncoding = 0xFFFF;

/// A host string on hosts older than 2013.0; later hosts keep theirs to themselves.
struct OlderStringRecord {
  std::int32_t hostUse0;
  const char* storage;  // the text begins one byte in
  std::int32_t hostUse2;
  std::int32_t length;  // bytes of text
};
static_assert(sizeof(void*) != 4 || sizeof(OlderStringRecord) == 16);

/// The beginning of a host array.
struct HostArrayRecord {
  void* hostUse0;
  void* hostUse1;
  void* storage;  // the elements, one after the other; null: they are read through the host
};
static_assert(sizeof(void*) != 4 || sizeof(HostArrayRecord) == 12);

/// Where a host object's instance data begins, in bytes from the start of the object.
inline constexpr std::int32_t kInstanceDataOffset = 24;

}  // namespace zel
