#include "host/internal/dictionaries.h"

#include <cmath>
#include <limits>
#include <type_traits>
#include <utility>

#include "host/folding.h"
#include "host/internal/encodings.h"
#include "host/internal/exceptions.h"
#include "host/internal/state.h"
#include "host/internal/variants.h"

namespace host::internal {
namespace {

constexpr char kSet[] = "Dictionary.SetValue";

template <class Number>
DictionaryKey numberKey(Number number) {
  if constexpr (std::is_floating_point_v<Number>) {
    constexpr double kLimit = 0x1p63;
    const double exact = number;
    const bool whole = exact >= -kLimit && exact < kLimit && exact == std::trunc(exact);
    return whole ? DictionaryKey(static_cast<std::int64_t>(exact)) : DictionaryKey(exact);
  } else {
    return std::in_range<std::int64_t>(number) ? DictionaryKey(static_cast<std::int64_t>(number))
                                               : DictionaryKey(static_cast<std::uint64_t>(number));
  }
}

// A text that can't be converted, because nobody knows its encoding, is taken as it is.
std::string textKey(const HostString& string) {
  if (string.encoding == kUtf8) return folded(string.bytes());
  const std::optional<std::string> bytes = convert(string.bytes(), string.encoding, kUtf8);
  return folded(bytes ? *bytes : string.bytes());
}

DictionaryKey keyOf(const State& state, zel::REALobject key) {
  const auto* const variant = state.ledger.peek<HostVariant>(key);
  if (variant == nullptr)
    return key == nullptr ? DictionaryKey() : DictionaryKey(static_cast<const void*>(key));
  const auto asKey = [&state](auto held) -> DictionaryKey {
    using Held = decltype(held);
    if constexpr (std::is_same_v<Held, zel::REALstring>) {
      const auto* const string = state.ledger.peek<HostString>(held);
      return string == nullptr ? std::string() : textKey(*string);
    } else if constexpr (std::is_same_v<Held, std::int8_t>) {
      return held != 0;
    } else if constexpr (std::is_arithmetic_v<Held>) {
      return numberKey(held);
    } else {
      return held;
    }
  };
  return std::visit(asKey, variant->payload());
}

zel::REALobject shared(const State& state, zel::REALobject object, const char* who) {
  return state.ledger.hold<AnyObject>(object, who) ? object : nullptr;
}

}  // namespace

void HostDictionary::die(State& state) {
  HostObject::die(state);
  positions_.clear();
  for (const Entry& entry : std::exchange(entries_, {})) {
    state.ledger.drop(state, entry.key);
    state.ledger.drop(state, entry.value);
  }
}

const HostDictionary::Entry* HostDictionary::find(const DictionaryKey& key) const {
  const auto found = positions_.find(key);
  return found == positions_.end() ? nullptr : &entries_[found->second];
}

zel::REALobject HostDictionary::set(const DictionaryKey& key, Entry entry, bool& added) {
  const auto [position, isNew] = positions_.try_emplace(key, entries_.size());
  added = isNew;
  if (!isNew) return std::exchange(entries_[position->second].value, entry.value);
  entries_.push_back(entry);
  *property("Count") = static_cast<std::int32_t>(entries_.size());
  return nullptr;
}

HostDictionary::Entry HostDictionary::remove(const DictionaryKey& key) {
  const auto found = positions_.find(key);
  if (found == positions_.end()) return {nullptr, nullptr};
  const std::size_t position = found->second;
  positions_.erase(found);
  for (auto& [other, otherPosition] : positions_)
    if (otherPosition > position) --otherPosition;
  const Entry removed = entries_[position];
  entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(position));
  *property("Count") = static_cast<std::int32_t>(entries_.size());
  return removed;
}

zel::REALobject dictionaryValue(State& state, zel::REALobject dictionary, zel::REALobject key) {
  constexpr char kWho[] = "Dictionary.Value";
  const auto* const found = state.ledger.find<HostDictionary>(dictionary, kWho);
  if (found == nullptr) return nullptr;
  if (key != nullptr && state.ledger.find<AnyObject>(key, kWho) == nullptr) return nullptr;
  const HostDictionary::Entry* const entry = found->find(keyOf(state, key));
  if (entry != nullptr) return shared(state, entry->value, kWho);
  raiseByName(state, "KeyNotFoundException");
  return nullptr;
}

void setDictionaryValue(State& state, zel::REALobject dictionary, zel::REALobject key,
                        zel::REALobject value) {
  auto* const found = state.ledger.find<HostDictionary>(dictionary, kSet);
  if (found == nullptr || !state.ledger.hold<AnyObject>(key, kSet)) return;
  if (!state.ledger.hold<AnyObject>(value, kSet)) {
    state.ledger.drop(state, key);
    return;
  }
  bool added = false;
  state.ledger.drop(state, found->set(keyOf(state, key), {key, value}, added));
  if (!added) state.ledger.drop(state, key);
}

bool hasDictionaryKey(State& state, zel::REALobject dictionary, zel::REALobject key) {
  const auto* const found = state.ledger.find<HostDictionary>(dictionary, "Dictionary.HasKey");
  return found != nullptr && found->find(keyOf(state, key)) != nullptr;
}

bool removeDictionaryKey(State& state, zel::REALobject dictionary, zel::REALobject key) {
  auto* const found = state.ledger.find<HostDictionary>(dictionary, "Dictionary.Remove");
  if (!hasDictionaryKey(state, dictionary, key)) return false;
  const HostDictionary::Entry removed = found->remove(keyOf(state, key));
  state.ledger.drop(state, removed.key);
  state.ledger.drop(state, removed.value);
  return true;
}

zel::REALobject dictionaryKey(State& state, zel::REALobject dictionary, std::int32_t index) {
  constexpr char kWho[] = "Dictionary.Key";
  const auto* const found = state.ledger.find<HostDictionary>(dictionary, kWho);
  if (found == nullptr) return nullptr;
  if (index >= 0 && static_cast<std::size_t>(index) < found->entries().size())
    return shared(state, found->entries()[static_cast<std::size_t>(index)].key, kWho);
  raiseByName(state, kOutOfBounds);
  return nullptr;
}

}  // namespace host::internal
