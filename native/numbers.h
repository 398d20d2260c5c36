// What Foundation's numbers say of themselves.
#pragma once

#include "native/objc.h"

namespace zel {

extern "C" {
/// The type code of a number, such as "i"; "c" for a boolean on every target. Not owned.
/// @param number an NSNumber, not nil.
const char* zelNumberType(id number);
}

}  // namespace zel
