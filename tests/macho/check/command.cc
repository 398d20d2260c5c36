#include "tests/macho/check/command.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <sys/wait.h>

namespace tests {

Outcome run(const std::string& command) {
  std::FILE* const pipe = popen(("exec 2>&1; " + command).c_str(), "r");
  EXPECT_NE(pipe, nullptr) << command;
  if (pipe == nullptr) return {-1, ""};
  Outcome outcome{};
  std::array<char, 4096> block{};
  while (const std::size_t got = std::fread(block.data(), 1, block.size(), pipe)) {
    outcome.output.append(block.data(), got);
  }
  const int status = pclose(pipe);
  outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return outcome;
}

std::filesystem::path newFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "zel-macos-XXXXXX").string();
  EXPECT_NE(mkdtemp(name.data()), nullptr) << name;
  return name;
}

}  // namespace tests
