#include "host/internal/passing.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "host/internal/encodings.h"
#include "host/internal/state.h"
#include "host/internal/variants.h"

namespace host::internal {
namespace {

template <class T>
bool is(const State& /*state*/, const Type& /*type*/, const Value& value) {
  return std::holds_alternative<T>(value);
}

template <auto member, class T>
Slot packNumber(State& /*state*/, const Value& value) {
  Slot slot{};
  slot.*member = std::get<T>(value);
  return slot;
}

template <auto member>
Value unpackNumber(State& /*state*/, const Slot& slot) {
  return slot.*member;
}

template <class T>
Value unpackWidened(State& /*state*/, const Slot& slot) {
  return static_cast<T>(slot.widened);
}

bool isString(const State& /*state*/, const Type& /*type*/, const Value& value) {
  return std::holds_alternative<std::string>(value) || std::holds_alternative<Text>(value);
}

Slot packString(State& state, const Value& value) {
  Slot slot{};
  slot.handle = stringOf(state, value);
  return slot;
}

Value unpackString(State& state, const Slot& slot) {
  const auto string = static_cast<zel::REALstring>(slot.handle);
  Value value = valueOf(state, string);
  state.ledger.drop(state, string);
  return value;
}

// Whether the object can stand where the type is asked for. A variant holds anything.
bool isObject(const State& state, const Type& type, const Value& value) {
  if (std::holds_alternative<std::monostate>(value)) return true;
  const auto* const object = std::get_if<ObjectRef>(&value);
  if (object == nullptr) return false;
  if (!*object) return true;
  if (const auto* const array = state.ledger.peek<HostArray>(object->handle())) {
    const std::int32_t elements = sameName(type.name, "string") ? kStringType : kObjectType;
    return type.array ? array->type() == kArrayType + elements : sameName(type.name, "variant");
  }
  if (state.ledger.peek<HostVariant>(object->handle()) != nullptr)
    return !type.array && sameName(type.name, "variant");
  const auto* const instance = state.ledger.peek<HostObject>(object->handle());
  return instance != nullptr && !type.array &&
         (sameName(type.name, "variant") || sameName(type.name, "object") ||
          instance->hostClass().isA(type.name));
}

Slot packObject(State& state, const Value& value) {
  Slot slot{};
  const auto* const object = std::get_if<ObjectRef>(&value);
  if (object == nullptr) return slot;
  slot.handle = object->handle();
  state.ledger.hold<AnyObject>(slot.handle, "a call");
  return slot;
}

Slot packVariant(State& state, const Value& value) {
  Slot slot{};
  slot.handle = box(state, value);
  return slot;
}

Value unpackObject(State& state, const Slot& slot) {
  if (slot.handle == nullptr) return ObjectRef();
  if (state.ledger.find<AnyObject>(slot.handle, "the result of a method") == nullptr)
    return ObjectRef();
  return ObjectRef::adopt(static_cast<zel::REALobject>(slot.handle));
}

const TypeRules kRules[] = {
    {"integer", &ffi_type_sint32, is<std::int32_t>, packNumber<&Slot::integer, std::int32_t>,
     unpackWidened<std::int32_t>},
    {"int32", &ffi_type_sint32, is<std::int32_t>, packNumber<&Slot::integer, std::int32_t>,
     unpackWidened<std::int32_t>},
    {"single", &ffi_type_float, is<float>, packNumber<&Slot::single, float>,
     unpackNumber<&Slot::single>},
    {"double", &ffi_type_double, is<double>, packNumber<&Slot::real, double>,
     unpackNumber<&Slot::real>},
    {"boolean", &ffi_type_sint8, is<std::int8_t>, packNumber<&Slot::boolean, std::int8_t>,
     unpackWidened<std::int8_t>},
    {"string", &ffi_type_pointer, isString, packString, unpackString},
    {"variant", &ffi_type_pointer, isObject, packVariant, unpackObject},
    {"", &ffi_type_pointer, isObject, packObject, unpackObject},
};

}  // namespace

const TypeRules& rulesOf(const Type& type) {
  const auto* const last = std::prev(std::end(kRules));
  const auto* const found = std::find_if(std::begin(kRules), last, [&type](const auto& rules) {
    return !type.array && sameName(rules.name, type.name);
  });
  return *found;
}

Value valueOf(State& state, zel::REALstring string) {
  if (string == nullptr) return std::string();
  const auto* const found = state.ledger.find<HostString>(string, "the result of a method");
  if (found == nullptr) return std::string();
  std::string bytes(found->bytes());
  if (found->encoding == kUtf8 && !bytes.empty()) return bytes;
  return Text(std::move(bytes), found->encoding);
}

zel::REALstring stringOf(State& state, const Value& value) {
  const auto* const text = std::get_if<Text>(&value);
  const std::string& bytes = text == nullptr ? std::get<std::string>(value) : text->bytes;
  if (bytes.empty()) return nullptr;
  return newString(state, bytes, text == nullptr ? kUtf8 : text->encoding);
}

}  // namespace host::internal
