// Exceptions raised in the host. They pend until the method that raised them returns.
#pragma once

#include <vector>

#include "host/value.h"
#include "plugin/handles.h"

namespace host::internal {

struct State;

/// The class below which all exceptions are.
inline constexpr char kExceptionClass[] = "RuntimeException";
/// What a bad index raises.
inline constexpr char kOutOfBounds[] = "OutOfBoundsException";

/// Raises a new exception of the host's own, without message.
void raiseByName(State& state, const char* className);
/// Takes the pending exceptions from that one on, in order; they don't pend any longer.
std::vector<Raised> takePending(State& state, std::size_t from);

// --- entry points
void raiseException(State& state, zel::REALobject exception);

}  // namespace host::internal
