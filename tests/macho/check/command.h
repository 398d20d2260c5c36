// Running shell commands that may fail.
#pragma once

#include <filesystem>
#include <string>

namespace tests {

struct Outcome {
  int status;          // the exit status
  std::string output;  // both streams
};

/// Runs a command of the shell's to its end.
Outcome run(const std::string& command);

/// A new, empty folder for temporary files; the caller removes it.
std::filesystem::path newFolder();

}  // namespace tests
