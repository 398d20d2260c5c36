// Ctrl-C while a program runs.
#pragma once

#include "runner/run/machine.h"

namespace runner {

/// While it lives, Ctrl-C ends the program that a machine runs, at its next statement. A second one
/// ends the process, should the first not be heard. There is one at a time.
class Interrupts {
 public:
  explicit Interrupts(Machine& machine);
  ~Interrupts();
  Interrupts(const Interrupts&) = delete;
  Interrupts& operator=(const Interrupts&) = delete;
};

}  // namespace runner
