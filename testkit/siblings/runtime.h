// Adding class methods in a real Objective-C runtime.
#pragma once

#include "testkit/siblings/siblings.h"

namespace testkit {

/// The running process's NSException gets the method, for good.
AddClassMethod addToRuntime();

}  // namespace testkit
