// The language's functions of numbers.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <string>

#include "runner/library/format.h"
#include "runner/library/natives.h"
#include "runner/run/values.h"
#include "runner/text/text.h"

namespace runner {
namespace {

double real(const Value& value) { return numberOf<double>(value); }

Value str(Machine&, const Value&, const Value* a) { return numberText(a[0]); }
Value strOfBoolean(Machine& machine, const Value&, const Value* a) {
  return converted(machine, a[0], kString);
}
Value format(Machine&, const Value&, const Value* a) { return formatted(real(a[0]), textOf(a[1])); }
// Whether a value is a number, or a text that is one from its first letter to its last.
Value isNumeric(Machine& machine, const Value&, const Value* a) {
  if (!isText(a[0])) return booleanValue(typeOf(machine, a[0]).isNumber());
  const std::string_view text = trimmedRight(trimmedLeft(textOf(a[0])));
  const std::string_view digits = text.substr(text.starts_with('+') ? 1 : 0);
  double number = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, number);
  return booleanValue(error == std::errc() && stop == end && std::isfinite(number));
}

Value chr(Machine& machine, const Value&, const Value* a) {
  std::string text = fromCodePoint(integerOf(a[0]));
  if (text.empty())
    machine.raise("InvalidArgumentException", numberText(a[0]) + " is no code point.");
  return text;
}

template <int base>
Value inBase(Machine&, const Value&, const Value* a) {
  constexpr std::size_t kMost = 64;
  char digits[kMost];
  // Negative ones as their bits.
  const auto number = std::holds_alternative<std::int32_t>(a[0])
                          ? static_cast<std::uint64_t>(numberOf<std::uint32_t>(a[0]))
                          : numberOf<std::uint64_t>(a[0]);
  const std::to_chars_result end = std::to_chars(digits, digits + kMost, number, base);
  return uppercase(std::string_view(digits, static_cast<std::size_t>(end.ptr - digits)));
}

template <double (*function)(double)>
Value apply(Machine&, const Value&, const Value* a) {
  return function(real(a[0]));
}
template <double (*function)(double, double)>
Value applyTwo(Machine&, const Value&, const Value* a) {
  return function(real(a[0]), real(a[1]));
}

double absolute(double x) { return std::fabs(x); }
double rounded(double x) { return std::round(x); }
double smaller(double a, double b) { return std::min(a, b); }
double larger(double a, double b) { return std::max(a, b); }
double sign(double x) { return x < 0 ? -1 : static_cast<double>(x > 0); }

Value absoluteInteger(Machine&, const Value&, const Value* a) {
  const std::int32_t number = integerOf(a[0]);
  return number < 0 ? static_cast<std::int32_t>(0U - static_cast<std::uint32_t>(number)) : number;
}
Value smallerInteger(Machine&, const Value&, const Value* a) {
  return std::min(integerOf(a[0]), integerOf(a[1]));
}
Value largerInteger(Machine&, const Value&, const Value* a) {
  return std::max(integerOf(a[0]), integerOf(a[1]));
}

constexpr NativeRow kFunctions[] = {
    {"Str(number As Integer) As String", str},
    {"Str(number As Int64) As String", str},
    {"Str(number As UInt64) As String", str},
    {"Str(number As Currency) As String", str},
    {"Str(number As Single) As String", str},
    {"Str(number As Double) As String", str},
    {"Str(number As Double, format As String) As String", format},
    {"Str(value As Boolean) As String", strOfBoolean},
    {"Str(value As Color) As String", strOfBoolean},
    {"Str(value As Variant) As String", strOfBoolean},
    {"CStr(value As Variant) As String", strOfBoolean},
    {"IsNumeric(value As Variant) As Boolean", isNumeric},
    {"ToString(number As Integer) As String", str},
    {"ToString(number As Int64) As String", str},
    {"ToString(number As UInt64) As String", str},
    {"ToString(number As Single) As String", str},
    {"ToString(number As Double) As String", str},
    {"ToString(number As Double, format As String) As String", format},
    {"ToString(number As Currency) As String", str},
    {"ToString(value As Boolean) As String", strOfBoolean},
    {"ToString(value As Color) As String", strOfBoolean},
    {"Format(number As Double, format As String) As String", format},
    {"Chr(codePoint As Integer) As String", chr},
    {"Hex(number As Integer) As String", inBase<16>},
    {"Hex(number As Int64) As String", inBase<16>},
    {"Oct(number As Integer) As String", inBase<8>},
    {"Bin(number As Integer) As String", inBase<2>},
    {"Abs(number As Integer) As Integer", absoluteInteger},
    {"Abs(number As Double) As Double", apply<absolute>},
    {"Min(number As Integer, other As Integer) As Integer", smallerInteger},
    {"Min(number As Double, other As Double) As Double", applyTwo<smaller>},
    {"Max(number As Integer, other As Integer) As Integer", largerInteger},
    {"Max(number As Double, other As Double) As Double", applyTwo<larger>},
    {"Floor(number As Double) As Double", apply<std::floor>},
    {"Ceil(number As Double) As Double", apply<std::ceil>},
    {"Round(number As Double) As Double", apply<rounded>},
    {"Sign(number As Double) As Double", apply<sign>},
    {"Sqrt(number As Double) As Double", apply<std::sqrt>},
    {"Exp(number As Double) As Double", apply<std::exp>},
    {"Log(number As Double) As Double", apply<std::log>},
    {"Sin(number As Double) As Double", apply<std::sin>},
    {"Cos(number As Double) As Double", apply<std::cos>},
    {"Tan(number As Double) As Double", apply<std::tan>},
    {"Atan(number As Double) As Double", apply<std::atan>},
    {"Pow(base As Double, exponent As Double) As Double", applyTwo<std::pow>},
};

}  // namespace

std::span<const NativeRow> numberFunctions() { return kFunctions; }

}  // namespace runner
