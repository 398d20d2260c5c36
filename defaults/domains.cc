// The store as a whole: writing it out, suites, registered values, and whole domains. The six
// methods that need nothing but a name read the wrapped object at the fixed position and before the
// guard opens; the others read it as every method for values does.
#include "bridge/dictionaries.h"
#include "bridge/strings.h"
#include "defaults/instance.h"
#include "plugin/arrays.h"
#include "plugin/errors.h"
#include "plugin/methods.h"

namespace zel {
namespace {

// Sends a message that takes nothing but a name.
template <Name Message>
void sendName(REALobject instance, REALstring text) {
  NSUserDefaults* const defaults = wrappedAtFixedPosition(instance);
  guarded([=] {
    const CFStringRef name = autoreleasedCFString(text);
    send<void, Message>(defaults, name);
  });
}

// Sends a message that answers with a list of names. The array is made before the guard opens and
// is returned on every path.
template <Name Message>
REALstringArray askForNames(REALobject instance) {
  const auto array =
      reinterpret_cast<REALstringArray>(REALCreateArray(kStringElements, kEmptyUpperBound));
  guarded([=] { FillStringArray(array, send<id, Message>(wrapped(instance))); });
  return array;
}

// Sends a message that answers with the contents of a domain.
template <Name Message>
REALobject askForDomain(REALobject instance, REALstring domainName) {
  return guarded<REALobject>([=] {
    const CFStringRef name = autoreleasedCFString(domainName);
    return NSDictionaryRB(send<CFDictionaryRef, Message>(wrapped(instance), name),
                          Nesting::aroundValues());
  });
}

// Sends a message that takes the contents of a domain and its name; the name is converted first.
template <Name Message>
void sendDomain(REALobject instance, REALdictionary domain, REALstring domainName) {
  guarded([=] {
    const CFStringRef name = autoreleasedCFString(domainName);
    const CFDictionaryRef contents = NewNSDictionary(domain, Nesting::aroundValues());
    send<void, Message>(wrapped(instance), contents, name);
  });
}

}  // namespace

extern "C" {

HostBoolean synchronize(REALobject instance) {
  NSUserDefaults* const defaults = wrappedAtFixedPosition(instance);
  return guarded<HostBoolean>(
      [=] { return static_cast<HostBoolean>(send<BOOL, "synchronize">(defaults)); });
}

void removeObjectForKey(REALobject instance, REALstring key) {
  sendName<"removeObjectForKey:">(instance, key);
}

void removeVolatileDomainForName(REALobject instance, REALstring domainName) {
  sendName<"removeVolatileDomainForName:">(instance, domainName);
}

void removePersistentDomainForName(REALobject instance, REALstring domainName) {
  sendName<"removePersistentDomainForName:">(instance, domainName);
}

void addSuiteNamed(REALobject instance, REALstring suiteName) {
  sendName<"addSuiteNamed:">(instance, suiteName);
}

void removeSuiteNamed(REALobject instance, REALstring suiteName) {
  sendName<"removeSuiteNamed:">(instance, suiteName);
}

void registerDefaults(REALobject instance, REALdictionary values) {
  guarded([=] {
    const CFDictionaryRef dictionary = NewNSDictionary(values, Nesting::aroundValues());
    send<void, "registerDefaults:">(wrapped(instance), dictionary);
  });
}

REALobject dictionaryRepresentation(REALobject instance) {
  return guarded<REALobject>([=] {
    return NSDictionaryRB(send<CFDictionaryRef, "dictionaryRepresentation">(wrapped(instance)),
                          Nesting::aroundValues());
  });
}

HostBoolean objectIsForcedForKey(REALobject instance, REALstring key) {
  return guarded<HostBoolean>([=] {
    const CFStringRef name = autoreleasedCFString(key);
    const auto reply = send<BOOL, "objectIsForcedForKey:">(wrapped(instance), name);
    return static_cast<HostBoolean>(reply);
  });
}

HostBoolean objectIsForcedForKey2(REALobject instance, REALstring key, REALstring domain) {
  return guarded<HostBoolean>([=] {
    const CFStringRef name = autoreleasedCFString(key);
    const CFStringRef domainName = autoreleasedCFString(domain);
    const auto reply =
        send<BOOL, "objectIsForcedForKey:inDomain:">(wrapped(instance), name, domainName);
    return static_cast<HostBoolean>(reply);
  });
}

void setPersistentDomain(REALobject instance, REALdictionary domain, REALstring domainName) {
  sendDomain<"setPersistentDomain:forName:">(instance, domain, domainName);
}

void setVolatileDomain(REALobject instance, REALdictionary domain, REALstring domainName) {
  sendDomain<"setVolatileDomain:forName:">(instance, domain, domainName);
}

REALstringArray persistentDomainNames(REALobject instance) {
  return askForNames<"persistentDomainNames">(instance);
}

REALobject persistentDomainForName(REALobject instance, REALstring domainName) {
  return askForDomain<"persistentDomainForName:">(instance, domainName);
}

REALstringArray volatileDomainNames(REALobject instance) {
  return askForNames<"volatileDomainNames">(instance);
}

REALobject volatileDomainForName(REALobject instance, REALstring domainName) {
  return askForDomain<"volatileDomainForName:">(instance, domainName);
}

}  // extern "C"
}  // namespace zel
