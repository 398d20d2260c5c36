// Calls of functions whose types are known only from a declaration.
#pragma once

#include <ffi.h>
#include <string_view>
#include <vector>

#include "host/declaration.h"
#include "host/host.h"

namespace host::internal {

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

/// One call: the arguments and what they need while it lasts.
class Invocation {
 public:
  explicit Invocation(State& state) : state_(state) {}
  ~Invocation();
  Invocation(const Invocation&) = delete;
  Invocation& operator=(const Invocation&) = delete;

  /// The instance comes first, except for a shared method. The caller keeps it alive.
  void passInstance(zel::REALobject instance);
  void pass(const Type& type, const Value& value);
  /// Calls the function. @param result of the declaration; null: none.
  Value run(PluginFunction function, const Type* result);

 private:
  State& state_;
  std::vector<ffi_type*> types_;
  std::vector<Slot> slots_;
  std::vector<void*> owned_;  // handles of arguments, with a reference each
};

/// A host string as a value: text when it is UTF-8, and "" for null; see Value.
Value valueOf(State& state, zel::REALstring string);
/// The handle of a string, with one reference for the caller; null for an empty one.
zel::REALstring stringOf(State& state, const Value& value);

}  // namespace host::internal
