// The few C library functions that product code calls.
#pragma once

#if defined(__APPLE__)
#include "native/darwin/libc.h"  // IWYU pragma: export
#else
#include <cstdio>
#include <cstdlib>
#include <cstring>
#endif
