#include "tests/foundation_double/passage.h"

#include "native/exceptions.h"

namespace zel {

id catchFrom(void (*function)(void*), void* context) {
  return catching([=] { function(context); });
}

void lengthWithCleanup(id object, Passage* passage) {
  passage->reply =
      withCleanup([=] { return send<NSInteger, "length">(object); }, [=] { passage->cleanups++; });
  passage->finished = true;
}

void lengthWithDestructor(id object, Passage* passage) {
  struct Counter {
    Passage* passage;
    ~Counter() { passage->destructors++; }
  } counter{passage};
  passage->reply = send<NSInteger, "length">(object);
  passage->finished = true;
}

void throwNative(id exception) { objc_exception_throw(exception); }

}  // namespace zel
