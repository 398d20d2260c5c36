#include "foundation_double/numbers.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string_view>
#include <type_traits>

#include "foundation_double/classes.h"
#include "foundation_double/faults.h"
#include "foundation_double/strings.h"
#include "native/geometry.h"
#include "native/numbers.h"

namespace foundation_double::objc {
namespace {

/// Cut towards zero, and to the limits where it doesn't fit.
template <class Wanted>
Wanted toInteger(double value) {
  using Limits = std::numeric_limits<Wanted>;
  const double end = std::ldexp(1.0, Limits::digits);
  const double start = Limits::is_signed ? -end : 0.0;
  if (std::isnan(value)) return 0;
  if (value >= end) return Limits::max();
  if (value < start) return Limits::min();
  return static_cast<Wanted>(value);
}

template <class Wanted, class Given>
Wanted convert(Given value) {
  if constexpr (std::is_integral_v<Wanted> && std::is_floating_point_v<Given>) {
    return toInteger<Wanted>(value);
  } else {
    return static_cast<Wanted>(value);
  }
}

template <class Wanted>
Wanted valueOf(const NumberBody& number) {
  return std::visit([](auto value) { return convert<Wanted>(value); }, number.value);
}

bool isNotZero(const NumberBody& number) {
  return std::visit([](auto value) { return value != 0; }, number.value);
}

bool isBoolean(const NumberBody& number) { return number.code == "c"; }

zel::BOOL byteOf(const NumberBody& number) {
  return isBoolean(number) ? valueOf<zel::BOOL>(number) : zel::BOOL{isNotZero(number)};
}

/// Foundation's reading of "YES", "true", "1" and the like.
bool meansYes(std::string_view text) {
  constexpr std::string_view kYes = "YyTt123456789";
  const std::size_t first = text.find_first_not_of(" +-0");
  return first != std::string_view::npos && kYes.find(text[first]) != std::string_view::npos;
}

template <class Wanted>
Wanted parse(const std::string& text) {
  if constexpr (std::is_integral_v<Wanted>) {
    using Limits = std::numeric_limits<Wanted>;
    const long long value = std::strtoll(text.c_str(), nullptr, 10);
    return static_cast<Wanted>(std::clamp<long long>(value, Limits::min(), Limits::max()));
  } else {
    return static_cast<Wanted>(std::strtod(text.c_str(), nullptr));
  }
}

struct Texts {
  std::string operator()(std::int64_t value) const { return std::to_string(value); }
  std::string operator()(std::uint64_t value) const { return std::to_string(value); }
  std::string operator()(float value) const { return textOf(double{value}, 7); }
  std::string operator()(double value) const { return textOf(value); }
};

std::string plainText(const NumberBody& number) { return std::visit(Texts(), number.value); }

struct KeyTexts {
  std::string operator()(std::int64_t value) const { return std::to_string(value); }
  std::string operator()(std::uint64_t value) const { return std::to_string(value); }
  /// Whole numbers are the same key as integers.
  std::string operator()(double value) const {
    const auto whole = toInteger<std::int64_t>(value);
    const bool isWhole = static_cast<double>(whole) == value;
    return isWhole ? std::to_string(whole)
                   : textOf(value, std::numeric_limits<double>::max_digits10);
  }
};

NumberBody& numberBody(const void* number) { return bodyOf<NumberBody>(number, "number"); }

template <class Kind>
const Kind* bodyIf(const void* object) {
  return object == nullptr ? nullptr : dynamic_cast<const Kind*>(instance(object)->body.get());
}

// --- methods

template <class Wanted>
Wanted value(zel::id self, zel::SEL /*selector*/) {
  return valueOf<Wanted>(numberBody(self));
}

zel::BOOL boolValue(zel::id self, zel::SEL /*selector*/) { return byteOf(numberBody(self)); }

template <class Given, char Code>
zel::id numberWith(zel::id /*self*/, zel::SEL /*selector*/, Given given) {
  return pooled(createNumber(std::string(1, Code), numberValue(given)));
}

zel::CFStringRef stringValue(zel::id self, zel::SEL /*selector*/) {
  return pooled(createString(*numberBody(self).text()));
}

const char* objCType(zel::id self, zel::SEL /*selector*/) { return numberBody(self).code.c_str(); }

}  // namespace

std::optional<std::u16string> NumberBody::text() const { return fromUtf8(plainText(*this)); }

std::optional<std::string> NumberBody::literal() const {
  const std::string plain = plainText(*this);
  if (isBoolean(*this) && plain == "0") return "false";
  if (isBoolean(*this) && plain == "1") return "true";
  return plain;
}

std::string NumberBody::keyText() const { return std::visit(KeyTexts(), value); }

ClassDefinition numberClass() {
  return {
      .name = "NSNumber",
      .superName = "NSValue",
      .storable = true,
      .methods = {method("boolValue", &boolValue), method("charValue", &value<signed char>),
                  method("unsignedCharValue", &value<unsigned char>),
                  method("shortValue", &value<short>),
                  method("unsignedShortValue", &value<unsigned short>),
                  method("intValue", &value<int>), method("unsignedIntValue", &value<unsigned int>),
                  method("longValue", &value<long>),
                  method("unsignedLongValue", &value<unsigned long>),
                  method("longLongValue", &value<long long>),
                  method("unsignedLongLongValue", &value<unsigned long long>),
                  method("integerValue", &value<zel::NSInteger>),
                  method("unsignedIntegerValue", &value<zel::NSUInteger>),
                  method("floatValue", &value<float>), method("doubleValue", &value<double>),
                  method("stringValue", &stringValue), method("objCType", &objCType)},
      .classMethods = {method("numberWithBool:", &numberWith<zel::BOOL, 'c'>),
                       method("numberWithChar:", &numberWith<signed char, 'c'>),
                       method("numberWithUnsignedChar:", &numberWith<unsigned char, 'C'>),
                       method("numberWithShort:", &numberWith<short, 's'>),
                       method("numberWithUnsignedShort:", &numberWith<unsigned short, 'S'>),
                       method("numberWithInt:", &numberWith<int, 'i'>),
                       method("numberWithUnsignedInt:", &numberWith<unsigned int, 'I'>),
                       method("numberWithLong:", &numberWith<long, 'l'>),
                       method("numberWithUnsignedLong:", &numberWith<unsigned long, 'L'>),
                       method("numberWithLongLong:", &numberWith<long long, 'q'>),
                       method("numberWithUnsignedLongLong:", &numberWith<unsigned long long, 'Q'>),
                       method("numberWithFloat:", &numberWith<float, 'f'>),
                       method("numberWithDouble:", &numberWith<double, 'd'>)}};
}

zel::id createNumber(std::string code, NumberValue value) {
  return createObject("NSNumber", std::make_unique<NumberBody>(std::move(code), value));
}

template <class Wanted>
Wanted numericValue(const void* object) {
  if (const auto* const number = bodyIf<NumberBody>(object)) return valueOf<Wanted>(*number);
  if (const auto* const string = bodyIf<StringBody>(object)) {
    return parse<Wanted>(encodeLosslessly(string->units));
  }
  return 0;
}

template zel::NSInteger numericValue(const void*);
template float numericValue(const void*);
template double numericValue(const void*);

zel::BOOL booleanValue(const void* object) {
  if (const auto* const number = bodyIf<NumberBody>(object)) return byteOf(*number);
  const auto* const string = bodyIf<StringBody>(object);
  return string != nullptr && meansYes(encodeLosslessly(string->units));
}

std::string textOf(double value, int digits) {
  char text[32];
  std::snprintf(text, sizeof text, "%.*g", digits, value);
  return text;
}

}  // namespace foundation_double::objc

namespace zel {

const char* zelNumberType(id number) {
  if (!foundation_double::objc::Faults::shared().countCall(__func__)) return "";
  return foundation_double::objc::numberBody(number).code.c_str();
}

}  // namespace zel
