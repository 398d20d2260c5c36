#include "tests/support/process.h"

#include <array>
#include <gtest/gtest.h>
#include <spawn.h>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

namespace tests {
namespace {

struct Waited {
  int error;   // of starting it; 0 when it was started
  int status;  // as waitpid gives it
  std::string output;
};

// @param streams those that are read.
Waited runToEnd(const std::string& program, std::vector<std::string> arguments,
                std::initializer_list<int> streams) {
  std::vector<char*> argv;
  argv.reserve(arguments.size() + 1);
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  std::array<int, 2> ends = {};
  EXPECT_EQ(pipe(ends.data()), 0);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  for (const int stream : streams) posix_spawn_file_actions_adddup2(&actions, ends[1], stream);
  for (const int end : ends) posix_spawn_file_actions_addclose(&actions, end);
  pid_t child = 0;
  Waited waited{};
  waited.error = posix_spawn(&child, program.c_str(), &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  std::array<char, 4096> block = {};
  for (ssize_t got = 0; (got = read(ends[0], block.data(), block.size())) > 0;)
    waited.output.append(block.data(), static_cast<std::size_t>(got));
  close(ends[0]);
  if (waited.error == 0) {
    EXPECT_EQ(waitpid(child, &waited.status, 0), child);
  }
  return waited;
}

}  // namespace

Ending run(const std::string& command) {
  const Waited waited = runToEnd("/bin/sh", {"sh", "-c", command}, {STDOUT_FILENO, STDERR_FILENO});
  EXPECT_EQ(waited.error, 0) << command;
  const bool exited = waited.error == 0 && WIFEXITED(waited.status);
  return {exited ? WEXITSTATUS(waited.status) : -1, waited.output};
}

std::string outputOf(const std::string& program, std::vector<std::string> arguments) {
  const Waited waited = runToEnd(program, std::move(arguments), {STDOUT_FILENO});
  EXPECT_EQ(waited.error, 0) << program;
  EXPECT_EQ(waited.status, 0) << program << " said: " << waited.output;
  return waited.output;
}

}  // namespace tests
