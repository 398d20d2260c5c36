// The entry points that the host answers, by name.
#pragma once

#include <string>
#include <string_view>
#include <typeinfo>
#include <vector>

#include "host/host.h"

namespace host::internal {

/// The names of all entry points, of the global methods and of the methods of built-in classes.
std::vector<std::string> entryPointNames();

/// The methods of a built-in class, as C functions.
std::vector<RegisteredMethod> methodsOf(std::string_view className);
/// The name by which such a method is controlled, or "" for any other function.
std::string_view nameOfMethod(PluginFunction function);

/// The entry point of that name as a C function, or null.
void* findEntryPoint(std::string_view name);

/// The function type of that entry point, or null: what plugins must declare it as.
const std::type_info* signatureOf(std::string_view name);

}  // namespace host::internal
