// How the host's language finds and calls the methods of a class.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/host.h"
#include "host/internal/objects.h"

namespace host::internal {

/// What a call goes to.
struct Target {
  const HostClass& hostClass;
  zel::REALobject instance = nullptr;  // null: a shared method
};

/// Calls a method. Exceptions that it raises go on pending.
Value callMethod(State& state, const Target& target, const std::string& name,
                 const std::vector<Value>& arguments);
/// Assigns to a method: calls the setter of the getter with the arguments and the value, or a
/// method whose last parameter assigns.
void assignToMethod(State& state, const Target& target, const std::string& name,
                    const std::vector<Value>& arguments, const Value& value);
/// Whether a method of that name can be assigned to.
bool assignable(const HostClass& hostClass, const std::string& name);

/// The function behind a declaration, among the methods of a class and those above it; null when
/// there is none. A declaration whose last parameter assigns also finds a getter's setter.
PluginFunction findFunction(const HostClass& hostClass, const Declaration& declaration);

/// Reads the declaration by which a plugin asks for a method; nullopt, with the failure reported,
/// when it is none. @param text nullable.
std::optional<Declaration> declarationFor(const State& state, const char* text,
                                          std::string_view who);

// --- entry points
void* loadObjectMethod(State& state, zel::REALobject object, const char* declaration);

}  // namespace host::internal
