// Product code in miniature for the tests of the Foundation double: compiled without C++
// exceptions, with the seam's headers only.
#pragma once

#include "native/objc.h"

namespace zel {

/// What happened on the way of a message.
struct Passage {
  long reply = 0;
  int cleanups = 0;
  int destructors = 0;
  bool finished = false;
};

/// Runs the function; the native exception that left it, or null.
id catchFrom(void (*function)(void*), void* context);
/// Asks the object for its length with a clean-up in place.
void lengthWithCleanup(id object, Passage* passage);
/// The same with a C++ object in the frame.
void lengthWithDestructor(id object, Passage* passage);
[[noreturn]] void throwNative(id exception);

}  // namespace zel
