// The host's class Dictionary.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

#include "host/internal/objects.h"

namespace host::internal {

/// What keys are compared by: nothing, a boolean, a number, a text without regard to its case and
/// its encoding, or an object's identity. Whole numbers of every type are an std::int64_t when they
/// fit.
using DictionaryKey = std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double,
                                   std::string, const void*>;

class HostDictionary : public HostObject {
 public:
  static constexpr std::string_view kWhat = "a Dictionary";

  /// Keys and values are nullable variants, with a reference of the dictionary.
  struct Entry {
    zel::REALobject key;
    zel::REALobject value;
  };

  using HostObject::HostObject;
  void die(State& state) override;

  /// In the order in which the keys were first set.
  [[nodiscard]] const std::vector<Entry>& entries() const { return entries_; }
  /// Null when there is no such key.
  [[nodiscard]] const Entry* find(const DictionaryKey& key) const;
  /// Takes over the references; gives back the value that was there, with its reference, or null.
  /// A key that is there already stays, and the caller keeps its own.
  zel::REALobject set(const DictionaryKey& key, Entry entry, bool& added);
  /// Takes an entry out, whose references are the caller's from then on; both null when there is no
  /// such key.
  Entry remove(const DictionaryKey& key);

 private:
  std::vector<Entry> entries_;
  std::unordered_map<DictionaryKey, std::size_t> positions_;
};

// --- methods
/// "Value(key As Variant) As Variant": the value with a reference for the caller; raises
/// KeyNotFoundException and gives null when there is no such key.
zel::REALobject dictionaryValue(State& state, zel::REALobject dictionary, zel::REALobject key);
/// "Value(key As Variant, Assigns _value As Variant)"
void setDictionaryValue(State& state, zel::REALobject dictionary, zel::REALobject key,
                        zel::REALobject value);
/// Whether there is such a key.
bool hasDictionaryKey(State& state, zel::REALobject dictionary, zel::REALobject key);
/// Removes a key and its value. False when there was no such key.
bool removeDictionaryKey(State& state, zel::REALobject dictionary, zel::REALobject key);
/// "Key(index As Integer) As Variant": the key with a reference for the caller; raises
/// OutOfBoundsException and gives null when there is none.
zel::REALobject dictionaryKey(State& state, zel::REALobject dictionary, std::int32_t index);

}  // namespace host::internal
