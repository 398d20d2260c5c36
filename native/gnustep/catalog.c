#include "native/gnustep/catalog.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <search.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

enum {
  kFirstRoom = 64,
  kFirstVolume = -100,  // volumes count downwards from here
  // The file handle of a 32-bit node number and its generation, and the room for such handles.
  kNodeAndGeneration = 1,
  kRoomForHandle = 128
};

static pthread_mutex_t lock = PTHREAD_MUTEX_INITIALIZER;

static struct Item** items;  // by number
static uint32_t itemCount;
static uint32_t itemRoom;
static int16_t lastVolume = kFirstVolume;
static void* nodes;  // a search tree: for each node, the first item

void zelLockCatalog(void) { pthread_mutex_lock(&lock); }
void zelUnlockCatalog(void) { pthread_mutex_unlock(&lock); }

// --- what the file system says

struct Facts {
  struct Identity identity;
  bool isFolder;
};

// The moment of its making doesn't tell two items apart that are made within a tick of the clock,
// and a freed node number is often used again at once. Common file systems count those uses; other
// kinds of handles may change in an item's life.
static void observeHandle(const char* path, struct Identity* identity) {
  union {
    struct file_handle handle;
    uint8_t room[sizeof(struct file_handle) + kRoomForHandle];
  } got;
  int mount = 0;
  got.handle.handle_bytes = kRoomForHandle;
  if (name_to_handle_at(AT_FDCWD, path, &got.handle, &mount, 0) != 0 ||
      got.handle.handle_type != kNodeAndGeneration ||
      got.handle.handle_bytes > sizeof identity->handle) {
    return;
  }
  memcpy(identity->handle, got.handle.f_handle, got.handle.handle_bytes);
}

static bool observe(const char* path, struct Facts* facts) {
  struct statx found;
  const unsigned int wanted = STATX_TYPE | STATX_INO | STATX_BTIME;
  if (statx(AT_FDCWD, path, AT_SYMLINK_NOFOLLOW, wanted, &found) != 0) return false;
  memset(facts, 0, sizeof *facts);
  facts->isFolder = S_ISDIR(found.stx_mode);
  facts->identity.device = makedev(found.stx_dev_major, found.stx_dev_minor);
  facts->identity.node = found.stx_ino;
  if ((found.stx_mask & STATX_BTIME) != 0) {
    facts->identity.bornSeconds = found.stx_btime.tv_sec;
    facts->identity.bornNanoseconds = found.stx_btime.tv_nsec;
  }
  observeHandle(path, &facts->identity);
  return true;
}

static int compareIdentities(const struct Identity* one, const struct Identity* other) {
  return memcmp(one, other, sizeof *one);
}

static bool isAt(const struct Item* item, const char* path) {
  struct Facts facts;
  return observe(path, &facts) && compareIdentities(&facts.identity, &item->identity) == 0;
}

// --- paths

char* zelJoinPath(const char* folder, const char* name) {
  char* path = NULL;
  const char* const base = folder[1] == 0 ? "" : folder;  // "/" has its slash already
  return asprintf(&path, "%s/%s", base, name) < 0 ? NULL : path;
}

static const char* lastComponent(const char* path) {
  return path[1] == 0 ? path : strrchr(path, '/') + 1;
}

const char* zelItemName(const struct Item* item) { return lastComponent(item->path); }

// The path of the folder that holds what is at a path other than "/"; for the caller to free.
static char* folderOfPath(const char* path) {
  const size_t length = (size_t)(strrchr(path, '/') - path);
  return strndup(path, length == 0 ? 1 : length);
}

// The path without slashes at its end, for the caller to free.
static char* withoutLastSlashes(const char* path) {
  size_t length = strlen(path);
  while (length > 1 && path[length - 1] == '/') --length;
  return strndup(path, length);
}

// Follows the links on the way to the last component of a path that ends in no slash. For the
// caller to free; null with the reason in errno.
static char* followed(const char* path) {
  const char* const name = lastComponent(path);
  if (path[1] == 0 || strcmp(name, ".") == 0 || strcmp(name, "..") == 0) {
    return realpath(path, NULL);
  }
  char* const folder = folderOfPath(path);
  char* const realFolder = folder == NULL ? NULL : realpath(folder, NULL);
  free(folder);
  char* const result = realFolder == NULL ? NULL : zelJoinPath(realFolder, name);
  free(realFolder);
  return result;
}

// --- the items

static int compareItems(const void* one, const void* other) {
  return compareIdentities(&((const struct Item*)one)->identity,
                           &((const struct Item*)other)->identity);
}

static bool makeRoom(void) {
  if (itemCount < itemRoom) return true;
  const uint32_t room = itemRoom == 0 ? kFirstRoom : 2 * itemRoom;
  struct Item** const grown = realloc(items, room * sizeof(void*));
  if (grown == NULL) return false;
  items = grown;
  itemRoom = room;
  return true;
}

// Enters an item into the tree of nodes, behind an item that is the same node.
static bool enterNode(struct Item* item) {
  struct Item** const place = tsearch(item, &nodes, compareItems);
  if (place == NULL) return false;
  if (*place != item) {
    item->otherLink = (*place)->otherLink;
    (*place)->otherLink = item;
  }
  return true;
}

static bool isPath(const struct Item* item, const char* path) {
  return strcmp(item->path, path) == 0;
}

