#include "host/family/runtime.h"

#include "native/methods.h"

extern "C" {
// Of the Objective-C runtime.
zel::Class* objc_getClass(const char* className);
zel::Class* objc_allocateClassPair(zel::Class* superClass, const char* name,
                                   std::size_t extraBytes);
void objc_registerClassPair(zel::Class* made);
}

namespace host {
namespace {

void defineClass(const char* name, const char* superName) {
  if (objc_getClass(name) == nullptr)
    objc_registerClassPair(objc_allocateClassPair(objc_getClass(superName), name, 0));
}

}  // namespace

AddMethod addToRuntime() {
  return [](const NativeMethod& method) {
    defineClass(method.className, method.superName);
    zel::Class* const owner =
        (method.ofClass ? zel::objc_getMetaClass : objc_getClass)(method.className);
    zel::class_addMethod(owner, zel::sel_registerName(method.selector), method.implementation,
                         method.types);
  };
}

}  // namespace host
