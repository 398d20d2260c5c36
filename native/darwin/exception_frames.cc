// Native exceptions on 32-bit macOS. The runtime keeps a chain of frames, each with the registers
// of the place that has entered it. A throw leaves the innermost frame and jumps to its place;
// nothing in between is run.
#include "native/exceptions.h"

namespace zel {
namespace {

// A frame as the runtime lays it out: what _setjmp saves, then the runtime's own words.
struct ExceptionFrame {
  int registers[18];
  void* chain[4];
};
static_assert(sizeof(void*) != 4 || sizeof(ExceptionFrame) == 88);

extern "C" {
void objc_exception_try_enter(ExceptionFrame* frame);
void objc_exception_try_exit(ExceptionFrame* frame);
/// What was thrown to the frame, not owned. The throw has left the frame already.
Object* objc_exception_extract(ExceptionFrame* frame);
/// 0 when called; returns once more, with another value, when a throw jumps here.
__attribute__((returns_twice)) int _setjmp(int* registers);
}

}  // namespace

// The one function that is returned to twice. It is never inlined, and nothing of it changes
// between the two returns.
__attribute__((noinline)) Object* zelCatch(void (*body)(void*), void* context) {
  ExceptionFrame frame;
  objc_exception_try_enter(&frame);
  if (_setjmp(frame.registers) != 0) return objc_exception_extract(&frame);
  body(context);
  objc_exception_try_exit(&frame);
  return nullptr;
}

void zelFinally(void (*body)(void*), void (*cleanup)(void*), void* context) {
  Object* const passing = zelCatch(body, context);
  cleanup(context);
  if (passing != nullptr) objc_exception_throw(passing);
}

}  // namespace zel
