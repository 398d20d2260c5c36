// NSUserDefaults' messages for whole domains and suites.

#include "foundation_double/arrays.h"
#include "foundation_double/exceptions.h"
#include "foundation_double/strings.h"
#include "foundation_double/user_defaults.h"

namespace foundation_double::objc {
namespace {

using Domains = DefaultsDomains::Domains;

const std::u16string& checkedName(zel::CFStringRef name) {
  if (name == nullptr) raise("NSInvalidArgumentException", "the name is nil");
  return stringBody(name).units;
}

/// The contents of a new domain. @param isStored whether they must be a property list.
DefaultsValues contents(const void* dictionary, bool isStored) {
  if (dictionary == nullptr) raise("NSInvalidArgumentException", "the dictionary is nil");
  const auto& body = bodyOf<DictionaryBody>(dictionary, "dictionary");
  DefaultsValues values;
  for (const auto& [key, value] : body.entries()) {
    const Instance& keyObject = *instance(key.get());
    const auto* const name = dynamic_cast<const StringBody*>(keyObject.body.get());
    if (name == nullptr) raiseUnusable(keyObject, "a key");
    const Instance& object = *instance(value.get());
    if (isStored && !isPropertyList(object)) {
      raiseUnusable(object, "the value for the key " + describe(keyObject));
    }
    values.insert_or_assign(name->units, frozen(value.get()));
  }
  return values;
}

// --- suites and registered values

void addSuiteNamed(zel::id self, zel::SEL /*selector*/, zel::CFStringRef name) {
  domainsOf(self).addSuite(checkedName(name));
}

void removeSuiteNamed(zel::id self, zel::SEL /*selector*/, zel::CFStringRef name) {
  if (name != nullptr) domainsOf(self).removeSuite(stringBody(name).units);
}

/// nil registers nothing.
void registerDefaults(zel::id self, zel::SEL /*selector*/, zel::id dictionary) {
  if (dictionary != nullptr) domainsOf(self).registerValues(contents(dictionary, false));
}

zel::id dictionaryRepresentation(zel::id self, zel::SEL /*selector*/) {
  return pooled(domainsOf(self).all());
}

// --- domains

/// The contents of a domain, or nil for one that there isn't.
template <Domains DefaultsDomains::*Kind>
zel::id domainForName(zel::id self, zel::SEL /*selector*/, zel::CFStringRef name) {
  if (name == nullptr) return nullptr;
  const Domains& domains = domainsOf(self).*Kind;
  const auto found = domains.find(stringBody(name).units);
  return found == domains.end() ? nullptr : pooled(createDictionary(found->second));
}

template <Domains DefaultsDomains::*Kind>
zel::id domainNames(zel::id self, zel::SEL /*selector*/) {
  std::vector<Held> names;
  for (const auto& [name, values] : domainsOf(self).*Kind) {
    names.push_back(kept(createString(name)));
  }
  return pooled(createArray(std::move(names)));
}

template <Domains DefaultsDomains::*Kind>
void removeDomain(zel::id self, zel::SEL /*selector*/, zel::CFStringRef name) {
  if (name != nullptr) (domainsOf(self).*Kind).erase(stringBody(name).units);
}

void setPersistentDomain(zel::id self, zel::SEL /*selector*/, zel::id dictionary,
                         zel::CFStringRef name) {
  const std::u16string& checked = checkedName(name);
  domainsOf(self).persistent.insert_or_assign(checked, contents(dictionary, true));
}

void setVolatileDomain(zel::id self, zel::SEL /*selector*/, zel::id dictionary,
                       zel::CFStringRef name) {
  Domains& domains = domainsOf(self).volatiles;
  const std::u16string& checked = checkedName(name);
  if (domains.count(checked) != 0) {
    raise("NSInvalidArgumentException",
          "there is a volatile domain " + describe(*instance(name)) + " already");
  }
  domains.emplace(checked, contents(dictionary, false));
}

// --- forced values

zel::BOOL objectIsForcedInDomain(zel::id /*self*/, zel::SEL /*selector*/, zel::CFStringRef key,
                                 zel::CFStringRef domain) {
  const auto& forced = DefaultsDatabase::shared().forced;
  return forced.count({checkedKey(key), checkedName(domain)}) != 0;
}

/// In whatever domain.
zel::BOOL objectIsForced(zel::id /*self*/, zel::SEL /*selector*/, zel::CFStringRef key) {
  const auto& forced = DefaultsDatabase::shared().forced;
  const std::u16string& wanted = checkedKey(key);
  const auto first = forced.lower_bound({wanted, u""});
  return first != forced.end() && first->first == wanted;
}

}  // namespace

std::vector<Method> domainMethods() {
  constexpr auto kPersistent = &DefaultsDomains::persistent;
  constexpr auto kVolatile = &DefaultsDomains::volatiles;
  return {method("addSuiteNamed:", &addSuiteNamed),
          method("removeSuiteNamed:", &removeSuiteNamed),
          method("registerDefaults:", &registerDefaults),
          method("dictionaryRepresentation", &dictionaryRepresentation),
          method("persistentDomainForName:", &domainForName<kPersistent>),
          method("persistentDomainNames", &domainNames<kPersistent>),
          method("removePersistentDomainForName:", &removeDomain<kPersistent>),
          method("setPersistentDomain:forName:", &setPersistentDomain),
          method("volatileDomainForName:", &domainForName<kVolatile>),
          method("volatileDomainNames", &domainNames<kVolatile>),
          method("removeVolatileDomainForName:", &removeDomain<kVolatile>),
          method("setVolatileDomain:forName:", &setVolatileDomain),
          method("objectIsForcedForKey:", &objectIsForced),
          method("objectIsForcedForKey:inDomain:", &objectIsForcedInDomain)};
}

}  // namespace foundation_double::objc
