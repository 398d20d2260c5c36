#include "runner/command/interrupts.h"

#include <cerrno>
#include <csetjmp>
#include <csignal>
#include <unistd.h>

namespace runner {
namespace {

Machine* volatile running = nullptr;
volatile std::sig_atomic_t reads = 0;  // whether a read is to begin, or goes on
sigjmp_buf beforeReading;

// A read that hasn't begun yet would wait in spite of the signal, and a terminal throws away at
// Ctrl-C what poll(2) has told of. So the read is left from here, wherever it is.
void onInterrupt(int /*signal*/) {
  if (running == nullptr) return;
  running->interrupt();
  if (reads != 0) siglongjmp(beforeReading, 1);
}

}  // namespace

Interrupts::Interrupts(Machine& machine) {
  running = &machine;
  struct sigaction action = {};
  action.sa_handler = onInterrupt;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  sigaction(SIGINT, &action, &before_);
}

Interrupts::~Interrupts() {
  sigaction(SIGINT, &before_, nullptr);
  running = nullptr;
}

// Nothing here has a destructor that a jump would leave out.
ssize_t readUnlessInterrupted(int descriptor, char* buffer, std::size_t size) {
  if (sigsetjmp(beforeReading, 1) != 0) {
    reads = 0;
    return 0;
  }
  reads = 1;
  const bool interrupted = running != nullptr && running->isInterrupted();
  ssize_t count = 0;
  if (!interrupted) {
    do count = read(descriptor, buffer, size);
    while (count < 0 && errno == EINTR);
  }
  reads = 0;
  return count;
}

}  // namespace runner
