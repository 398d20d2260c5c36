// The life of an NSUserDefaultsZEL object, and the shared methods of the class.
#include "bridge/strings.h"
#include "defaults/instance.h"
#include "plugin/errors.h"
#include "plugin/methods.h"
#include "plugin/references.h"

namespace zel {
namespace {

// Whether the object wraps something already; the host program is then told.
bool refusesConstruction(REALobject instance) {
  if (wrapped(instance) == nullptr) return false;
  RaiseException("UnsupportedOperationException",
                 "Constructor called too often. Object is already initialized.", 0);
  return true;
}

// Makes the host object findable by the native one. The entry keeps neither alive.
void remember(NSUserDefaults* defaults, REALobject instance) {
  if (instances != nullptr) CFDictionarySetValue(instances, defaults, instance);
}

// The living host object that wraps the native one, not owned, or null.
REALobject remembered(NSUserDefaults* defaults) {
  if (instances == nullptr) return nullptr;
  return static_cast<REALobject>(const_cast<void*>(CFDictionaryGetValue(instances, defaults)));
}

// Lets the host object wrap a native one whose reference it takes over.
void wrap(REALobject instance, NSUserDefaults* defaults) {
  wrapped(instance) = defaults;
  if (defaults != nullptr) remember(defaults, instance);
}

// A new host object around a native one, with one reference for the caller; null when the host
// makes none.
REALobject newWrapper(NSUserDefaults* defaults) {
  const REALobject instance = REALnewInstance("NSUserDefaultsZEL");
  if (instance == nullptr) return nullptr;
  return handingOver(instance, [&](REALobject made) {
    wrappedAtFixedPosition(made) = retained(defaults);
    remember(defaults, made);
  });
}

REALstring foundationText(const char* constantName) {
  return CFString2RBString(zelFoundationConstant(constantName));
}

}  // namespace

extern "C" {

void NSUserDefaultsConstructor(REALobject /*instance*/) { CocoaInit(); }

void NSUserDefaultsDestructor(REALobject instance) {
  CocoaInit();
  guarded([=] {
    NSUserDefaults*& defaults = wrappedAtFixedPosition(instance);
    if (defaults == nullptr) return;
    if (instances != nullptr) CFDictionaryRemoveValue(instances, defaults);
    release(defaults);
    defaults = nullptr;
  });
}

REALobject DummyException(REALobject /*instance*/) { return nullptr; }

void Constructor(REALobject instance) {
  if (refusesConstruction(instance)) return;
  CocoaInit();
  guarded([=] {
    const auto blank = send<NSUserDefaults*, "alloc">(classNamed<"NSUserDefaults">());
    wrap(instance, send<NSUserDefaults*, "init">(blank));
  });
}

void ConstructorUser(REALobject instance, REALstring username) {
  if (refusesConstruction(instance)) return;
  CocoaInit();
  guarded([=] {
    const CFStringRef user = autoreleasedCFString(username);
    const auto blank = send<NSUserDefaults*, "alloc">(classNamed<"NSUserDefaults">());
    wrap(instance, send<NSUserDefaults*, "initWithUser:">(blank, user));
  });
}

REALobject standardUserDefaults() {
  CocoaInit();
  return guarded<REALobject>([]() -> REALobject {
    const auto defaults =
        send<NSUserDefaults*, "standardUserDefaults">(classNamed<"NSUserDefaults">());
    if (defaults == nullptr) return nullptr;
    const REALobject known = remembered(defaults);
    if (known == nullptr) return newWrapper(defaults);
    REALLockObject(known);
    return known;
  });
}

void resetStandardUserDefaults() {
  CocoaInit();
  guarded([] { send<void, "resetStandardUserDefaults">(classNamed<"NSUserDefaults">()); });
}

REALstring getNSGlobalDomain() { return foundationText("NSGlobalDomain"); }

REALstring getNSArgumentDomain() { return foundationText("NSArgumentDomain"); }

REALstring getNSRegistrationDomain() { return foundationText("NSRegistrationDomain"); }

REALstring getNSUserDefaultsDidChangeNotification() {
  return foundationText("NSUserDefaultsDidChangeNotification");
}

}  // extern "C"
}  // namespace zel
