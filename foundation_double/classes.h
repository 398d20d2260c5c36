// The classes that the double defines.
#pragma once

#include "foundation_double/runtime.h"

namespace foundation_double::objc {

ClassDefinition objectClass();
ClassDefinition exceptionClass();
ClassDefinition stringClass();
ClassDefinition mutableStringClass();
ClassDefinition valueClass();
ClassDefinition numberClass();
ClassDefinition nullClass();
ClassDefinition dataClass();
ClassDefinition dateClass();
ClassDefinition calendarDateClass();
ClassDefinition timeZoneClass();
ClassDefinition arrayClass();
ClassDefinition mutableArrayClass();
ClassDefinition enumeratorClass();
ClassDefinition dictionaryClass();
ClassDefinition mutableDictionaryClass();
ClassDefinition urlClass();
ClassDefinition pointerTableClass();
ClassDefinition userDefaultsClass();

/// A super class stands before its subclasses.
inline constexpr ClassDefinition (*kClasses[])() = {
    objectClass,       exceptionClass,    stringClass,       mutableStringClass,
    valueClass,        numberClass,       nullClass,         dataClass,
    dateClass,         calendarDateClass, timeZoneClass,     arrayClass,
    mutableArrayClass, enumeratorClass,   dictionaryClass,   mutableDictionaryClass,
    urlClass,          pointerTableClass, userDefaultsClass,
};

}  // namespace foundation_double::objc
