// Values at run time: what they are, and what becomes of them as another type.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <type_traits>

#include "runner/run/machine.h"
#include "runner/run/types.h"

namespace runner {

template <class T>
inline constexpr bool kIsNumber = std::is_arithmetic_v<T> && !std::is_same_v<T, std::int8_t>;

bool isNil(const Value& value);
bool isText(const Value& value);
/// The bytes of a text; "" for what is none.
const std::string& textOf(const Value& value);
/// The boolean, true for any but 0; false for what is none.
bool isTrue(const Value& value);
Value booleanValue(bool value);
/// A number as another type of number, cut to fit; 0 for what is none.
template <class Number>
Number numberOf(const Value& value);
/// The same as an amount of money: rounded to four decimals.
Value convertToCurrency(const Value& number);
inline std::int32_t integerOf(const Value& value) { return numberOf<std::int32_t>(value); }

/// The type that a value has at run time: never variant, and Nil for no object.
Type typeOf(Machine& machine, const Value& value);
/// As programs name it, for messages.
std::string typeName(Machine& machine, const Value& value);

/// A number as the language's Str gives it.
std::string numberText(const Value& number);
/// The number that a text starts with, as Val gives it.
double textNumber(const std::string& text);

/// The value as a type that it can have: whether it can was seen when the program was checked,
/// unless it comes out of a Variant. Raises TypeMismatchException when it can't.
Value converted(Machine& machine, const Value& value, Type to);
/// An object as one of a class; raises IllegalCastException when it isn't.
Value cast(Machine& machine, const Value& value, Type to);

}  // namespace runner
