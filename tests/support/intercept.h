// Entry points of the host that a test answers itself, to see what they are handed.
#pragma once

#include <string>

namespace tests {

/// Puts a function in the place of an entry point that the plugin hasn't asked for yet, until the
/// plugin is made fresh. @param function of the entry point's own type.
void interceptEntryPoint(const std::string& name, void* function);

/// The same for a lambda without captures.
template <class Function>
void intercept(const std::string& name, Function function) {
  interceptEntryPoint(name, reinterpret_cast<void*>(+function));
}

/// What the host itself has under that name, for a function in its place to go on to.
void* hostEntryPoint(const std::string& name);

/// Calls the host's own entry point, whose type is that of the function given.
template <class R, class... Arguments>
R callHost(const std::string& name, Arguments... arguments) {
  return reinterpret_cast<R (*)(Arguments...)>(hostEntryPoint(name))(arguments...);
}

}  // namespace tests
