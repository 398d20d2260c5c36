// How the values of a declaration's types pass when a function is called.
#pragma once

#include <ffi.h>
#include <string_view>

#include "host/declaration.h"
#include "host/value.h"

namespace host::internal {

struct State;

/// One argument or result as it passes.
union Slot {
  std::int32_t integer;
  float single;
  double real;
  std::int8_t boolean;
  void* handle;
  ffi_sarg widened;  // how small integers come back
};

/// How the values of a type pass.
struct TypeRules {
  std::string_view name;  // of the type; "": every other one, an object or array
  ffi_type* passing;
  /// Whether a value can be an argument of the type.
  bool (*accepts)(const State& state, const Type& type, const Value& value);
  /// The argument. A handle comes with a reference that release() drops.
  Slot (*pack)(State& state, const Value& value);
  /// The result; takes over the reference that it carries.
  Value (*unpack)(State& state, const Slot& slot);
};

const TypeRules& rulesOf(const Type& type);

/// A host string as a value: text when it is UTF-8, and "" for null; see Value.
Value valueOf(State& state, zel::REALstring string);
/// The handle of a string, with one reference for the caller; null for an empty one.
zel::REALstring stringOf(State& state, const Value& value);

}  // namespace host::internal