// The known item of that node and path, or one of the node that has left its place for this one;
// null when the node is not known or all its other names are still there.
static struct Item* findItem(const struct Identity* identity, const char* path) {
  const struct Item wanted = {.identity = *identity};
  struct Item** const place = tfind(&wanted, &nodes, compareItems);
  if (place == NULL) return NULL;
  for (struct Item* item = *place; item != NULL; item = item->otherLink) {
    if (isPath(item, path)) return item;
  }
  for (struct Item* item = *place; item != NULL; item = item->otherLink) {
    if (!isAt(item, item->path)) return item;
  }
  return NULL;
}

static bool isVolumeRoot(const struct Item* item) {
  return item->isFolder &&
         (item->folder == NULL || item->folder->identity.device != item->identity.device);
}

static bool setPath(struct Item* item, const char* path) {
  if (item->path != NULL && isPath(item, path)) return true;
  char* const copy = strdup(path);
  if (copy == NULL) return false;
  free(item->path);
  item->path = copy;
  return true;
}

static bool setPlace(struct Item* item, struct Item* folder, const char* path) {
  if (!setPath(item, path)) return false;
  item->folder = folder;
  if (item->volume == 0 && isVolumeRoot(item)) item->volume = lastVolume--;
  return true;
}

static struct Item* addItem(const struct Facts* facts, struct Item* folder, const char* path) {
  struct Item* const item = calloc(1, sizeof *item);
  if (item == NULL) return NULL;
  item->identity = facts->identity;
  item->isFolder = facts->isFolder;
  if (!setPlace(item, folder, path) || !makeRoom() || !enterNode(item)) {
    free(item->path);
    free(item);
    return NULL;
  }
  items[itemCount] = item;
  item->number = ++itemCount;
  return item;
}

static struct Item* itemAt(const char* path);

// The item of the folder that holds what is at the path. False with the reason in errno.
static bool findFolder(const char* path, struct Item** folder) {
  *folder = NULL;
  if (path[1] == 0) return true;
  char* const folderPath = folderOfPath(path);
  if (folderPath != NULL) *folder = itemAt(folderPath);
  free(folderPath);
  return *folder != NULL;
}

// The item at a path without links on the way.
static struct Item* itemAt(const char* path) {
  struct Facts facts;
  struct Item* folder = NULL;
  if (!observe(path, &facts) || !findFolder(path, &folder)) return NULL;
  struct Item* const item = findItem(&facts.identity, path);
  if (item == NULL) return addItem(&facts, folder, path);
  return setPlace(item, folder, path) ? item : NULL;
}

struct Item* zelItemAtPath(const char* path) {
  if (path[0] != '/') {
    errno = EINVAL;
    return NULL;
  }
  char* const plain = withoutLastSlashes(path);
  char* const real = plain == NULL ? NULL : followed(plain);
  free(plain);
  struct Item* const item = real == NULL ? NULL : itemAt(real);
  free(real);
  return item;
}

struct Item* zelItemWithNumber(uint32_t number) {
  return number == 0 || number > itemCount ? NULL : items[number - 1];
}

struct Item* zelVolumeOf(struct Item* item) {
  while (item->volume == 0) item = item->folder;
  return item;
}

struct Item* zelVolumeWithNumber(int16_t volume) {
  for (uint32_t i = 0; volume != 0 && i < itemCount; ++i) {
    if (items[i]->volume == volume) return items[i];
  }
  return NULL;
}

// --- finding again what was renamed or moved

// Whether the path is where another name of the same node is known to be.
static bool isOtherLink(const struct Item* item, const char* path) {
  struct Item** const place = tfind(item, &nodes, compareItems);
  for (struct Item* other = *place; other != NULL; other = other->otherLink) {
    if (other != item && isPath(other, path)) return true;
  }
  return false;
}

// Moves the item to a path, if that is where it is.
static bool settle(struct Item* item, const char* path) {
  struct Item* folder = NULL;
  return !isOtherLink(item, path) && isAt(item, path) && findFolder(path, &folder) &&
         setPlace(item, folder, path);
}

static bool settleIn(struct Item* item, const char* folderPath, const char* name) {
  char* const path = zelJoinPath(folderPath, name);
  const bool settled = path != NULL && settle(item, path);
  free(path);
  return settled;
}

// Looks for the item among everything in a folder.
static bool searchFolder(struct Item* item, const struct Item* folder) {
  DIR* const entries = opendir(folder->path);
  if (entries == NULL) return false;
  bool found = false;
  for (const struct dirent64* entry = NULL; !found && (entry = readdir64(entries)) != NULL;) {
    found = entry->d_ino == item->identity.node && settleIn(item, folder->path, entry->d_name);
  }
  closedir(entries);
  return found;
}

static bool searchKnownFolders(struct Item* item) {
  for (uint32_t i = 0; i < itemCount; ++i) {
    const struct Item* const folder = items[i];
    const bool possible = folder->isFolder && folder->identity.device == item->identity.device;
    if (possible && isAt(folder, folder->path) && searchFolder(item, folder)) return true;
  }
  return false;
}

static bool searchOldFolder(struct Item* item) {
  struct Item* const folder = item->folder;
  if (folder == NULL || !zelLocate(folder)) return false;
  return settleIn(item, folder->path, zelItemName(item)) || searchFolder(item, folder);
}

// No two items are one node at one path: what is there is this item.
bool zelExists(struct Item* item) { return isAt(item, item->path) || zelLocate(item); }

bool zelLocate(struct Item* item) {
  if (settle(item, item->path) || searchOldFolder(item) || searchKnownFolders(item)) return true;
  errno = ENOENT;
  return false;
}
