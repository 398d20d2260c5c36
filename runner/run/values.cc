#include "runner/run/values.h"

#include <array>
#include <charconv>
#include <cmath>
#include <compare>
#include <cstdio>
#include <limits>
#include <sstream>
#include <variant>

#include "runner/run/instances.h"
#include "runner/text/text.h"

namespace runner {
namespace {

using host::Text;

constexpr double kUnitOfCurrency = 10000;

template <class To, class From>
To cut(From number) {
  if constexpr (std::is_floating_point_v<From> && std::is_integral_v<To>) {
    const double whole = std::trunc(static_cast<double>(number));
    const double limit = std::ldexp(1.0, std::numeric_limits<To>::digits);
    if (std::isnan(whole)) return To{};
    if (whole >= limit) return std::numeric_limits<To>::max();
    if (whole <= static_cast<double>(std::numeric_limits<To>::min()))
      return std::numeric_limits<To>::min();
    return static_cast<To>(whole);
  } else {
    return static_cast<To>(number);
  }
}

[[noreturn]] void failToConvert(Machine& machine, const Value& value, Type to) {
  machine.raise("TypeMismatchException", "A value of type " + typeName(machine, value) +
                                             " can't be used as " + to.name() + ".");
}

std::string colorText(const Value& color) {
  constexpr std::size_t kEnough = 16;
  std::array<char, kEnough> text{};
  std::snprintf(text.data(), text.size(), "&h00%06X", std::get<host::Color>(color).rgb);
  return text.data();
}

// What a Variant gives as a type that it doesn't hold.
Value toSimple(Machine& machine, const Value& value, Type from, Type to) {
  if (from == kNil) return to->initial();
  if (to->kind == Kind::enumeration && from.isNumber()) return kInteger->convert(value);
  if (to.isNumber()) {
    if (from.isNumber()) return to->convert(value);
    if (from == kString) return to->convert(textNumber(textOf(value)));
    if (from == kBoolean) return to->convert(std::int32_t{isTrue(value)});
  }
  if (to == kString) {
    if (from == kColor) return colorText(value);
    if (from.isNumber()) return numberText(value);
    if (from == kBoolean) return std::string(isTrue(value) ? "True" : "False");
  }
  if (to == kBoolean) {
    if (from.isNumber()) return booleanValue(numberOf<double>(value) != 0);
    if (from == kString) return booleanValue(std::is_eq(compareText(textOf(value), "true")));
  }
  failToConvert(machine, value, to);
}

}  // namespace

bool isNil(const Value& value) {
  const auto* const object = std::get_if<ObjectRef>(&value);
  return object == nullptr ? std::holds_alternative<std::monostate>(value) : !*object;
}

bool isText(const Value& value) {
  return std::holds_alternative<std::string>(value) || std::holds_alternative<Text>(value);
}

const std::string& textOf(const Value& value) {
  static const std::string kEmpty;
  if (const auto* const string = std::get_if<std::string>(&value)) return *string;
  const auto* const text = std::get_if<Text>(&value);
  return text == nullptr ? kEmpty : text->bytes;
}

bool isTrue(const Value& value) {
  const auto* const boolean = std::get_if<std::int8_t>(&value);
  return boolean != nullptr && *boolean != 0;
}

Value booleanValue(bool value) { return static_cast<std::int8_t>(value ? 1 : 0); }

template <class Number>
Number numberOf(const Value& value) {
  if (const auto* const integer = std::get_if<std::int32_t>(&value)) return cut<Number>(*integer);
  const auto asWanted = [](const auto& held) -> Number {
    using Held = std::decay_t<decltype(held)>;
    if constexpr (kIsNumber<Held>) {
      return cut<Number>(held);
    } else if constexpr (std::is_same_v<Held, host::Currency>) {
      return cut<Number>(static_cast<double>(held.tenThousandths) / kUnitOfCurrency);
    } else {
      return Number{};
    }
  };
  return std::visit(asWanted, value);
}
template std::int32_t numberOf(const Value&);
template std::int64_t numberOf(const Value&);
template std::uint32_t numberOf(const Value&);
template std::uint64_t numberOf(const Value&);
template float numberOf(const Value&);
template double numberOf(const Value&);
template std::int8_t numberOf(const Value&);
template std::int16_t numberOf(const Value&);
template std::uint8_t numberOf(const Value&);
template std::uint16_t numberOf(const Value&);

Value convertToCurrency(const Value& number) {
  if (std::holds_alternative<host::Currency>(number)) return number;
  return host::Currency{cut<std::int64_t>(std::round(numberOf<double>(number) * kUnitOfCurrency))};
}

Type typeOf(Machine& machine, const Value& value) {
  constexpr Type kByPosition[] = {kNil,    kInteger, kSingle, kDouble, kBoolean,  kString, kNil,
                                  kString, kInt64,   kUInt32, kUInt64, kCurrency, kColor};
  static_assert(std::size(kByPosition) == std::variant_size_v<host::AnyValue>);
  const auto* const object = std::get_if<ObjectRef>(&value);
  if (object == nullptr || !*object) return kByPosition[value.index()];
  if (const host::RegisteredClass* const found = machine.host().classOf(*object)) {
    const Type type = machine.types().of(*found);
    // The host knows one class by a name; an object may be of an earlier one.
    const ProgramClass* const own = type->own == nullptr ? nullptr : classOf(value);
    return own == nullptr ? type : own->type;
  }
  const std::optional<host::Array> array = machine.host().findArray(*object);
  return array ? arrayType(array->type()) : kAnyObject;
}

std::string typeName(Machine& machine, const Value& value) { return typeOf(machine, value).name(); }

std::string numberText(const Value& number) {
  const auto shown = [](const auto& held) -> std::string {
    using Held = std::decay_t<decltype(held)>;
    if constexpr (kIsNumber<Held>) {
      constexpr std::size_t kEnough = 400;
      std::array<char, kEnough> digits{};
      std::to_chars_result end{};
      if constexpr (std::is_floating_point_v<Held>) {
        if (std::isnan(held)) return "NaN";
        if (std::isinf(held)) return held < 0 ? "-INF" : "INF";
        constexpr double kLargest = 1e15;
        constexpr double kSmallest = 1e-5;
        const double size = std::abs(static_cast<double>(held));
        const bool plain = size == 0 || (size >= kSmallest && size < kLargest);
        const auto format = plain ? std::chars_format::fixed : std::chars_format::scientific;
        end = std::to_chars(digits.data(), digits.data() + digits.size(), held, format);
      } else {
        end = std::to_chars(digits.data(), digits.data() + digits.size(), held);
      }
      return {digits.data(), end.ptr};
    } else if constexpr (std::is_same_v<Held, host::Currency>) {
      std::ostringstream out;
      out << held;
      return out.str();
    } else {
      return "";
    }
  };
  return std::visit(shown, number);
}

double textNumber(const std::string& text) {
  const std::string_view trimmed = trimmedLeft(text);
  const std::string_view digits = trimmed.substr(trimmed.starts_with('+') ? 1 : 0);
  struct Prefix {
    std::string_view sign;
    int base;
  };
  constexpr Prefix kPrefixes[] = {{"&h", 16}, {"&b", 2}, {"&o", 8}};
  for (const Prefix& prefix : kPrefixes) {
    if (std::is_neq(compareText(digits.substr(0, 2), prefix.sign))) continue;
    std::int64_t whole = 0;
    std::from_chars(digits.data() + 2, digits.data() + digits.size(), whole, prefix.base);
    return static_cast<double>(whole);
  }
  const std::size_t letter = digits.find_first_not_of('-');
  const bool isWord = letter < digits.size() && (digits[letter] == 'i' || digits[letter] == 'n' ||
                                                 digits[letter] == 'I' || digits[letter] == 'N');
  double value = 0;
  if (!isWord) std::from_chars(digits.data(), digits.data() + digits.size(), value);
  return value;
}

Value converted(Machine& machine, const Value& value, Type to) {
  if (to == kVariant) return isNil(value) ? Value() : value;
  const Type from = typeOf(machine, value);
  if (from == to) return value;
  if (!to.isReference()) {
    if (to == kString && from == kMemoryBlock)
      return machine.host().bytesOf(std::get<ObjectRef>(value));
    return toSimple(machine, value, from, to);
  }
  if (from == kNil) return ObjectRef();
  if (to == kMemoryBlock && from == kString) return machine.host().memoryBlock(textOf(value));
  const bool objects = to.isArray() && to->kind == Kind::object && from == kVariant.arrayOf();
  if (objects || distance(from, to)) return value;
  failToConvert(machine, value, to);
}

Value cast(Machine& machine, const Value& value, Type to) {
  const Type from = typeOf(machine, value);
  if (from == kNil) return ObjectRef();
  const bool objects =
      from.isObject() && to->kind == Kind::object && from != kMemoryBlock && to != kMemoryBlock;
  if (objects && !from.isA(to)) {
    machine.raise("IllegalCastException",
                  "An object of class " + from.name() + " is no " + to.name() + ".");
  }
  return converted(machine, value, to);
}

}  // namespace runner
