// Native exceptions on 64-bit macOS. They unwind the stack, so this has to be Objective-C: only its
// compiler writes the tables by which the runtime finds the way. Foreign exceptions pass.
#include <stddef.h>

/// The functions of native/exceptions.h, which is C++.
id zelCatch(void (*body)(void*), void* context);
void zelFinally(void (*body)(void*), void (*cleanup)(void*), void* context);

id zelCatch(void (*body)(void*), void* context) {
  @try {
    body(context);
  } @catch (id exception) {
    return exception;
  }
  return NULL;
}

void zelFinally(void (*body)(void*), void (*cleanup)(void*), void* context) {
  @try {
    body(context);
  } @finally {
    cleanup(context);
  }
}
