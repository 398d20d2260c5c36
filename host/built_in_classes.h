// The classes that every host starts with.
#pragma once

#include "host/objects.h"

namespace testkit::host {

void addBuiltInClasses(Classes& classes);

}  // namespace testkit::host
