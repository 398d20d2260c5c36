// The types of the language, as a program's text is checked by.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/host.h"

namespace runner {

enum class Kind {
  nothing,  // what a Sub gives
  nil,
  boolean,
  int32,
  int64,
  uint32,
  uint64,
  single,
  real,
  text,
  variant,
  object,
};

struct Type {
  Kind kind = Kind::nothing;
  std::string className;  // of an object, as registered; "Object": any
  bool array = false;     // of elements of the kind

  friend bool operator==(const Type&, const Type&) = default;
  [[nodiscard]] bool isNumber() const;
  [[nodiscard]] bool isInteger() const;
  /// Whether Nil is a value of the type.
  [[nodiscard]] bool isReference() const;
  /// The type of an array's elements.
  [[nodiscard]] Type element() const { return {kind, className, false}; }
  [[nodiscard]] Type arrayOf() const { return {kind, className, true}; }
};

inline const Type kNothing = {};
inline const Type kNil = {Kind::nil, "", false};
inline const Type kBoolean = {Kind::boolean, "", false};
inline const Type kInteger = {Kind::int32, "", false};
inline const Type kInt64 = {Kind::int64, "", false};
inline const Type kUInt64 = {Kind::uint64, "", false};
inline const Type kSingle = {Kind::single, "", false};
inline const Type kDouble = {Kind::real, "", false};
inline const Type kString = {Kind::text, "", false};
inline const Type kVariant = {Kind::variant, "", false};
inline const Type kDate = {Kind::object, "Date", false};
inline const Type kAnyObject = {Kind::object, "Object", false};
inline Type objectOf(std::string_view className) {
  return {Kind::object, std::string(className), false};
}

/// The type code that arrays of a type have in the host, and their type by that code. Variants and
/// objects other than Dates are kept alike: their arrays are those of Variants.
std::int32_t arrayCode(const Type& array);
Type arrayType(std::int32_t code);

/// As programs write it: "Integer", "String()".
std::string nameOf(const Type& type);
/// The names of all types that aren't classes.
std::vector<std::string> simpleTypeNames();

/// The types of the running host: its classes come from its own and the plugins' records.
class Types {
 public:
  explicit Types(const host::Host& host) : host_(host) {}

  /// nullopt when there is no such type.
  [[nodiscard]] std::optional<Type> find(const host::Type& written) const;
  /// The class of that name in any case, as registered; "" when there is none.
  [[nodiscard]] std::string className(std::string_view written) const;
  /// The names of classes and simple types, for suggestions.
  [[nodiscard]] std::vector<std::string> names() const;
  /// "" for none.
  [[nodiscard]] std::string superName(const std::string& className) const;
  /// Whether a class is another or below it. Any class is below "Object".
  [[nodiscard]] bool isA(const std::string& className, const std::string& other) const;

  /// How far a value of a type is from another one's: 0 for the same, nullopt when it can't stand
  /// there. What loses something costs more.
  [[nodiscard]] std::optional<int> distance(const Type& from, const Type& to) const;

 private:
  [[nodiscard]] std::optional<int> objectDistance(const Type& from, const Type& to) const;

  const host::Host& host_;
};

/// The number type in which numbers of two types are added, subtracted and multiplied.
Type commonNumber(const Type& left, const Type& right);

}  // namespace runner
