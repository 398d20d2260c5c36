// The File Manager's records and functions as C sees them; native/files.h says what each of them
// does. The tests call every function through that header.
#pragma once

#include <assert.h>
#include <stdint.h>

#include "native/gnustep/zelnative.h"

typedef unsigned char Boolean;
typedef int16_t OSErr;
typedef int32_t OSStatus;

typedef struct FSRef {
  uint8_t hidden[80];
} FSRef;

typedef struct HFSUniStr255 {
  uint16_t length;
  uint16_t unicode[255];
} HFSUniStr255;

#pragma pack(push, 2)
typedef struct FSSpec {
  int16_t vRefNum;
  int32_t parID;
  uint8_t name[64];
} FSSpec;

typedef struct FSCatalogInfo {
  uint16_t nodeFlags;
  int16_t volume;
  uint32_t parentDirID;
  uint32_t nodeID;
  uint8_t unused[132];
} FSCatalogInfo;
#pragma pack(pop)

static_assert(sizeof(FSSpec) == 70, "packed");
static_assert(sizeof(FSCatalogInfo) == 144, "packed");

// Result codes of the File Manager.
enum {
  kNoError = 0,
  kIoError = -36,
  kBadName = -37,
  kItemNotFound = -43,
  kBadParameter = -50,
  kAccessDenied = -54,
  kMemoryFull = -108,
  kBadReference = -1401,
  kBadInfoBitmap = -1405,
  kPathTooLong = -2110
};

ZEL_EXPORT OSErr FSGetCatalogInfo(const FSRef* ref, uint32_t which, FSCatalogInfo* info,
                                  HFSUniStr255* name, FSSpec* spec, FSRef* parent);
ZEL_EXPORT OSErr FSpMakeFSRef(const FSSpec* spec, FSRef* ref);
ZEL_EXPORT OSStatus FSPathMakeRef(const uint8_t* path, FSRef* ref, Boolean* isFolder);
ZEL_EXPORT OSStatus FSRefMakePath(const FSRef* ref, uint8_t* path, uint32_t size);

// FSRefMakePath, and whether the item is a folder. Not exported.
OSStatus zelPathOfRef(const FSRef* ref, uint8_t* path, uint32_t size, Boolean* isFolder);

#ifdef __OBJC__
ZEL_EXPORT CFURLRef CFURLCreateFromFSRef(CFAllocatorRef allocator, const FSRef* ref);
ZEL_EXPORT Boolean CFURLGetFSRef(CFURLRef url, FSRef* ref);
#endif
