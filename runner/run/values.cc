#include "runner/run/values.h"

#include <array>
#include <charconv>
#include <cmath>
#include <compare>
#include <limits>
#include <variant>

#include "runner/text/text.h"

namespace runner {
namespace {

using host::Text;

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

template <class Number>
Value asNumber(const Value& value) {
  return numberOf<Number>(value);
}

struct Conversion {
  Kind kind;
  NumberConversion convert;
};
constexpr Conversion kNumberConversions[] = {
    {Kind::int32, asNumber<std::int32_t>},   {Kind::int64, asNumber<std::int64_t>},
    {Kind::uint32, asNumber<std::uint32_t>}, {Kind::uint64, asNumber<std::uint64_t>},
    {Kind::single, asNumber<float>},         {Kind::real, asNumber<double>},
};

Value toNumber(const Value& value, Kind kind) { return numberConversion(kind)(value); }

[[noreturn]] void failToConvert(Machine& machine, const Value& value, const Type& to) {
  machine.raise("TypeMismatchException", "A value of type " + typeName(machine, value) +
                                             " can't be used as " + nameOf(to) + ".");
}

// What a Variant gives as a type that it doesn't hold.
Value toSimple(Machine& machine, const Value& value, const Type& from, const Type& to) {
  if (from.kind == Kind::nil) return initialValue(to);
  if (to.isNumber()) {
    if (from.isNumber()) return toNumber(value, to.kind);
    if (from == kString) return toNumber(textNumber(textOf(value)), to.kind);
    if (from == kBoolean) return toNumber(std::int32_t{isTrue(value)}, to.kind);
  }
  if (to == kString) {
    if (from.isNumber()) return numberText(value);
    if (from == kBoolean) return std::string(isTrue(value) ? "True" : "False");
  }
  if (to == kBoolean) {
    if (from.isNumber()) return booleanValue(numberOf<double>(value) != 0);
    if (from == kString) return booleanValue(std::is_eq(compareText(textOf(value), "true")));
  }
  failToConvert(machine, value, to);
}

bool isBlock(const Type& type) { return type == objectOf("MemoryBlock"); }

}  // namespace

Value initialValue(const Type& type) {
  if (type.array || type.kind == Kind::object) return ObjectRef();
  if (type.kind == Kind::text) return std::string();
  if (type.kind == Kind::boolean) return booleanValue(false);
  return type.isNumber() ? toNumber(std::int32_t{}, type.kind) : Value();
}

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
template std::int16_t numberOf(const Value&);
template std::uint8_t numberOf(const Value&);
template std::uint16_t numberOf(const Value&);

Type typeOf(Machine& machine, const Value& value) {
  static const Type kByPosition[] = {kNil,    kInteger, kSingle, kDouble, kBoolean,
                                     kString, kNil,     kString, kInt64,  {Kind::uint32, "", false},
                                     kUInt64};
  static_assert(std::size(kByPosition) == std::variant_size_v<host::AnyValue>);
  const auto* const object = std::get_if<ObjectRef>(&value);
  if (object == nullptr || !*object) return kByPosition[value.index()];
  if (const host::RegisteredClass* const found = machine.host().classOf(*object))
    return objectOf(found->name);
  const std::optional<host::Array> array = machine.host().findArray(*object);
  return array ? arrayType(array->type()) : kAnyObject;
}

std::string typeName(Machine& machine, const Value& value) {
  return nameOf(typeOf(machine, value));
}

std::string numberText(const Value& number) {
  const auto shown = [](const auto& held) -> std::string {
    using Held = std::decay_t<decltype(held)>;
    if constexpr (kIsNumber<Held>) {
      constexpr std::size_t kEnough = 400;
      std::array<char, kEnough> digits{};
      std::to_chars_result end{};
      if constexpr (std::is_floating_point_v<Held>) {
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

NumberConversion numberConversion(Kind to) {
  for (const Conversion& conversion : kNumberConversions)
    if (conversion.kind == to) return conversion.convert;
  return nullptr;
}

Value converted(Machine& machine, const Value& value, const Type& to) {
  if (to.kind == Kind::variant && !to.array) return isNil(value) ? Value() : value;
  const Type from = typeOf(machine, value);
  if (from == to) return value;
  if (!to.array && to.kind != Kind::object) {
    if (to == kString && isBlock(from)) return machine.host().bytesOf(std::get<ObjectRef>(value));
    return toSimple(machine, value, from, to);
  }
  if (from.kind == Kind::nil) return ObjectRef();
  if (isBlock(to) && from == kString) return machine.host().memoryBlock(textOf(value));
  const bool objects = to.array && to.kind == Kind::object && from == kVariant.arrayOf();
  if (objects || Types(machine.host()).distance(from, to)) return value;
  failToConvert(machine, value, to);
}

Value cast(Machine& machine, const Value& value, const Type& to) {
  const Type from = typeOf(machine, value);
  if (from.kind == Kind::nil ||
      (!from.array && from.kind == Kind::object && to.kind == Kind::object &&
       !Types(machine.host()).isA(from.className, to.className) &&
       !(isBlock(from) || isBlock(to)))) {
    if (from.kind == Kind::nil) return ObjectRef();
    machine.raise("IllegalCastException",
                  "An object of class " + nameOf(from) + " is no " + nameOf(to) + ".");
  }
  return converted(machine, value, to);
}

}  // namespace runner
