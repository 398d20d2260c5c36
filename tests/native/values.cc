#include "tests/native/values.h"

#include <charconv>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

#include "host/store/private_store.h"
#include "native/geometry.h"
#include "native/numbers.h"

namespace native_test {
namespace {

constexpr char kDigits[] = "0123456789abcdef";

using zel::classNamed;
using zel::id;
using zel::NSUInteger;
using zel::send;

zel::Class* numbers() { return classNamed<"NSNumber">(); }

// A string is a native object like any other.
id asObject(zel::CFStringRef string) {
  return reinterpret_cast<id>(const_cast<zel::CFStringObject*>(string));
}

template <class Number>
std::string shortest(Number number) {
  constexpr std::size_t kEnough = 64;
  char digits[kEnough];
  return {digits, std::to_chars(digits, digits + kEnough, number).ptr};
}

std::string literalOfNumber(id value) {
  const std::string type = zel::zelNumberType(value);
  if (type == "f") return "f " + shortest(send<float, "floatValue">(value));
  if (type == "d") return "d " + shortest(send<double, "doubleValue">(value));
  if (type == "c") return send<zel::BOOL, "boolValue">(value) != 0 ? "c 1" : "c 0";
  return type + ' ' + text(send<id, "description">(value));
}

std::string literalOfText(id value) {
  std::string made = "\"";
  for (const char16_t unit : unitsOf(value)) {
    if (unit >= 0x20 && unit < 0x7F) {
      made += static_cast<char>(unit);
    } else {
      made += '\\';
      for (int shift = 12; shift >= 0; shift -= 4) made += kDigits[unit >> shift & 0xF];
    }
  }
  return made + '"';
}

std::string literalOfList(id value) {
  std::string made;
  for (NSUInteger i = 0; i < send<NSUInteger, "count">(value); ++i)
    made += (i == 0 ? "" : ", ") + literal(send<id, "objectAtIndex:">(value, i));
  return '(' + made + ')';
}

std::string literalOfDictionary(id value) {
  std::map<std::string, std::string> entries;
  const id keys = send<id, "keyEnumerator">(value);
  while (const id key = send<id, "nextObject">(keys))
    entries[literal(key)] = literal(send<id, "objectForKey:">(value, key));
  std::string made;
  for (const auto& [key, entry] : entries) {
    made += made.empty() ? "" : ", ";
    made += key + ": ";
    made += entry;
  }
  return '{' + made + '}';
}

std::string literalOfDate(id value) {
  return "date " + shortest(send<double, "timeIntervalSinceReferenceDate">(value));
}

}  // namespace

id integer(std::int64_t value) {
  return send<id, "numberWithLongLong:">(numbers(), static_cast<long long>(value));
}
id unsignedInteger(std::uint64_t value) {
  return send<id, "numberWithUnsignedLongLong:">(numbers(), static_cast<unsigned long long>(value));
}
id boolean(bool value) {
  return send<id, "numberWithBool:">(numbers(), static_cast<zel::BOOL>(value ? 1 : 0));
}
id real(double value) { return send<id, "numberWithDouble:">(numbers(), value); }
id single(float value) { return send<id, "numberWithFloat:">(numbers(), value); }
id date(double seconds) {
  return send<id, "dateWithTimeIntervalSinceReferenceDate:">(classNamed<"NSDate">(), seconds);
}
id dataOf(std::string_view bytes) {
  return send<id, "dataWithBytes:length:">(
      classNamed<"NSData">(), static_cast<const void*>(bytes.data()), NSUInteger{bytes.size()});
}
id units(std::u16string_view text) {
  return asObject(zel::autoreleased(zel::CFStringCreateWithCharacters(
      zel::kDefaultAllocator, reinterpret_cast<const zel::UniChar*>(text.data()),
      static_cast<zel::CFIndex>(text.size()))));
}
std::u16string unitsOf(id text) {
  const auto* const string = reinterpret_cast<zel::CFStringRef>(text);
  std::u16string all(static_cast<std::size_t>(zel::CFStringGetLength(string)), u'\0');
  zel::CFStringGetCharacters(string, {0, zel::CFStringGetLength(string)},
                             reinterpret_cast<zel::UniChar*>(all.data()));
  return all;
}
id object(const char* text) { return asObject(string(text)); }
id null() { return send<id, "null">(classNamed<"NSNull">()); }

id list(const std::vector<id>& elements) {
  const id made = send<id, "array">(classNamed<"NSMutableArray">());
  for (const id element : elements) send<void, "addObject:">(made, element);
  return made;
}

id dictionary(const std::vector<std::pair<id, id>>& entries) {
  const id made = send<id, "dictionary">(classNamed<"NSMutableDictionary">());
  for (const auto& [key, value] : entries) send<void, "setObject:forKey:">(made, value, key);
  return made;
}

id nested(unsigned levels) {
  id made = list({});
  while (--levels > 0) made = list({made});
  return made;
}

std::string literal(id value) {
  if (zel::isKindOf<"NSString">(value)) return literalOfText(value);
  if (zel::isKindOf<"NSNumber">(value)) return literalOfNumber(value);
  if (zel::isKindOf<"NSDate">(value)) return literalOfDate(value);
  if (zel::isKindOf<"NSData">(value)) return '<' + hexadecimal(bytesIn(value)) + '>';
  if (zel::isKindOf<"NSArray">(value)) return literalOfList(value);
  if (zel::isKindOf<"NSDictionary">(value)) return literalOfDictionary(value);
  return value == nullptr ? "nil" : "(no property list)";
}

std::string hexadecimal(std::string_view bytes) {
  std::string made;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    made += {kDigits[byte / 16], kDigits[byte % 16]};
  }
  return made;
}

std::string bytesOf(std::string_view hexadecimal) {
  std::string digits;
  for (const char c : hexadecimal) {
    if (c != ' ') digits += c;
  }
  std::string made;
  for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
    made += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
  return made;
}

std::string bytesIn(id data) {
  const auto* const bytes = static_cast<const char*>(send<const void*, "bytes">(data));
  return bytes == nullptr ? "" : std::string(bytes, send<NSUInteger, "length">(data));
}

id parsed(std::string_view bytes) {
  return send<id, "propertyListWithData:options:format:error:">(
      classNamed<"NSPropertyListSerialization">(), dataOf(bytes), NSUInteger{0},
      static_cast<NSUInteger*>(nullptr), static_cast<id*>(nullptr));
}

id standardDefaults() { return send<id, "standardUserDefaults">(classNamed<"NSUserDefaults">()); }

void throughTheDisk() {
  EXPECT_NE((send<zel::BOOL, "synchronize">(standardDefaults())), 0);
  send<void, "resetStandardUserDefaults">(classNamed<"NSUserDefaults">());
}

std::string fileOfDomain(id contents) {
  const zel::CFStringRef name = string("com.example.written");
  send<void, "setPersistentDomain:forName:">(standardDefaults(), contents, name);
  throughTheDisk();
  std::ifstream in(host::storedDomain(text(name)), std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(in), {}};
  send<void, "removePersistentDomainForName:">(standardDefaults(), name);
  throughTheDisk();
  return bytes;
}

}  // namespace native_test
