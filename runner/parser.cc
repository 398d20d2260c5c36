#include "runner/parser.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "runner/diagnostic.h"
#include "runner/expression_parser.h"

namespace runner {
namespace {

using Kind = Token::Kind;

// The words that end a block; whose they are is for whoever began the block to see.
constexpr std::string_view kEnds[] = {"end",  "else", "elseif", "case",   "next",
                                      "wend", "loop", "catch",  "finally"};

struct Compound {
  std::string_view sign;
  Operator op;
};
constexpr Compound kCompounds[] = {{"+=", Operator::add},
                                   {"-=", Operator::subtract},
                                   {"*=", Operator::multiply},
                                   {"/=", Operator::divide}};

class Parser {
 public:
  Parser(const Source& source, TokenReader& reader)
      : source_(source), reader_(reader), expressions_(reader) {}

  Program run();

 private:
  using StatementParser = void (Parser::*)(Statement& statement);
  struct Keyword {
    std::string_view word;
    StatementParser parse;
  };
  static const std::array<Keyword, 17>& keywords();

  // blocks
  Block block();
  void line(Block& statements);
  Statement statement();
  bool endsBlock();
  void close(const Place& begin, std::string_view what, std::string_view closing);
  void closeEnd(const Place& begin, std::string_view what);
  void endOfLine();
  std::string opener(const Place& begin, std::string_view what);

  // statements; the first word is still there
  void declare(Statement& statement);
  void constant(Statement& statement);
  void ifStatement(Statement& statement);
  void forStatement(Statement& statement);
  void whileStatement(Statement& statement);
  void doStatement(Statement& statement);
  void selectStatement(Statement& statement);
  void tryStatement(Statement& statement);
  void exit(Statement& statement);
  void continueStatement(Statement& statement);
  void returnStatement(Statement& statement);
  void raise(Statement& statement);
  void redim(Statement& statement);
  void call(Statement& statement);
  void nested(Statement& statement);
  void assignmentOrCall(Statement& statement);

  // their parts
  void counted(Statement& statement, const Place& begin);
  void forEach(Statement& statement, const Place& begin);
  void singleLine(If& branches);
  Variable variable(const std::string& expected);
  std::optional<testkit::Type> optionalType(Place* place);
  void initialValue(Declare& declare);
  CaseLabel caseLabel();
  Catch catchClause();
  LoopKind loopKind();
  std::unique_ptr<Method> method();
  FormalParameter parameter();

