// How a message reaches its method: the runtime's functions, Foundation's BOOL, and
// methodOf<R, Arguments...>(receiver, selector).
#pragma once

#if defined(__APPLE__)
#include "native/darwin/dispatch.h"  // IWYU pragma: export
#else
#include "native/gnustep/dispatch.h"  // IWYU pragma: export
#endif
