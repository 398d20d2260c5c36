// The classes that the double defines.
#pragma once

#include "testkit/foundation/runtime.h"

namespace testkit::objc {

ClassDefinition objectClass();
ClassDefinition exceptionClass();
ClassDefinition stringClass();
ClassDefinition numberClass();
ClassDefinition urlClass();
ClassDefinition pointerTableClass();
ClassDefinition userDefaultsClass();

/// A super class stands before its subclasses.
inline constexpr ClassDefinition (*kClasses[])() = {
    objectClass, exceptionClass,    stringClass,       numberClass,
    urlClass,    pointerTableClass, userDefaultsClass,
};

}  // namespace testkit::objc
