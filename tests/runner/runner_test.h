// Programs in a host with the sample plugin.
#pragma once

#include <gtest/gtest.h>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "runner/command/session.h"
#include "tests/host/sample_plugin.h"

namespace tests {

/// What a program prints, followed by what was wrong with it or the exception that it ended with.
/// Every test ends with nothing left over in the host.
class RunnerTest : public HostTest {
 protected:
  RunnerTest();
  void TearDown() override;

  /// Runs a program in a session of its own. @param input what it can read.
  std::string run(const std::string& program, const std::string& input = "");
  /// The first thing that is wrong with a program, without the file, the line itself and the mark;
  /// "" when nothing is.
  std::string firstProblem(const std::string& program);
  /// The same, all of it, as people see it.
  std::string problems(const std::string& program);
  /// What an expression comes to, as text.
  std::string valueOf(const std::string& expression);
  /// What is printed when these texts are entered one after the other on a terminal.
  std::string enter(const std::vector<std::string>& texts);

 private:
  std::string textOf(const runner::Ending& ending);
};

}  // namespace tests
