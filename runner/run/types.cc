#include "runner/run/types.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "host/declaration.h"

namespace runner {
namespace {

struct SimpleType {
  std::string_view name;
  Kind kind;
};

// The first of a kind is what messages call it.
constexpr SimpleType kSimpleTypes[] = {
    {"Boolean", Kind::boolean}, {"Integer", Kind::int32}, {"Int32", Kind::int32},
    {"Int64", Kind::int64},     {"UInt32", Kind::uint32}, {"UInt64", Kind::uint64},
    {"Single", Kind::single},   {"Double", Kind::real},   {"String", Kind::text},
    {"Variant", Kind::variant},
};

struct ElementCode {
  Kind kind;
  std::int32_t code;  // of a variant
};
// What arrays of the host keep as it is, beside Dates.
constexpr ElementCode kElementCodes[] = {
    {Kind::int32, host::kInt32Type},   {Kind::int64, host::kInt64Type},
    {Kind::single, host::kSingleType}, {Kind::real, host::kDoubleType},
    {Kind::text, host::kStringType},   {Kind::boolean, host::kBooleanType},
};

// Distances; what is nearer is preferred among overloads.
constexpr int kSame = 0;
constexpr int kNear = 1;
constexpr int kWider = 2;
constexpr int kNarrower = 20;
constexpr int kConverted = 30;
constexpr int kToVariant = 40;
constexpr int kFromVariant = 50;

// Numbers from those that have the least room.
constexpr Kind kNumbers[] = {Kind::int32,  Kind::uint32, Kind::int64,
                             Kind::uint64, Kind::single, Kind::real};

int room(Kind kind) {
  const auto* const found = std::find(std::begin(kNumbers), std::end(kNumbers), kind);
  return static_cast<int>(found - std::begin(kNumbers));
}

int numberDistance(Kind from, Kind to) {
  const int steps = room(to) - room(from);
  // A Single is nearer to an integer than nothing, but a Double has all of them.
  if (steps > 0 && to == Kind::single) return kWider + static_cast<int>(std::size(kNumbers));
  return steps > 0 ? kWider + steps : kNarrower - steps;
}

}  // namespace

bool Type::isNumber() const {
  return !array && std::find(std::begin(kNumbers), std::end(kNumbers), kind) != std::end(kNumbers);
}

bool Type::isInteger() const { return isNumber() && kind != Kind::single && kind != Kind::real; }

bool Type::isReference() const {
  return array || kind == Kind::object || kind == Kind::variant || kind == Kind::nil;
}

std::string nameOf(const Type& type) {
  const std::string suffix = type.array ? "()" : "";
  if (type.kind == Kind::object) return type.className + suffix;
  if (type.kind == Kind::nil) return "Nil";
  const auto* const found =
      std::find_if(std::begin(kSimpleTypes), std::end(kSimpleTypes),
                   [&type](const SimpleType& simple) { return simple.kind == type.kind; });
  return found == std::end(kSimpleTypes) ? "nothing" : std::string(found->name) + suffix;
}

std::int32_t arrayCode(const Type& array) {
  if (array == kDate.arrayOf()) return host::kArrayType + host::kDateType;
  for (const ElementCode& element : kElementCodes)
    if (element.kind == array.kind) return host::kArrayType + element.code;
  return host::kArrayType + host::kObjectType;
}

Type arrayType(std::int32_t code) {
  if (code == host::kArrayType + host::kDateType) return kDate.arrayOf();
  for (const ElementCode& element : kElementCodes)
    if (host::kArrayType + element.code == code) return {element.kind, "", true};
  return kVariant.arrayOf();
}

std::vector<std::string> simpleTypeNames() {
  std::vector<std::string> names;
  for (const SimpleType& simple : kSimpleTypes) names.emplace_back(simple.name);
  names.emplace_back("Object");
  return names;
}

std::optional<Type> Types::find(const host::Type& written) const {
  for (const SimpleType& simple : kSimpleTypes) {
    if (host::sameName(simple.name, written.name)) return Type{simple.kind, "", written.array};
  }
  if (host::sameName("Object", written.name)) return Type{Kind::object, "Object", written.array};
  std::string name = className(written.name);
  if (name.empty()) return std::nullopt;
  return Type{Kind::object, std::move(name), written.array};
}

std::string Types::className(std::string_view written) const {
  for (const std::string& name : host_.classNames())
    if (host::sameName(name, written)) return name;
  return "";
}

std::vector<std::string> Types::names() const {
  std::vector<std::string> names = simpleTypeNames();
  for (const std::string& name : host_.classNames()) names.push_back(name);
  return names;
}

std::string Types::superName(const std::string& className) const {
  const host::RegisteredClass* const found = host_.findClass(className);
  return found == nullptr ? "" : found->superName;
}

bool Types::isA(const std::string& className, const std::string& other) const {
  if (other == "Object") return true;
  for (std::string name = className; !name.empty(); name = superName(name))
    if (name == other) return true;
  return false;
}

std::optional<int> Types::distance(const Type& from, const Type& to) const {
  if (from == to) return from.kind == Kind::nothing ? std::nullopt : std::optional(kSame);
  if (from.kind == Kind::nothing || to.kind == Kind::nothing) return std::nullopt;
  if (from.isNumber() && to.isNumber()) return numberDistance(from.kind, to.kind);
  if (to.kind == Kind::variant && !to.array) return kToVariant;
  if (from.kind == Kind::nil) return to.isReference() ? std::optional(kNear) : std::nullopt;
  if (from.kind == Kind::variant && !from.array) return kFromVariant;
  return objectDistance(from, to);
}

std::optional<int> Types::objectDistance(const Type& from, const Type& to) const {
  if (to == kAnyObject && (from.array || from.kind == Kind::object)) return kConverted;
  if (from.array || to.array) return std::nullopt;
  const Type block = objectOf("MemoryBlock");
  if ((from == kString && to == block) || (from == block && to == kString)) return kConverted;
  if (from.kind != Kind::object || to.kind != Kind::object) return std::nullopt;
  int steps = kNear;
  for (std::string name = superName(from.className); !name.empty(); name = superName(name)) {
    if (name == to.className) return steps;
    ++steps;
  }
  return std::nullopt;
}

Type commonNumber(const Type& left, const Type& right) {
  if (left == right && left.kind != Kind::uint32) return left;
  const auto isReal = [](const Type& type) {
    return type.kind == Kind::real || type.kind == Kind::single;
  };
  if (isReal(left) || isReal(right)) return kDouble;
  if (left.kind == Kind::uint64 || right.kind == Kind::uint64) return kUInt64;
  return kInt64;
}

}  // namespace runner
