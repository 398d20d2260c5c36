#include "tests/end_to_end/property_lists.h"

#include <charconv>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <set>

#include "native/geometry.h"
#include "native/numbers.h"

namespace tests {
namespace {

using zel::classNamed;
using zel::id;
using zel::NSUInteger;
using zel::send;

constexpr NSUInteger kBinaryFormat = 200;

id dataOf(const std::string& bytes) {
  return send<id, "dataWithBytes:length:">(
      classNamed<"NSData">(), static_cast<const void*>(bytes.data()), NSUInteger{bytes.size()});
}

std::string bytesOf(id data) {
  const auto* const bytes = static_cast<const char*>(send<const void*, "bytes">(data));
  const auto length = send<NSUInteger, "length">(data);
  return bytes == nullptr ? "" : std::string(bytes, length);
}

std::string shortest(double number) {
  constexpr std::size_t kEnough = 400;
  char digits[kEnough];
  return {digits, std::to_chars(digits, digits + kEnough, number).ptr};
}

std::string hexadecimal(const std::string& bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string made;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    made += {kDigits[byte / 16], kDigits[byte % 16]};
  }
  return made;
}

// --- one value as a literal

std::string number(id value) {
  const std::string type = zel::zelNumberType(value);
  if (type == "c") return "boolean " + std::to_string(send<zel::BOOL, "boolValue">(value));
  if (type == "f" || type == "d") return "real " + shortest(send<double, "doubleValue">(value));
  return "integer " + textOf(send<id, "description">(value));
}

std::string date(id value) {
  return "date " + shortest(send<double, "timeIntervalSinceReferenceDate">(value));
}

std::string count(const char* what, id container) {
  return what + std::to_string(send<NSUInteger, "count">(container));
}

struct Kind {
  bool (*matches)(zel::Object*);
  std::string (*literal)(id);
};

constexpr Kind kKinds[] = {
    {zel::isKindOf<"NSString", zel::Object>, [](id v) { return "text \"" + textOf(v) + '"'; }},
    {zel::isKindOf<"NSNumber", zel::Object>, number},
    {zel::isKindOf<"NSDate", zel::Object>, date},
    {zel::isKindOf<"NSData", zel::Object>, [](id v) { return "data " + hexadecimal(bytesOf(v)); }},
    {zel::isKindOf<"NSArray", zel::Object>, [](id v) { return count("list ", v); }},
    {zel::isKindOf<"NSDictionary", zel::Object>, [](id v) { return count("dictionary ", v); }},
};

std::string literal(id value) {
  for (const Kind& kind : kKinds) {
    if (kind.matches(value)) return kind.literal(value);
  }
  return "no property list";
}

// --- all of them

void add(Lines& lines, const std::string& path, id value);

std::string below(const std::string& path, const std::string& name) {
  return path.empty() ? name : path + '.' + name;
}

void addElements(Lines& lines, const std::string& path, id list) {
  const auto elements = send<NSUInteger, "count">(list);
  for (NSUInteger i = 0; i < elements; ++i)
    add(lines, below(path, std::to_string(i)), send<id, "objectAtIndex:">(list, i));
}

void addEntries(Lines& lines, const std::string& path, id dictionary) {
  const id keys = send<id, "keyEnumerator">(dictionary);
  while (const id key = send<id, "nextObject">(keys))
    add(lines, below(path, textOf(key)), send<id, "objectForKey:">(dictionary, key));
}

void add(Lines& lines, const std::string& path, id value) {
  lines[path] = literal(value);
  if (zel::isKindOf<"NSArray">(value)) addElements(lines, path, value);
  if (zel::isKindOf<"NSDictionary">(value)) addEntries(lines, path, value);
}

std::string valueAt(const Lines& lines, const std::string& path) {
  const auto found = lines.find(path);
  return found == lines.end() ? "nothing" : found->second;
}

std::string change(const std::string& path, const std::string& was, const std::string& is) {
  return path + ": " + was + " -> " + is;
}

}  // namespace

zel::CFStringRef nativeText(std::string_view text) {
  return zel::autoreleased(zel::CFStringCreateWithCString(
      zel::kDefaultAllocator, std::string(text).c_str(), zel::kCFStringEncodingUTF8));
}

std::string textOf(const void* string) {
  const auto* const native = static_cast<zel::CFStringRef>(string);
  const auto* const bytes = send<const char*, "UTF8String">(native);
  return bytes == nullptr ? "(null)" : bytes;
}

id propertyListIn(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(in), {}};
  const id read = send<id, "propertyListWithData:options:format:error:">(
      classNamed<"NSPropertyListSerialization">(), dataOf(bytes), NSUInteger{0},
      static_cast<NSUInteger*>(nullptr), static_cast<id*>(nullptr));
  EXPECT_NE(read, nullptr) << file << " of " << bytes.size() << " bytes";
  return read;
}

void writeBinary(id propertyList, const std::filesystem::path& file) {
  const id data = send<id, "dataWithPropertyList:format:options:error:">(
      classNamed<"NSPropertyListSerialization">(), propertyList, kBinaryFormat, NSUInteger{0},
      static_cast<id*>(nullptr));
  const std::string bytes = bytesOf(data);
  EXPECT_EQ(bytes.substr(0, 8), "bplist00");
  std::ofstream out(file, std::ios::binary);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size())).flush();
  EXPECT_TRUE(out.good()) << file;
}

bool areEqual(id left, id right) { return send<zel::BOOL, "isEqual:">(left, right) != 0; }

void readDefaultsAnew() { send<void, "resetStandardUserDefaults">(classNamed<"NSUserDefaults">()); }

Lines linesOf(id propertyList) {
  Lines lines;
  add(lines, "", propertyList);
  return lines;
}

std::vector<std::string> differences(const Lines& before, const Lines& after) {
  std::set<std::string> paths;
  for (const Lines* const side : {&before, &after}) {
    for (const auto& [path, value] : *side) paths.insert(path);
  }
  std::vector<std::string> different;
  for (const std::string& path : paths) {
    const std::string was = valueAt(before, path);
    const std::string is = valueAt(after, path);
    if (was != is) different.push_back(change(path, was, is));
  }
  return different;
}

}  // namespace tests
