#include "tests/support/process.h"

#include <array>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tests {

std::string outputOf(const std::string& program, std::vector<std::string> arguments) {
  std::vector<char*> argv;
  argv.reserve(arguments.size() + 1);
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  std::array<int, 2> ends = {};
  EXPECT_EQ(pipe(ends.data()), 0);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  posix_spawn_file_actions_addclose(&actions, ends[0]);
  pid_t child = 0;
  const int error = posix_spawn(&child, program.c_str(), &actions, nullptr, argv.data(), environ);
  EXPECT_EQ(error, 0) << program;
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  std::string output;
  std::array<char, 4096> block = {};
  for (ssize_t got = 0; (got = read(ends[0], block.data(), block.size())) > 0;) {
    output.append(block.data(), static_cast<std::size_t>(got));
  }
  close(ends[0]);
  if (error != 0) return output;
  int status = -1;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0) << program << " said: " << output;
  return output;
}

}  // namespace tests
