// The lock of a folder of defaults: between the threads of a process, between processes, and with
// programs that know nothing but GNUstep base's own lock.
#pragma once

#include <limits.h>
#include <stdbool.h>

// A lock that is held.
struct StoreLock {
  int file;               // the kernel's lock is on it
  bool ownersDie;         // the kernel takes the lock from a process that ends
  char folder[PATH_MAX];  // GNUstep base's lock
};

// Takes the lock of a folder, and makes the folder if there is none. Waits while others live and
// have it, but not for ever.
// 0, or the number of the error; ETIMEDOUT when somebody else kept it all the time.
int zelLockStore(const char* folder, struct StoreLock* lock);

// Gives it back. The folder that is GNUstep base's lock is removed if it is still this one.
void zelUnlockStore(struct StoreLock* lock);

// From now on waits for a short time only: the process is about to end.
void zelHurryWithLocks(void);
