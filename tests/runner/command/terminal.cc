#include "tests/runner/command/terminal.h"

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tests {
namespace {

constexpr int kMilliseconds = 30000;

[[noreturn]] void become(const std::vector<std::string>& environment,
                         const std::vector<std::string>& programs) {
  for (const std::string& assignment : environment) {
    const std::size_t equals = assignment.find('=');
    setenv(assignment.substr(0, equals).c_str(), assignment.substr(equals + 1).c_str(), 1);
  }
  std::vector<std::string> arguments = {"hostrun", "--plugin", ZEL_PLUGIN, "--plugin",
                                        ZEL_COMPANION};
  arguments.insert(arguments.end(), programs.begin(), programs.end());
  std::vector<char*> argv;
  argv.reserve(arguments.size() + 1);
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  execv(ZEL_HOSTRUN, argv.data());
  _exit(127);
}

}  // namespace

Terminal::Terminal(const std::vector<std::string>& environment,
                   const std::vector<std::string>& programs) {
  const winsize size = {.ws_row = 24, .ws_col = 80, .ws_xpixel = 0, .ws_ypixel = 0};
  child_ = forkpty(&terminal_, nullptr, nullptr, &size);
  if (child_ == 0) become(environment, programs);
  fcntl(terminal_, F_SETFD, FD_CLOEXEC);  // no other process keeps it open
}

Terminal::~Terminal() {
  if (terminal_ >= 0) close(terminal_);  // which ends it
  if (child_ > 0) waitpid(child_, nullptr, 0);
}

void Terminal::type(const std::string& text) {
  ASSERT_EQ(write(terminal_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
}

bool Terminal::shows(const std::string& wanted) { return until(wanted) != "(nothing)"; }

std::string Terminal::until(const std::string& wanted) {
  while (seen_.find(wanted) == std::string::npos) {
    if (readMore()) continue;
    ADD_FAILURE() << "There is no \"" << wanted << "\" in \"" << seen_ << "\"";
    return "(nothing)";
  }
  std::string before = seen_.substr(0, seen_.find(wanted));
  seen_.erase(0, before.size() + wanted.size());
  return before;
}

int Terminal::status() {
  while (readMore()) {
  }
  constexpr useconds_t kTenth = 100000;
  int status = 0;
  for (int tenths = 0; tenths < kMilliseconds / 100; ++tenths) {
    if (waitpid(child_, &status, WNOHANG) == child_) {
      child_ = 0;
      return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
    usleep(kTenth);
  }
  return -1;
}

bool Terminal::readMore() {
  std::array<char, 4096> buffer{};
  pollfd waiting = {terminal_, POLLIN, 0};
  if (poll(&waiting, 1, kMilliseconds) <= 0) return false;
  const ssize_t count = read(terminal_, buffer.data(), buffer.size());
  if (count > 0) seen_.append(buffer.data(), static_cast<std::size_t>(count));
  return count > 0;
}

}  // namespace tests
