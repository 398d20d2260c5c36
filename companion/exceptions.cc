#include "companion/exceptions.h"

#include "bridge/dictionaries.h"
#include "bridge/strings.h"
#include "companion/tables.h"
#include "plugin/errors.h"
#include "plugin/instance_data.h"
#include "plugin/references.h"

namespace zel {
namespace {

// The data word: one reference, or nil. Only for objects of the class that this plugin registered.
NSException*& exceptionIn(REALobject instance) {
  return dataAt<NSException*>(instance, NSExceptionClass.base.systemUse);
}

bool classIsOurs() { return NSExceptionClass.base.systemUse != 0; }

template <Name Selector>
REALstring textOf(REALobject instance) {
  return guarded<REALstring>(
      [=] { return CFString2RBString(send<CFStringRef, Selector>(exceptionIn(instance))); });
}

}  // namespace

REALobject newHostException(NSException* exception) {
  if (exception == nullptr) return nullptr;
  const REALobject made = REALnewInstance(NSExceptionClass.base.name);
  if (made == nullptr) return nullptr;
  return handingOver(made, [&](REALobject instance) {
    if (classIsOurs()) exceptionIn(instance) = retained(exception);
    unlocking(CFString2RBString(send<CFStringRef, "reason">(exception)),
              [&](REALstring reason) { describeException(instance, reason); });
  });
}

extern "C" {

void NSExceptionDestructor(REALobject instance) {
  guarded([=] {
    NSException*& exception = exceptionIn(instance);
    release(exception);
    exception = nullptr;
  });
}

REALstring exceptionName(REALobject instance) { return textOf<"name">(instance); }

REALstring exceptionReason(REALobject instance) { return textOf<"reason">(instance); }

REALobject exceptionUserInfo(REALobject instance) {
  return guarded<REALobject>(
      [=] { return NSDictionaryRB(send<CFDictionaryRef, "userInfo">(exceptionIn(instance))); });
}

}  // extern "C"
}  // namespace zel
