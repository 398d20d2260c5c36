// A file reference is a number of this process's catalog of items.
#include <errno.h>
#include <string.h>
#include <sys/random.h>

#include "native/gnustep/catalog.h"
#include "native/gnustep/file_records.h"
#include "native/gnustep/specifications.h"

enum {
  kVolume = 0x4,
  kFolderNode = 0x8,
  kNode = 0x10,
  kNodeFlags = 0x2,
  kKnownInfo = kNodeFlags | kVolume | kFolderNode | kNode,
  kIsFolderFlag = 0x10,
  kNameUnits = 255
};

// What stands in a reference's first bytes. It is copied whole, so none of it may be padding, which
// would carry bytes of the stack: references to one item are compared byte by byte.
struct Reference {
  uint64_t mark;    // this process's own: a reference from elsewhere names nothing
  uint32_t number;  // the item's
  uint32_t zero;
};
static_assert(sizeof(struct Reference) == 16, "no padding");

// With the catalog locked.
static uint64_t ownMark(void) {
  static uint64_t mark;
  if (mark == 0 && getrandom(&mark, sizeof mark, 0) != (ssize_t)sizeof mark) mark = 0;
  return mark == 0 ? (mark = 1) : mark;
}

static OSErr codeOf(int error) {
  static const struct {
    int error;
    int code;
  } kCodes[] = {{ENOENT, kItemNotFound},  {ENOTDIR, kItemNotFound}, {ELOOP, kItemNotFound},
                {ENAMETOOLONG, kBadName}, {EINVAL, kBadName},       {EACCES, kAccessDenied},
                {ENOMEM, kMemoryFull}};
  for (size_t i = 0; i < sizeof kCodes / sizeof *kCodes; ++i) {
    if (kCodes[i].error == error) return (OSErr)kCodes[i].code;
  }
  return kIoError;
}

static void refer(const struct Item* item, FSRef* ref) {
  const struct Reference reference = {.mark = ownMark(), .number = item->number};
  memset(ref, 0, sizeof *ref);
  memcpy(ref, &reference, sizeof reference);
}

// Finds an item; fills the reference if there is one to fill.
static OSErr found(struct Item* item, FSRef* ref, Boolean* isFolder) {
  if (item == NULL) return codeOf(errno);
  if (ref != NULL) refer(item, ref);
  if (isFolder != NULL) *isFolder = item->isFolder;
  return kNoError;
}

// The item of a reference. What is told of its folders has to be up to date; that it exists, and
// its own name, are known for less.
static OSErr referred(const FSRef* ref, bool folders, struct Item** item) {
  struct Reference reference;
  memcpy(&reference, ref, sizeof reference);
  *item = reference.mark == ownMark() ? zelItemWithNumber(reference.number) : NULL;
  if (*item == NULL) return kBadReference;
  if (!(folders ? zelLocate(*item) : zelExists(*item))) return codeOf(errno);
  return kNoError;
}

static void fillInfo(struct Item* item, uint32_t which, FSCatalogInfo* info) {
  if ((which & kNodeFlags) != 0) info->nodeFlags = item->isFolder ? kIsFolderFlag : 0;
  if ((which & kVolume) != 0) info->volume = zelVolumeOf(item)->volume;
  if ((which & kFolderNode) != 0) info->parentDirID = zelFolderNodeOf(item);
  if ((which & kNode) != 0) info->nodeID = zelNodeOf(item);
}

static void fillParent(const struct Item* item, FSRef* parent) {
  if (item->volume != 0) {
    memset(parent, 0, sizeof *parent);
  } else {
    refer(item->folder, parent);
  }
}

static OSErr catalogInfo(const FSRef* ref, uint32_t which, FSCatalogInfo* info, HFSUniStr255* name,
                         FSSpec* spec, FSRef* parent) {
  struct Item* item = NULL;
  const bool folders = info != NULL || spec != NULL || parent != NULL;
  const OSErr error = referred(ref, folders, &item);
  if (error != kNoError) return error;
  if (name != NULL) {
    const int count = zelNameUnits(zelItemName(item), name->unicode, kNameUnits);
    if (count < 0) return kBadName;
    name->length = (uint16_t)count;
  }
  if (info != NULL) fillInfo(item, which, info);
  if (spec != NULL) zelSpecify(item, spec);
  if (parent != NULL) fillParent(item, parent);
  return kNoError;
}

// A name that is not UTF-8 has no Unicode name: whoever asks for it gets an error, and reaches the
// item by its old-style specification.
OSErr FSGetCatalogInfo(const FSRef* ref, uint32_t which, FSCatalogInfo* info, HFSUniStr255* name,
                       FSSpec* spec, FSRef* parent) {
  if (ref == NULL) return kBadParameter;
  if ((which & ~(uint32_t)kKnownInfo) != 0) return kBadInfoBitmap;
  zelLockCatalog();
  const OSErr error = catalogInfo(ref, which, info, name, spec, parent);
  zelUnlockCatalog();
  return error;
}

OSErr FSpMakeFSRef(const FSSpec* spec, FSRef* ref) {
  if (spec == NULL || ref == NULL) return kBadParameter;
  zelLockCatalog();
  const OSErr error = found(zelSpecifiedItem(spec), ref, NULL);
  zelUnlockCatalog();
  return error;
}

// Links on the way are followed; a link at the end is what is named, so that it keeps its own name.
OSStatus FSPathMakeRef(const uint8_t* path, FSRef* ref, Boolean* isFolder) {
  if (path == NULL || ref == NULL) return kBadParameter;
  zelLockCatalog();
  const OSErr error = found(zelItemAtPath((const char*)path), ref, isFolder);
  zelUnlockCatalog();
  return error;
}

static OSErr makePath(const FSRef* ref, char* path, uint32_t size, Boolean* isFolder) {
  struct Item* item = NULL;
  const OSErr error = referred(ref, true, &item);
  if (error != kNoError) return error;
  const size_t length = strlen(item->path);
  if (length >= size) return kPathTooLong;
  memcpy(path, item->path, length + 1);
  *isFolder = item->isFolder;
  return kNoError;
}

OSStatus zelPathOfRef(const FSRef* ref, uint8_t* path, uint32_t size, Boolean* isFolder) {
  if (ref == NULL || path == NULL) return kBadParameter;
  zelLockCatalog();
  const OSErr error = makePath(ref, (char*)path, size, isFolder);
  zelUnlockCatalog();
  return error;
}

OSStatus FSRefMakePath(const FSRef* ref, uint8_t* path, uint32_t size) {
  Boolean isFolder = false;
  return zelPathOfRef(ref, path, size, &isFolder);
}