  const Source& source_;
  TokenReader& reader_;
  ExpressionParser expressions_;
  int depth_ = 0;
};

const std::array<Parser::Keyword, 17>& Parser::keywords() {
  static constexpr std::array<Keyword, 17> kKeywords = {{
      {"dim", &Parser::declare},
      {"var", &Parser::declare},
      {"const", &Parser::constant},
      {"if", &Parser::ifStatement},
      {"for", &Parser::forStatement},
      {"while", &Parser::whileStatement},
      {"do", &Parser::doStatement},
      {"select", &Parser::selectStatement},
      {"try", &Parser::tryStatement},
      {"exit", &Parser::exit},
      {"continue", &Parser::continueStatement},
      {"return", &Parser::returnStatement},
      {"raise", &Parser::raise},
      {"redim", &Parser::redim},
      {"call", &Parser::call},
      {"sub", &Parser::nested},
      {"function", &Parser::nested},
  }};
  return kKeywords;
}

Program Parser::run() {
  Program program;
  while (!reader_.atEnd()) {
    if (reader_.current().is("sub") || reader_.current().is("function")) {
      program.methods.push_back(method());
    } else if (endsBlock()) {
      throw Problem{reader_.current().place,
                    "\"" + reader_.current().text + "\" closes nothing here.",
                    {},
                    ""};
    } else {
      line(program.body);
    }
  }
  return program;
}

// --- blocks

bool Parser::endsBlock() {
  return std::any_of(std::begin(kEnds), std::end(kEnds),
                     [this](std::string_view end) { return reader_.current().is(end); });
}

Block Parser::block() {
  const Nesting nesting(depth_, reader_.current().place);
  Block statements;
  while (!reader_.atEnd() && !endsBlock()) line(statements);
  return statements;
}

void Parser::line(Block& statements) {
  if (!reader_.atEndOfLine()) statements.push_back(statement());
  endOfLine();
}

Statement Parser::statement() {
  Statement statement;
  statement.place = reader_.current().place;
  const auto* const found =
      std::find_if(keywords().begin(), keywords().end(),
                   [this](const Keyword& keyword) { return reader_.current().is(keyword.word); });
  if (found != keywords().end()) {
    (this->*found->parse)(statement);
  } else {
    assignmentOrCall(statement);
  }
  return statement;
}

void Parser::endOfLine() {
  if (!reader_.atEndOfLine()) reader_.fail("the end of the line");
  reader_.advance();
}

std::string Parser::opener(const Place& begin, std::string_view what) {
  return ", which closes the \"" + std::string(what) + "\" of line " +
         std::to_string(source_.line(begin));
}

void Parser::close(const Place& begin, std::string_view what, std::string_view closing) {
  reader_.expect(closing, "\"" + std::string(closing) + "\"" + opener(begin, what));
}

void Parser::closeEnd(const Place& begin, std::string_view what) {
  const std::string whole = "\"End " + std::string(what) + "\"";
  if (reader_.current().is("end") && !reader_.ahead().is(what) &&
      reader_.ahead().kind == Kind::word)
    reader_.advance();
  else if (reader_.accept("end") && (reader_.accept(what) || reader_.atEndOfLine()))
    return;
  reader_.fail(whole + opener(begin, what));
}

// --- statements

void Parser::declare(Statement& statement) {
  reader_.advance();
  Declare declare;
  do {
    declare.variables.push_back(variable("the name of a variable"));
    Variable& added = declare.variables.back();
    if (!added.array && reader_.accept("(")) {
      added.array = true;
      added.bound.push_back(expressions_.expression());
      reader_.expect(")", "\")\"");
    }
  } while (reader_.accept(","));
  if (!reader_.current().is("as") && !reader_.current().is("=")) reader_.fail("\"As\" or \"=\"");
  if (reader_.current().is("as") && reader_.ahead().is("new")) {
    reader_.advance();
    declare.initial = expressions_.expression();
  } else {
    declare.type = optionalType(&declare.typePlace);
    initialValue(declare);
  }
  statement.what = std::move(declare);
}

void Parser::initialValue(Declare& declare) {
  if (reader_.accept("=")) declare.initial = expressions_.expression();
}

void Parser::constant(Statement& statement) {
  reader_.advance();
  Declare declare;
  declare.constant = true;
  declare.variables.push_back(variable("the name of a constant"));
  declare.type = optionalType(&declare.typePlace);
  if (!reader_.current().is("=")) reader_.fail("\"=\" and the constant's value");
  initialValue(declare);
  statement.what = std::move(declare);
}

Variable Parser::variable(const std::string& expected) {
  const Token word = reader_.name(expected);
  Variable variable;
  variable.name = word.text;
  variable.place = word.place;
  variable.array = reader_.emptyParentheses();
  return variable;
}

std::optional<testkit::Type> Parser::optionalType(Place* place) {
  if (!reader_.accept("as")) return std::nullopt;
  return reader_.type(place);
}

void Parser::ifStatement(Statement& statement) {
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

void Parser::singleLine(If& branches) {
  const Nesting nesting(depth_, reader_.current().place);
  branches.branches.back().body.push_back(statement());
  if (reader_.accept("else")) branches.otherwise.push_back(statement());
}

void Parser::forStatement(Statement& statement) {
  const Place begin = reader_.current().place;
  reader_.advance();
  if (reader_.accept("each")) {
    forEach(statement, begin);
  } else {
    counted(statement, begin);
  }
}

void Parser::counted(Statement& statement, const Place& begin) {
  For loop;
  loop.counter = variable("the name of a variable");
  loop.type = optionalType(&loop.typePlace);
  reader_.expect("=", "\"=\"");
  loop.from = expressions_.expression();
  loop.down = reader_.accept("downto");
  if (!loop.down) reader_.expect("to", "\"To\" or \"DownTo\"");
  loop.to = expressions_.expression();
  if (reader_.accept("step")) loop.step = expressions_.expression();
  endOfLine();
  loop.body = block();
  close(begin, "For", "Next");
  if (!reader_.atEndOfLine()) {
    const Token word = reader_.name("the end of the line");
    if (!testkit::sameName(word.text, loop.counter.name))
      throw Problem{word.place, "This loop's variable is \"" + loop.counter.name + "\".", {}, ""};
  }
  statement.what = std::move(loop);
}

void Parser::forEach(Statement& statement, const Place& begin) {
  ForEach loop;
  loop.element = variable("the name of a variable");
  loop.type = optionalType(&loop.typePlace);
  reader_.expect("in", "\"In\"");
  loop.list = expressions_.expression();
  endOfLine();
  loop.body = block();
  close(begin, "For Each", "Next");
  if (!reader_.atEndOfLine()) reader_.name("the end of the line");
  statement.what = std::move(loop);
}

void Parser::whileStatement(Statement& statement) {
  const Place begin = reader_.current().place;
  reader_.advance();
  Loop loop;
  loop.isWhile = true;
  loop.whileTrue = expressions_.expression();
  endOfLine();
  loop.body = block();
  close(begin, "While", "Wend");
  statement.what = std::move(loop);
}

void Parser::doStatement(Statement& statement) {
  const Place begin = reader_.current().place;
  reader_.advance();
  Loop loop;
  if (reader_.accept("until")) loop.untilFirst = expressions_.expression();
  endOfLine();
  loop.body = block();
  close(begin, "Do", "Loop");
  if (reader_.accept("until")) loop.untilLast = expressions_.expression();
  statement.what = std::move(loop);
}

void Parser::selectStatement(Statement& statement) {
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

CaseLabel Parser::caseLabel() {
  constexpr std::pair<std::string_view, Operator> kComparisons[] = {
      {"=", Operator::equal},           {"<>", Operator::different}, {"<=", Operator::lessOrEqual},
      {">=", Operator::greaterOrEqual}, {"<", Operator::less},       {">", Operator::greater}};
  CaseLabel label;
  label.place = reader_.current().place;
  if (reader_.accept("isa")) {
    Place place;
    label.type = reader_.type(&place);
    label.place = place;
    return label;
  }
  if (reader_.accept("is")) {
    for (const auto& [sign, op] : kComparisons)
      if (!label.op && reader_.accept(sign)) label.op = op;
    if (!label.op) reader_.fail("a comparison such as \">\"");
  }
  label.from = expressions_.expression();
  if (!label.op && reader_.accept("to")) label.to = expressions_.expression();
  return label;
}

void Parser::tryStatement(Statement& statement) {
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

Catch Parser::catchClause() {
  reader_.advance();
  Catch clause;
  if (!reader_.atEndOfLine()) {
    clause.variable = variable("the name of a variable");
    clause.type = optionalType(&clause.typePlace);
  }
  endOfLine();
  clause.body = block();
  return clause;
}

LoopKind Parser::loopKind() {
  if (reader_.accept("for")) return LoopKind::forLoop;
  if (reader_.accept("while")) return LoopKind::whileLoop;
  return reader_.accept("do") ? LoopKind::doLoop : LoopKind::any;
}

void Parser::exit(Statement& statement) {
  reader_.advance();
  if (reader_.accept("sub") || reader_.accept("function")) {
    statement.what = Return{};
  } else {
    statement.what = Exit{loopKind()};
  }
}

void Parser::continueStatement(Statement& statement) {
  reader_.advance();
  statement.what = Continue{loopKind()};
}

void Parser::returnStatement(Statement& statement) {
  reader_.advance();
  Return whole;
  if (!reader_.atEndOfLine() && !reader_.current().is("else"))
    whole.value = expressions_.expression();
  statement.what = std::move(whole);
}

void Parser::raise(Statement& statement) {
  reader_.advance();
  statement.what = Raise{expressions_.expression()};
}

void Parser::redim(Statement& statement) {
  reader_.advance();
  ExpressionPtr target = expressions_.designator();
  auto* const call = std::get_if<Call>(&target->what);
  if (call == nullptr || call->arguments.size() != 1)
    throw Problem{
        target->place, "Redim takes an array and its new upper bound: Redim a(9).", {}, ""};
  ExpressionPtr bound = std::move(call->arguments.front());
  ExpressionPtr array = std::move(call->callee);
  statement.what = Redim{std::move(array), std::move(bound)};
}

void Parser::call(Statement& statement) {
  reader_.advance();
  statement.what = Perform{expressions_.designator()};
}

void Parser::nested(Statement& statement) {
  throw Problem{statement.place, "A Sub or Function can't stand inside of another block.", {}, ""};
}

void Parser::assignmentOrCall(Statement& statement) {
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

// --- methods

std::unique_ptr<Method> Parser::method() {
  const Place begin = reader_.current().place;
  const bool function = reader_.current().is("function");
  const std::string_view what = function ? "Function" : "Sub";
  reader_.advance();
  auto method = std::make_unique<Method>();
  const Token word = reader_.name("the name of a method");
  method->name = word.text;
  method->place = word.place;
  if (reader_.accept("(") && !reader_.accept(")")) {
    do method->parameters.push_back(parameter());
    while (reader_.accept(","));
    reader_.expect(")", "\",\" or \")\"");
  }
  if (function) {
    if (!reader_.current().is("as")) reader_.fail("\"As\" and the type of the result");
    method->result = optionalType(&method->resultPlace);
  }
  method->text = source_.text(span(begin, reader_.lastPlace()));
  endOfLine();
  method->body = block();
  closeEnd(begin, what);
  endOfLine();
  return method;
}

FormalParameter Parser::parameter() {
  FormalParameter parameter;
  parameter.declared.assigns = reader_.accept("assigns");
  parameter.declared.byRef = reader_.accept("byref");
  if (!parameter.declared.byRef) reader_.accept("byval");
  const Variable named = variable("the name of a parameter");
  parameter.declared.name = named.name;
  parameter.place = named.place;
  reader_.expect("as", "\"As\" and the parameter's type");
  parameter.declared.type = reader_.type(&parameter.typePlace);
  parameter.declared.type.array = parameter.declared.type.array || named.array;
  if (reader_.accept("=")) parameter.initial = expressions_.expression();
  return parameter;
}

}  // namespace

Program parse(const Source& source) {
  TokenReader reader(tokens(source));
  return Parser(source, reader).run();
}

ExpressionPtr parseExpression(const Source& source) {
  TokenReader reader(tokens(source));
  ExpressionPtr expression = ExpressionParser(reader).expression();
  while (reader.current().kind == Kind::endOfLine) reader.advance();
  if (!reader.atEnd()) reader.fail("the end of the expression");
  return expression;
}

bool isUnfinished(const Source& source) {
  try {
    TokenReader reader(tokens(source));
    try {
      Parser(source, reader).run();
    } catch (const Problem&) {
      return reader.ranOut();
    }
  } catch (const Problem&) {
    return false;
  }
  return false;
}

}  // namespace runner
