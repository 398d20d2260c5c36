// Giving Foundation's classes methods while the process runs.
#pragma once

#include "native/objc.h"

namespace zel {

extern "C" {
/// Where the class methods of the class of that name stand, not owned, or null.
Class* objc_getMetaClass(const char* className);
/// Gives the class a method for good. False, and nothing changed, when it has one of that selector
/// already or when the class is null.
/// @param implementation in truth R f(id self, SEL selector, arguments...); must never go away.
/// @param types the Objective-C type encoding of that. NUL-terminated, never copied.
BOOL class_addMethod(Class* owner, SEL selector, void (*implementation)(), const char* types);
}

}  // namespace zel
