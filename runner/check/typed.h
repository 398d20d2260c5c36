// Expressions that were checked.
#pragma once

#include <optional>
#include <vector>

#include "runner/library/symbols.h"
#include "runner/text/source.h"

namespace runner {

struct Typed {
  Type type;
  ValueCode code;
  Place place;
  std::optional<Value> constant = std::nullopt;          // when the value is known already
  std::optional<KnownVariable> variable = std::nullopt;  // when it is one
  const Callable* method = nullptr;                      // that gives it; nullable
  bool bits = false;                                     // a number by its digits in another base
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

/// How a place of a program is read: its variable's address. Null when it isn't a variable.
using ReferenceCode = std::unique_ptr<Code<Value*>>;
ReferenceCode referenceTo(const KnownVariable& variable);

/// Code that reads a variable or gives a constant.
Typed variableAt(const KnownVariable& variable, const Place& place);
Typed constantAt(Type type, Value value, const Place& place);
/// Code that sets a variable. What was there dies when the variable is settled.
Action store(const KnownVariable& variable, ValueCode value);

}  // namespace runner
