// Finds out whether the lock of a program without this library can still have its owner.
//
// GNUstep base 1.28 says nowhere who made the folder that is its lock. But that process has GNUstep
// base in its memory, is the folder's user, and was there before the folder. When there is none
// like that, the lock is nobody's. A process with this library keeps to the kernel's lock and makes
// folders of another mode, so it is none of those; it can be told by a mapping that is made for
// that when the library is loaded. This can go when store_lock.c does.
#include "native/gnustep/lock_owners.h"

#include <ctype.h>
#include <dirent.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <time.h>
#include <unistd.h>

static const char kMark[] = "zelnative-keeps-to-the-locked-file";

// Only what other processes read of this one. The mapping stays as long as the process.
__attribute__((constructor)) static void markThisProcess(void) {
  const int file = memfd_create(kMark, MFD_CLOEXEC);
  if (file < 0) return;
  (void)mmap(NULL, (size_t)sysconf(_SC_PAGESIZE), PROT_NONE, MAP_SHARED, file, 0);
  close(file);
}

static FILE* openOf(const char* process, const char* what) {
  char path[sizeof "/proc//maps" + NAME_MAX];
  snprintf(path, sizeof path, "/proc/%s/%s", process, what);
  return fopen(path, "re");
}

// Whether the process makes its locks as GNUstep base does. One that is gone doesn't, nor does one
// whose memory its own user may not look at: such guard secrets or the machine, not defaults.
static bool locksWithFolders(const char* process) {
  FILE* const maps = openOf(process, "maps");
  if (maps == NULL) return false;
  bool hasBase = false;
  bool isMarked = false;
  char* line = NULL;
  size_t size = 0;
  while (!isMarked && getline(&line, &size, maps) > 0) {
    hasBase = hasBase || strstr(line, "/libgnustep-base.so") != NULL;
    isMarked = strstr(line, kMark) != NULL;
  }
  free(line);
  fclose(maps);
  return hasBase && !isMarked;
}

// When the process began, in seconds after the machine did; 0 when it can't be told.
static double beginning(const char* process) {
  FILE* const file = openOf(process, "stat");
  if (file == NULL) return 0;
  char text[1024];
  const size_t length = fread(text, 1, sizeof text - 1, file);
  fclose(file);
  text[length] = '\0';
  // The name comes second and in parentheses, and may have any character; the beginning is 22nd.
  const char* at = strrchr(text, ')');
  for (int field = 2; at != NULL && field < 22; ++field) at = strchr(at + 1, ' ');
  return at == NULL ? 0 : strtod(at, NULL) / (double)sysconf(_SC_CLK_TCK);
}

// When the folder was made, in seconds after the machine began.
static double making(const struct stat* folder) {
  struct timespec wall;
  struct timespec machine;
  clock_gettime(CLOCK_REALTIME, &wall);
  clock_gettime(CLOCK_BOOTTIME, &machine);
  return (double)machine.tv_sec - (double)(wall.tv_sec - folder->st_mtime);
}

bool zelMayBeOwned(const struct stat* folder) {
  enum { kSlack = 2 };  // seconds: both clocks were read in whole ones
  DIR* const processes = opendir("/proc");
  if (processes == NULL) return true;
  const double made = making(folder) + kSlack;
  bool areThere = false;
  bool mayBe = false;
  const struct dirent* entry = NULL;
  while (!mayBe && (entry = readdir(processes)) != NULL) {
    if (!isdigit((unsigned char)entry->d_name[0])) continue;
    areThere = true;
    struct stat process;
    if (fstatat(dirfd(processes), entry->d_name, &process, 0) != 0) continue;
    mayBe = process.st_uid == folder->st_uid && beginning(entry->d_name) <= made &&
            locksWithFolders(entry->d_name);
  }
  closedir(processes);
  return mayBe || !areThere;
}
