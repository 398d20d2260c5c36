// What programs read, and Ctrl-C while they wait for it.
#include "runner/command/input.h"

#include <array>
#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include "runner/command/interrupts.h"
#include "runner/command/session.h"
#include "tests/host/sample_plugin.h"

namespace tests {
namespace {

// A machine whose program reads from a pipe that stays open.
class InputTest : public HostTest {
 protected:
  InputTest() {
    EXPECT_EQ(pipe(pipe_.data()), 0);
    input_.emplace(pipe_[0]);
    machine_.emplace(*host, out_, *input_);
  }
  ~InputTest() override {
    for (const int end : pipe_) close(end);
  }
  void type(const std::string& text) {
    ASSERT_EQ(write(pipe_[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }
  std::string line() {
    std::string line;
    std::getline(*input_, line);
    return line;
  }
  runner::Machine& machine() { return *machine_; }
  runner::Input& input() { return *input_; }

 private:
  std::array<int, 2> pipe_{};
  std::ostringstream out_;
  std::optional<runner::Input> input_;
  std::optional<runner::Machine> machine_;
};

// Sends SIGINT to the process that started it, as soon as that waits in the kernel.
void interruptWhenAsleep() {
  const std::string file = "/proc/" + std::to_string(getppid()) + "/stat";
  for (std::string state; state != "S";) {
    std::ifstream stat(file);
    stat.ignore(1000, ')') >> state;
  }
  kill(getppid(), SIGINT);
  _exit(0);
}

TEST_F(InputTest, LinesAreReadAsTheyCome) {
  type("one\ntwo\nth");
  EXPECT_EQ(line(), "one");
  EXPECT_EQ(line(), "two");
  type("ree\n");
  EXPECT_EQ(line(), "three");
  EXPECT_TRUE(input());
}

TEST_F(InputTest, WhatIsNoFileHasNoLines) {
  runner::Input closed(-1);
  std::string line;
  EXPECT_FALSE(std::getline(closed, line));
}

TEST_F(InputTest, AnInterruptionBeforeTheWaitEndsIt) {
  const runner::Interrupts interrupts(machine());
  raise(SIGINT);
  EXPECT_EQ(line(), "");
  EXPECT_TRUE(input().eof());
  EXPECT_THROW(machine().pauseIfDue(), runner::Interrupted);
  input().clear();
  machine().resume();
  type("next\n");
  EXPECT_EQ(line(), "next");
}

TEST_F(InputTest, AnInterruptionInTheWaitEndsIt) {
  const runner::Interrupts interrupts(machine());
  const pid_t child = fork();
  if (child == 0) interruptWhenAsleep();
  EXPECT_EQ(line(), "");
  EXPECT_THROW(machine().pauseIfDue(), runner::Interrupted);
  EXPECT_EQ(waitpid(child, nullptr, 0), child);
}

TEST_F(InputTest, AfterwardsInterruptionsAreWhatTheyWere) {
  std::signal(SIGINT, SIG_IGN);
  for (int i = 0; i < 2; ++i) {
    const runner::Interrupts interrupts(machine());
    raise(SIGINT);
    EXPECT_TRUE(machine().isInterrupted());
    machine().resume();
  }
  raise(SIGINT);
  EXPECT_FALSE(machine().isInterrupted());
}

}  // namespace
}  // namespace tests
