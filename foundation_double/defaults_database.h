// What is behind NSUserDefaults: the domains of every user, in memory.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation_double/accounts.h"
#include "foundation_double/dictionaries.h"
#include "native/objc.h"

namespace foundation_double::objc {

/// The persistent domain that values set by key go to.
inline constexpr const char* kApplicationDomain = "com.example.program";

/// The contents of a domain.
using DefaultsValues = std::map<std::u16string, Held, std::less<>>;

/// The domains of a user.
class DefaultsDomains {
 public:
  using Domains = std::map<std::u16string, DefaultsValues, std::less<>>;

  DefaultsDomains();

  /// The value of a key from the first domain searched that has one, not owned, or nil.
  [[nodiscard]] zel::id find(std::u16string_view key) const;
  /// What find gives for every key that there is: a dictionary with one reference for the caller.
  [[nodiscard]] zel::id all() const;
  void set(const std::u16string& key, Held value);
  void remove(std::u16string_view key);
  /// Adds to the domain of registered values.
  void registerValues(DefaultsValues&& values);
  /// A suite added again is searched as the first of the suites.
  void addSuite(const std::u16string& name);
  void removeSuite(const std::u16string& name);

  Domains persistent;
  Domains volatiles;

 private:
  [[nodiscard]] std::vector<const DefaultsValues*> searched() const;

  std::vector<std::u16string> suites_;
};

/// The domains of every user, the standard defaults object, and what a test makes Foundation
/// refuse. Every defaults object of the same user reads and writes the same values.
class DefaultsDatabase {
 public:
  static DefaultsDatabase& shared();
  void reset();

  /// @param user "" for the user of the process.
  DefaultsDomains& domainsOf(const std::string& user) { return users_[user]; }
  /// The standard defaults object, made when there is none; Foundation's.
  zel::id standard();
  /// Foundation gives up the standard defaults object; the next one is another.
  void forgetStandard() { standard_ = Held(); }

  bool standardGivesNil = false;
  bool initGivesNil = false;
  bool initWithUserGivesNil = false;
  std::optional<std::optional<std::string>> lastUserName;
  std::set<std::pair<std::u16string, std::u16string>> forced;  // keys and their domains

 private:
  DefaultsDatabase() = default;

  std::map<std::string, DefaultsDomains> users_;
  Held standard_;
};

/// Whether the object is one that a property list can be made of.
bool isPropertyList(const Instance& object);
/// The object as the store keeps it: lists and dictionaries are copied, so that later changes don't
/// reach the store, and are then immutable.
Held frozen(const void* object);
/// A dictionary of a domain's contents, sorted by key, with one reference for the caller.
zel::id createDictionary(const DefaultsValues& values);

}  // namespace foundation_double::objc
