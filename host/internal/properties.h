// The properties of host objects.
#pragma once

#include <string>
#include <string_view>

#include "host/internal/objects.h"
#include "plugin/handles.h"

namespace host::internal {

/// The property that a declaration such as "Year as integer" declares, 0 or null at first. Throws
/// std::invalid_argument when it declares none.
Property parseProperty(std::string_view declaration);
/// The handle that a value holds; null for a number.
const void* referenceIn(const PropertyValue& value);
/// Sets a property, which takes its own reference. False, with the failure reported, when there is
/// no property of that name and type.
bool setProperty(State& state, HostObject& object, std::string_view name, PropertyValue value,
                 std::string_view who);

/// A property for a test. Throws std::invalid_argument when there is none of that name.
Value readProperty(State& state, HostObject& object, const std::string& name);
/// Sets a property to a value of its own type; otherwise throws std::invalid_argument.
void writeProperty(State& state, HostObject& object, const std::string& name, const Value& value);

// --- entry points
/// Reads a property; strings and objects with a reference for the caller. False when the object has
/// no property of that name and type.
template <class T>
zel::REALboolean getPropertyValue(State& state, zel::REALobject object, const char* name, T* out);
/// Sets a property; a string or object may be null.
template <class T>
void setPropertyValue(State& state, zel::REALobject object, const char* name, T value);

}  // namespace host::internal
