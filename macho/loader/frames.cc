#include "macho/loader/frames.h"

#include <cstdio>
#include <cstdlib>

#include "native/exceptions.h"

namespace macho {
namespace {

static_assert(sizeof(ExceptionFrame) == 88);

thread_local ExceptionFrame* innermost = nullptr;

extern "C" {
// The system's own, which fills less of the registers than macOS's.
__attribute__((returns_twice)) int _setjmp(std::int32_t* registers);
[[noreturn]] void _longjmp(std::int32_t* registers, int value);
}

// Between the system's frames and the bundle's.
class BorderFrame {
 public:
  BorderFrame() { tryEnter(&frame_); }
  ~BorderFrame() { tryExit(&frame_); }
  BorderFrame(const BorderFrame&) = delete;
  BorderFrame& operator=(const BorderFrame&) = delete;
  ExceptionFrame* operator->() { return &frame_; }

 private:
  ExceptionFrame frame_;
};

}  // namespace

void tryEnter(ExceptionFrame* frame) {
  frame->thrown = nullptr;
  frame->outer = innermost;
  innermost = frame;
}

void tryExit(ExceptionFrame* frame) { innermost = frame->outer; }

zel::id extractThrown(ExceptionFrame* frame) { return frame->thrown; }

void throwToFrame(zel::id exception) {
  ExceptionFrame* const frame = innermost;
  if (frame == nullptr) {
    std::fprintf(stderr, "nobody takes the native exception of class %s\n",
                 zel::object_getClassName(exception));
    std::abort();
  }
  innermost = frame->outer;
  frame->thrown = exception;
  _longjmp(frame->registers, 1);
}

// Never inlined: this function is returned to twice.
__attribute__((noinline)) void enterBundle(void (*body)(void*), void* context) {
  BorderFrame frame;
  if (_setjmp(frame->registers) != 0) zel::objc_exception_throw(frame->thrown);
  body(context);
}

}  // namespace macho
