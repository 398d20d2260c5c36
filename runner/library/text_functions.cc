// The language's functions of texts.
#include <algorithm>
#include <compare>
#include <cstdint>
#include <limits>
#include <string>

#include "runner/library/natives.h"
#include "runner/run/arrays.h"
#include "runner/run/values.h"
#include "runner/text/text.h"

namespace runner {
namespace {

constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();

// A count or position; below 0 is 0.
std::size_t sizeOf(const Value& value) {
  return static_cast<std::size_t>(std::max(0, integerOf(value)));
}

Value sized(std::size_t size) { return static_cast<std::int32_t>(size); }

Value text(std::string_view view) { return std::string(view); }

Value length(Machine&, const Value&, const Value* a) { return sized(characters(textOf(a[0]))); }
Value lengthInBytes(Machine&, const Value&, const Value* a) { return sized(textOf(a[0]).size()); }

Value left(Machine&, const Value&, const Value* a) {
  return text(middle(textOf(a[0]), 0, sizeOf(a[1])));
}

Value right(Machine&, const Value&, const Value* a) {
  const std::size_t count = characters(textOf(a[0]));
  const std::size_t wanted = std::min(count, sizeOf(a[1]));
  return text(middle(textOf(a[0]), count - wanted, wanted));
}

// From a character on. @param first the number of the first character.
Value part(const Value& whole, const Value& from, std::int32_t first, std::size_t count) {
  const std::int32_t start = integerOf(from);
  if (start < first) return std::string();
  return text(middle(textOf(whole),
                     static_cast<std::size_t>(start) - static_cast<std::size_t>(first), count));
}
Value mid(Machine&, const Value&, const Value* a) { return part(a[0], a[1], 1, kAll); }
Value midCount(Machine&, const Value&, const Value* a) { return part(a[0], a[1], 1, sizeOf(a[2])); }
Value middleOf(Machine&, const Value&, const Value* a) { return part(a[0], a[1], 0, kAll); }
Value middleCount(Machine&, const Value&, const Value* a) {
  return part(a[0], a[1], 0, sizeOf(a[2]));
}

Value trim(Machine&, const Value&, const Value* a) {
  return text(trimmedRight(trimmedLeft(textOf(a[0]))));
}
Value trimLeft(Machine&, const Value&, const Value* a) { return text(trimmedLeft(textOf(a[0]))); }
Value trimRight(Machine&, const Value&, const Value* a) { return text(trimmedRight(textOf(a[0]))); }
Value upper(Machine&, const Value&, const Value* a) { return uppercase(textOf(a[0])); }
Value lower(Machine&, const Value&, const Value* a) { return lowercase(textOf(a[0])); }

// --- parts

std::vector<Value> fields(const std::string& whole, const std::string& delimiter) {
  std::vector<Value> parts;
  if (whole.empty()) return parts;
  if (delimiter.empty()) {
    for (std::size_t at = 0; at < whole.size(); at += textOf(parts.back()).size())
      parts.push_back(text(middle(std::string_view(whole).substr(at), 0, 1)));
    return parts;
  }
  std::size_t begin = 0;
  for (;;) {
    std::size_t size = 0;
    const std::size_t end = findText(whole, delimiter, begin, &size);
    parts.push_back(text(std::string_view(whole).substr(begin, end - begin)));
    if (end == std::string::npos) return parts;
    begin = end + size;
  }
}

Value splitAt(Machine& machine, const Value&, const Value* a) {
  return newArray(machine, kString.arrayOf(), fields(textOf(a[0]), textOf(a[1])));
}
Value split(Machine& machine, const Value&, const Value* a) {
  return newArray(machine, kString.arrayOf(), fields(textOf(a[0]), " "));
}
Value countFields(Machine&, const Value&, const Value* a) {
  return sized(fields(textOf(a[0]), textOf(a[1])).size());
}
Value nthField(Machine&, const Value&, const Value* a) {
  const std::vector<Value> parts = fields(textOf(a[0]), textOf(a[1]));
  const std::size_t index = sizeOf(a[2]);
  return index >= 1 && index <= parts.size() ? parts[index - 1] : Value(std::string());
}

Value joined(Machine& machine, const Value& list, const std::string& delimiter) {
  const host::Array array = arrayIn(machine, list);
  std::string whole;
  for (std::size_t i = 0; i < array.size(); ++i)
    whole += (i == 0 ? "" : delimiter) + textOf(array.at(i));
  return whole;
}
Value joinBy(Machine& machine, const Value&, const Value* a) {
  return joined(machine, a[0], textOf(a[1]));
}
Value join(Machine& machine, const Value&, const Value* a) { return joined(machine, a[0], " "); }

// --- finding

// The number of the character where a text stands; npos when it doesn't.
std::size_t indexOf(const std::string& whole, const std::string& wanted, std::size_t from) {
  std::size_t size = 0;
  const std::size_t found = findText(whole, wanted, byteOffset(whole, from), &size);
  return found == std::string::npos ? found : characters(std::string_view(whole).substr(0, found));
}
Value inStrFrom(Machine&, const Value&, const Value* a) {
  const std::size_t from = std::max<std::size_t>(sizeOf(a[0]), 1) - 1;
  return sized(indexOf(textOf(a[1]), textOf(a[2]), from) + 1);  // npos becomes 0
}
Value inStr(Machine&, const Value&, const Value* a) {
  return sized(indexOf(textOf(a[0]), textOf(a[1]), 0) + 1);
}
Value indexFrom(Machine&, const Value&, const Value* a) {
  return static_cast<std::int32_t>(indexOf(textOf(a[0]), textOf(a[2]), sizeOf(a[1])));
}
Value index(Machine&, const Value&, const Value* a) {
  return static_cast<std::int32_t>(indexOf(textOf(a[0]), textOf(a[1]), 0));
}
Value contains(Machine&, const Value&, const Value* a) {
  return booleanValue(indexOf(textOf(a[0]), textOf(a[1]), 0) != std::string::npos);
}
Value beginsWith(Machine&, const Value&, const Value* a) {
  const std::string_view begin = middle(textOf(a[0]), 0, characters(textOf(a[1])));
  return booleanValue(std::is_eq(compareText(begin, textOf(a[1]))));
}
Value endsWith(Machine& machine, const Value& self, const Value* a) {
  const Value arguments[] = {a[0], sized(characters(textOf(a[1])))};
  return booleanValue(
      std::is_eq(compareText(textOf(right(machine, self, arguments)), textOf(a[1]))));
}

std::string replaced(const std::string& whole, const std::string& wanted, const std::string& by,
                     bool all) {
  std::string result;
  std::size_t begin = 0;
  std::size_t size = 0;
  std::size_t found = wanted.empty() ? std::string::npos : findText(whole, wanted, 0, &size);
  while (found != std::string::npos) {
    result += whole.substr(begin, found - begin) + by;
    begin = found + size;
    found = all ? findText(whole, wanted, begin, &size) : std::string::npos;
  }
  return result + whole.substr(begin);
}
Value replaceFirst(Machine&, const Value&, const Value* a) {
  return replaced(textOf(a[0]), textOf(a[1]), textOf(a[2]), false);
}
Value replaceAll(Machine&, const Value&, const Value* a) {
  return replaced(textOf(a[0]), textOf(a[1]), textOf(a[2]), true);
}

// Mode 0 tells upper case from lower case, 1 doesn't.
Value compareBy(Machine&, const Value&, const Value* a) {
  const std::weak_ordering order = integerOf(a[2]) == 0
                                       ? std::weak_ordering(textOf(a[0]) <=> textOf(a[1]))
                                       : compareText(textOf(a[0]), textOf(a[1]));
  return std::int32_t{std::is_gt(order)} - std::int32_t{std::is_lt(order)};
}

// --- characters, numbers and bytes

Value asc(Machine&, const Value&, const Value* a) {
  return std::int32_t{firstCodePoint(textOf(a[0])).value_or(0)};
}
Value val(Machine&, const Value&, const Value* a) { return textNumber(textOf(a[0])); }
Value toInteger(Machine& machine, const Value&, const Value* a) {
  return converted(machine, textNumber(textOf(a[0])), kInteger);
}

constexpr char kHexDigits[] = "0123456789ABCDEF";

Value encodeHex(Machine&, const Value&, const Value* a) {
  std::string digits;
  for (const char c : textOf(a[0])) {
    const auto byte = static_cast<unsigned char>(c);
    digits += kHexDigits[byte / 16];
    digits += kHexDigits[byte % 16];
  }
  return digits;
}

// What is no digit is passed over.
Value decodeHex(Machine&, const Value&, const Value* a) {
  std::string digits = uppercase(textOf(a[0]));
  std::erase_if(digits, [](char c) { return std::string_view(kHexDigits).find(c) > 15; });
  std::string bytes;
  for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
    const std::size_t high = std::string_view(kHexDigits).find(digits[i]);
    const std::size_t low = std::string_view(kHexDigits).find(digits[i + 1]);
    bytes += static_cast<char>(high * 16 + low);
  }
  return bytes;
}

constexpr NativeRow kFunctions[] = {
    {"Len(text As String) As Integer", length},
    {"Length(text As String) As Integer", length},
    {"LenB(text As String) As Integer", lengthInBytes},
    {"Bytes(text As String) As Integer", lengthInBytes},
    {"Left(text As String, count As Integer) As String", left},
    {"Right(text As String, count As Integer) As String", right},
    {"Mid(text As String, start As Integer) As String", mid},
    {"Mid(text As String, start As Integer, count As Integer) As String", midCount},
    {"Middle(text As String, index As Integer) As String", middleOf},
    {"Middle(text As String, index As Integer, count As Integer) As String", middleCount},
    {"Trim(text As String) As String", trim},
    {"LTrim(text As String) As String", trimLeft},
    {"RTrim(text As String) As String", trimRight},
    {"TrimLeft(text As String) As String", trimLeft},
    {"TrimRight(text As String) As String", trimRight},
    {"Uppercase(text As String) As String", upper},
    {"Lowercase(text As String) As String", lower},
    {"Split(text As String) As String()", split},
    {"Split(text As String, delimiter As String) As String()", splitAt},
    {"ToArray(text As String, delimiter As String) As String()", splitAt},
    {"CountFields(text As String, delimiter As String) As Integer", countFields},
    {"NthField(text As String, delimiter As String, number As Integer) As String", nthField},
    {"Join(texts() As String) As String", join},
    {"Join(texts() As String, delimiter As String) As String", joinBy},
    {"InStr(text As String, wanted As String) As Integer", inStr},
    {"InStr(start As Integer, text As String, wanted As String) As Integer", inStrFrom},
    {"IndexOf(text As String, wanted As String) As Integer", index},
    {"IndexOf(text As String, start As Integer, wanted As String) As Integer", indexFrom},
    {"Contains(text As String, wanted As String) As Boolean", contains},
    {"BeginsWith(text As String, wanted As String) As Boolean", beginsWith},
    {"EndsWith(text As String, wanted As String) As Boolean", endsWith},
    {"Replace(text As String, wanted As String, replacement As String) As String", replaceFirst},
    {"ReplaceAll(text As String, wanted As String, replacement As String) As String", replaceAll},
    {"StrComp(text As String, other As String, mode As Integer) As Integer", compareBy},
    {"Asc(text As String) As Integer", asc},
    {"Val(text As String) As Double", val},
    {"CDbl(text As String) As Double", val},
    {"ToDouble(text As String) As Double", val},
    {"ToInteger(text As String) As Integer", toInteger},
    {"EncodeHex(bytes As String) As String", encodeHex},
    {"DecodeHex(digits As String) As String", decodeHex},
};

}  // namespace

std::span<const NativeRow> textFunctions() { return kFunctions; }

}  // namespace runner
