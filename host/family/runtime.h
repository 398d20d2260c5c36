// Adding methods in a real Objective-C runtime.
#pragma once

#include "host/family/family.h"

namespace host {

/// The classes of the running process get the methods, for good.
AddMethod addToRuntime();

}  // namespace host
