// Lets the n-th system call fail that a thread makes for the store, or ends the process at it. To
// be preloaded; the program says when to begin and when to end.
//
// The functions of the C library stand for its system calls: those that take a path, when it leads
// into the store, and those that take a descriptor, when it comes from such a path.
#define _GNU_SOURCE
#include <dirent.h>
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdarg.h>
#include <stdbool.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

// What becomes of the call; any other number is that of the error with which it fails.
enum { kShort = -1, kKill = -2 };

static _Thread_local struct {
  bool isOn;
  int kind;
  int due;      // the calls before it, or less than 0 when it is over
  bool goesOn;  // all further calls fail as well
  int calls;
  char names[4096];  // of the calls, with a blank before each
} faults;

static bool isOfStore[1024];  // by descriptor

// Begins to count. @param goesOn every call from that one on.
void zelFaultsBegin(int kind, int call, bool goesOn) {
  faults.kind = kind;
  faults.due = call;
  faults.goesOn = goesOn;
  faults.calls = 0;
  faults.names[0] = '\0';
  faults.isOn = true;
}

// How many calls there were.
int zelFaultsEnd(void) {
  faults.isOn = false;
  return faults.calls;
}

// The names of the calls, in order, with a blank before each.
const char* zelFaultsNames(void) { return faults.names; }

static bool isDue(const char* name) {
  ++faults.calls;
  const size_t length = strlen(faults.names);
  snprintf(faults.names + length, sizeof faults.names - length, " %s", name);
  if (!(faults.goesOn ? faults.calls >= faults.due : faults.calls == faults.due)) return false;
  if (faults.kind == kKill) raise(SIGKILL);
  return true;
}

static bool failsAt(const char* name, const char* path) {
  const char* const store = getenv("ZEL_PRIVATE_STORE");
  if (!faults.isOn || store == NULL || strstr(path, store) == NULL || !isDue(name)) return false;
  if (faults.kind == kShort) return false;
  errno = faults.kind;
  return true;
}

static bool isKnown(int file) { return file >= 0 && file < 1024 && isOfStore[file]; }

static bool failsOn(const char* name, int file) {
  if (!faults.isOn || !isKnown(file) || !isDue(name) || faults.kind == kShort) return false;
  errno = faults.kind;
  return true;
}

// How much is read or written of that much; -1 for an error.
static ssize_t allowed(const char* name, int file, size_t size) {
  if (!faults.isOn || !isKnown(file) || !isDue(name)) return (ssize_t)size;
  if (faults.kind == kShort) return size > 1 ? (ssize_t)(size / 2) : (ssize_t)size;
  errno = faults.kind;
  return -1;
}

#define ORIGINAL(name) ((__typeof__(&name))(uintptr_t)dlsym(RTLD_NEXT, #name))

#define OPENING(name)                                                                             \
  int name(const char* path, int flags, ...) {                                                    \
    va_list arguments;                                                                            \
    va_start(arguments, flags);                                                                   \
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;                   \
    va_end(arguments);                                                                            \
    if (failsAt(#name, path)) return -1;                                                          \
    const int file = ORIGINAL(name)(path, flags, mode);                                           \
    const char* const store = getenv("ZEL_PRIVATE_STORE");                                        \
    if (file >= 0 && file < 1024) isOfStore[file] = store != NULL && strstr(path, store) != NULL; \
    return file;                                                                                  \
  }

OPENING(open)
OPENING(open64)

#define AT_PATH(name, parameters, arguments) \
  int name parameters { return failsAt(#name, path) ? -1 : ORIGINAL(name) arguments; }

AT_PATH(mkdir, (const char* path, mode_t mode), (path, mode))
AT_PATH(rmdir, (const char* path), (path))
AT_PATH(unlink, (const char* path), (path))
AT_PATH(rename, (const char* path, const char* other), (path, other))
AT_PATH(stat, (const char* path, struct stat* state), (path, state))
AT_PATH(stat64, (const char* path, struct stat64* state), (path, state))
AT_PATH(lstat, (const char* path, struct stat* state), (path, state))
AT_PATH(lstat64, (const char* path, struct stat64* state), (path, state))

#define ON_FILE(name, parameters, arguments) \
  int name parameters { return failsOn(#name, file) ? -1 : ORIGINAL(name) arguments; }

ON_FILE(fsync, (int file), (file))
ON_FILE(fstat, (int file, struct stat* state), (file, state))
ON_FILE(fstat64, (int file, struct stat64* state), (file, state))

#define CONTROLLING(name)                            \
  int name(int file, int command, ...) {             \
    va_list arguments;                               \
    va_start(arguments, command);                    \
    void* const argument = va_arg(arguments, void*); \
    va_end(arguments);                               \
    if (failsOn(#name, file)) return -1;             \
    return ORIGINAL(name)(file, command, argument);  \
  }

CONTROLLING(fcntl)
CONTROLLING(fcntl64)

// A file that can't be closed is closed all the same.
int close(int file) {
  const bool fails = failsOn("close", file);
  const int error = errno;
  if (isKnown(file)) isOfStore[file] = false;
  const int result = ORIGINAL(close)(file);
  if (fails) errno = error;
  return fails ? -1 : result;
}

ssize_t write(int file, const void* bytes, size_t size) {
  const ssize_t most = allowed("write", file, size);
  return most < 0 ? -1 : ORIGINAL(write)(file, bytes, (size_t)most);
}

ssize_t read(int file, void* bytes, size_t size) {
  const ssize_t most = allowed("read", file, size);
  return most < 0 ? -1 : ORIGINAL(read)(file, bytes, (size_t)most);
}

DIR* opendir(const char* path) { return failsAt("opendir", path) ? NULL : ORIGINAL(opendir)(path); }
