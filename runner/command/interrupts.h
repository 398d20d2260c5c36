// Ctrl-C while a program runs.
#pragma once

#include <csignal>
#include <cstddef>
#include <sys/types.h>

#include "runner/run/machine.h"

namespace runner {

/// While it lives, Ctrl-C ends the program that a machine runs, at its next statement. A second one
/// ends the process, should the first not be heard. There is one at a time; afterwards Ctrl-C is
/// what it was before.
class Interrupts {
 public:
  explicit Interrupts(Machine& machine);
  ~Interrupts();
  Interrupts(const Interrupts&) = delete;
  Interrupts& operator=(const Interrupts&) = delete;

 private:
  struct sigaction before_ {};
};

/// Waits for bytes and reads them, as read(2) does. Ctrl-C ends the wait, whether it comes before
/// it or in it: 0 then, as at the end of the input. -1, and errno, when it can't be read.
ssize_t readUnlessInterrupted(int descriptor, char* buffer, std::size_t size);

}  // namespace runner
