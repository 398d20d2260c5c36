// Native exceptions as 32-bit macOS knows them: a chain of frames, each with the registers of the
// place that has entered it. A throw leaves the innermost frame and jumps to its place; what lies
// in between is skipped, without unwinding.
//
// The code of a bundle knows nothing else, and the code of this system knows unwinding alone. So
// whatever leaves the bundle goes through outward() (passages.h), and whatever enters it through
// enterBundle().
#pragma once

#include <cstdint>

#include "native/objc.h"

namespace macho {

/// A frame as its owner lays it out, who fills the registers with _setjmp.
struct ExceptionFrame {
  std::int32_t registers[18];
  ExceptionFrame* outer;
  zel::id thrown;
  void* unused[2];
};

// What the bundle's imports of these names come to; the frames are those of the calling thread.
void tryEnter(ExceptionFrame* frame);
void tryExit(ExceptionFrame* frame);
/// What was thrown to the frame, not owned.
zel::id extractThrown(ExceptionFrame* frame);
/// Leaves the innermost frame and jumps to it; ends the program when there is none.
[[noreturn]] void throwToFrame(zel::id exception);

/// Calls body(context), which may call into a bundle. A native exception that leaves the bundle
/// goes on as one of this system, from here; body's own frames are skipped without unwinding, so
/// nothing in them may have a destructor.
void enterBundle(void (*body)(void*), void* context);

}  // namespace macho
