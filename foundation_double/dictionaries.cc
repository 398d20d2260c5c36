#include "foundation_double/dictionaries.h"

#include "foundation_double/arrays.h"
#include "foundation_double/classes.h"
#include "foundation_double/exceptions.h"
#include "foundation_double/literals.h"
#include "foundation_double/numbers.h"
#include "foundation_double/strings.h"

namespace foundation_double::objc {
namespace {

/// The same for keys that are equal.
std::string keyText(const void* key) {
  const Instance* const found = Accounts::shared().find(key);
  if (found == nullptr || found->dead) misuseWithoutAnswer("a key that is no live object");
  if (const auto* const string = dynamic_cast<const StringBody*>(found->body.get())) {
    return "text " + encodeLosslessly(string->units);
  }
  const auto* const number = dynamic_cast<const NumberBody*>(found->body.get());
  return number == nullptr ? addressText(key) : "number " + number->keyText();
}

DictionaryBody& dictionaryBody(const void* dictionary) {
  return bodyOf<DictionaryBody>(dictionary, "dictionary");
}

std::unique_ptr<Body> makeDictionaryBody() { return std::make_unique<DictionaryBody>(); }

zel::id dictionary(zel::id self, zel::SEL /*selector*/) {
  return pooled(createInstance(classRecord(self)));
}

zel::id dictionaryWithCapacity(zel::id self, zel::SEL selector, zel::NSUInteger capacity) {
  const zel::id made = dictionary(self, selector);
  dictionaryBody(made).capacity = capacity;
  return made;
}

zel::NSUInteger count(zel::id self, zel::SEL /*selector*/) {
  return dictionaryBody(self).entries().size();
}

zel::id objectForKey(zel::id self, zel::SEL /*selector*/, zel::id key) {
  return key == nullptr ? nullptr : dictionaryBody(self).find(key);
}

zel::id allKeys(zel::id self, zel::SEL /*selector*/) {
  std::vector<Held> keys;
  for (const auto& [key, value] : dictionaryBody(self).entries()) keys.emplace_back(key.get());
  return pooled(createArray(std::move(keys)));
}

void setObjectForKey(zel::id self, zel::SEL selector, zel::id value, zel::id key) {
  if (value == nullptr || key == nullptr) {
    raise("NSInvalidArgumentException", messageText(*instance(self), selector) + ": the " +
                                            (key == nullptr ? "key" : "object") + " is nil");
  }
  dictionaryBody(self).set(Held(key), Held(value));
}

}  // namespace

std::optional<std::string> DictionaryBody::literal() const {
  std::string text = "{";
  for (const auto& [key, value] : entries_) {
    if (text.size() > 1) text += ", ";
    text += literalOf(key.get()) + " = " + literalOf(value.get());
  }
  return text + "}";
}

zel::id DictionaryBody::find(const void* key) const {
  const auto found = places_.find(keyText(key));
  return found == places_.end() ? nullptr : entries_[found->second].second.get();
}

void DictionaryBody::set(Held key, Held value) {
  const auto [place, isNew] = places_.emplace(keyText(key.get()), entries_.size());
  if (isNew) {
    entries_.emplace_back(std::move(key), std::move(value));
  } else {
    entries_[place->second].second = std::move(value);
  }
}

ClassDefinition dictionaryClass() {
  return {.name = "NSDictionary",
          .makeBody = &makeDictionaryBody,
          .storable = true,
          .methods = {method("count", &count), method("objectForKey:", &objectForKey),
                      method("allKeys", &allKeys)},
          .classMethods = {method("dictionary", &dictionary)}};
}

ClassDefinition mutableDictionaryClass() {
  return {.name = "NSMutableDictionary",
          .superName = "NSDictionary",
          .storable = true,
          .methods = {method("setObject:forKey:", &setObjectForKey)},
          .classMethods = {method("dictionaryWithCapacity:", &dictionaryWithCapacity)}};
}

zel::id createDictionary(std::unique_ptr<DictionaryBody> body) {
  return createObject("NSDictionary", std::move(body));
}

}  // namespace foundation_double::objc
