// Running other programs from a test.
#pragma once

#include <string>
#include <vector>

namespace tests {

/// Runs a program to its end and gives back what it wrote to its standard output. A test failure
/// when it can't be started or doesn't end with 0.
/// @param program   its file, by path.
/// @param arguments the program's own name comes first.
std::string outputOf(const std::string& program, std::vector<std::string> arguments);

}  // namespace tests
