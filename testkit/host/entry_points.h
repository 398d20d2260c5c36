// The entry points that the host answers, by name.
#pragma once

#include <string>
#include <string_view>
#include <typeinfo>
#include <vector>

namespace testkit::host {

/// All names that can be asked for, those that this host doesn't offer included, and the names of
/// the global methods.
std::vector<std::string> entryPointNames();

/// The entry point of that name as a C function, or null.
void* findEntryPoint(std::string_view name);

/// The function type of that entry point, or null: what plugins must declare it as.
const std::type_info* signatureOf(std::string_view name);

}  // namespace testkit::host
