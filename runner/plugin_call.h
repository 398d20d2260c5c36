// Calls of C functions whose types are known from a declaration, prepared once and made often.
#pragma once

#include <array>
#include <cstddef>
#include <ffi.h>
#include <vector>

#include "runner/machine.h"
#include "testkit/host/invoke.h"

namespace runner {

class PluginCall {
 public:
  static constexpr std::size_t kMostParameters = 15;

  /// @param declaration of kMostParameters at most. @param ofInstance whether the object is the
  /// first argument; it isn't for shared methods.
  PluginCall(testkit::PluginFunction function, const testkit::Declaration& declaration,
             bool ofInstance);
  PluginCall(const PluginCall&) = delete;
  PluginCall& operator=(const PluginCall&) = delete;

  /// @param arguments of the declared types. Throws what the function raised in the host.
  Value run(Machine& machine, const Value& self, const Value* arguments) const;

 private:
  struct Passing;
  struct Parameter {
    const testkit::host::TypeRules* rules;
    bool variant;
  };

  testkit::PluginFunction function_;
  bool ofInstance_;
  std::vector<Parameter> parameters_;
  const testkit::host::TypeRules* result_ = nullptr;  // null: none
  std::vector<ffi_type*> types_;
  ffi_cif cif_{};
};

}  // namespace runner
