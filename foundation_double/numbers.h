// NSNumber, and how Foundation makes a number of whatever it is asked to.
#pragma once

#include <optional>
#include <string>

#include "foundation_double/accounts.h"
#include "foundation_double/number_value.h"
#include "native/objc.h"

namespace foundation_double::objc {

/// A number as it was given and the type that it says it has; the two need not fit.
struct NumberBody : Body {
  std::string code;
  NumberValue value;

  NumberBody(std::string type, NumberValue number) : code(std::move(type)), value(number) {}
  /// What stringValue answers.
  [[nodiscard]] std::optional<std::u16string> text() const override;
  [[nodiscard]] std::optional<std::string> literal() const override;
  /// The same for equal numbers, whatever their types.
  [[nodiscard]] std::string keyText() const;
};

/// A new number with one reference for the caller.
zel::id createNumber(std::string code, NumberValue value);

/// The value of a number, or the number that a string begins with; 0 for anything else, nil
/// included. Defined for NSInteger, float and double.
template <class Wanted>
Wanted numericValue(const void* object);
/// The same for a boolean: the byte of a number of type "c", 0 or 1 for anything else.
zel::BOOL booleanValue(const void* object);

/// A number in the shortest form of that many digits.
std::string textOf(double value, int digits = 16);

}  // namespace foundation_double::objc
