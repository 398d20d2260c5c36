// Programs as trees, as the parser makes them of their text.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "host/value.h"
#include "runner/text/operators.h"
#include "runner/text/source.h"

namespace runner {

/// A type as it was written, with its parentheses if it is an array.
struct TypeName {
  std::optional<Word> space;  // the module or class that it is in: space.word
  Word word;
  bool array = false;
  Place place;
};

// --- expressions

struct Expression;
using ExpressionPtr = std::unique_ptr<Expression>;

/// A number, a text, a boolean or Nil (which is std::monostate).
struct Literal {
  host::Value value;
  bool bits = false;  // a number by its digits in another base than ten
};
struct Name {
  Word word;
};
/// object.name
struct Member {
  ExpressionPtr object;
  Word name;
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
  TypeName type;
};
/// New class(arguments)
struct Creation {
  TypeName type;
  std::vector<ExpressionPtr> arguments;
};

/// If(condition, yes, no)
struct Choice {
  ExpressionPtr condition, yes, no;
};
/// left : right
struct PairOf {
  ExpressionPtr left, right;
};

struct Expression {
  Place place;
  std::variant<Literal, Name, Member, Call, Unary, Binary, TypeTest, Creation, Choice, PairOf> what;
  int depth = 1;  // of the tree below
};

// --- statements

struct Statement;
using Block = std::vector<Statement>;

/// A variable of a Dim or a constant.
struct Variable {
  Word name;
  bool array = false;                // name()
  std::vector<ExpressionPtr> bound;  // name(bound); one at most
};
struct Declare {
  std::vector<Variable> variables;
  std::optional<TypeName> type;  // nullopt: that of the initial value
  ExpressionPtr initial;         // nullable; of every variable
  bool constant = false;
  bool lasting = false;  // Static: keeps its value from call to call
};
struct Assign {
  ExpressionPtr target;
  std::optional<Operator> op;  // of "+=" and its kin
  ExpressionPtr value;
};
/// A call that stands alone.
struct Perform {
  ExpressionPtr call;
  bool discards = false;  // Call: a value that it gives isn't wanted
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
  std::optional<TypeName> type;  // of a counter of the loop's own
  ExpressionPtr from, to, step;  // step is nullable
  bool down = false;
  Block body;
};
struct ForEach {
  Variable element;
  std::optional<TypeName> type;
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
  ExpressionPtr from;            // a value, the start of a range, or what is compared with
  ExpressionPtr to;              // the end of the range; nullable
  std::optional<Operator> op;    // of "Is > value"
  std::optional<TypeName> type;  // of "IsA class"; everything else is null then
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
  std::optional<TypeName> type;  // nullopt: every exception
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
  Word name;
  TypeName type;
  bool byRef = false;
  bool assigns = false;     // takes the value of an assignment; only the last one can
  bool paramArray = false;  // takes all further arguments; only the last one can
  bool extends = false;     // is what the method is called on; only the first one can
  bool optional = false;    // may be left out, and has the value of its type then
  ExpressionPtr initial;    // of one that may be left out; nullable
};
/// Who may use a member of a class or module.
enum class Access { everybody, family, owner };
/// A Sub or Function.
struct Method {
  Access access = Access::everybody;
  bool shared = false;
  bool global = false;  // of a module: known by its name alone
  Word name;
  std::vector<FormalParameter> parameters;
  std::optional<TypeName> result;
  Block body;
  std::string text;  // its first line
};
/// A property of a class or module: a variable, or a Get and a Set.
struct Property {
  Access access = Access::everybody;
  bool shared = false;
  bool global = false;
  Declare declared;
  std::string text;                        // its first line
  std::unique_ptr<Method> getter, setter;  // nullable
};
struct Constant {
  Access access = Access::everybody;
  bool global = false;
  Declare declared;
};
struct Enumeration {
  bool global = false;
  Word name;
  struct Member {
    Word name;
    ExpressionPtr value;  // nullptr: one more than that before
  };
  std::vector<Member> members;
};
/// A class or module.
struct Space {
  bool isModule = false;
  Word name;
  std::optional<TypeName> super;
  std::vector<Property> properties;
  std::vector<Constant> constants;
  std::vector<Enumeration> enumerations;
  std::vector<std::unique_ptr<Method>> methods;
  std::vector<std::unique_ptr<Space>> spaces;
};
struct Program {
  std::vector<std::unique_ptr<Space>> spaces;
  std::vector<Enumeration> enumerations;
  std::vector<std::unique_ptr<Method>> methods;
  Block body;
};

}  // namespace runner
