// Replaces a file so that after a power failure it is there as a whole, old or new.
//
// GNUstep base 1.28 renames a new file without asking for its bytes to be on disk, tells the
// program nothing of a write that failed half-way, and may replace what another process has written
// in the meantime. It can go when Foundation writes its defaults in this way.
#include "native/gnustep/store_files.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "native/gnustep/store_lock.h"

static int readAll(int descriptor, size_t expected, void** bytes, size_t* length) {
  size_t size = expected + 1;  // one more, to see the end
  char* buffer = malloc(size);
  size_t have = 0;
  while (buffer != NULL) {
    const ssize_t got = read(descriptor, buffer + have, size - have);
    if (got == 0) break;
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) {
      const int error = errno;
      free(buffer);
      return error;
    }
    have += (size_t)got;
    if (have < size) continue;
    size *= 2;
    char* const more = realloc(buffer, size);
    if (more == NULL) free(buffer);
    buffer = more;
  }
  if (buffer == NULL) return ENOMEM;
  *bytes = buffer;
  *length = have;
  return 0;
}

static int readOpened(struct SeenFile* seen, void** bytes, size_t* length) {
  if (fstat(seen->descriptor, &seen->state) != 0) return errno;
  if (S_ISDIR(seen->state.st_mode)) return EISDIR;
  if (!S_ISREG(seen->state.st_mode)) return EINVAL;
  return readAll(seen->descriptor, (size_t)seen->state.st_size, bytes, length);
}

int zelReadFile(const char* path, struct SeenFile* seen, void** bytes, size_t* length) {
  *bytes = NULL;
  *length = 0;
  // Not to wait for the other end of a pipe that has the name of a file.
  seen->descriptor = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (seen->descriptor < 0) return errno == ENOENT ? 0 : errno;
  const int error = readOpened(seen, bytes, length);
  if (error != 0) zelForget(seen);
  return error;
}

void zelForget(struct SeenFile* seen) {
  if (seen->descriptor >= 0) close(seen->descriptor);
  seen->descriptor = -1;
}

// 0 if the file is the one that was seen.
static int compare(const char* path, const struct SeenFile* seen) {
  struct stat now;
  if (stat(path, &now) != 0) {
    if (errno != ENOENT) return errno;
    return seen->descriptor < 0 ? 0 : EAGAIN;
  }
  if (seen->descriptor < 0) return EAGAIN;
  const struct stat* const then = &seen->state;
  const bool isSame = now.st_dev == then->st_dev && now.st_ino == then->st_ino &&
                      now.st_size == then->st_size && now.st_mtim.tv_sec == then->st_mtim.tv_sec &&
                      now.st_mtim.tv_nsec == then->st_mtim.tv_nsec;
  return isSame ? 0 : EAGAIN;
}

static int writeAll(int descriptor, const char* bytes, size_t length) {
  while (length > 0) {
    const ssize_t put = write(descriptor, bytes, length);
    if (put < 0 && errno == EINTR) continue;
    if (put < 0) return errno;
    bytes += put;
    length -= (size_t)put;
  }
  return 0;
}

static int writeNew(const char* path, const void* bytes, size_t length) {
  unlink(path);  // left by a process that was ended
  const int file = open(path, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (file < 0) return errno;
  int error = writeAll(file, bytes, length);
  if (error == 0 && fsync(file) != 0) error = errno;
  if (close(file) != 0 && error == 0) error = errno;
  return error;
}

// Sees to it that the names in a folder are on disk.
static int keepNames(const char* folder) {
  const int descriptor = open(folder, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return errno;
  int error = fsync(descriptor) == 0 ? 0 : errno;
  if (error == EINVAL) error = 0;  // a file system that keeps them at once
  close(descriptor);
  return error;
}

// Cuts a path behind its folder.
static bool cutToFolder(char* path) {
  char* const slash = strrchr(path, '/');
  if (slash == NULL || slash == path) return false;
  *slash = '\0';
  return true;
}

int zelMakeFolder(const char* path) {
  if (mkdir(path, 0755) != 0) {
    if (errno == EEXIST) return 0;
    if (errno != ENOENT) return errno;
    char above[PATH_MAX];
    snprintf(above, sizeof above, "%s", path);
    if (!cutToFolder(above)) return ENOENT;
    const int error = zelMakeFolder(above);
    if (error != 0) return error;
    if (mkdir(path, 0755) != 0) return errno == EEXIST ? 0 : errno;
  }
  char above[PATH_MAX];
  snprintf(above, sizeof above, "%s", path);
  return cutToFolder(above) ? keepNames(above) : 0;
}

// Something to do with a file while its folder is locked.
struct Change {
  const char* path;
  const char* folder;
  const void* bytes;
  size_t length;
  char* aside;
};

static int replace(const struct Change* change) {
  // Its name doesn't depend on the domain's, which may be as long as a name can be.
  char path[PATH_MAX];
  const int size = snprintf(path, sizeof path, "%s/.lck/new", change->folder);
  if (size < 0 || (size_t)size >= sizeof path) return ENAMETOOLONG;
  int error = writeNew(path, change->bytes, change->length);
  if (error == 0 && rename(path, change->path) != 0) error = errno;
  if (error == 0) return keepNames(change->folder);
  unlink(path);
  return error;
}

static int removeFile(const struct Change* change) {
  if (unlink(change->path) != 0 && errno != ENOENT) return errno;
  return keepNames(change->folder);
}

static int putAside(const struct Change* change) {
  enum { kMost = 10000 };
  struct stat other;
  for (int number = 1; number < kMost; ++number) {
    const int size = snprintf(change->aside, PATH_MAX, "%s.damaged-%d", change->path, number);
    if (size < 0 || size >= PATH_MAX) return ENAMETOOLONG;
    if (lstat(change->aside, &other) == 0) continue;
    if (errno != ENOENT) return errno;
    return rename(change->path, change->aside) == 0 ? keepNames(change->folder) : errno;
  }
  return EEXIST;
}

// Does it if the file is still the one that was seen.
static int apply(int (*action)(const struct Change*), struct Change change,
                 const struct SeenFile* seen) {
  char folder[PATH_MAX];
  const int size = snprintf(folder, sizeof folder, "%s", change.path);
  if (size < 0 || (size_t)size >= sizeof folder) return ENAMETOOLONG;
  if (!cutToFolder(folder)) return ENOENT;
  change.folder = folder;
  struct StoreLock lock;
  int error = zelLockStore(folder, &lock);
  if (error != 0) return error;
  error = compare(change.path, seen);
  if (error == 0) error = action(&change);
  zelUnlockStore(&lock);
  return error;
}

int zelReplaceFile(const char* path, const struct SeenFile* seen, const void* bytes,
                   size_t length) {
  return apply(replace, (struct Change){.path = path, .bytes = bytes, .length = length}, seen);
}

int zelRemoveFile(const char* path, const struct SeenFile* seen) {
  return apply(removeFile, (struct Change){.path = path}, seen);
}

int zelPutAside(const char* path, const struct SeenFile* seen, char* aside) {
  return apply(putAside, (struct Change){.path = path, .aside = aside}, seen);
}
