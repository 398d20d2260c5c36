#include "runner/run/operations.h"

#include <algorithm>
#include <cmath>
#include <compare>
#include <cstdint>
#include <iterator>
#include <limits>
#include <tuple>
#include <utility>

#include "runner/text/text.h"

namespace runner {
namespace {

bool isArithmetic(Operator op) { return op <= Operator::power; }
bool isComparison(Operator op) { return op >= Operator::equal && op <= Operator::greaterOrEqual; }
bool isEquality(Operator op) { return op == Operator::equal || op == Operator::different; }

Type wholeType(Type left, Type right) {
  const Type common = commonNumber(left, right);
  return common.isInteger() ? common : kInt64;
}

Type arithmeticResult(Operator op, Type left, Type right) {
  if (op == Operator::divide || op == Operator::power) return kDouble;
  if (op == Operator::divideWhole || op == Operator::modulo) return wholeType(left, right);
  return commonNumber(left, right);
}

bool comparable(Operator op, Type left, Type right) {
  if (left == kVariant || right == kVariant) return true;
  if (left.isNumber() && right.isNumber()) return true;
  if (left == right && left == kString) return true;
  if (left == kDate && right == kDate) return true;
  if (left == right && left->kind == Kind::enumeration) return true;
  if (!isEquality(op)) return false;
  if (left == right) return true;
  return left.isReference() && right.isReference() &&
         (distance(left, right) || distance(right, left));
}

// --- at run time

[[noreturn]] void fail(Machine& machine, Operator op, const Value& left, const Value& right) {
  machine.raise("TypeMismatchException", "\"" + std::string(signOf(op)) +
                                             "\" can't be used between " + typeName(machine, left) +
                                             " and " + typeName(machine, right) + ".");
}

template <class Number>
Number compute(Operator op, Number left, Number right) {
  using Exact = std::conditional_t<std::is_integral_v<Number>, std::make_unsigned<Number>,
                                   std::type_identity<Number>>;
  using Wide = typename Exact::type;  // integers wrap around
  const auto a = static_cast<Wide>(left);
  const auto b = static_cast<Wide>(right);
  if (op == Operator::add) return static_cast<Number>(a + b);
  if (op == Operator::subtract) return static_cast<Number>(a - b);
  return static_cast<Number>(a * b);
}

template <class Number>
Number divide(Machine& machine, Operator op, Number left, Number right) {
  if (right == 0) machine.raise("UnsupportedOperationException", "An integer was divided by 0.");
  if constexpr (std::is_signed_v<Number>) {
    // The one quotient that has no room.
    if (right == -1)
      return op == Operator::modulo ? 0 : compute<Number>(Operator::subtract, 0, left);
  }
  return op == Operator::modulo ? left % right : left / right;
}

template <class Number>
Value calculateAs(Machine& machine, Operator op, const Value& left, const Value& right) {
  const auto a = numberOf<Number>(left);
  const auto b = numberOf<Number>(right);
  if constexpr (std::is_integral_v<Number>) {
    if (op == Operator::divideWhole || op == Operator::modulo) return divide(machine, op, a, b);
  }
  return compute(op, a, b);
}

// Sums and products of amounts, rounded to what an amount can say; they wrap around.
Value calculateMoney(Operator op, const Value& left, const Value& right) {
  constexpr std::int64_t kUnit = 10000;
  const auto amount = [](const Value& value) {
    return std::get<host::Currency>(convertToCurrency(value)).tenThousandths;
  };
  if (op != Operator::multiply) return host::Currency{compute(op, amount(left), amount(right))};
  // a * b / kUnit in parts, none of which needs more room than the result.
  const std::int64_t a = amount(left);
  const std::int64_t b = amount(right);
  const std::int64_t small = a % kUnit * (b % kUnit);
  const std::int64_t rounded = (small + (small < 0 ? -kUnit / 2 : kUnit / 2)) / kUnit;
  const auto wide = [](std::int64_t number) { return static_cast<std::uint64_t>(number); };
  return host::Currency{static_cast<std::int64_t>(
      wide(a / kUnit) * wide(b) + wide(a % kUnit) * wide(b / kUnit) + wide(rounded))};
}

Value calculate(Machine& machine, Operator op, const Value& left, const Value& right) {
  if (op == Operator::divide) return numberOf<double>(left) / numberOf<double>(right);
  if (op == Operator::power) return std::pow(numberOf<double>(left), numberOf<double>(right));
  const Type type = arithmeticResult(op, typeOf(machine, left), typeOf(machine, right));
  switch (type->kind) {
    case Kind::int32:
      return calculateAs<std::int32_t>(machine, op, left, right);
    case Kind::uint64:
      return calculateAs<std::uint64_t>(machine, op, left, right);
    case Kind::single:
      return calculateAs<float>(machine, op, left, right);
    case Kind::currency:
      return calculateMoney(op, left, right);
    case Kind::real:
      return calculateAs<double>(machine, op, left, right);
    default:
      return calculateAs<std::int64_t>(machine, op, left, right);
  }
}

bool isNumber(const Value& value) {
  const auto isOne = [](const auto& held) {
    using Held = std::decay_t<decltype(held)>;
    return kIsNumber<Held> || std::is_same_v<Held, host::Currency>;
  };
  return std::visit(isOne, value);
}

std::partial_ordering compareNumbers(const Value& left, const Value& right) {
  const auto isMoney = [](const Value& value) {
    return std::holds_alternative<host::Currency>(value);
  };
  if (isMoney(left) || isMoney(right)) return numberOf<double>(left) <=> numberOf<double>(right);
  const auto both = [](const auto& a, const auto& b) -> std::partial_ordering {
    using A = std::decay_t<decltype(a)>;
    using B = std::decay_t<decltype(b)>;
    if constexpr (!kIsNumber<A> || !kIsNumber<B>) {
      return std::partial_ordering::unordered;
    } else if constexpr (std::is_integral_v<A> && std::is_integral_v<B>) {
      if (std::cmp_equal(a, b)) return std::partial_ordering::equivalent;
      return std::cmp_less(a, b) ? std::partial_ordering::less : std::partial_ordering::greater;
    } else {
      return static_cast<double>(a) <=> static_cast<double>(b);
    }
  };
  return std::visit(both, left, right);
}

std::strong_ordering compareDates(Machine& machine, const Value& left, const Value& right) {
  const auto fields = [&machine](const Value& date) {
    const host::DateFields f = machine.host().fieldsOf(std::get<ObjectRef>(date));
    return std::tuple(f.year, f.month, f.day, f.hour, f.minute, f.second);
  };
  return fields(left) <=> fields(right);
}

// Unordered for what can't be compared.
std::partial_ordering compare(Machine& machine, const Value& left, const Value& right) {
  if (isNumber(left) && isNumber(right)) return compareNumbers(left, right);
  const Type leftType = typeOf(machine, left);
  const Type rightType = typeOf(machine, right);
  if (leftType == kString && rightType == kString) return compareText(textOf(left), textOf(right));
  if (leftType == kDate && rightType == kDate) return compareDates(machine, left, right);
  // A text out of a Variant beside a number is taken as the number in it.
  if ((isNumber(left) && rightType == kString) || (leftType == kString && isNumber(right)))
    return compareNumbers(converted(machine, left, kDouble), converted(machine, right, kDouble));
  return std::partial_ordering::unordered;
}

Value compareAs(Machine& machine, Operator op, const Value& left, const Value& right) {
  if (isEquality(op))
    return booleanValue(areEqual(machine, left, right) == (op == Operator::equal));
  const std::partial_ordering order = compare(machine, left, right);
  if (order == std::partial_ordering::unordered && !(isNumber(left) && isNumber(right)))
    fail(machine, op, left, right);
  if (op == Operator::less) return booleanValue(std::is_lt(order));
  if (op == Operator::greater) return booleanValue(std::is_gt(order));
  return booleanValue(op == Operator::lessOrEqual ? std::is_lteq(order) : std::is_gteq(order));
}

template <class T>
T combine(Operator op, T left, T right) {
  if (op == Operator::bothOf) return static_cast<T>(left & right);
  return static_cast<T>(op == Operator::eitherOf ? left | right : left ^ right);
}

Value combineValues(Machine& machine, Operator op, const Value& left, const Value& right) {
  const bool booleans =
      std::holds_alternative<std::int8_t>(left) && std::holds_alternative<std::int8_t>(right);
  if (booleans)
    return booleanValue(combine<int>(op, isTrue(left) ? 1 : 0, isTrue(right) ? 1 : 0) != 0);
  const Type leftType = typeOf(machine, left);
  const Type rightType = typeOf(machine, right);
  if (!leftType.isInteger() || !rightType.isInteger()) fail(machine, op, left, right);
  const auto bits = combine(op, numberOf<std::int64_t>(left), numberOf<std::int64_t>(right));
  return converted(machine, bits, commonNumber(leftType, rightType));
}

}  // namespace

std::optional<Type> resultOf(Operator op, Type left, Type right) {
  if (left.isNothing() || right.isNothing()) return std::nullopt;
  if (op == Operator::is)
    return left.isReference() && right.isReference() ? std::optional(kBoolean) : std::nullopt;
  if (isComparison(op)) return comparable(op, left, right) ? std::optional(kBoolean) : std::nullopt;
  const bool variants = left == kVariant || right == kVariant;
  if (isArithmetic(op)) {
    if (left.isNumber() && right.isNumber()) return arithmeticResult(op, left, right);
    if (op == Operator::add && left == kString && right == kString) return kString;
    const auto fits = [op](Type type) {
      return type == kVariant || type.isNumber() || (op == Operator::add && type == kString);
    };
    return variants && fits(left) && fits(right) ? std::optional(kVariant) : std::nullopt;
  }
  if (left == kBoolean && right == kBoolean) return kBoolean;
  if (left.isInteger() && right.isInteger()) return commonNumber(left, right);
  const auto fits = [](Type type) {
    return type == kVariant || type == kBoolean || type.isInteger();
  };
  return variants && fits(left) && fits(right) ? std::optional(kVariant) : std::nullopt;
}

std::optional<Type> resultOf(Operator op, Type operand) {
  if (operand == kVariant) return kVariant;
  if (operand.isNumber() && (op == Operator::negate || operand.isInteger()))
    return operand->room < kInteger->room ? kInteger : operand;
  return operand == kBoolean && op != Operator::negate ? std::optional(operand) : std::nullopt;
}

Value operate(Machine& machine, Operator op, const Value& left, const Value& right) {
  if (op == Operator::is) return booleanValue((isNil(left) && isNil(right)) || left == right);
  if (isComparison(op)) return compareAs(machine, op, left, right);
  if (!isArithmetic(op)) return combineValues(machine, op, left, right);
  if (isNumber(left) && isNumber(right)) return calculate(machine, op, left, right);
  if (op == Operator::add && (isText(left) || isText(right)))
    return textOf(converted(machine, left, kString)) + textOf(converted(machine, right, kString));
  fail(machine, op, left, right);
}

Value operate(Machine& machine, Operator op, const Value& operand) {
  if (op == Operator::negate) {
    if (!isNumber(operand)) fail(machine, Operator::subtract, std::int32_t{}, operand);
    if (const auto* const real = std::get_if<double>(&operand)) return -*real;
    if (const auto* const single = std::get_if<float>(&operand)) return -*single;
    return converted(machine, calculate(machine, Operator::subtract, std::int32_t{}, operand),
                     typeOf(machine, operand));
  }
  if (std::holds_alternative<std::int8_t>(operand)) return booleanValue(!isTrue(operand));
  return combineValues(machine, Operator::oneOf, operand, std::int32_t{-1});
}

bool areEqual(Machine& machine, const Value& left, const Value& right) {
  if (isNil(left) || isNil(right)) return isNil(left) && isNil(right);
  if (isText(left) && isText(right)) return std::is_eq(compareText(textOf(left), textOf(right)));
  if (left.index() == right.index() && left == right) return true;
  return std::is_eq(compare(machine, left, right));
}

}  // namespace runner
