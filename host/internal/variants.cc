#include "host/internal/variants.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include "host/internal/passing.h"
#include "host/internal/state.h"

namespace host::internal {
namespace {

// By the position of the type in Payload.
constexpr VariantType kUsualTypes[] = {kNilType,    kInt32Type,   kInt64Type,
                                       kUInt32Type, kUInt64Type,  kSingleType,
                                       kDoubleType, kBooleanType, kStringType};
static_assert(std::size(kUsualTypes) == std::variant_size_v<Payload>);

VariantType usualType(const Payload& payload) { return kUsualTypes[payload.index()]; }

constexpr double kUnitOfCurrency = 10000;

// The type code of a value that shares its payload with others; nullopt for the usual one.
std::optional<std::int32_t> ownType(const Value& value) {
  if (std::holds_alternative<Currency>(value)) return kCurrencyType;
  return std::holds_alternative<Color>(value) ? std::optional(kColorType) : std::nullopt;
}

zel::REALobject add(State& state, Payload payload, std::int32_t type) {
  return state.ledger.add(std::make_unique<HostVariant>(payload, type)).object();
}

zel::REALstring stringIn(const Payload& payload) {
  const auto* const string = std::get_if<zel::REALstring>(&payload);
  return string == nullptr ? nullptr : *string;
}

// A number as another type; 0 when it doesn't fit.
template <class To, class From>
To converted(From number) {
  if constexpr (std::is_floating_point_v<From> && std::is_integral_v<To>) {
    const double limit = std::ldexp(1.0, std::numeric_limits<To>::digits);
    if (!(number >= -limit && number < limit)) return To{};
  }
  return static_cast<To>(number);
}

template <class T>
T numberIn(const AnyObject& object) {
  const auto* const variant = dynamic_cast<const HostVariant*>(&object);
  if (variant == nullptr) return T{};
  const auto asNumber = [](auto held) -> T {
    if constexpr (std::is_arithmetic_v<decltype(held)>) {
      return converted<T>(held);
    } else {
      return T{};
    }
  };
  return std::visit(asNumber, variant->payload());
}

std::int32_t typeCode(const AnyObject& object) {
  if (const auto* const variant = dynamic_cast<const HostVariant*>(&object)) return variant->type();
  if (const auto* const array = dynamic_cast<const HostArray*>(&object)) return array->type();
  const auto* const instance = dynamic_cast<const HostObject*>(&object);
  return instance != nullptr && instance->hostClass().isA("Date") ? kDateType : kObjectType;
}

// --- properties

using MaybeValue = std::optional<PropertyValue>;

MaybeValue typeOf(const AnyObject& object) { return typeCode(object); }

template <class T>
MaybeValue numberOf(const AnyObject& object) {
  return numberIn<T>(object);
}

MaybeValue stringOf(const AnyObject& object) {
  const auto* const variant = dynamic_cast<const HostVariant*>(&object);
  return variant == nullptr ? nullptr : stringIn(variant->payload());
}

MaybeValue dateOf(const AnyObject& object) {
  const auto* const instance = dynamic_cast<const HostObject*>(&object);
  if (instance == nullptr || typeCode(object) != kDateType) return std::nullopt;
  return instance->object();
}

struct VariantProperty {
  std::string_view name;
  MaybeValue (*read)(const AnyObject& object);
};

constexpr VariantProperty kProperties[] = {
    {"Type", typeOf},
    {"Int32Value", numberOf<std::int32_t>},
    {"LongValue", numberOf<std::int64_t>},
    {"SingleValue", numberOf<float>},
    {"DoubleValue", numberOf<double>},
    {"StringValue", stringOf},
    {"DateValue", dateOf},
};

// A value as a payload, whose string is the caller's.
Payload payloadOf(State& state, const Value& value) {
  const auto asPayload = [&state, &value](const auto& held) -> Payload {
    using Held = std::decay_t<decltype(held)>;
    if constexpr (std::is_same_v<Held, ObjectRef>) {
      throw std::invalid_argument("objects and arrays are variants as they are");
    } else if constexpr (std::is_same_v<Held, std::string> || std::is_same_v<Held, Text>) {
      return host::internal::stringOf(state, value);
    } else if constexpr (std::is_same_v<Held, Currency>) {
      return static_cast<double>(held.tenThousandths) / kUnitOfCurrency;
    } else if constexpr (std::is_same_v<Held, Color>) {
      return static_cast<std::int32_t>(held.rgb);
    } else {
      return held;
    }
  };
  return std::visit(asPayload, value);
}

template <class T>
bool holds(const HostVariant& variant, VariantType type) {
  return variant.type() == type && std::holds_alternative<T>(variant.payload());
}

}  // namespace

HostVariant::HostVariant(Payload payload, std::int32_t type)
    : memory_(zel::kInstanceDataOffset), payload_(payload), type_(type) {}

std::string HostVariant::describe() const { return "variant of type " + std::to_string(type_); }

void HostVariant::die(State& state) {
  state.ledger.drop(state, stringIn(std::exchange(payload_, std::monostate())));
}

bool HostVariant::usual() const {
  return type_ == usualType(payload_) || holds<double>(*this, kCurrencyType) ||
         holds<std::int32_t>(*this, kColorType);
}

zel::REALobject box(State& state, const Value& value) {
  if (std::holds_alternative<std::monostate>(value)) return nullptr;
  const auto* const object = std::get_if<ObjectRef>(&value);
  return object != nullptr ? ObjectRef(*object).release() : newVariant(state, value, std::nullopt);
}

Value unbox(State& state, zel::REALobject object) {
  if (object == nullptr) return {};
  const auto* const variant = state.ledger.peek<HostVariant>(object);
  return variant == nullptr ? Value(ObjectRef::share(object)) : valueIn(state, *variant);
}

Value valueIn(State& state, const HostVariant& variant) {
  if (holds<double>(variant, kCurrencyType)) {
    const double amount = std::get<double>(variant.payload()) * kUnitOfCurrency;
    return Currency{static_cast<std::int64_t>(std::llround(amount))};
  }
  if (holds<std::int32_t>(variant, kColorType))
    return Color{static_cast<std::uint32_t>(std::get<std::int32_t>(variant.payload()))};
  const auto asValue = [&state](auto held) -> Value {
    using Held = decltype(held);
    if constexpr (std::is_same_v<Held, zel::REALstring>) {
      return valueOf(state, held);
    } else {
      return held;
    }
  };
  return std::visit(asValue, variant.payload());
}

zel::REALobject newVariant(State& state, const Value& value, std::optional<std::int32_t> type) {
  const Payload payload = payloadOf(state, value);
  return add(state, payload, type.value_or(ownType(value).value_or(usualType(payload))));
}

std::optional<PropertyValue> variantProperty(const AnyObject& variant, std::string_view name) {
  const auto* const found =
      std::find_if(std::begin(kProperties), std::end(kProperties),
                   [name](const VariantProperty& known) { return sameName(known.name, name); });
  return found == std::end(kProperties) ? std::nullopt : found->read(variant);
}

template <class T>
zel::REALobject numberToVariant(State& state, T value) {
  return add(state, value, usualType(value));
}

zel::REALobject booleanToVariant(State& state, zel::REALboolean value) {
  return add(state, static_cast<std::int8_t>(value), kBooleanType);
}

zel::REALobject stringToVariant(State& state, zel::REALstring string) {
  if (!state.ledger.hold<HostString>(string, "StringToVariant")) return nullptr;
  return add(state, string, kStringType);
}

template <class T>
T variantTo(State& state, zel::REALobject variant) {
  const auto* const found =
      state.ledger.find<AnyObject>(variant, "an entry point that reads a variant");
  return found == nullptr ? T{} : numberIn<T>(*found);
}

zel::REALstring variantToString(State& state, zel::REALobject variant) {
  constexpr std::string_view kWho = "VariantToString";
  const auto* const any = state.ledger.find<AnyObject>(variant, kWho);
  const auto* const found = dynamic_cast<const HostVariant*>(any);
  const zel::REALstring string = found == nullptr ? nullptr : stringIn(found->payload());
  return state.ledger.hold<HostString>(string, kWho) ? string : nullptr;
}

std::int32_t varType(State& state, zel::REALobject variant) {
  if (variant == nullptr) return kNilType;
  const auto* const found = state.ledger.find<AnyObject>(variant, "VarType");
  return found == nullptr ? kNilType : typeCode(*found);
}

template zel::REALobject numberToVariant(State&, std::int32_t);
template zel::REALobject numberToVariant(State&, std::uint32_t);
template zel::REALobject numberToVariant(State&, std::int64_t);
template zel::REALobject numberToVariant(State&, std::uint64_t);
template zel::REALobject numberToVariant(State&, float);
template zel::REALobject numberToVariant(State&, double);
template std::int32_t variantTo(State&, zel::REALobject);
template std::int64_t variantTo(State&, zel::REALobject);
template float variantTo(State&, zel::REALobject);
template double variantTo(State&, zel::REALobject);

}  // namespace host::internal
