#include "tests/native/store_process.h"

#include <array>
#include <chrono>
#include <csignal>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace native_test {
namespace {

constexpr double kLongest = 60;  // seconds

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

std::string contents(int file) {
  std::string text;
  std::array<char, 4096> block = {};
  ssize_t got = 0;
  while ((got = pread(file, block.data(), block.size(), static_cast<off_t>(text.size()))) > 0)
    text.append(block.data(), static_cast<std::size_t>(got));
  return text;
}

}  // namespace

StoreProcess::StoreProcess(const std::string& program, std::vector<std::string> arguments,
                           const std::string& preloaded)
    : output_(memfd_create("output", MFD_CLOEXEC)), log_(memfd_create("log", MFD_CLOEXEC)) {
  std::vector<std::string> environment;
  for (char** variable = environ; *variable != nullptr; ++variable)
    environment.emplace_back(*variable);
  if (!preloaded.empty()) environment.push_back("LD_PRELOAD=" + preloaded);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, output_, STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, log_, STDERR_FILENO);
  const int error = posix_spawn(&process_, program.c_str(), &actions, nullptr,
                                pointersTo(arguments).data(), pointersTo(environment).data());
  posix_spawn_file_actions_destroy(&actions);
  EXPECT_EQ(error, 0) << program;
}

StoreProcess::~StoreProcess() {
  if (status_ < 0) {
    kill();
    waitpid(process_, nullptr, 0);
  }
  close(output_);
  close(log_);
}

void StoreProcess::kill() { ::kill(process_, SIGKILL); }

bool StoreProcess::hasEnded(double seconds) {
  using Clock = std::chrono::steady_clock;
  const auto end = Clock::now() + std::chrono::duration<double>(seconds);
  while (status_ < 0) {
    int status = 0;
    if (waitpid(process_, &status, WNOHANG) == process_) {
      status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    } else if (Clock::now() > end) {
      return false;
    } else {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }
  return true;
}

bool StoreProcess::hasWritten() {
  for (double waited = 0; output().empty() && waited < kLongest; waited += 0.001)
    if (hasEnded(0.001)) break;
  return !output().empty();
}

int StoreProcess::result() {
  EXPECT_TRUE(hasEnded(kLongest)) << output() << log();
  return status_;
}

std::string StoreProcess::output() const { return contents(output_); }

std::string StoreProcess::log() const { return contents(log_); }

std::string storeProbe(const std::string& domain, std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), domain);
  StoreProcess process(ZEL_STORE_PROBE, std::move(arguments));
  const int result = process.result();
  std::string output = process.output();
  if (!output.empty() && output.back() == '\n') output.pop_back();
  return result == 0 ? output : "result " + std::to_string(result);
}

}  // namespace native_test
