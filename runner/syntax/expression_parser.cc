#include "runner/syntax/expression_parser.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <type_traits>
#include <utility>

namespace runner {
namespace {

using Kind = Token::Kind;

using Level = std::vector<Operator>;

// From those that bind least; operators of one level are taken from the left.
const std::array<Level, 5>& levels() {
  static const std::array<Level, 5> kLevels = {{
      {Operator::eitherOf, Operator::oneOf},
      {Operator::bothOf},
      {Operator::equal, Operator::different, Operator::lessOrEqual, Operator::greaterOrEqual,
       Operator::less, Operator::greater, Operator::is},
      {Operator::add, Operator::subtract},
      {Operator::multiply, Operator::divide, Operator::divideWhole, Operator::modulo},
  }};
  return kLevels;
}

std::optional<Operator> operatorAt(const Token& token, const Level& level) {
  const auto found = std::find_if(level.begin(), level.end(),
                                  [&token](Operator op) { return token.is(keyOf(op)); });
  if (found == level.end()) return std::nullopt;
  return *found;
}

int depthOf(const ExpressionPtr& child) { return child == nullptr ? 0 : child->depth; }

int depthOf(const std::vector<ExpressionPtr>& children) {
  int deepest = 0;
  for (const ExpressionPtr& child : children) deepest = std::max(deepest, depthOf(child));
  return deepest;
}

int below(const Literal& /*what*/) { return 0; }
int below(const Name& /*what*/) { return 0; }
int below(const Member& what) { return depthOf(what.object); }
int below(const Call& what) { return std::max(depthOf(what.callee), depthOf(what.arguments)); }
int below(const Unary& what) { return depthOf(what.operand); }
int below(const Binary& what) { return std::max(depthOf(what.left), depthOf(what.right)); }
int below(const TypeTest& what) { return depthOf(what.object); }
int below(const Creation& what) { return depthOf(what.arguments); }
int below(const Choice& what) {
  return std::max({depthOf(what.condition), depthOf(what.yes), depthOf(what.no)});
}
int below(const PairOf& what) { return std::max(depthOf(what.left), depthOf(what.right)); }

// Whether a token can begin an argument of a call without parentheses.
bool beginsExpression(const Token& token) {
  if (token.kind == Kind::number || token.kind == Kind::text) return true;
  if (token.kind == Kind::sign) return token.is("(") || token.is("-");
  constexpr std::string_view kStarts[] = {"not", "new", "nil", "true", "false", "if"};
  return token.kind == Kind::word &&
         (!isReserved(token.key) ||
          std::any_of(std::begin(kStarts), std::end(kStarts),
                      [&token](std::string_view start) { return token.is(start); }));
}

}  // namespace

template <class What>
ExpressionPtr ExpressionParser::make(const Place& place, What what) {
  const int depth = below(what) + 1;
  checkDepth(depth, place);
  auto made = std::make_unique<Expression>();
  made->place = place;
  made->what = std::move(what);
  made->depth = depth;
  return made;
}

ExpressionPtr ExpressionParser::expression() {
  const Nesting nesting(depth_, reader_.current().place);
  return binary(0);
}

// Within parentheses ":" joins the two values of a Pair; elsewhere it ends a statement.
ExpressionPtr ExpressionParser::pair() {
  ExpressionPtr left = expression();
  if (!reader_.accept(":")) return left;
  ExpressionPtr right = pair();
  const Place place = span(left->place, right->place);
  return make(place, PairOf{std::move(left), std::move(right)});
}

ExpressionPtr ExpressionParser::choice() {
  const Place begin = reader_.current().place;
  reader_.advance();
  Choice choice;
  reader_.expect("(", "\"(\"");
  choice.condition = expression();
  reader_.expect(",", "\",\"");
  choice.yes = expression();
  reader_.expect(",", "\",\"");
  choice.no = expression();
  reader_.expect(")", "\")\"");
  return make(span(begin, reader_.lastPlace()), std::move(choice));
}

ExpressionPtr ExpressionParser::binary(std::size_t level) {
  if (level == levels().size()) return unary();
  ExpressionPtr left = binary(level + 1);
  while (const std::optional<Operator> op = operatorAt(reader_.current(), levels()[level])) {
    const Place opPlace = reader_.current().place;
    reader_.advance();
    ExpressionPtr right = binary(level + 1);
    const Place place = span(left->place, right->place);
    left = make(place, Binary{*op, opPlace, std::move(left), std::move(right)});
  }
  return left;
}

ExpressionPtr ExpressionParser::unary() {
  while (reader_.accept("+")) continue;
  const Token first = reader_.current();
  const bool negates = first.is("-");
  if (!negates && !first.is("not")) return power();
  const Nesting nesting(depth_, first.place);
  reader_.advance();
  ExpressionPtr operand = unary();
  const Place place = span(first.place, operand->place);
  return make(place, Unary{negates ? Operator::negate : Operator::opposite, std::move(operand)});
}

ExpressionPtr ExpressionParser::power() {
  ExpressionPtr left = typeTest();
  while (reader_.current().is("^")) {
    const Place opPlace = reader_.current().place;
    reader_.advance();
    ExpressionPtr right = reader_.current().is("-") ? unary() : typeTest();
    const Place place = span(left->place, right->place);
    left = make(place, Binary{Operator::power, opPlace, std::move(left), std::move(right)});
  }
  return left;
}

ExpressionPtr ExpressionParser::typeTest() {
  ExpressionPtr object = postfix();
  while (reader_.accept("isa")) {
    TypeName type = reader_.type();
    const Place place = span(object->place, type.place);
    object = make(place, TypeTest{std::move(object), std::move(type)});
  }
  return object;
}

ExpressionPtr ExpressionParser::postfix() {
  ExpressionPtr object = primary();
  for (;;) {
    if (reader_.accept("(")) {
      std::vector<ExpressionPtr> arguments = argumentsUntil(")");
      object = makeCall(std::move(object), std::move(arguments));
    } else if (reader_.accept(".")) {
      Word word = reader_.anyWord("the name of a method or property");
      const Place place = span(object->place, word.place);
      object = make(place, Member{std::move(object), std::move(word)});
    } else {
      return object;
    }
  }
}

ExpressionPtr ExpressionParser::makeCall(ExpressionPtr callee,
                                         std::vector<ExpressionPtr> arguments) {
  const Place place = span(callee->place, reader_.lastPlace());
  return make(place, Call{std::move(callee), std::move(arguments)});
}

ExpressionPtr ExpressionParser::designator() {
  const Token& first = reader_.current();
  if (first.kind != Kind::word && !first.is("(")) reader_.fail("a statement");
  return postfix();
}

std::vector<ExpressionPtr> ExpressionParser::argumentsUntil(const char* closing) {
  std::vector<ExpressionPtr> arguments;
  if (reader_.accept(closing)) return arguments;
  do arguments.push_back(pair());
  while (reader_.accept(","));
  reader_.expect(closing, "\",\" or \"" + std::string(closing) + "\"");
  return arguments;
}

std::vector<ExpressionPtr> ExpressionParser::bareArguments() {
  std::vector<ExpressionPtr> arguments;
  if (!beginsExpression(reader_.current())) return arguments;
  do arguments.push_back(expression());
  while (reader_.accept(","));
  return arguments;
}

ExpressionPtr ExpressionParser::literal(host::Value value, bool bits) {
  reader_.advance();
  return make(reader_.lastPlace(), Literal{std::move(value), bits});
}

ExpressionPtr ExpressionParser::primary() {
  const Token first = reader_.current();
  if (first.kind == Kind::number) return literal(first.value, first.bits);
  if (first.kind == Kind::text) return literal(first.text);
  if (first.is("true")) return literal(std::int8_t{1});
  if (first.is("false")) return literal(std::int8_t{0});
  if (first.is("nil")) return literal(std::monostate());
  if (first.is("new")) return creation();
  if (first.is("if")) return choice();
  if (first.is("addressof") || first.is("weakaddressof")) reader_.refuseOutside();
  if (reader_.accept("(")) {
    ExpressionPtr inner = pair();
    reader_.expect(")", "\")\"");
    inner->place = span(first.place, reader_.lastPlace());
    return inner;
  }
  if (first.kind != Kind::word || isReserved(first.key)) reader_.fail("an expression");
  reader_.advance();
  return make(first.place, Name{first.word()});
}

ExpressionPtr ExpressionParser::creation() {
  const Place begin = reader_.current().place;
  reader_.advance();
  Creation creation;
  creation.type.word = reader_.name("the name of a class");
  creation.type.place = creation.type.word.place;
  if (reader_.accept(".")) {
    creation.type.space = std::move(creation.type.word);
    creation.type.word = reader_.anyWord("the name of a class");
    creation.type.place.end = creation.type.word.place.end;
  }
  if (reader_.accept("(")) creation.arguments = argumentsUntil(")");
  return make(span(begin, reader_.lastPlace()), std::move(creation));
}

}  // namespace runner
