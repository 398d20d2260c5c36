// Expressions without calls.
#include <utility>

#include "runner/check/checker.h"
#include "runner/check/suggest.h"
#include "runner/run/arrays.h"

namespace runner {
namespace {

// What the two commonest types of operands come to, without looking at their types again.
template <class Number, class Compute>
ValueCode quick(ValueCode left, ValueCode right, const Compute& compute) {
  return valueCode([left = std::move(left), right = std::move(right), compute](Frame& frame) {
    const Value a = left->run(frame);
    const Value b = right->run(frame);
    return compute(std::get<Number>(a), std::get<Number>(b));
  });
}

std::uint32_t bits(std::int32_t number) { return static_cast<std::uint32_t>(number); }

// Null when the operation has no quick way.
ValueCode quickInteger(Operator op, ValueCode& left, ValueCode& right) {
  using Int = std::int32_t;
  const auto make = [&](auto compute) {
    return quick<Int>(std::move(left), std::move(right), compute);
  };
  switch (op) {
    case Operator::add:
      return make([](Int a, Int b) -> Value { return static_cast<Int>(bits(a) + bits(b)); });
    case Operator::subtract:
      return make([](Int a, Int b) -> Value { return static_cast<Int>(bits(a) - bits(b)); });
    case Operator::equal:
      return make([](Int a, Int b) { return booleanValue(a == b); });
    case Operator::less:
      return make([](Int a, Int b) { return booleanValue(a < b); });
    case Operator::greater:
      return make([](Int a, Int b) { return booleanValue(a > b); });
    case Operator::lessOrEqual:
      return make([](Int a, Int b) { return booleanValue(a <= b); });
    default:
      return nullptr;
  }
}

// The second operand only when it matters.
ValueCode shortCircuit(Operator op, ValueCode left, ValueCode right) {
  return valueCode([left = std::move(left), right = std::move(right),
                    decisive = op == Operator::eitherOf](Frame& frame) {
    return isTrue(left->run(frame)) == decisive ? booleanValue(decisive) : right->run(frame);
  });
}

}  // namespace

Typed Checker::expression(const Expression& expression) {
  const auto checked = [&](const auto& what) -> Typed {
    using What = std::decay_t<decltype(what)>;
    if constexpr (std::is_same_v<What, Name> || std::is_same_v<What, Member> ||
                  std::is_same_v<What, Call>) {
      return read(target(expression));
    } else {
      return check(what, expression.place);
    }
  };
  Typed typed = std::visit(checked, expression.what);
  typed.place = expression.place;
  return typed;
}

Typed Checker::condition(const Expression& expression) {
  Typed value = this->expression(expression);
  if (value.type != kBoolean && value.type != kVariant)
    refuse(value.place, "A condition is a Boolean, but this is " + value.type.name() + ".");
  return convert(std::move(value), kBoolean);
}

Typed Checker::converted(const Expression& expression, Type type) {
  return convert(this->expression(expression), type);
}

Typed Checker::convert(Typed value, Type to) {
  const Type from = value.type;
  if (from == to && !from.isNothing()) return value;
  if (!distance(from, to)) {
    const std::string found = from.isNothing() ? "this gives no value" : "this is " + from.name();
    refuse(value.place, "Expected " + to.name() + ", but " + found + ".",
           value.method == nullptr ? std::vector<std::string>() : std::vector{value.method->text});
  }
  const bool cuts = value.constant && from.isInteger() && to.isInteger() && !value.bits &&
                    !areEqual(machine_, to->convert(*value.constant), *value.constant);
  if (cuts) {
    refuse(value.place, numberText(*value.constant) + " doesn't fit into " + to.name() + ".", {},
           "");
  }
  if (value.constant && to->kind != Kind::object) {
    const auto compute = [&] { return runner::converted(machine_, *value.constant, to); };
    if (const std::optional<Value> found = folded(compute))
      return constantAt(to, *found, value.place);
  }
  if (from == kNil) return constantAt(to, ObjectRef(), value.place);
  const bool upwards = from->kind == Kind::object && to->kind == Kind::object;
  if (upwards || to == kVariant || (from.isArray() && to == kAnyObject))
    return {to, std::move(value.code), value.place};
  if (from.isNumber() && to.isNumber()) {
    return {to, valueCode([code = std::move(value.code), cut = to->convert](Frame& frame) {
              return cut(code->run(frame));
            }),
            value.place};
  }
  return {to, valueCode([code = std::move(value.code), to](Frame& frame) {
            return runner::converted(frame.machine, code->run(frame), to);
          }),
          value.place};
}

Typed Checker::check(const Literal& what, const Place& place) {
  Typed literal = constantAt(typeOf(machine_, what.value), what.value, place);
  literal.bits = what.bits;
  return literal;
}

Typed Checker::check(const Unary& what, const Place& place) {
  Typed operand = expression(*what.operand);
  const std::optional<Type> type = resultOf(what.op, operand.type);
  if (!type) {
    refuse(place,
           "\"" + std::string(signOf(what.op)) + "\" doesn't take " + operand.type.name() + ".");
  }
  std::optional<Value> known;
  if (operand.constant)
    known = folded([&] { return operate(machine_, what.op, *operand.constant); });
  if (known) {
    const Value& value = *known;
    // The lowest Integer is written as the negative of a number that is none.
    const bool fits =
        *type == kInt64 && numberOf<std::int64_t>(value) == numberOf<std::int32_t>(value);
    return fits ? constantAt(kInteger, integerOf(value), place) : constantAt(*type, value, place);
  }
  return {*type, valueCode([code = std::move(operand.code), op = what.op](Frame& frame) {
            return operate(frame.machine, op, code->run(frame));
          }),
          place};
}

Typed Checker::check(const Binary& what, const Place& /*place*/) {
  Typed left = expression(*what.left);
  return binary(what.op, std::move(left), expression(*what.right), what.opPlace);
}

Typed Checker::binary(Operator op, Typed left, Typed right, const Place& place) {
  const std::optional<Type> type = resultOf(op, left.type, right.type);
  if (!type) {
    std::string message = "\"" + std::string(signOf(op)) + "\" can't be used between " +
                          left.type.name() + " and " + right.type.name() + ".";
    const bool joins = op == Operator::add && (left.type == kString || right.type == kString);
    if (joins) message += " Str makes a text of a number.";
    refuse(place, message);
  }
  const bool booleans = *type == kBoolean && left.type == kBoolean && right.type == kBoolean;
  if (booleans && (op == Operator::bothOf || op == Operator::eitherOf)) {
    return {*type, shortCircuit(op, std::move(left.code), std::move(right.code)), place};
  }
  if (left.type == kInteger && right.type == kInteger) {
    if (ValueCode code = quickInteger(op, left.code, right.code))
      return {*type, std::move(code), place};
  }
  return {*type,
          valueCode([left = std::move(left.code), right = std::move(right.code), op](Frame& frame) {
            const Value first = left->run(frame);
            return operate(frame.machine, op, first, right->run(frame));
          }),
          place};
}

Typed Checker::check(const TypeTest& what, const Place& place) {
  Typed object = expression(*what.object);
  const Type type = typeNamed(what.type);
  const bool testable = object.type.isReference() && !object.type.isArray();
  if (!testable || !type.isObject()) {
    refuse(what.type.place, "IsA asks whether an object is of a class, but this is between " +
                                object.type.name() + " and " + type.name() + ".");
  }
  return {kBoolean, valueCode([code = std::move(object.code), type](Frame& frame) {
            const Type found = typeOf(frame.machine, code->run(frame));
            const bool isObject = found->kind == Kind::object || found.isArray();
            return booleanValue(isObject && found.isA(type));
          }),
          place};
}

Typed Checker::check(const Creation& what, const Place& place) {
  const Type type = typeNamed(what.type);
  if (!type.isObject() || type == kAnyObject)
    refuse(what.type.place, "New makes objects, and " + type.name() + " is no class.");
  return construct(type, {type.name(), "", what.type.place},
                   checkAll(what.arguments, library_.constructors(type)), place);
}

Typed Checker::construct(Type type, const Word& name, TypedList arguments, const Place& place) {
  const auto make = [type](Frame& frame) -> Value {
    if (type->own != nullptr) return newInstance(frame.machine, *type->own);
    return frame.machine.host().make(type.name());
  };
  Candidates constructors = reachable(library_.constructors(type), name);
  // Those that make the object themselves make none of a class below theirs.
  if (type->own != nullptr)
    std::erase_if(constructors, [](const Callable* one) { return !one->result.isNothing(); });
  if (constructors.empty() && arguments.empty()) return {type, valueCode(make), place};
  Match match = resolve(name, constructors, std::move(arguments));
  if (!match.callable->result.isNothing())
    return {type, callCode(std::move(match), nullptr), place};
  const KnownVariable made = hidden(type);
  ValueCode construct = callCode(std::move(match), variableAt(made, place).code);
  return {type, valueCode([construct = std::move(construct), make, slot = made.slot](Frame& frame) {
            frame.slots[slot] = make(frame);
            construct->run(frame);
            return std::exchange(frame.slots[slot], Value());
          }),
          place};
}

Typed Checker::check(const Choice& what, const Place& place) {
  ValueCode condition = this->condition(*what.condition).code;
  Typed yes = expression(*what.yes);
  Typed no = expression(*what.no);
  Type type = yes.type;
  if (yes.type.isNumber() && no.type.isNumber()) {
    type = commonNumber(yes.type, no.type);
  } else if (type == kNil || !distance(no.type, type)) {
    type = no.type;
  }
  yes = convert(std::move(yes), type);
  no = convert(std::move(no), type);
  return {type,
          valueCode([condition = std::move(condition), yes = std::move(yes.code),
                     no = std::move(no.code)](Frame& frame) {
            return isTrue(condition->run(frame)) ? yes->run(frame) : no->run(frame);
          }),
          place};
}

Typed Checker::check(const PairOf& what, const Place& place) {
  TypedList both;
  both.push_back(expression(*what.left));
  both.push_back(expression(*what.right));
  const Type pair = *machine_.types().find("pair");
  return construct(pair, {"Pair", "pair", place}, std::move(both), place);
}

}  // namespace runner
