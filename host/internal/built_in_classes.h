// The classes that every host starts with.
#pragma once

#include "host/internal/objects.h"

namespace host::internal {

void addBuiltInClasses(Classes& classes);

}  // namespace host::internal
