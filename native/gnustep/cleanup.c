#include "native/gnustep/zelnative.h"

// This stands in plain C: with clang, the personality routine of the Objective-C runtime passes
// over
// @finally and over clean-ups when the exception is a foreign one. C's own does not.
struct Cleanup {
  void (*run)(void*);
  void* context;
};

static void runCleanup(struct Cleanup* cleanup) { cleanup->run(cleanup->context); }

void zelFinally(void (*body)(void*), void (*cleanup)(void*), void* context) {
  __attribute__((cleanup(runCleanup), unused)) struct Cleanup atExit = {cleanup, context};
  body(context);
}
