// From the tree of a body to code that runs: names, types and overloads are settled here, so that
// nothing but values can be wrong when the program runs.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "runner/check/context.h"
#include "runner/check/typed.h"
#include "runner/run/operations.h"
#include "runner/syntax/ast.h"

namespace runner {

/// The body that is being checked: a method's or the program's own.
struct Body {
  const Callable* method = nullptr;        // null: the program
  Scope* scope = nullptr;                  // the innermost one
  std::optional<Type> owner = {};          // the class that it stands in
  std::optional<KnownVariable> self = {};  // of a method of objects
  std::size_t slotCount = 0;
  std::vector<LoopKind> loops = {};  // around the statement
};

class Checker {
 public:
  /// @param scope that of the program or of the method's parameters.
  Checker(Context& context, Scope& scope, const Callable* method);
  /// For the body of a class. @param ofObjects whether it has a Self, which is the first slot.
  Checker(Context& context, Scope& scope, const Callable* method, Type owner, bool ofObjects);

  Action block(const Block& statements);
  Typed expression(const Expression& expression);
  Typed convert(Typed value, Type to);
  /// An expression that has a value of that type.
  Typed converted(const Expression& expression, Type type);
  /// What a new variable holds that has no value of its own.
  ValueCode freshValue(const Variable& variable, Type type);
  Type typeNamed(const TypeName& written) const { return context_.typeNamed(written, scope()); }
  /// A declaration of variables or a constant.
  Action declaration(const Declare& what) { return check(what, {}); }
  /// What sets a property of a class at first; null where the value of its type is good.
  Action propertyValue(const Declare& declared, const Variable& variable);
  /// A variable in the innermost scope: of the whole program where that is the program's.
  KnownVariable& declare(const Word& name, Type type);
  /// A name that is declared, but wrongly.
  void declareBroken(const Word& name);
  [[nodiscard]] std::size_t slotCount() const { return body_.slotCount; }

 private:
  using Arguments = std::vector<ExpressionPtr>;
  struct Match {
    const Callable* callable;
    TypedList arguments;
    std::vector<Reference> references;  // as many
  };
  /// A scope within the innermost one, for the time of its life.
  class Inner {
   public:
    explicit Inner(Body& body)
        : body_(body), before_(body.scope), loops_(body.loops.size()), scope_(body.scope) {
      body.scope = &scope_;
    }
    ~Inner() {
      body_.scope = before_;
      body_.loops.resize(loops_);
    }
    Inner(const Inner&) = delete;
    Inner& operator=(const Inner&) = delete;

   private:
    Body& body_;
    Scope* before_;
    std::size_t loops_;
    Scope scope_;
  };

  // --- statements (check_statements.cc, check_loops.cc)
  Action check(const Statement& statement);
  Action check(const Declare& what, const Place& place);
  Action check(const Assign& what, const Place& place);
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
  Action innerBlock(const Block& statements);
  Action declareOne(const Declare& what, const Variable& variable);
  Action declareLasting(const Variable& variable, Type type, ValueCode value);
  ValueCode caseCode(const CaseLabel& label, const KnownVariable& subject);
  KnownVariable loopVariable(const Variable& variable, const std::optional<TypeName>& type);
  Action loopBody(const Block& body, LoopKind kind);
  Action leaveLoop(LoopKind kind, const Place& place, Flow flow, const char* what);
  /// A variable without a name.
  KnownVariable hidden(Type type);

  // --- what names, members and calls mean (check_targets.cc)
  Target target(const Expression& expression);
  Target target(const Name& name, const Arguments& arguments, const Place& place);
  Target target(const Member& member, const Arguments& arguments, const Place& place);
  Target ofSymbol(const Symbol& symbol, const Word& name, const Arguments& arguments,
                  const Place& place);
  Target ofMember(Type type, const Word& name, const Arguments& arguments, const Place& place);
  Target ofSpace(const Symbol& space, const Word& name, const Arguments& arguments,
                 const Place& place);
  Target ofFunctions(const Candidates& functions, const Word& name, const Arguments& arguments,
                     const Place& place);
  Target ofVariable(const KnownVariable& variable, const Word& name, const Arguments& arguments,
                    const Place& place);
  /// Without those that may not be used here; refuses when none is left.
  Candidates reachable(Candidates candidates, const Word& name) const;
  std::optional<Typed> selfNamed(const Expression& expression) const;
  Target ofClass(Type type, const Word& name, const Arguments& arguments, const Place& place);
  Target ofObject(Typed object, const Word& name, const Arguments& arguments, const Place& place);
  Target elementOf(Typed array, const Arguments& arguments, const Place& place);
  /// Elements of the array that a method without parameters gives are called like the method.
  Target methodOrElement(Target method, const Arguments& arguments);
  /// The module or type that an expression names; null for any other expression.
  const Symbol* spaceNamed(const Expression& expression) const;
  Typed read(Target target);
  Action assign(Target target, Typed value);
  /// Makes what a target stands on be computed once, by the actions, and read as often as need be.
  std::vector<Action> pin(Target& target);
  /// What a target that is pinned means, once more.
  static Target again(const Target& pinned);

  // --- expressions (check_expressions.cc)
  Typed condition(const Expression& expression);
  Typed check(const Literal& what, const Place& place);
  Typed check(const Unary& what, const Place& place);
  Typed check(const Binary& what, const Place& place);
  Typed check(const TypeTest& what, const Place& place);
  Typed check(const Creation& what, const Place& place);
  Typed check(const Choice& what, const Place& place);
  Typed check(const PairOf& what, const Place& place);
  Typed construct(Type type, const Word& name, TypedList arguments, const Place& place);
  /// What a computation of constants gives; nullopt when it raises an exception, as it then does
  /// when the program runs.
  template <class Compute>
  static std::optional<Value> folded(const Compute& compute) {
    try {
      return compute();
    } catch (const HostThrow&) {
      return std::nullopt;
    }
  }
  Typed binary(Operator op, Typed left, Typed right, const Place& place);
  Typed castTo(Type type, const Arguments& arguments, const Place& place);
  /// What looks like a call and takes what no declaration can say.
  std::optional<Typed> special(const Word& name, const Arguments& arguments, const Place& place);
  Typed arrayOf(const Arguments& arguments, const Place& place);

  // --- calls (check_calls.cc)
  /// @param among whose parameters the arguments are for.
  TypedList checkAll(const Arguments& arguments, const Candidates& among = {});
  /// An expression that may be an argument of a ByRef parameter.
  Typed changeable(const Expression& expression);
  /// Refuses what can't be changed as the parameter would change it.
  Reference referenceOf(Typed argument, const Parameter& parameter, const Callable& callable);
  static std::optional<int> fit(const Callable& callable, const TypedList& arguments);
  Match resolve(const Word& name, const Candidates& candidates, TypedList arguments);
  /// Takes the arguments of a ParamArray together.
  TypedList gathered(const Callable& callable, TypedList arguments);
  /// @param direct whether it is just that method, though the object's class may have another.
  Typed makeCall(Match match, ValueCode self, const Place& place, bool direct = false);
  static ValueCode callCode(Match match, ValueCode self, bool direct = false);

  [[nodiscard]] const Scope& scope() const { return *body_.scope; }

  Context& context_;
  Library& library_;
  Machine& machine_;
  const Scope* program_;  // null within a method
  Body body_;
};

}  // namespace runner
