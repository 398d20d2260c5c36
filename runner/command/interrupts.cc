#include "runner/command/interrupts.h"

#include <csignal>

namespace runner {
namespace {

Machine* volatile running = nullptr;

void onInterrupt(int /*signal*/) {
  if (running != nullptr) running->interrupt();
}

}  // namespace

Interrupts::Interrupts(Machine& machine) {
  running = &machine;
  struct sigaction action = {};
  action.sa_handler = onInterrupt;
  // Without SA_RESTART: a program that waits for a line is woken up.
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  sigaction(SIGINT, &action, nullptr);
}

Interrupts::~Interrupts() {
  std::signal(SIGINT, SIG_DFL);
  running = nullptr;
}

}  // namespace runner
