// NSDictionary and NSMutableDictionary. Keys that are strings or numbers are compared by value, any
// others by identity. Entries stay in the order in which their keys came.
#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "foundation_double/accounts.h"
#include "native/geometry.h"

namespace foundation_double::objc {

class DictionaryBody : public Body {
 public:
  using Entries = std::vector<std::pair<Held, Held>>;

  [[nodiscard]] std::optional<std::string> literal() const override;
  [[nodiscard]] const Entries& entries() const { return entries_; }
  /// The value of a key or null, not owned.
  [[nodiscard]] zel::id find(const void* key) const;
  /// Sets the value of a key; one that was there keeps its place.
  void set(Held key, Held value);

  std::optional<zel::NSUInteger> capacity;  // that it was asked for

 private:
  Entries entries_;
  std::unordered_map<std::string, std::size_t> places_;  // in entries_, by the key's text
};

/// A new, immutable dictionary with one reference for the caller.
zel::id createDictionary(std::unique_ptr<DictionaryBody> body);

}  // namespace foundation_double::objc
