// Host variants: what a variant holds that is neither an object nor an array. Those are variants as
// they are.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "host/internal/ledger.h"
#include "host/internal/memory.h"
#include "host/internal/objects.h"
#include "host/value.h"
#include "plugin/handles.h"

namespace host::internal {

/// What a variant holds; a string is nullable and comes with a reference of the variant. A boolean
/// is an std::int8_t, a currency a double, a color an std::int32_t.
using Payload = std::variant<std::monostate, std::int32_t, std::int64_t, std::uint32_t,
                             std::uint64_t, float, double, std::int8_t, zel::REALstring>;

class HostVariant : public AnyObject {
 public:
  static constexpr std::string_view kWhat = "a variant";

  /// Takes over the reference in the payload. @param type a VariantType or any other type code.
  HostVariant(Payload payload, std::int32_t type);

  [[nodiscard]] const void* handle() const override { return memory_.data(); }
  [[nodiscard]] std::string describe() const override;
  void die(State& state) override;
  void poison() override { memory_.poison(); }
  [[nodiscard]] bool intact() const override { return memory_.intact(); }

  [[nodiscard]] zel::REALobject object() const {
    return static_cast<zel::REALobject>(memory_.data());
  }
  [[nodiscard]] const Payload& payload() const { return payload_; }
  [[nodiscard]] std::int32_t type() const { return type_; }
  /// Whether the type code is the usual one of what the variant holds.
  [[nodiscard]] bool usual() const;

 private:
  Memory memory_;
  Payload payload_;
  std::int32_t type_;
};

/// The variant that is a value, with one reference for the caller: null for std::monostate, an
/// object or array as it is, or a new variant.
zel::REALobject box(State& state, const Value& value);
/// What a variant holds; the opposite of box().
Value unbox(State& state, zel::REALobject variant);
/// A new variant with one reference for the caller. @param type nullopt: the usual one. Throws
/// std::invalid_argument for an object or array.
zel::REALobject newVariant(State& state, const Value& value, std::optional<std::int32_t> type);
/// What a variant holds, as a value.
Value valueIn(State& state, const HostVariant& variant);

/// A property that every variant has, such as "Type"; nullopt when there is none of that name, or
/// when this variant can't have it. A handle in it is without a reference.
std::optional<PropertyValue> variantProperty(const AnyObject& variant, std::string_view name);

// --- entry points
/// @tparam T of Payload.
template <class T>
zel::REALobject numberToVariant(State& state, T value);
zel::REALobject booleanToVariant(State& state, zel::REALboolean value);
zel::REALobject stringToVariant(State& state, zel::REALstring string);
/// The number in a variant as that type; 0 for what isn't a number, or too large for the type.
template <class T>
T variantTo(State& state, zel::REALobject variant);
/// The string in a variant with a reference for the caller; null for what isn't a string.
zel::REALstring variantToString(State& state, zel::REALobject variant);

// --- global methods
/// "VarType(value As Variant) As Int32"
std::int32_t varType(State& state, zel::REALobject variant);

}  // namespace host::internal
