// Expressions without calls.
#include <utility>

#include "runner/check/checker.h"
#include "runner/check/suggest.h"
#include "runner/run/arrays.h"

namespace runner {
namespace {

Typed constant(Type type, Value value, const Place& place) {
  return {std::move(type), valueCode([value](Frame&) { return value; }), place, value};
}

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
  Typed typed =
      std::visit([&](const auto& what) { return check(what, expression.place); }, expression.what);
  typed.place = expression.place;
  return typed;
}

Typed Checker::condition(const Expression& expression) {
  Typed value = this->expression(expression);
  if (value.type != kBoolean && value.type != kVariant)
    refuse(value.place, "A condition is a Boolean, but this is " + nameOf(value.type) + ".");
  return convert(std::move(value), kBoolean);
}

Typed Checker::number(const Expression& expression, const Type& type) {
  return convert(this->expression(expression), type);
}

Typed Checker::convert(Typed value, const Type& to) {
  if (value.type == to && value.type.kind != Kind::nothing) return value;
  if (!library_.types().distance(value.type, to)) {
    const std::string found =
        value.type.kind == Kind::nothing ? "this gives no value" : "this is " + nameOf(value.type);
    refuse(value.place, "Expected " + nameOf(to) + ", but " + found + ".",
           value.declaration.empty() ? std::vector<std::string>() : std::vector{value.declaration});
  }
  if (value.constant && to.kind != Kind::object)
    return constant(to, converted(machine_, *value.constant, to), value.place);
  if (value.type.kind == Kind::nil) return constant(to, ObjectRef(), value.place);
  const bool upwards = value.type.kind == Kind::object && to.kind == Kind::object;
  if (upwards || to == kVariant || (value.type.array && to == kAnyObject))
    return {to, std::move(value.code), value.place, std::nullopt};
  if (value.type.isNumber() && to.isNumber()) {
    return {to,
            valueCode([code = std::move(value.code), cut = numberConversion(to.kind)](
                          Frame& frame) { return cut(code->run(frame)); }),
            value.place, std::nullopt};
  }
  return {to, valueCode([code = std::move(value.code), to](Frame& frame) {
            return converted(frame.machine, code->run(frame), to);
          }),
          value.place, std::nullopt};
}

Typed Checker::check(const Literal& what, const Place& place) {
  return constant(typeOf(machine_, what.value), what.value, place);
}

Typed Checker::variable(const KnownVariable& known, const Place& place) {
  if (known.where == KnownVariable::Where::constant)
    return constant(known.type, known.value, place);
  return {known.type, valueCode([reference = referenceTo(known)](Frame& frame) {
            return *reference->run(frame);
          }),
          place, std::nullopt};
}

Typed Checker::check(const Name& what, const Place& place) {
  if (const KnownVariable* const known = scope_.find(what.name)) return variable(*known, place);
  return callName(what, {}, place);
}

Typed Checker::check(const Member& what, const Place& place) { return callMember(what, {}, place); }

Typed Checker::check(const Call& what, const Place& place) {
  if (const auto* const member = std::get_if<Member>(&what.callee->what))
    return callMember(*member, what.arguments, place);
  const auto* const name = std::get_if<Name>(&what.callee->what);
  if (name != nullptr && scope_.find(name->name) == nullptr)
    return callName(*name, what.arguments, place);
  return element(expression(*what.callee), what.arguments, place);
}

Typed Checker::element(Typed array, const Arguments& arguments, const Place& place) {
  if (!array.type.array)
    refuse(array.place, "This is " + nameOf(array.type) + ", which is no array and no method.");
  if (arguments.size() != 1) refuse(place, "An element of an array is found by one index.");
  ValueCode index = number(*arguments.front(), kInteger).code;
  return {array.type.element(),
          valueCode([array = std::move(array.code), index = std::move(index)](Frame& frame) {
            const Value list = array->run(frame);
            return elementOf(frame.machine, list, index->run(frame));
          }),
          place, std::nullopt};
}

Typed Checker::check(const Unary& what, const Place& place) {
  Typed operand = expression(*what.operand);
  const std::optional<Type> type = resultOf(what.op, operand.type);
  if (!type) {
    refuse(place,
           "\"" + std::string(signOf(what.op)) + "\" doesn't take " + nameOf(operand.type) + ".");
  }
  if (operand.constant) {
    Value value = operate(machine_, what.op, *operand.constant);
    // The lowest Integer is written as the negative of a number that is none.
    const bool fits =
        *type == kInt64 && numberOf<std::int64_t>(value) == numberOf<std::int32_t>(value);
    return fits ? constant(kInteger, integerOf(value), place) : constant(*type, value, place);
  }
  return {*type, valueCode([code = std::move(operand.code), op = what.op](Frame& frame) {
            return operate(frame.machine, op, code->run(frame));
          }),
          place, std::nullopt};
}

Typed Checker::check(const Binary& what, const Place& /*place*/) {
  Typed left = expression(*what.left);
  return binary(what.op, std::move(left), expression(*what.right), what.opPlace);
}

Typed Checker::binary(Operator op, Typed left, Typed right, const Place& place) {
  const std::optional<Type> type = resultOf(library_.types(), op, left.type, right.type);
  if (!type) {
    std::string message = "\"" + std::string(signOf(op)) + "\" can't be used between " +
                          nameOf(left.type) + " and " + nameOf(right.type) + ".";
    const bool joins = op == Operator::add && (left.type == kString || right.type == kString);
    if (joins) message += " Str makes a text of a number.";
    refuse(place, message);
  }
  const bool booleans = *type == kBoolean && left.type == kBoolean && right.type == kBoolean;
  if (booleans && (op == Operator::bothOf || op == Operator::eitherOf)) {
    return {*type, shortCircuit(op, std::move(left.code), std::move(right.code)), place,
            std::nullopt};
  }
  if (left.type == kInteger && right.type == kInteger) {
    if (ValueCode code = quickInteger(op, left.code, right.code))
      return {*type, std::move(code), place, std::nullopt};
  }
  return {*type,
          valueCode([left = std::move(left.code), right = std::move(right.code), op](Frame& frame) {
            const Value first = left->run(frame);
            return operate(frame.machine, op, first, right->run(frame));
          }),
          place, std::nullopt};
}

Typed Checker::check(const TypeTest& what, const Place& place) {
  Typed object = expression(*what.object);
  const Type type = typeNamed(what.type, what.typePlace);
  const bool testable = object.type.isReference() && !object.type.array;
  if (!testable || type.kind != Kind::object || type.array) {
    refuse(what.typePlace, "IsA asks whether an object is of a class, but this is between " +
                               nameOf(object.type) + " and " + nameOf(type) + ".");
  }
  return {kBoolean, valueCode([code = std::move(object.code), type](Frame& frame) {
            const Type found = typeOf(frame.machine, code->run(frame));
            const bool isObject = found.kind == Kind::object || found.array;
            return booleanValue(isObject &&
                                Types(frame.machine.host()).isA(found.className, type.className));
          }),
          place, std::nullopt};
}

Typed Checker::check(const Creation& what, const Place& place) {
  const Type type = typeNamed(what.type, what.typePlace);
  if (type.kind != Kind::object || type == kAnyObject)
    refuse(what.typePlace, "New makes objects, and " + nameOf(type) + " is no class.");
  const std::string& className = type.className;
  const Candidates constructors = library_.constructors(className);
  if (constructors.empty() && what.arguments.empty()) {
    return {type, valueCode([className](Frame& frame) -> Value {
              return frame.machine.host().make(className);
            }),
            place, std::nullopt};
  }
  Match match = resolve(className, what.typePlace, constructors, checkAll(what.arguments));
  if (match.callable->result.kind != Kind::nothing)
    return {type, makeCall(std::move(match), nullptr, place).code, place, std::nullopt};
  const std::size_t slot = newSlot();
  ValueCode self = valueCode([slot](Frame& frame) { return frame.slots[slot]; });
  Typed construct = makeCall(std::move(match), std::move(self), place);
  return {type, valueCode([construct = std::move(construct.code), className, slot](Frame& frame) {
            frame.slots[slot] = frame.machine.host().make(className);
            construct->run(frame);
            return std::exchange(frame.slots[slot], Value());
          }),
          place, std::nullopt};
}

}  // namespace runner
