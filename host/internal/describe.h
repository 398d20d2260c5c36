// Values of the host's language as text, for tests to compare.
#pragma once

#include <string>

#include "host/value.h"

namespace host::internal {

struct State;

/// See Host::describe.
std::string describe(State& state, const Value& value);

}  // namespace host::internal
