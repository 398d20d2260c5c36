// A call of every method that the host has, for the tests of what is so in each of them.
#pragma once

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

#include "tests/support/plugin_test.h"

namespace tests {

/// What arguments and replies are made with.
struct Kit {
  Host& host;
  host::Family& family;
  foundation_double::Foundation& foundation;
};

/// What can be seen of a call in the store afterwards, by another call.
struct Trace {
  const char* method = nullptr;  // null: nothing can be seen
  std::vector<Value> arguments;
  std::string without;  // what that call gives when the first one did nothing
  std::string with;
};

struct FaultCall {
  const char* name;
  const char* method;
  /// Arguments are made anew for every call, before anything fails.
  std::function<std::vector<Value>(Kit&)> arguments;
  /// What it gives, as Host::describe tells it.
  std::string gives = "nil";
  /// What it may give after an exception; the first is what it gives when it can do nothing.
  Lines failed = {"nil"};
  /// Puts Foundation into the state that the call meets.
  std::function<void(Kit&)> before = nullptr;
  Trace trace = {};
  bool shared = false;
  /// It is called on an object that isn't constructed yet.
  bool constructs = false;
  /// It finds the wrapped object at the fixed position, before its guard opens.
  bool fixedPosition = false;
  /// Native exceptions in it become the host's.
  bool guarded = true;
  /// A second call gives what the first one gave.
  bool repeatable = true;
  /// How many of the host's blocks it makes.
  std::size_t blocks = 0;
};

void PrintTo(const FaultCall& call, std::ostream* out);

/// Calls of every method.
std::vector<FaultCall> faultCalls();

}  // namespace tests
