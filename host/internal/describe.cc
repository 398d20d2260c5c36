#include "host/internal/describe.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <sstream>
#include <string_view>
#include <type_traits>
#include <vector>

#include "host/internal/dates.h"
#include "host/internal/dictionaries.h"
#include "host/internal/folder_items.h"
#include "host/internal/memory_blocks.h"
#include "host/internal/state.h"
#include "host/internal/variants.h"

namespace host::internal {
namespace {

// --- values that are neither objects nor arrays

std::string text(std::monostate /*nothing*/) { return "nil"; }

std::string text(std::int8_t boolean) {
  if (boolean == 0) return "false";
  return boolean == 1 ? "true" : "Boolean " + std::to_string(boolean);
}

std::string text(const std::string& string) {
  std::string quoted = "\"";
  for (const char c : string) {
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted + '"';
}

std::string text(const Text& string) {
  if (string.bytes.empty()) return text(string.bytes);
  std::ostringstream out;
  out << string;
  return out.str();
}

template <class Number>
constexpr std::string_view kNumberName = "";
template <>
constexpr std::string_view kNumberName<std::int32_t> = "Int32 ";
template <>
constexpr std::string_view kNumberName<std::int64_t> = "Int64 ";
template <>
constexpr std::string_view kNumberName<std::uint32_t> = "UInt32 ";
template <>
constexpr std::string_view kNumberName<std::uint64_t> = "UInt64 ";
template <>
constexpr std::string_view kNumberName<float> = "Single ";
template <>
constexpr std::string_view kNumberName<double> = "Double ";

template <class Number>
requires std::is_arithmetic_v<Number> std::string text(Number number) {
  constexpr std::size_t kEnough = 32;
  char digits[kEnough];
  const std::to_chars_result end = std::to_chars(digits, digits + kEnough, number);
  return std::string(kNumberName<Number>) + std::string(digits, end.ptr);
}

std::string text(const Currency& amount) {
  std::ostringstream out;
  out << "Currency " << amount;
  return out.str();
}

std::string text(const Color& color) {
  std::ostringstream out;
  out << "Color " << color;
  return out.str();
}

// --- objects and arrays

std::string list(State& state, const HostArray& array) {
  std::string elements;
  for (std::size_t i = 0; i < array.size(); ++i)
    elements += (i == 0 ? "" : ", ") + describe(state, array.value(state, i));
  return "[" + elements + "]";
}

std::string describeVariant(State& state, zel::REALobject variant) {
  return describe(state, ObjectRef::share(variant));
}

std::string entries(State& state, const HostDictionary& dictionary) {
  std::string text;
  for (const HostDictionary::Entry& entry : dictionary.entries()) {
    text += (text.empty() ? "" : ", ") + describeVariant(state, entry.key) + ": " +
            describeVariant(state, entry.value);
  }
  return "{" + text + "}";
}

std::string hexadecimal(const HostMemoryBlock& block) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  const std::string_view bytes(static_cast<const char*>(block.bytes()), block.size());
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    text += kDigits[byte / 16];
    text += kDigits[byte % 16];
  }
  return text;
}

std::string date(HostObject& object) {
  std::ostringstream out;
  out << dateFields(object);
  return out.str();
}

// What stands behind the name of the class, or instead of it.
std::string instance(State& state, HostObject& object) {
  const std::string& name = object.hostClass().description.name;
  if (const auto* const found = dynamic_cast<const HostDictionary*>(&object))
    return entries(state, *found);
  if (const auto* const found = dynamic_cast<const HostMemoryBlock*>(&object))
    return name + " " + hexadecimal(*found);
  if (const auto* const found = dynamic_cast<const HostFolderItem*>(&object))
    return name + " " + found->path;
  return object.hostClass().isA("Date") ? name + " " + date(object) : name;
}

std::string held(State& state, const HostVariant& variant) {
  const std::string type = variant.usual() && variant.type() != kNilType
                               ? ""
                               : "Variant(" + std::to_string(variant.type()) + ") ";
  return type + describe(state, valueIn(state, variant));
}

std::string content(State& state, const ObjectRef& object) {
  if (const auto* const variant = state.ledger.peek<HostVariant>(object.handle()))
    return held(state, *variant);
  if (const auto* const array = state.ledger.peek<HostArray>(object.handle()))
    return list(state, *array);
  auto* const found = state.ledger.peek<HostObject>(object.handle());
  return found == nullptr ? "nothing of this host" : instance(state, *found);
}

std::string describeObject(State& state, const ObjectRef& object) {
  if (!object) return "nil";
  std::vector<const void*>& path = state.describing;
  if (std::find(path.begin(), path.end(), object.handle()) != path.end()) return "...";
  path.push_back(object.handle());
  std::string text = content(state, object);
  path.pop_back();
  return text;
}

}  // namespace

std::string describe(State& state, const Value& value) {
  const auto asText = [&state](const auto& found) -> std::string {
    if constexpr (std::is_same_v<std::decay_t<decltype(found)>, ObjectRef>) {
      return describeObject(state, found);
    } else {
      return text(found);
    }
  };
  return std::visit(asText, value);
}

}  // namespace host::internal
