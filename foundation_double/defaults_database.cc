#include "foundation_double/defaults_database.h"

#include <algorithm>

#include "foundation_double/arrays.h"
#include "foundation_double/runtime.h"
#include "foundation_double/strings.h"

namespace foundation_double::objc {
namespace {

constexpr std::u16string_view kArgumentDomain = u"NSArgumentDomain";
constexpr std::u16string_view kGlobalDomain = u"NSGlobalDomain";
constexpr std::u16string_view kRegistrationDomain = u"NSRegistrationDomain";

const std::u16string& applicationDomain() {
  static const auto* const name = new std::u16string(fromUtf8(kApplicationDomain));
  return *name;
}

bool isText(const Held& object) {
  return dynamic_cast<const StringBody*>(instance(object.get())->body.get()) != nullptr;
}

bool isPropertyListEntry(const std::pair<Held, Held>& entry) {
  return isText(entry.first) && isPropertyList(*instance(entry.second.get()));
}

}  // namespace

// --- the domains of a user

DefaultsDomains::DefaultsDomains() {
  volatiles.try_emplace(std::u16string(kArgumentDomain));
  volatiles.try_emplace(std::u16string(kRegistrationDomain));
}

/// In the order of precedence, the strongest domain first.
std::vector<const DefaultsValues*> DefaultsDomains::searched() const {
  std::vector<const DefaultsValues*> order;
  const auto add = [&order](const Domains& domains, std::u16string_view name) {
    const auto found = domains.find(name);
    if (found != domains.end()) order.push_back(&found->second);
  };
  add(volatiles, kArgumentDomain);
  add(persistent, applicationDomain());
  for (const std::u16string& suite : suites_) add(persistent, suite);
  add(persistent, kGlobalDomain);
  add(volatiles, kRegistrationDomain);
  return order;
}

zel::id DefaultsDomains::find(std::u16string_view key) const {
  for (const DefaultsValues* const values : searched()) {
    const auto found = values->find(key);
    if (found != values->end()) return found->second.get();
  }
  return nullptr;
}

zel::id DefaultsDomains::all() const {
  DefaultsValues merged;
  for (const DefaultsValues* const values : searched()) {
    for (const auto& [key, value] : *values) merged.try_emplace(key, value.get());
  }
  return createDictionary(merged);
}

void DefaultsDomains::set(const std::u16string& key, Held value) {
  persistent[applicationDomain()].insert_or_assign(key, std::move(value));
}

void DefaultsDomains::remove(std::u16string_view key) {
  const auto domain = persistent.find(applicationDomain());
  if (domain == persistent.end()) return;
  const auto found = domain->second.find(key);
  if (found != domain->second.end()) domain->second.erase(found);
}

void DefaultsDomains::registerValues(DefaultsValues&& values) {
  DefaultsValues& registered = volatiles[std::u16string(kRegistrationDomain)];
  for (auto& [key, value] : values) registered.insert_or_assign(key, std::move(value));
}

void DefaultsDomains::addSuite(const std::u16string& name) {
  removeSuite(name);
  suites_.insert(suites_.begin(), name);
}

void DefaultsDomains::removeSuite(const std::u16string& name) {
  suites_.erase(std::remove(suites_.begin(), suites_.end(), name), suites_.end());
}

// --- the database

DefaultsDatabase& DefaultsDatabase::shared() {
  static auto* const database = new DefaultsDatabase;  // outlives every static user of it
  return *database;
}

void DefaultsDatabase::reset() { *this = DefaultsDatabase(); }

zel::id DefaultsDatabase::standard() {
  if (standard_.get() == nullptr) {
    standard_ = kept(createInstance(Runtime::shared().require("NSUserDefaults")));
  }
  return standard_.get();
}

// --- its values

bool isPropertyList(const Instance& object) {
  const Body* const body = object.body.get();
  if (const auto* const array = dynamic_cast<const ArrayBody*>(body)) {
    const auto& elements = array->elements;
    return std::all_of(elements.begin(), elements.end(), [](const Held& element) {
      return isPropertyList(*instance(element.get()));
    });
  }
  if (const auto* const dictionary = dynamic_cast<const DictionaryBody*>(body)) {
    const auto& entries = dictionary->entries();
    return std::all_of(entries.begin(), entries.end(), isPropertyListEntry);
  }
  return isStorable(object);
}

Held frozen(const void* object) {
  const Body* const body = instance(object)->body.get();
  if (const auto* const array = dynamic_cast<const ArrayBody*>(body)) {
    std::vector<Held> elements;
    for (const Held& element : array->elements) elements.push_back(frozen(element.get()));
    return kept(createArray(std::move(elements)));
  }
  if (const auto* const dictionary = dynamic_cast<const DictionaryBody*>(body)) {
    auto copy = std::make_unique<DictionaryBody>();
    for (const auto& [key, value] : dictionary->entries()) {
      copy->set(Held(key.get()), frozen(value.get()));
    }
    return kept(createDictionary(std::move(copy)));
  }
  return Held(object);
}

zel::id createDictionary(const DefaultsValues& values) {
  auto body = std::make_unique<DictionaryBody>();
  for (const auto& [key, value] : values) {
    body->set(kept(createString(key)), Held(value.get()));
  }
  return createDictionary(std::move(body));
}

}  // namespace foundation_double::objc
