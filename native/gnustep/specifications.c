#include "native/gnustep/specifications.h"

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "native/gnustep/encodings.h"

enum {
  kFolderOfRoots = 1,
  kRootNode = 2,
  kFirstNode = 16,  // the identifiers below are the file system's own
  kMacRoman = 0,
  kUtf8 = 0x08000100,
  kLongestName = 63,
  kLongestSystemName = 255,  // bytes, on all common file systems
  kRoomForMark = 16
};

uint32_t zelNodeOf(const struct Item* item) {
  return item->volume != 0 ? kRootNode : item->number + kFirstNode;
}

uint32_t zelFolderNodeOf(const struct Item* item) {
  return item->volume != 0 ? kFolderOfRoots : zelNodeOf(item->folder);
}

int zelNameUnits(const char* name, uint16_t* units, int room) {
  uint16_t found[kLongestSystemName];
  const size_t length = strlen(name);
  // The decoder takes a byte order mark in front for no text.
  if (length > kLongestSystemName || strncmp(name, "\xEF\xBB\xBF", 3) == 0) return -1;
  const ptrdiff_t count =
      zelDecodeUtf8(zelFindEncoding(kUtf8), (const uint8_t*)name, length, found);
  if (count < 0 || count > room) return -1;
  memcpy(units, found, (size_t)count * sizeof *units);
  return (int)count;
}

// --- names

// The text of Mac Roman bytes as UTF-8 with a zero at its end; false for the impossible.
static bool decodeName(const uint8_t* bytes, size_t length, char* text, size_t size) {
  const struct Encoding* const macRoman = zelFindEncoding(kMacRoman);
  const struct Encoding* const utf8 = zelFindEncoding(kUtf8);
  uint16_t units[kLongestName];
  const ptrdiff_t count = macRoman->decode(macRoman, bytes, length, units);
  if (count < 0) return false;
  const ptrdiff_t used = utf8->encode(utf8, units, (size_t)count, (uint8_t*)text, size - 1);
  if (used < 0) return false;
  text[used] = 0;
  return true;
}

// The number behind the last "#" of a name, if that is how the name ends; or else 0.
static uint32_t markedNode(const char* name) {
  const char* const mark = strrchr(name, '#');
  if (mark == NULL || strspn(mark + 1, "0123456789ABCDEF") != strlen(mark + 1)) return 0;
  const unsigned long node = strtoul(mark + 1, NULL, 16);
  return node > UINT32_MAX ? 0 : (uint32_t)node;
}

// The name in Mac Roman, cut off where it is too long, with question marks for what is missing
// there. Returns its length.
static size_t approximateName(const char* name, uint8_t* bytes, size_t room) {
  const struct Encoding* const macRoman = zelFindEncoding(kMacRoman);
  uint16_t units[kLongestSystemName];
  const int count = zelNameUnits(name, units, kLongestSystemName);
  size_t used = 0;
  for (int i = 0; i < count && used < room; ++i, ++used) {
    if (macRoman->encode(macRoman, &units[i], 1, &bytes[used], 1) != 1) bytes[used] = '?';
  }
  return used;
}

// Whether these bytes say the whole name, and could not be taken for a marked one.
static bool saysName(const uint8_t* bytes, size_t length, const char* name) {
  char text[4 * kLongestName + 1];
  return decodeName(bytes, length, text, sizeof text) && strcmp(text, name) == 0 &&
         markedNode(name) == 0;
}

// Writes a length byte and the name behind it.
static void writeName(const struct Item* item, uint8_t name[kLongestName + 1]) {
  const char* const wanted = zelItemName(item);
  memset(name, 0, kLongestName + 1);
  size_t length = approximateName(wanted, name + 1, kLongestName);
  if (!saysName(name + 1, length, wanted)) {
    char mark[kRoomForMark];
    const int added = snprintf(mark, sizeof mark, "#%X", item->number + kFirstNode);
    const size_t kept = kLongestName - (size_t)added;
    if (length > kept) length = kept;
    memset(name + 1 + length, 0, kLongestName - length);
    memcpy(name + 1 + length, mark, (size_t)added);
    length += (size_t)added;
  }
  name[0] = (uint8_t)length;
}

static bool hasName(const struct Item* item, const uint8_t* name) {
  uint8_t own[kLongestName + 1];
  writeName(item, own);
  return own[0] == name[0] && memcmp(own + 1, name + 1, own[0]) == 0;
}

// --- specifications

void zelSpecify(struct Item* item, FSSpec* spec) {
  spec->vRefNum = zelVolumeOf(item)->volume;
  spec->parID = (int32_t)zelFolderNodeOf(item);
  writeName(item, spec->name);
}

// The item of an identifier, located; null with the reason in errno.
static struct Item* itemOfNode(int16_t volume, uint32_t node) {
  struct Item* const item = node == kRootNode   ? zelVolumeWithNumber(volume)
                            : node > kFirstNode ? zelItemWithNumber(node - kFirstNode)
                                                : NULL;
  errno = ENOENT;
  if (item == NULL || !zelLocate(item)) return NULL;
  return zelVolumeOf(item)->volume == volume ? item : NULL;
}

// The item of that name in a folder; null with the reason in errno.
static struct Item* itemInFolder(const struct Item* folder, const char* name) {
  if (name[0] == 0 || strchr(name, '/') != NULL || strcmp(name, ".") == 0 ||
      strcmp(name, "..") == 0) {
    errno = EINVAL;
    return NULL;
  }
  char* const path = zelJoinPath(folder->path, name);
  struct Item* const item = path == NULL ? NULL : zelItemAtPath(path);
  free(path);
  return item;
}

// The item if the name in its file specification is its own; or else null with the reason in errno.
static struct Item* ifNamed(struct Item* item, const FSSpec* spec) {
  errno = ENOENT;
  return item != NULL && hasName(item, spec->name) ? item : NULL;
}

struct Item* zelSpecifiedItem(const FSSpec* spec) {
  char name[4 * kLongestName + 1];
  if (spec->name[0] > kLongestName ||
      !decodeName(spec->name + 1, spec->name[0], name, sizeof name)) {
    errno = EINVAL;
    return NULL;
  }
  if (spec->parID == kFolderOfRoots) {
    return ifNamed(itemOfNode(spec->vRefNum, kRootNode), spec);
  }
  struct Item* const folder = itemOfNode(spec->vRefNum, (uint32_t)spec->parID);
  if (folder == NULL) return NULL;
  const uint32_t marked = markedNode(name);
  if (marked == 0) return itemInFolder(folder, name);
  struct Item* const item = itemOfNode(spec->vRefNum, marked);
  return item != NULL && item->folder == folder ? ifNamed(item, spec) : ifNamed(NULL, spec);
}
