#include "companion/family.h"

#include "companion/exceptions.h"
#include "native/methods.h"

namespace zel {

constinit CFMutableDictionaryRef familyInstances = nullptr;

namespace {

// A table of plain pointers: it keeps neither the native objects nor the host's alive.
CFMutableDictionaryRef getInstancesDictionary(id /*self*/, SEL /*selector*/) {
  if (familyInstances == nullptr)
    familyInstances = CFDictionaryCreateMutable(kDefaultAllocator, 0, nullptr, nullptr);
  return familyInstances;
}

// There is nothing to prepare: what an exception needs is looked up when one arrives. The family
// asks all the same.
void prepareNSException(id /*self*/, SEL /*selector*/) {}

REALobject newNSException(id /*self*/, SEL /*selector*/, NSException* exception) {
  return newHostException(exception);
}

#define NATIVE_METHOD(selector, function, types) \
  { selector, reinterpret_cast<void (*)()>(function), types }

const struct {
  const char* selector;
  void (*implementation)();
  const char* types;
} kFamilyMethods[] = {
    NATIVE_METHOD("GetInstancesDictionaryZEL", getInstancesDictionary, "^v@:"),
    NATIVE_METHOD("PrepareNSExceptionZEL", prepareNSException, "v@:"),
    NATIVE_METHOD("NewNSExceptionZEL:", newNSException, "^v@:@"),
};

}  // namespace

void addFamilyMethods() {
  Class* const owner = objc_getMetaClass("NSException");
  for (const auto& method : kFamilyMethods) {
    class_addMethod(owner, sel_registerName(method.selector), method.implementation, method.types);
  }
}

}  // namespace zel
