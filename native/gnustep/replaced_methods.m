// The runtime's own method_setImplementation doesn't do before a class has got its first message.
// Until then the class has one table of methods together with all others of which that is true, and
// there it writes the new method: all of them answer to it, and without having set themselves up.
#include "native/gnustep/replaced_methods.h"

#include <objc/runtime.h>

// What compilers emit for a class and for a method; the beginning of the class. It is part of the
// runtime's binary interface.
struct EmittedClass {
  Class isa;
  Class super;
  const char* name;
  long version;
  unsigned long info;
};
struct EmittedMethod {
  SEL name;
  const char* types;
  IMP implementation;
};

enum { kInitialized = 4 };  // of a class's info: it has got its first message

static AnyMethod replace(Class owner, const char* selector, AnyMethod method) {
  Method const replaced = class_getInstanceMethod(owner, sel_registerName(selector));
  if ((((struct EmittedClass*)owner)->info & kInitialized) != 0) {
    return (AnyMethod)method_setImplementation(replaced, (IMP)method);
  }
  struct EmittedMethod* const emitted = (struct EmittedMethod*)replaced;
  const AnyMethod before = (AnyMethod)emitted->implementation;
  emitted->implementation = (IMP)method;
  return before;
}

AnyMethod zelReplaceMethod(const char* className, const char* selector, AnyMethod method) {
  return replace(objc_getClass(className), selector, method);
}

AnyMethod zelReplaceClassMethod(const char* className, const char* selector, AnyMethod method) {
  return replace(object_getClass(objc_getClass(className)), selector, method);
}
