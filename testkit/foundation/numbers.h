// NSNumber, and how Foundation makes a number of whatever it is asked to.
#pragma once

#include <optional>
#include <string>
#include <variant>

#include "native/objc.h"
#include "testkit/foundation/accounts.h"

namespace testkit::objc {

/// A number remembers which of these it was made from.
using NumberValue = std::variant<zel::BOOL, zel::NSInteger, float, double>;

struct NumberBody : Body {
  NumberValue value;

  explicit NumberBody(NumberValue number) : value(number) {}
  /// What stringValue answers.
  [[nodiscard]] std::optional<std::u16string> text() const override;
};

/// A new number with one reference for the caller.
zel::id createNumber(NumberValue value);

/// The value of a number, or the number that a string begins with; 0 for anything else, nil
/// included. A boolean made from a boolean is the same byte, from anything else 0 or 1.
/// Defined for the alternatives of NumberValue.
template <class Wanted>
Wanted numericValue(const void* object);

}  // namespace testkit::objc
