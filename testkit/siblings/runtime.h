// Adding methods in a real Objective-C runtime.
#pragma once

#include "testkit/siblings/siblings.h"

namespace testkit {

/// The classes of the running process get the methods, for good.
AddMethod addToRuntime();

}  // namespace testkit
