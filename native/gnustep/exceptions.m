#import "native/gnustep/zelnative.h"

// This stands in plain Objective-C: g++ hands a bad object to @catch in Objective-C++. In spite of
// its look, "@catch (id)" takes Objective-C exceptions only; the personality routine of the
// Objective-C runtime lets C++ exceptions and forced unwinding pass.
id zelCatch(void (*body)(void*), void* context) {
  @try {
    body(context);
  } @catch (id exception) {
    return exception;
  }
  return nil;
}
