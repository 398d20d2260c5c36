// From a program's tree to code that runs: names, types and overloads are settled here, so that
// nothing but values can be wrong when the program runs.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "runner/check/scope.h"
#include "runner/library/library.h"
#include "runner/run/operations.h"
#include "runner/syntax/ast.h"
#include "runner/text/diagnostic.h"

namespace runner {

/// An expression that was checked.
struct Typed {
  Type type;
  ValueCode code;
  Place place;
  std::optional<Value> constant;  // when the value is known already
  std::string declaration = {};   // of the method that gives it; "" for none
};
using TypedList = std::vector<Typed>;

/// A program that was checked.
struct Executable {
  Action body;
  std::size_t slotCount = 0;
  std::vector<Diagnostic> diagnostics;  // when there are any, it can't run
};

class Checker {
 public:
  /// @param globals the variables of what ran before; those of the program are added.
  Checker(Library& library, Machine& machine, Scope& globals, const Source& source);

  Executable program(const Program& program);
  /// The type that an expression would have; used for completion. nullopt when it is wrong.
  std::optional<Type> typeOfExpression(const Expression& expression);
  /// Code that gives an expression's value as a text for people.
  Executable shown(const Expression& expression);

 private:
  using Arguments = std::vector<ExpressionPtr>;
  /// A method of the program, and what is called for it.
  struct Declared {
    const Method* method;
    Callable* callable;
  };
  struct Match {
    const Callable* callable;
    TypedList arguments;
  };

  // --- program (check_program.cc)
  void declareMethod(const Method& method);
  void compileMethod(const Method& method, Callable& callable);
  Action block(const Block& statements);
  /// Runs a check whose problem, if it has one, must not hide those of other statements.
  template <class Check>
  void guarded(const Check& check) {
    const std::size_t depth = scope_.depth();
    const std::size_t loops = loops_.size();
    try {
      check();
    } catch (const Problem& problem) {
      report(problem);
      while (scope_.depth() > depth) scope_.leave();
      loops_.resize(loops);
    }
  }
  void report(const Problem& problem);
  Type typeNamed(const host::Type& written, const Place& place);
  KnownVariable& declare(const Variable& variable, const Type& type);
  std::size_t newSlot() { return slotCount_++; }

  // --- statements (check_statements.cc, check_loops.cc)
  Action check(const Statement& statement);
  Action check(const Declare& what, const Place& place);
  Action check(const Perform& what, const Place& place);
  Action check(const If& what, const Place& place);
  Action check(const Select& what, const Place& place);
  Action check(const Return& what, const Place& place);
  Action check(const Raise& what, const Place& place);
  Action check(const Try& what, const Place& place);
  Action check(const Redim& what, const Place& place);
  Action check(const For& what, const Place& place);
  Action check(const ForEach& what, const Place& place);
  Action check(const Loop& what, const Place& place);
  Action check(const Exit& what, const Place& place);
  Action check(const Continue& what, const Place& place);
  Action check(const Assign& what, const Place& place);
  Action declareOne(const Declare& what, const Variable& variable);
  ValueCode freshValue(const Declare& what, const Variable& variable, const Type& type);
  ValueCode caseCode(const CaseLabel& label, const KnownVariable& subject);
  const KnownVariable& loopVariable(const Variable& variable, const std::optional<host::Type>& type,
                                    const Place& place);
  /// A variable without a name.
  KnownVariable hidden(const Type& type);
  Action loopBody(const Block& body, LoopKind kind);
  Action leaveLoop(LoopKind kind, const Place& place, Flow flow, const char* what);
  void refuseConstant(const KnownVariable& variable, const Place& place);

  // --- assignments (check_assignments.cc)
  Action assignTo(const Expression& target, Typed value);
  Action assignName(const Name& name, const Place& place, Typed value);
  Action assignMember(const Member& member, const Arguments& arguments, const Place& place,
                      Typed value);
  Action assignCall(const Call& call, const Place& place, Typed value);
  Action callSetter(const std::string& name, const Place& place, const Candidates& setters,
                    const Candidates& getters, const Arguments& arguments, Typed value,
                    ValueCode self);
  static Action store(const KnownVariable& variable, ValueCode value);

  // --- expressions (check_expressions.cc)
  Typed expression(const Expression& expression);
  Typed condition(const Expression& expression);
  Typed number(const Expression& expression, const Type& type);
  Typed check(const Literal& what, const Place& place);
  Typed check(const Name& what, const Place& place);
  Typed check(const Member& what, const Place& place);
  Typed check(const Call& what, const Place& place);
  Typed check(const Unary& what, const Place& place);
  Typed check(const Binary& what, const Place& place);
  Typed check(const TypeTest& what, const Place& place);
  Typed check(const Creation& what, const Place& place);
  Typed binary(Operator op, Typed left, Typed right, const Place& place);
  Typed variable(const KnownVariable& known, const Place& place);
  Typed convert(Typed value, const Type& to);
  Typed element(Typed array, const Arguments& arguments, const Place& place);

  // --- calls (check_calls.cc)
  Typed callName(const Name& name, const Arguments& arguments, const Place& place);
  Typed callMember(const Member& member, const Arguments& arguments, const Place& place);
  Typed castTo(const Type& type, const Arguments& arguments, const Place& place);
  Typed arrayOf(const Arguments& arguments, const Place& place);
  std::optional<Typed> special(const Name& name, const Arguments& arguments, const Place& place);
  Candidates methodsOf(const Type& type, const std::string& name);
  /// The class that a name stands for, unless a variable or function hides it; "" for none.
  std::string classNamed(const Expression& expression);
  Match resolve(const std::string& name, const Place& place, const Candidates& candidates,
                TypedList arguments);
  std::optional<int> fit(const Callable& callable, const TypedList& arguments);
  [[noreturn]] void failToMatch(const std::string& name, const Place& place,
                                const Candidates& candidates, const TypedList& arguments);
  /// The same for the only one that can have been meant.
  [[noreturn]] void failToFit(const std::string& name, const Place& place, const Callable& only,
                              const TypedList& arguments);
  Typed makeCall(Match match, ValueCode self, const Place& place);
  ValueCode callCode(Match match, ValueCode self);
  ValueCode userCall(const Callable& callable, TypedList arguments);
  TypedList checkAll(const Arguments& arguments);
  Typed callOrIndex(const std::string& name, const Place& namePlace, const Candidates& candidates,
                    const Arguments& arguments, ValueCode self, const Place& place);
  [[noreturn]] void failToFindMember(const Member& member, const Type& type);
  [[noreturn]] void failToFindName(const std::string& name, const Place& place,
                                   const std::string& what);

  Library& library_;
  Machine& machine_;
  Scope& globals_;
  const Source& source_;
  Scope scope_;
  std::vector<Diagnostic> diagnostics_;
  std::vector<Declared> declared_;
  const Callable* method_ = nullptr;  // null: the program's body
  std::size_t slotCount_ = 0;
  std::vector<LoopKind> loops_;
};

/// How a place of a program is read: its variable's address. Null when it isn't a variable.
using ReferenceCode = std::unique_ptr<Code<Value*>>;
ReferenceCode referenceTo(const KnownVariable& variable);

}  // namespace runner
