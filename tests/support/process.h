// Running other programs from a test.
#pragma once

#include <string>
#include <vector>

namespace tests {

/// How a command of the shell's ended.
struct Ending {
  int status;          // the exit status; -1 when a signal ended it
  std::string output;  // both streams
};

/// Runs a command of the shell's to its end. A test failure when there is no shell.
Ending run(const std::string& command);

/// Runs a program to its end and gives back what it wrote to its standard output. A test failure
/// when it can't be started or doesn't end with 0.
/// @param program   its file, by path.
/// @param arguments the program's own name comes first.
std::string outputOf(const std::string& program, std::vector<std::string> arguments);

}  // namespace tests
