// What a test hands to the methods of host classes and gets back from them.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "plugin/handles.h"

namespace host {

/// A reference on an object or array of the current host; nullable. It must not outlive its host.
class ObjectRef {
 public:
  ObjectRef() = default;
  ObjectRef(const ObjectRef& other);
  ObjectRef(ObjectRef&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  ObjectRef& operator=(ObjectRef other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~ObjectRef() { reset(); }

  /// Takes over the caller's reference.
  [[nodiscard]] static ObjectRef adopt(zel::REALobject handle);
  /// Adds a reference of its own.
  [[nodiscard]] static ObjectRef share(zel::REALobject handle);

  /// The handle, without a reference; null when this refers to nothing.
  [[nodiscard]] zel::REALobject handle() const { return handle_; }
  /// The handle of an array as the type that the plugin's functions take.
  template <class Handle>
  [[nodiscard]] Handle as() const {
    return reinterpret_cast<Handle>(handle_);
  }
  explicit operator bool() const { return handle_ != nullptr; }
  /// Identity.
  friend bool operator==(const ObjectRef&, const ObjectRef&) = default;
  /// Hands the reference over to the caller and refers to nothing from then on.
  [[nodiscard]] zel::REALobject release() { return std::exchange(handle_, nullptr); }
  /// Gives the reference up; when it was the last one, the object dies now.
  void reset();

 private:
  explicit ObjectRef(zel::REALobject handle) : handle_(handle) {}

  zel::REALobject handle_ = nullptr;
};

/// A host string that isn't just UTF-8 text: bytes and the encoding recorded with them.
struct Text {
  explicit Text(std::string bytesOfText, std::uint32_t encodingOfText = zel::kNoEncoding)
      : bytes(std::move(bytesOfText)), encoding(encodingOfText) {}
  friend bool operator==(const Text&, const Text&) = default;

  std::string bytes;
  std::uint32_t encoding;
};

/// An amount of money, exact to the fourth decimal.
struct Currency {
  friend bool operator==(const Currency&, const Currency&) = default;

  std::int64_t tenThousandths = 0;
};

/// A color: its red, green and blue as 0xRRGGBB.
struct Color {
  friend bool operator==(const Color&, const Color&) = default;

  std::uint32_t rgb = 0;
};

/// A value of the host's language. An argument must have the parameter's own type: nothing is
/// converted.
///   std::monostate   no value: the result of a method without one; as an argument, no object
///   std::int32_t     integer
///   std::int64_t, std::uint32_t, std::uint64_t, Currency, Color
///                    in variants and arrays only
///   float, double    single, double
///   std::int8_t      boolean, the byte as it passes
///   std::string      string in UTF-8; "" is the null handle
///   Text             any other string. As a result: a string whose recorded encoding isn't UTF-8,
///                    or an empty one that is not the null handle
///   ObjectRef        object or array; a null one is the null handle
using AnyValue =
    std::variant<std::monostate, std::int32_t, float, double, std::int8_t, std::string, ObjectRef,
                 Text, std::int64_t, std::uint32_t, std::uint64_t, Currency, Color>;

/// The same as a class: what every source that has values would otherwise make of the variant anew
/// is compiled once.
class Value : public AnyValue {
 public:
  using AnyValue::AnyValue;
  Value();
  Value(const Value& other);
  Value(Value&& other) noexcept;
  ~Value();
  Value& operator=(const Value& other);
  Value& operator=(Value&& other) noexcept;

  friend bool operator==(const Value& left, const Value& right);
};

/// The entries of a Dictionary: keys and what they stand for.
using Entries = std::vector<std::pair<Value, Value>>;

/// The type codes of the host's variants, as "VarType" gives them. An array has kArrayType and the
/// code of its elements.
enum VariantType : std::int32_t {
  kNilType = 0,
  kInt32Type = 2,
  kInt64Type = 3,
  kSingleType = 4,
  kDoubleType = 5,
  kCurrencyType = 6,
  kDateType = 7,
  kStringType = 8,
  kObjectType = 9,
  kBooleanType = 11,
  kColorType = 16,
  kUInt32Type = 24,  // this host's choice, as is the next
  kUInt64Type = 25,
  kArrayType = 4096,
};

/// A Date's time, as a clock on the wall shows it.
struct DateFields {
  friend bool operator==(const DateFields&, const DateFields&) = default;

  std::int32_t year = 1904;
  std::int32_t month = 1;
  std::int32_t day = 1;
  std::int32_t hour = 0;
  std::int32_t minute = 0;
  std::int32_t second = 0;
};

/// An exception object that was raised in the host.
struct Raised {
  /// Compares all but the encoding of the message.
  friend bool operator==(const Raised& left, const Raised& right) {
    return left.className == right.className && left.message == right.message &&
           left.errorNumber == right.errorNumber;
  }

  std::string className;
  std::optional<std::string> message;  // its bytes; nullopt: the exception has no message string
  std::int32_t errorNumber = 0;
  std::uint32_t messageEncoding = zel::kNoEncoding;
};

/// How a call ended.
struct Outcome {
  Value value;                   // what the function returned, also when something was raised
  std::optional<Raised> raised;  // the first exception raised during the call
  int raisedCount = 0;           // all of them
};

std::ostream& operator<<(std::ostream& out, const ObjectRef& object);
std::ostream& operator<<(std::ostream& out, const Text& text);
std::ostream& operator<<(std::ostream& out, const Currency& amount);
std::ostream& operator<<(std::ostream& out, const Color& color);
std::ostream& operator<<(std::ostream& out, const Value& value);
std::ostream& operator<<(std::ostream& out, const Raised& raised);
std::ostream& operator<<(std::ostream& out, const DateFields& fields);

}  // namespace host
