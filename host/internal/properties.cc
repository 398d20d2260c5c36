#include "host/internal/properties.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include "host/internal/passing.h"
#include "host/internal/state.h"
#include "host/internal/variants.h"

namespace host::internal {
namespace {

struct PropertyType {
  std::string_view name;
  PropertyValue initial;
};

// Every other type is an object.
const PropertyType kTypes[] = {
    {"integer", std::int32_t{}}, {"int32", std::int32_t{}}, {"int64", std::int64_t{}},
    {"single", float{}},         {"double", double{}},      {"string", zel::REALstring{}},
};

// A property of the object's own, or one that it has as a variant.
std::optional<PropertyValue> propertyOf(AnyObject& object, std::string_view name) {
  auto* const instance = dynamic_cast<HostObject*>(&object);
  const PropertyValue* const own = instance == nullptr ? nullptr : instance->property(name);
  return own != nullptr ? *own : variantProperty(object, name);
}

[[noreturn]] void failToUse(const HostObject& object, const std::string& name) {
  throw std::invalid_argument(object.describe() + " has no property \"" + name + "\" of that type");
}

}  // namespace

Property parseProperty(std::string_view declaration) {
  Declaration parsed = parseDeclaration(declaration);
  if (!parsed.result || !parsed.parameters.empty())
    throw std::invalid_argument("not a property: \"" + std::string(declaration) + "\"");
  const Type& type = *parsed.result;
  const auto* const found =
      std::find_if(std::begin(kTypes), std::end(kTypes), [&type](const PropertyType& known) {
        return !type.array && sameName(known.name, type.name);
      });
  return {std::move(parsed.name),
          found == std::end(kTypes) ? PropertyValue(zel::REALobject{}) : found->initial};
}

const void* referenceIn(const PropertyValue& value) {
  if (const auto* const string = std::get_if<zel::REALstring>(&value)) return *string;
  if (const auto* const object = std::get_if<zel::REALobject>(&value)) return *object;
  return nullptr;
}

bool setProperty(State& state, HostObject& object, std::string_view name, PropertyValue value,
                 std::string_view who) {
  PropertyValue* const property = object.property(name);
  if (property == nullptr || property->index() != value.index()) {
    state.failures.report(std::string(who) + ": " + object.describe() + " has no property \"" +
                          std::string(name) + "\" of that type");
    return false;
  }
  const bool held = std::holds_alternative<zel::REALstring>(value)
                        ? state.ledger.hold<HostString>(referenceIn(value), who)
                        : state.ledger.hold<AnyObject>(referenceIn(value), who);
  if (!held) return false;
  state.ledger.drop(state, referenceIn(std::exchange(*property, value)));
  return true;
}

Value readProperty(State& state, HostObject& object, const std::string& name) {
  const PropertyValue* const property = object.property(name);
  if (property == nullptr) failToUse(object, name);
  const auto asValue = [&state](auto held) -> Value {
    using Held = decltype(held);
    if constexpr (std::is_same_v<Held, zel::REALstring>) {
      return valueOf(state, held);
    } else if constexpr (std::is_same_v<Held, zel::REALobject>) {
      return ObjectRef::share(held);
    } else {
      return held;
    }
  };
  return std::visit(asValue, *property);
}

void writeProperty(State& state, HostObject& object, const std::string& name, const Value& value) {
  const PropertyValue* const property = object.property(name);
  const auto asProperty = [&state, &value](const auto& held) -> std::optional<PropertyValue> {
    using Held = std::decay_t<decltype(held)>;
    if constexpr (std::is_same_v<Held, ObjectRef>) {
      return held.handle();
    } else if constexpr (std::is_same_v<Held, std::string> || std::is_same_v<Held, Text>) {
      return stringOf(state, value);
    } else if constexpr (std::is_constructible_v<PropertyValue, std::in_place_type_t<Held>>) {
      return held;
    } else {
      return std::nullopt;
    }
  };
  const std::optional<PropertyValue> wanted = std::visit(asProperty, value);
  const bool fits = property != nullptr && wanted && wanted->index() == property->index();
  if (fits) setProperty(state, object, name, *wanted, "Host::setProperty");
  if (wanted && std::holds_alternative<zel::REALstring>(*wanted))
    state.ledger.drop(state, referenceIn(*wanted));
  if (!fits) failToUse(object, name);
}

template <class T>
zel::REALboolean getPropertyValue(State& state, zel::REALobject object, const char* name, T* out) {
  constexpr std::string_view kWho = "an entry point that reads a property";
  auto* const found = state.ledger.find<AnyObject>(object, kWho);
  const std::optional<PropertyValue> property =
      found == nullptr ? std::nullopt : propertyOf(*found, name);
  const T* const value = property ? std::get_if<T>(&*property) : nullptr;
  if (value == nullptr) return 0;
  if constexpr (std::is_pointer_v<T>)
    if (!state.ledger.hold<typename ThingOf<T>::type>(*value, kWho)) return 0;
  *out = *value;
  return 1;
}

template <class T>
void setPropertyValue(State& state, zel::REALobject object, const char* name, T value) {
  constexpr std::string_view kWho = "an entry point that sets a property";
  if (auto* const found = state.ledger.find<HostObject>(object, kWho))
    setProperty(state, *found, name, value, kWho);
}

using zel::REALboolean;
using zel::REALobject;
using zel::REALstring;
template REALboolean getPropertyValue(State&, REALobject, const char*, std::int32_t*);
template REALboolean getPropertyValue(State&, REALobject, const char*, std::int64_t*);
template REALboolean getPropertyValue(State&, REALobject, const char*, float*);
template REALboolean getPropertyValue(State&, REALobject, const char*, double*);
template REALboolean getPropertyValue(State&, REALobject, const char*, REALstring*);
template REALboolean getPropertyValue(State&, REALobject, const char*, REALobject*);
template void setPropertyValue(State&, REALobject, const char*, std::int32_t);
template void setPropertyValue(State&, REALobject, const char*, REALstring);

}  // namespace host::internal
