// Everything that a program can call: methods of plugins, of the host's own classes, the language's
// functions, and methods of the program itself. All are found by their declarations.
#pragma once

#include <memory>
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
  std::vector<bool> byRef;  // by parameter, which are the first slots
};

struct Callable {
  std::string text;  // the declaration as registered or written
  host::Declaration declaration;
  std::vector<Type> parameters;
  Type result;
  std::size_t required = 0;     // how many arguments can't be left out
  std::vector<Value> defaults;  // of those that can, in order
  bool extends = false;         // can be called on its first argument as well
  bool onNil = false;           // can be called on Nil

  // One of these.
  Native native = nullptr;
  std::unique_ptr<host::PreparedCall> plugin;
  std::unique_ptr<UserMethod> method;

  /// The value that an assignment passes last.
  [[nodiscard]] bool assigns() const {
    return !declaration.parameters.empty() && declaration.parameters.back().assigns;
  }
};

using Callables = std::vector<std::unique_ptr<Callable>>;

/// A function or method of the runner's own, as tables of them say it.
struct NativeRow {
  const char* declaration;
  Native function;
  Native setter = nullptr;  // what an assignment calls, the value as the last argument
};

}  // namespace runner
