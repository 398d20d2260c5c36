// Calls of C functions whose types are known from a declaration, prepared once and made often.
#pragma once

#include <array>
#include <cstddef>
#include <ffi.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/internal/passing.h"
#include "runner/run/machine.h"

namespace runner {

/// A text that a program passes again and again, such as a key: a host string that is made once.
class ReadyText {
 public:
  explicit ReadyText(std::string text) : text_(std::move(text)) {}
  ~ReadyText();
  ReadyText(const ReadyText&) = delete;
  ReadyText& operator=(const ReadyText&) = delete;

  /// The string, without a reference for the caller.
  zel::REALstring handle(Machine& machine);

 private:
  std::string text_;
  host::Host* host_ = nullptr;  // that has made it
  zel::REALstring handle_ = nullptr;
};
using ReadyTexts = std::vector<std::unique_ptr<ReadyText>>;

class PluginCall {
 public:
  static constexpr std::size_t kMostParameters = 15;

  /// @param declaration of kMostParameters at most. @param ofInstance whether the object is the
  /// first argument; it isn't for shared methods.
  PluginCall(host::PluginFunction function, const host::Declaration& declaration, bool ofInstance);
  PluginCall(const PluginCall&) = delete;
  PluginCall& operator=(const PluginCall&) = delete;

  /// @param arguments of the declared types. @param ready what is passed instead of them, by
  /// parameter, null where it is the argument. Throws what the function raised in the host.
  Value run(Machine& machine, const Value& self, const Value* arguments,
            const ReadyTexts& ready) const;

 private:
  struct Passing;
  struct Parameter {
    const host::internal::TypeRules* rules;
    bool variant;
  };

  host::PluginFunction function_;
  bool ofInstance_;
  std::vector<Parameter> parameters_;
  const host::internal::TypeRules* result_ = nullptr;  // null: none
  std::vector<ffi_type*> types_;
  ffi_cif cif_{};
};

}  // namespace runner
