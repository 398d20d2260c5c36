// Statements other than loops.
#include <algorithm>
#include <iterator>
#include <utility>

#include "runner/syntax/program_parser.h"
#include "runner/text/diagnostic.h"

namespace runner {
namespace {

using Kind = Token::Kind;

struct Compound {
  std::string_view sign;
  Operator op;
};
constexpr Compound kCompounds[] = {{"+=", Operator::add},
                                   {"-=", Operator::subtract},
                                   {"*=", Operator::multiply},
                                   {"/=", Operator::divide}};

}  // namespace

void ProgramParser::declare(Statement& statement) {
  const bool lasting = reader_.current().is("static");
  reader_.advance();
  Declare declare = declaration();
  declare.lasting = lasting;
  statement.what = std::move(declare);
}

Declare ProgramParser::declaration() {
  Declare declare;
  do {
    declare.variables.push_back(variable("the name of a variable"));
    Variable& added = declare.variables.back();
    if (!added.array && reader_.accept("(")) {
      added.array = true;
      added.bound.push_back(expressions_.expression());
      if (reader_.current().is(","))
        refuseOutside(reader_.current().place, "An array of more than one dimension isn't");
      reader_.expect(")", "\")\"");
    }
  } while (reader_.accept(","));
  if (!reader_.current().is("as") && !reader_.current().is("=")) reader_.fail("\"As\" or \"=\"");
  if (reader_.current().is("as") && reader_.ahead().is("new")) {
    reader_.advance();
    declare.initial = expressions_.expression();
  } else {
    declare.type = optionalType();
    initialValue(declare);
  }
  return declare;
}

void ProgramParser::initialValue(Declare& declare) {
  if (reader_.accept("=")) declare.initial = expressions_.expression();
}

void ProgramParser::constant(Statement& statement) { statement.what = constantDeclaration(); }

Declare ProgramParser::constantDeclaration() {
  reader_.advance();
  Declare declare;
  declare.constant = true;
  declare.variables.push_back(variable("the name of a constant"));
  declare.type = optionalType();
  if (!reader_.current().is("=")) reader_.fail("\"=\" and the constant's value");
  initialValue(declare);
  return declare;
}

Variable ProgramParser::variable(const std::string& expected) {
  Variable variable;
  variable.name = reader_.name(expected);
  variable.array = reader_.emptyParentheses();
  return variable;
}

std::optional<TypeName> ProgramParser::optionalType() {
  if (!reader_.accept("as")) return std::nullopt;
  return reader_.type();
}

void ProgramParser::ifStatement(Statement& statement) {
  const Place begin = reader_.current().place;
  If branches;
  do {
    reader_.advance();  // "If" or "ElseIf"
    Branch branch;
    branch.condition = expressions_.expression();
    reader_.expect("then", "\"Then\"");
    branches.branches.push_back(std::move(branch));
    if (branches.branches.size() == 1 && !reader_.atEndOfLine()) {
      singleLine(branches);
      statement.what = std::move(branches);
      return;
    }
    endOfLine();
    branches.branches.back().body = block();
  } while (reader_.current().is("elseif"));
  if (reader_.accept("else")) {
    endOfLine();
    branches.otherwise = block();
  }
  closeEnd(begin, "If");
  statement.what = std::move(branches);
}

void ProgramParser::singleLine(If& branches) {
  const Nesting nesting(depth_, reader_.current().place);
  branches.branches.back().body.push_back(statement());
  if (reader_.accept("else")) branches.otherwise.push_back(statement());
}

void ProgramParser::selectStatement(Statement& statement) {
  const Place begin = reader_.current().place;
  reader_.advance();
  reader_.expect("case", "\"Case\"");
  Select select;
  select.subject = expressions_.expression();
  endOfLine();
  while (reader_.current().kind == Kind::endOfLine) reader_.advance();
  while (reader_.current().is("case") && !reader_.ahead().is("else")) {
    reader_.advance();
    Case one;
    do one.labels.push_back(caseLabel());
    while (reader_.accept(","));
    endOfLine();
    one.body = block();
    select.cases.push_back(std::move(one));
  }
  if (reader_.accept("else") || (reader_.accept("case") && reader_.accept("else"))) {
    endOfLine();
    select.otherwise = block();
  }
  closeEnd(begin, "Select");
  statement.what = std::move(select);
}

CaseLabel ProgramParser::caseLabel() {
  constexpr Operator kComparisons[] = {Operator::equal,       Operator::different,
                                       Operator::lessOrEqual, Operator::greaterOrEqual,
                                       Operator::less,        Operator::greater};
  CaseLabel label;
  label.place = reader_.current().place;
  if (reader_.accept("isa")) {
    label.type = reader_.type();
    label.place = label.type->place;
    return label;
  }
  if (reader_.accept("is")) {
    for (const Operator op : kComparisons)
      if (!label.op && reader_.accept(keyOf(op))) label.op = op;
    if (!label.op) reader_.fail("a comparison such as \">\"");
  }
  label.from = expressions_.expression();
  if (!label.op && reader_.accept("to")) label.to = expressions_.expression();
  return label;
}

void ProgramParser::tryStatement(Statement& statement) {
  const Place begin = reader_.current().place;
  reader_.advance();
  endOfLine();
  Try whole;
  whole.body = block();
  while (reader_.current().is("catch")) whole.catches.push_back(catchClause());
  if (reader_.accept("finally")) {
    endOfLine();
    whole.finally = block();
  }
  closeEnd(begin, "Try");
  statement.what = std::move(whole);
}

Catch ProgramParser::catchClause() {
  reader_.advance();
  Catch clause;
  if (!reader_.atEndOfLine()) {
    clause.variable = variable("the name of a variable");
    clause.type = optionalType();
  }
  endOfLine();
  clause.body = block();
  return clause;
}

void ProgramParser::returnStatement(Statement& statement) {
  reader_.advance();
  Return whole;
  if (!reader_.atEndOfLine() && !reader_.current().is("else"))
    whole.value = expressions_.expression();
  statement.what = std::move(whole);
}

void ProgramParser::raise(Statement& statement) {
  reader_.advance();
  statement.what = Raise{expressions_.expression()};
}

void ProgramParser::redim(Statement& statement) {
  reader_.advance();
  ExpressionPtr target = expressions_.designator();
  auto* const call = std::get_if<Call>(&target->what);
  if (call == nullptr || call->arguments.size() != 1)
    refuse(target->place, "Redim takes an array and its new upper bound: Redim a(9).");
  ExpressionPtr bound = std::move(call->arguments.front());
  ExpressionPtr array = std::move(call->callee);
  statement.what = Redim{std::move(array), std::move(bound)};
}

void ProgramParser::call(Statement& statement) {
  reader_.advance();
  ExpressionPtr call = expressions_.designator();
  std::vector<ExpressionPtr> arguments = expressions_.bareArguments();
  if (!arguments.empty()) call = expressions_.makeCall(std::move(call), std::move(arguments));
  statement.what = Perform{std::move(call), true};
}

void ProgramParser::nested(Statement& statement) {
  const bool method = reader_.current().is("sub") || reader_.current().is("function");
  refuse(statement.place, std::string(method ? "A Sub or Function" : "A class, module or enum") +
                              " can't stand inside of another block.");
}

void ProgramParser::assignmentOrCall(Statement& statement) {
  ExpressionPtr target = expressions_.designator();
  if (reader_.accept("=")) {
    statement.what = Assign{std::move(target), std::nullopt, expressions_.expression()};
    return;
  }
  for (const Compound& compound : kCompounds) {
    if (!reader_.accept(compound.sign)) continue;
    statement.what = Assign{std::move(target), compound.op, expressions_.expression()};
    return;
  }
  std::vector<ExpressionPtr> arguments = expressions_.bareArguments();
  if (!arguments.empty()) target = expressions_.makeCall(std::move(target), std::move(arguments));
  statement.what = Perform{std::move(target)};
}

}  // namespace runner
