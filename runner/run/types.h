// The types of the language, as a program's text is checked by.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/host.h"

namespace runner {

enum class Kind {
  nothing,  // what a Sub gives
  nil,
  boolean,
  int8,
  uint8,
  int16,
  uint16,
  int32,
  uint32,
  int64,
  uint64,
  single,
  real,
  currency,
  color,
  text,
  variant,
  object,
  enumeration,
};

struct ProgramClass;

/// What makes a number another type of number; 0 of what is none.
using NumberConversion = host::Value (*)(const host::Value& number);

/// All that is known about a type. There is one row for each type, so that types are the same when
/// their rows are.
struct TypeRow {
  Kind kind;                          // of the elements, for an array
  std::string_view name;              // as messages call it: "Integer", "String()"
  const TypeRow* element;             // of an array; else null
  const TypeRow* array;               // arrays of it; null for an array
  const TypeRow* superClass;          // of a class; null for none
  std::int32_t arrayCode;             // the type code that arrays of it have in the host
  int room;                           // of a number: how much has room in it; 0 for what is none
  NumberConversion convert;           // from any number; null for what is none
  host::Value (*initial)();           // what a variable of the type holds at first
  const ProgramClass* own = nullptr;  // of a class of the program
};

class Type {
 public:
  constexpr Type();
  constexpr explicit Type(const TypeRow* row) : row_(row) {}

  const TypeRow* operator->() const { return row_; }
  friend bool operator==(const Type&, const Type&) = default;

  [[nodiscard]] bool isNumber() const { return row_->room != 0; }
  [[nodiscard]] bool isInteger() const { return isNumber() && row_->kind < Kind::single; }
  [[nodiscard]] bool isArray() const { return row_->element != nullptr; }
  [[nodiscard]] bool isObject() const { return row_->kind == Kind::object && !isArray(); }
  /// Whether it gives no value at all.
  [[nodiscard]] bool isNothing() const { return row_->kind == Kind::nothing; }
  /// Whether Nil is a value of the type.
  [[nodiscard]] bool isReference() const;
  /// The type of an array's elements.
  [[nodiscard]] Type element() const { return Type(row_->element); }
  [[nodiscard]] Type arrayOf() const { return Type(row_->array); }
  /// Whether a class is another or below it; of what isn't a class, whether it is the same. Any
  /// class is below "Object".
  [[nodiscard]] bool isA(Type other) const;
  /// Its name, for texts that are put together.
  [[nodiscard]] std::string name() const { return std::string(row_->name); }

 private:
  const TypeRow* row_;
};

// The rows of the types that are always there; classes have theirs in Types.
enum class Simple {
  nothing,
  nil,
  boolean,
  int8,
  uint8,
  int16,
  uint16,
  int32,
  uint32,
  int64,
  uint64,
  single,
  real,
  currency,
  color,
  text,
  variant,
  object,
  date,
  exception,
  memoryBlock,
  count
};
inline constexpr auto kSimpleCount = static_cast<std::size_t>(Simple::count);
extern const std::array<TypeRow, kSimpleCount> kSimpleRows;
constexpr Type simpleType(Simple simple) {
  return Type(&kSimpleRows[static_cast<std::size_t>(simple)]);
}

inline constexpr Type kNothing = simpleType(Simple::nothing);
inline constexpr Type kNil = simpleType(Simple::nil);
inline constexpr Type kBoolean = simpleType(Simple::boolean);
inline constexpr Type kInt8 = simpleType(Simple::int8);
inline constexpr Type kUInt8 = simpleType(Simple::uint8);
inline constexpr Type kInt16 = simpleType(Simple::int16);
inline constexpr Type kUInt16 = simpleType(Simple::uint16);
inline constexpr Type kInteger = simpleType(Simple::int32);
inline constexpr Type kInt64 = simpleType(Simple::int64);
inline constexpr Type kUInt32 = simpleType(Simple::uint32);
inline constexpr Type kUInt64 = simpleType(Simple::uint64);
inline constexpr Type kSingle = simpleType(Simple::single);
inline constexpr Type kDouble = simpleType(Simple::real);
inline constexpr Type kCurrency = simpleType(Simple::currency);
inline constexpr Type kColor = simpleType(Simple::color);
inline constexpr Type kString = simpleType(Simple::text);
inline constexpr Type kVariant = simpleType(Simple::variant);
inline constexpr Type kAnyObject = simpleType(Simple::object);
inline constexpr Type kDate = simpleType(Simple::date);
inline constexpr Type kException = simpleType(Simple::exception);
inline constexpr Type kMemoryBlock = simpleType(Simple::memoryBlock);

constexpr Type::Type() : row_(kNothing.row_) {}

/// The type of an array by its type code in the host. Variants and objects other than Dates are
/// kept alike: their arrays are those of Variants.
Type arrayType(std::int32_t code);

/// How far a value of a type is from another one's: 0 for the same, nullopt when it can't stand
/// there. What loses something costs more.
std::optional<int> distance(Type from, Type to);

/// The number type in which numbers of two types are added, subtracted and multiplied.
Type commonNumber(Type left, Type right);

/// The types of the running host by their names: its classes come from its own and the plugins'
/// records.
class Types {
 public:
  /// Knows the classes that the host has by now.
  explicit Types(host::Host& host);

  /// nullopt when there is no such type. @param key its name, folded.
  [[nodiscard]] std::optional<Type> find(const std::string& key) const;
  /// The same for a type in a declaration.
  [[nodiscard]] std::optional<Type> find(const host::Type& written) const;
  /// The class of objects that the host describes so.
  [[nodiscard]] Type of(const host::RegisteredClass& known) const;
  /// For suggestions.
  [[nodiscard]] const std::vector<std::string>& names() const { return names_; }

  /// Adds a class to the host, unless it has one of that name.
  Type addClass(const std::string& name, const std::string& superName);

  /// A new class of a program, which the host doesn't know yet.
  Type declareClass(const std::string& name);
  /// @param super nullopt for none.
  void setSuper(Type declared, std::optional<Type> super, const ProgramClass& own);
  /// A new enum of a program.
  Type declareEnum(const std::string& name);
  /// The host has a class of a program now.
  void establish(Type declared);

 private:
  /// The rows of a class and of its arrays, and the names in them.
  struct ClassRows {
    std::string name;
    std::string arrayName;
    TypeRow row;
    TypeRow array;
  };

  ClassRows& newRows(const std::string& name, Kind kind, host::Value (*initial)());
  Type enter(const host::RegisteredClass& known);
  void add(const std::string& name, Type type);

  host::Host& host_;
  std::unordered_map<std::string, Type> byKey_;
  std::unordered_map<const host::RegisteredClass*, Type> byClass_;
  std::unordered_map<const TypeRow*, std::unique_ptr<ClassRows>> rows_;  // by their own
  std::vector<std::string> names_;
};

}  // namespace runner
