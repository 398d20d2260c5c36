#include "host/value.h"

#include <cstdint>
#include <iomanip>
#include <ostream>

#include "host/internal/state.h"

namespace host {
namespace {

using internal::AnyObject;
using internal::State;

constexpr char kWho[] = "ObjectRef";

AnyObject* objectOf(const State& state, zel::REALobject handle) {
  return handle == nullptr ? nullptr : state.ledger.find<AnyObject>(handle, kWho);
}

}  // namespace

ObjectRef::ObjectRef(const ObjectRef& other) { *this = share(other.handle_); }

ObjectRef ObjectRef::adopt(zel::REALobject handle) { return ObjectRef(handle); }

ObjectRef ObjectRef::share(zel::REALobject handle) {
  if (handle == nullptr) return {};
  const State& state = internal::currentState(kWho);
  AnyObject* const object = objectOf(state, handle);
  if (object == nullptr) return {};
  state.ledger.addReference(*object, kWho);
  return ObjectRef(handle);
}

void ObjectRef::reset() {
  const zel::REALobject handle = std::exchange(handle_, nullptr);
  if (handle == nullptr) return;
  State& state = internal::currentState(kWho);
  if (AnyObject* const object = objectOf(state, handle))
    state.ledger.dropReference(state, *object, kWho);
}

Value::Value() = default;
Value::Value(const Value& other) = default;
Value::Value(Value&& other) noexcept = default;
Value::~Value() = default;
Value& Value::operator=(const Value& other) = default;
Value& Value::operator=(Value&& other) noexcept = default;

bool operator==(const Value& left, const Value& right) {
  return static_cast<const AnyValue&>(left) == static_cast<const AnyValue&>(right);
}

std::ostream& operator<<(std::ostream& out, const ObjectRef& object) {
  return out << "ObjectRef(" << static_cast<const void*>(object.handle()) << ")";
}

std::ostream& operator<<(std::ostream& out, const Text& text) {
  return out << "Text(\"" << text.bytes << "\", 0x" << std::hex << text.encoding << std::dec << ")";
}

std::ostream& operator<<(std::ostream& out, const Currency& amount) {
  constexpr std::uint64_t kUnit = 10000;
  const bool negative = amount.tenThousandths < 0;
  const auto size = negative ? 0 - static_cast<std::uint64_t>(amount.tenThousandths)
                             : static_cast<std::uint64_t>(amount.tenThousandths);
  std::string decimals = std::to_string(kUnit + size % kUnit).substr(1);
  while (decimals.ends_with('0')) decimals.pop_back();
  return out << (negative ? "-" : "") << size / kUnit << (decimals.empty() ? "" : ".") << decimals;
}

std::ostream& operator<<(std::ostream& out, const Color& color) {
  return out << "&c" << std::hex << std::uppercase << std::setw(6) << std::setfill('0') << color.rgb
             << std::setfill(' ') << std::nouppercase << std::dec;
}

std::ostream& operator<<(std::ostream& out, const Value& value) {
  const auto show = [&out]<class T>(const T& held) {
    if constexpr (std::is_same_v<T, std::monostate>) {
      out << "nothing";
    } else if constexpr (std::is_same_v<T, std::string>) {
      out << '"' << held << '"';
    } else if constexpr (std::is_same_v<T, std::int8_t>) {
      out << static_cast<int>(held);
    } else {
      out << held;
    }
  };
  std::visit(show, value);
  return out;
}

std::ostream& operator<<(std::ostream& out, const Raised& raised) {
  out << raised.className << "(";
  if (raised.message) out << "\"" << *raised.message << "\"";
  return out << ", " << raised.errorNumber << ")";
}

std::ostream& operator<<(std::ostream& out, const DateFields& fields) {
  const char filler = out.fill('0');
  out << std::setw(4) << fields.year << "-" << std::setw(2) << fields.month << "-" << std::setw(2)
      << fields.day << " " << std::setw(2) << fields.hour << ":" << std::setw(2) << fields.minute
      << ":" << std::setw(2) << fields.second;
  out.fill(filler);
  return out;
}

}  // namespace host
