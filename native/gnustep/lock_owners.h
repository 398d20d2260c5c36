// Whether somebody who doesn't say so may have a lock.
#pragma once

#include <stdbool.h>
#include <sys/stat.h>

// Whether a process lives that may have made the folder as GNUstep base's lock of the defaults.
// Without knowing better the answer is yes.
bool zelMayBeOwned(const struct stat* folder);
