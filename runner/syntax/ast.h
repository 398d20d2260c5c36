// Programs as trees, as the parser makes them of their text.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "host/declaration.h"
#include "host/value.h"
#include "runner/text/operators.h"
#include "runner/text/source.h"

namespace runner {

// --- expressions

struct Expression;
using ExpressionPtr = std::unique_ptr<Expression>;

/// A number, a text, a boolean or Nil (which is std::monostate).
struct Literal {
  host::Value value;
};
struct Name {
  std::string name;
};
/// object.name
struct Member {
  ExpressionPtr object;
  std::string name;
  Place namePlace;
};
/// A call, an element of an array, or a cast: what stands before the parentheses tells.
struct Call {
  ExpressionPtr callee;
  std::vector<ExpressionPtr> arguments;
};
struct Unary {
  Operator op;
  ExpressionPtr operand;
};
struct Binary {
  Operator op;
  Place opPlace;
  ExpressionPtr left;
  ExpressionPtr right;
};
/// object IsA class
struct TypeTest {
  ExpressionPtr object;
  host::Type type;
  Place typePlace;
};
/// New class(arguments)
struct Creation {
  host::Type type;
  Place typePlace;
  std::vector<ExpressionPtr> arguments;
};

struct Expression {
  Place place;
  std::variant<Literal, Name, Member, Call, Unary, Binary, TypeTest, Creation> what;
  int depth = 1;  // of the tree below
};

// --- statements

struct Statement;
using Block = std::vector<Statement>;

/// A variable of a Dim or a constant.
struct Variable {
  std::string name;
  Place place;
  bool array = false;                // name()
  std::vector<ExpressionPtr> bound;  // name(bound); one at most
};
struct Declare {
  std::vector<Variable> variables;
  std::optional<host::Type> type;  // nullopt: that of the initial value
  Place typePlace;
  ExpressionPtr initial;  // nullable; of every variable
  bool constant = false;
};
struct Assign {
  ExpressionPtr target;
  std::optional<Operator> op;  // of "+=" and its kin
  ExpressionPtr value;
};
/// A call that stands alone.
struct Perform {
  ExpressionPtr call;
};
struct Branch {
  ExpressionPtr condition;
  Block body;
};
struct If {
  std::vector<Branch> branches;
  Block otherwise;
};
struct For {
  Variable counter;
  std::optional<host::Type> type;  // of a counter of the loop's own
  Place typePlace;
  ExpressionPtr from, to, step;  // step is nullable
  bool down = false;
  Block body;
};
struct ForEach {
  Variable element;
  std::optional<host::Type> type;
  Place typePlace;
  ExpressionPtr list;
  Block body;
};
/// While, and Do with its condition at the start, the end or nowhere.
struct Loop {
  bool isWhile = false;
  ExpressionPtr whileTrue;   // nullable, as the next two: tested before each turn
  ExpressionPtr untilFirst;  // tested before each turn
  ExpressionPtr untilLast;   // tested after each turn
  Block body;
};
struct CaseLabel {
  ExpressionPtr from;              // a value, the start of a range, or what is compared with
  ExpressionPtr to;                // the end of the range; nullable
  std::optional<Operator> op;      // of "Is > value"
  std::optional<host::Type> type;  // of "IsA class"; everything else is null then
  Place place;
};
struct Case {
  std::vector<CaseLabel> labels;
  Block body;
};
struct Select {
  ExpressionPtr subject;
  std::vector<Case> cases;
  Block otherwise;
};
enum class LoopKind { any, forLoop, whileLoop, doLoop };
struct Exit {
  LoopKind kind = LoopKind::any;
};
struct Continue {
  LoopKind kind = LoopKind::any;
};
struct Return {
  ExpressionPtr value;  // nullable
};
struct Catch {
  std::optional<Variable> variable;
  std::optional<host::Type> type;  // nullopt: every exception
  Place typePlace;
  Block body;
};
struct Try {
  Block body;
  std::vector<Catch> catches;
  Block finally;
};
struct Raise {
  ExpressionPtr exception;
};
struct Redim {
  ExpressionPtr array;
  ExpressionPtr bound;
};

struct Statement {
  Place place;
  std::variant<Declare, Assign, Perform, If, For, ForEach, Loop, Select, Exit, Continue, Return,
               Try, Raise, Redim>
      what;
};

// --- programs

struct FormalParameter {
  host::Parameter declared;
  Place place;
  Place typePlace;
  ExpressionPtr initial;  // of one that may be left out; nullable
};
/// A Sub or Function.
struct Method {
  std::string name;
  Place place;  // of the name
  std::vector<FormalParameter> parameters;
  std::optional<host::Type> result;
  Place resultPlace;
  Block body;
  std::string text;  // its first line
};
struct Program {
  std::vector<std::unique_ptr<Method>> methods;
  Block body;
};

}  // namespace runner
