// Everything that a program can call: methods of plugins, of the host's own classes, the language's
// functions, and methods of the program itself. All are found by their declarations.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/prepared_call.h"
#include "runner/run/instances.h"
#include "runner/run/machine.h"
#include "runner/run/types.h"

namespace runner {

/// A function of the runner's own. @param self the object or, for a shared method or a function,
/// nothing. @param arguments as many as are declared, of the declared types.
using Native = Value (*)(Machine& machine, const Value& self, const Value* arguments);

struct Parameter {
  Type type;
  bool byRef = false;
  bool assigns = false;               // takes the value of an assignment; only the last one can
  bool paramArray = false;            // takes all further arguments; only the last one can
  std::optional<Value> initial = {};  // of one that can be left out, as all behind it can
};

/// Who may use a member of a class: everybody, its class and those below, or its class alone.
enum class Reach { everybody, family, owner };

struct Callable {
  std::string name;
  std::string text;  // the declaration as registered or written
  std::vector<Parameter> parameters;
  Type result;
  bool extends = false;  // can be called on its first argument as well
  bool onNil = false;    // can be called on Nil
  Reach reach = Reach::everybody;
  std::optional<Type> owner;  // of a member of a program's class

  // One of these.
  Native native = nullptr;
  std::unique_ptr<host::PreparedCall> plugin;
  std::unique_ptr<UserMethod> method;
  std::optional<std::size_t> field;  // a property of objects: reads or sets what is in that slot
  Value* global = nullptr;           // a shared property: reads or sets it

  /// Of a method of objects: its slot among the methods of the class, which the classes below it
  /// may fill anew.
  std::optional<std::size_t> slot;
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
