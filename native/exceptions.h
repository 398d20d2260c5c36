// Native exceptions: the only two shapes in which product code meets them.
//
// On some targets a native exception leaves a function without running C++ destructors. So nothing
// that must be given back may be held by a destructor across a message: withCleanup holds it.
#pragma once

#include <type_traits>

#include "native/objc.h"

namespace zel {

extern "C" {
/// Runs body(context). Gives back the native object that was thrown out of it, not owned, or null
/// when it completed. Anything else that is thrown passes through.
Object* zelCatch(void (*body)(void*), void* context);
/// Runs body(context) and then, also when anything is thrown out of the body, cleanup(context);
/// what was thrown then goes on. The clean-up must not throw.
void zelFinally(void (*body)(void*), void (*cleanup)(void*), void* context);
/// Throws a native object. @param exception not null.
[[noreturn]] void objc_exception_throw(Object* exception);
}

/// Runs the body and gives back the native exception that left it, not owned, or null.
template <class Body>
[[nodiscard]] inline id catching(Body&& body) {
  return zelCatch([](void* context) { (*static_cast<std::remove_reference_t<Body>*>(context))(); },
                  &body);
}

/// Runs the body, then the clean-up, and gives back the body's result. The clean-up also runs,
/// once, when a native exception leaves the body; the exception then goes on. The clean-up must not
/// raise.
template <class Body, class Cleanup>
inline auto withCleanup(Body&& body, Cleanup&& cleanup) {
  using Result = std::invoke_result_t<Body>;
  if constexpr (std::is_void_v<Result>) {
    struct Context {
      std::remove_reference_t<Body>* body;
      std::remove_reference_t<Cleanup>* cleanup;
    } context{&body, &cleanup};
    zelFinally([](void* raw) { (*static_cast<Context*>(raw)->body)(); },
               [](void* raw) { (*static_cast<Context*>(raw)->cleanup)(); }, &context);
  } else {
    struct Context {
      std::remove_reference_t<Body>* body;
      std::remove_reference_t<Cleanup>* cleanup;
      Result result;
    } context{&body, &cleanup, Result{}};
    zelFinally(
        [](void* raw) {
          auto* const self = static_cast<Context*>(raw);
          self->result = (*self->body)();
        },
        [](void* raw) { (*static_cast<Context*>(raw)->cleanup)(); }, &context);
    return context.result;
  }
}

}  // namespace zel
