// Takes the lock of the defaults from owners that are gone, at once, and from no other.
//
// GNUstep base 1.28 locks its defaults with a folder, which names no owner: that of a process that
// was killed holds everyone up for 20 seconds, and then whoever comes first removes it, even if a
// living process has just made it anew. It can go when Foundation's own lock ends with its process.
//
// Here the lock is the kernel's, on a file beside that folder; the kernel takes it back from a
// process that ends in whatever way. Whoever has it makes the folder as well, for programs without
// this library, in a mode of its own: a folder of that mode was left by a process that is gone,
// for otherwise the file would be locked. Any other folder is a stranger's: see lock_owners.c.
#include "native/gnustep/store_lock.h"

#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include "native/gnustep/lock_owners.h"
#include "native/gnustep/store_files.h"

enum {
  kOurMode = 0500,   // GNUstep base's folders are made with 0755
  kBreakAfter = 20,  // seconds, as in GNUstep base
  kPatience = 5,     // seconds
  kLastPatience = 2
};

static pthread_mutex_t threads = PTHREAD_MUTEX_INITIALIZER;
static int patience = kPatience;

void zelHurryWithLocks(void) { patience = kLastPatience; }

// A child of the process must not be born with the lock of a thread that it doesn't have.
static void prepareFork(void) { pthread_mutex_lock(&threads); }

static void completeFork(void) { pthread_mutex_unlock(&threads); }

__attribute__((constructor)) static void watchForks(void) {
  pthread_atfork(prepareFork, completeFork, completeFork);
}

static int lockThreads(struct StoreLock* lock) {
  (void)lock;
  const int error = pthread_mutex_trylock(&threads);
  return error == EBUSY ? EAGAIN : error;
}

// A lock of the process: a child of it doesn't inherit it, and may live on.
static int lockProcesses(struct StoreLock* lock) {
  struct flock whole = {.l_type = F_WRLCK, .l_whence = SEEK_SET};
  if (fcntl(lock->file, F_SETLK, &whole) == 0) return 0;
  switch (errno) {
    case ENOLCK:
    case ENOSYS:
    case EOPNOTSUPP:  // a file system without such locks: there is only the folder
      lock->ownersDie = false;
      return 0;
    default:
      return errno;
  }
}

// Whether nobody can have the lock any more that this folder stands for.
static bool isAbandoned(const struct StoreLock* lock, const struct stat* folder) {
  if (lock->ownersDie && (folder->st_mode & 0777) == kOurMode) return true;
  return time(NULL) - folder->st_mtime > kBreakAfter || !zelMayBeOwned(folder);
}

static int lockFolder(struct StoreLock* lock) {
  if (mkdir(lock->folder, kOurMode) == 0) return 0;
  if (errno != EEXIST) return errno;
  struct stat folder;
  if (lstat(lock->folder, &folder) != 0) return errno == ENOENT ? EAGAIN : errno;
  if (!isAbandoned(lock, &folder)) return EAGAIN;
  if (rmdir(lock->folder) != 0 && errno != ENOENT) return errno;
  return mkdir(lock->folder, kOurMode) == 0 ? 0 : errno == EEXIST ? EAGAIN : errno;
}

static double now(void) {
  struct timespec time;
  clock_gettime(CLOCK_MONOTONIC, &time);
  return (double)time.tv_sec + (double)time.tv_nsec / 1e9;
}

// Takes a step until it isn't to be taken again.
static int waitFor(int (*step)(struct StoreLock*), struct StoreLock* lock, double end) {
  enum { kMillisecond = 1000000, kLongest = 16 * kMillisecond };
  struct timespec pause = {.tv_nsec = kMillisecond};
  int error = 0;
  while ((error = step(lock)) == EAGAIN && now() < end) {
    nanosleep(&pause, NULL);
    if (pause.tv_nsec < kLongest) pause.tv_nsec *= 2;
  }
  return error == EAGAIN ? ETIMEDOUT : error;
}

static int openLock(const char* folder, struct StoreLock* lock) {
  static const char kFolder[] = "/.GNUstepDefaults.lck";
  static const char kFile[] = "/.GNUstepDefaults.file";
  char path[PATH_MAX];
  const int length = snprintf(path, sizeof path, "%s/.lck", folder);
  if (length < 0 || (size_t)length + sizeof kFile > sizeof path) {
    return ENAMETOOLONG;
  }
  const int error = zelMakeFolder(path);
  if (error != 0) return error;
  memcpy(lock->folder, path, (size_t)length);
  memcpy(lock->folder + length, kFolder, sizeof kFolder);
  memcpy(path + length, kFile, sizeof kFile);
  lock->ownersDie = true;
  lock->file = open(path, O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
  return lock->file < 0 ? errno : 0;
}

int zelLockStore(const char* folder, struct StoreLock* lock) {
  const double end = now() + patience;
  int error = waitFor(lockThreads, lock, end);
  if (error != 0) return error;
  error = openLock(folder, lock);
  if (error == 0) {
    error = waitFor(lockProcesses, lock, end);
    if (error == 0) error = waitFor(lockFolder, lock, end);
    if (error == 0) return 0;
    close(lock->file);
  }
  pthread_mutex_unlock(&threads);
  return error;
}

void zelUnlockStore(struct StoreLock* lock) {
  struct stat folder;
  if (lstat(lock->folder, &folder) == 0 && (folder.st_mode & 0777) == kOurMode) rmdir(lock->folder);
  close(lock->file);
  pthread_mutex_unlock(&threads);
}
