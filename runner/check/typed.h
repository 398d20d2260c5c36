// Expressions that were checked.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "runner/library/symbols.h"
#include "runner/text/source.h"

namespace runner {

struct Changeable;

struct Typed {
  Type type;
  ValueCode code;
  Place place;
  std::optional<Value> constant = std::nullopt;          // when the value is known already
  std::optional<KnownVariable> variable = std::nullopt;  // when it is one
  const Callable* method = nullptr;                      // that gives it; nullable
  bool bits = false;                                     // a number by its digits in another base
  // Of an argument that may be changed by the call, and isn't a variable.
  std::shared_ptr<Changeable> changeable = nullptr;
};
using TypedList = std::vector<Typed>;

/// What a name, a member or a call means, before it is read or assigned to.
struct Target {
  enum class What {
    value,     // an expression as any other: nothing can be assigned to it
    variable,  // of the program
    element,   // of an array
    method     // of which reading calls a getter, and an assignment a setter
  };

  What what = What::value;
  Place place;
  Word name = {};                   // of a variable or method
  std::optional<Typed> value = {};  // of What::value
  KnownVariable variable = {};      // of What::variable
  std::optional<Typed> self = {};   // the array of an element; the object of a method
  TypedList arguments = {};         // the index of an element; the arguments of a method
  Candidates getters = {};          // of a method, as are
  Candidates setters = {};
  bool direct = false;  // a method of Super: just that one
};

/// What can be assigned to as well as read, and is computed once for both.
struct Changeable {
  std::vector<Action> pinned;  // compute what the target stands on
  Target target;
};

/// How a place of a program is read: its variable's address. Null when it isn't a variable.
using ReferenceCode = std::unique_ptr<Code<Value*>>;
ReferenceCode referenceTo(const KnownVariable& variable);
template <class Function>
ReferenceCode referenceCode(Function function) {
  return std::make_unique<CodeOf<Value*, Function>>(std::move(function));
}

/// Where an argument of a ByRef parameter is for the time of a call.
struct Reference {
  ReferenceCode place;  // null for an argument of another parameter
  Action after;         // takes to where it belongs what the call has left there; nullable
};

/// An expression that nothing changes but what it stands on is computed with it.
Typed byValue(Typed typed);
void runAll(const std::vector<Action>& actions, Frame& frame);

/// Code that reads a variable or gives a constant.
Typed variableAt(const KnownVariable& variable, const Place& place);
Typed constantAt(Type type, Value value, const Place& place);
/// Code that sets a variable. What was there dies when the variable is settled.
Action store(const KnownVariable& variable, ValueCode value);

}  // namespace runner
