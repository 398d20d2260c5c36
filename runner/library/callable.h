// Everything that a program can call: methods of plugins, of the host's own classes, the language's
// functions, and methods of the program itself. All are found by their declarations.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/prepared_call.h"
#include "runner/run/machine.h"
#include "runner/run/types.h"

namespace runner {

/// A function of the runner's own. @param self the object or, for a shared method or a function,
/// nothing. @param arguments as many as are declared, of the declared types.
using Native = Value (*)(Machine& machine, const Value& self, const Value* arguments);

/// A Sub or Function of the program, as it runs.
struct UserMethod {
  std::string name;
  std::size_t slotCount = 0;
  Action body;
  Value initialResult;
};

struct Parameter {
  Type type;
  bool byRef = false;
  bool assigns = false;          // takes the value of an assignment; only the last one can
  std::optional<Value> initial;  // of one that can be left out, as all behind it can
};

struct Callable {
  std::string name;
  std::string text;  // the declaration as registered or written
  std::vector<Parameter> parameters;
  Type result;
  bool extends = false;  // can be called on its first argument as well
  bool onNil = false;    // can be called on Nil

  // One of these.
  Native native = nullptr;
  std::unique_ptr<host::PreparedCall> plugin;
  std::unique_ptr<UserMethod> method;

  /// Whether an assignment calls it.
  [[nodiscard]] bool assigns() const { return !parameters.empty() && parameters.back().assigns; }
  /// How many arguments can't be left out.
  [[nodiscard]] std::size_t required() const;
  /// Whether it takes just what another one takes.
  [[nodiscard]] bool takesTheSame(const Callable& other) const;
};

using Callables = std::vector<std::unique_ptr<Callable>>;
/// Those that a call can mean, the one to prefer among equals first.
using Candidates = std::vector<const Callable*>;

/// A function or method of the runner's own, as tables of them say it.
struct NativeRow {
  const char* declaration;
  Native function;
  Native setter = nullptr;  // what an assignment calls, the value as the last argument
};

}  // namespace runner
