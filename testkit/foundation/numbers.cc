#include "testkit/foundation/numbers.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string_view>
#include <type_traits>

#include "testkit/foundation/classes.h"
#include "testkit/foundation/strings.h"

namespace testkit::objc {
namespace {

using Limits = std::numeric_limits<zel::NSInteger>;

/// Cut towards zero, and to the limits where it doesn't fit.
zel::NSInteger toInteger(double value) {
  const double end = std::ldexp(1.0, Limits::digits);
  if (std::isnan(value)) return 0;
  if (value >= end) return Limits::max();
  if (value < -end) return Limits::min();
  return static_cast<zel::NSInteger>(value);
}

template <class Wanted, class Given>
Wanted convert(Given value) {
  if constexpr (std::is_same_v<Wanted, Given>) {
    return value;
  } else if constexpr (std::is_same_v<Wanted, zel::BOOL>) {
    return value != 0;
  } else if constexpr (std::is_same_v<Wanted, zel::NSInteger> && std::is_floating_point_v<Given>) {
    return toInteger(value);
  } else {
    return static_cast<Wanted>(value);
  }
}

/// Foundation's reading of "YES", "true", "1" and the like.
bool meansYes(std::string_view text) {
  constexpr std::string_view kYes = "YyTt123456789";
  const std::size_t first = text.find_first_not_of(" +-0");
  return first != std::string_view::npos && kYes.find(text[first]) != std::string_view::npos;
}

template <class Wanted>
Wanted parse(const std::string& text) {
  if constexpr (std::is_same_v<Wanted, zel::BOOL>) {
    return meansYes(text);
  } else if constexpr (std::is_same_v<Wanted, zel::NSInteger>) {
    const long long value = std::strtoll(text.c_str(), nullptr, 10);
    return static_cast<Wanted>(std::clamp<long long>(value, Limits::min(), Limits::max()));
  } else {
    return static_cast<Wanted>(std::strtod(text.c_str(), nullptr));
  }
}

std::string textOf(double value, int digits) {
  char text[32];
  std::snprintf(text, sizeof text, "%.*g", digits, value);
  return text;
}

struct Texts {
  std::string operator()(zel::BOOL value) const { return std::to_string(int{value}); }
  std::string operator()(zel::NSInteger value) const { return std::to_string(value); }
  std::string operator()(float value) const { return textOf(double{value}, 7); }
  std::string operator()(double value) const { return textOf(value, 16); }
};

template <class Wanted>
Wanted value(zel::id self, zel::SEL /*selector*/) {
  return numericValue<Wanted>(self);
}

zel::CFStringRef stringValue(zel::id self, zel::SEL /*selector*/) {
  return pooled(createString(*bodyOf<NumberBody>(self, "number").text()));
}

}  // namespace

std::optional<std::u16string> NumberBody::text() const {
  return fromUtf8(std::visit(Texts(), value));
}

ClassDefinition numberClass() {
  return {.name = "NSNumber",
          .storable = true,
          .methods = {method("boolValue", &value<zel::BOOL>),
                      method("integerValue", &value<zel::NSInteger>),
                      method("floatValue", &value<float>), method("doubleValue", &value<double>),
                      method("stringValue", &stringValue)}};
}

zel::id createNumber(NumberValue value) {
  return createObject("NSNumber", std::make_unique<NumberBody>(value));
}

template <class Wanted>
Wanted numericValue(const void* object) {
  if (object == nullptr) return 0;
  const Body* const body = instance(object)->body.get();
  if (const auto* const number = dynamic_cast<const NumberBody*>(body)) {
    return std::visit([](auto value) { return convert<Wanted>(value); }, number->value);
  }
  if (const auto* const string = dynamic_cast<const StringBody*>(body)) {
    return parse<Wanted>(encodeLosslessly(string->units));
  }
  return 0;
}

template zel::BOOL numericValue(const void*);
template zel::NSInteger numericValue(const void*);
template float numericValue(const void*);
template double numericValue(const void*);

}  // namespace testkit::objc
