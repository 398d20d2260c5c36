#include "runner/command/starting.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <unistd.h>

namespace runner {
namespace {

constexpr std::array kCrashes = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT};

// What starts: neither a resolver nor a handler of signals can be given it.
host::PluginMain starting = nullptr;
std::string file;
std::string message;

// Prepares the message. @param missing nullable.
void prepare(const char* missing) {
  message = "hostrun: " + file + " crashed in its REALPluginMain.\n";
  if (missing != nullptr) {
    message += "It had asked the host for \"" + std::string(missing) +
               "\", which this host doesn't have.\n";
  }
  message += kPluginHelp + std::string("\n");
}

// The message stands there already: nothing may be put together now.
void onCrash(int /*signal*/) {
  [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, message.data(), message.size());
  _exit(EXIT_FAILURE);
}

// Crashes for the time of its life; on a stack of its own, should that of the process be used up.
class Crashes {
 public:
  Crashes() {
    stack_t stack = {};
    stack.ss_sp = stack_.data();
    stack.ss_size = stack_.size();
    sigaltstack(&stack, &stackBefore_);
    struct sigaction action = {};
    action.sa_handler = onCrash;
    action.sa_flags = SA_ONSTACK;
    for (std::size_t i = 0; i < kCrashes.size(); ++i) sigaction(kCrashes[i], &action, &before_[i]);
  }
  ~Crashes() {
    for (std::size_t i = 0; i < kCrashes.size(); ++i) sigaction(kCrashes[i], &before_[i], nullptr);
    sigaltstack(&stackBefore_, nullptr);
  }
  Crashes(const Crashes&) = delete;
  Crashes& operator=(const Crashes&) = delete;

 private:
  std::array<char, 16384> stack_{};
  stack_t stackBefore_{};
  std::array<struct sigaction, kCrashes.size()> before_{};
};

void* resolve(const char* name) {
  void* const found = host::Host::resolver()(name);
  if (found == nullptr && name != nullptr) prepare(name);
  return found;
}

}  // namespace

void startPlugin(host::Host& host, const std::string& itsFile, host::PluginMain pluginMain) {
  starting = pluginMain;
  file = itsFile;
  prepare(nullptr);
  const Crashes crashes;
  host.load([](zel::Resolver) { starting(resolve); });
}

}  // namespace runner
