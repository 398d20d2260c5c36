// GoogleTest's main function where tests are kept apart: they run in processes that are forked for
// them, so none meets what another one has left behind, and a crash costs few.
#pragma once

namespace tests {

/// Runs body in a process of its own. @return its exit status.
using Runner = int (*)(int argc, char** argv, int (*body)(int argc, char** argv));

/// What shares a process; of a suite, at most fifty tests do.
enum class Share { nothing, suite };

/// Runs the chosen tests one after the other, by runner, in a process for each or for each suite. A
/// line tells of every test; what a process has written is shown when a test in it failed. A single
/// test is left to its process's own streams, for a debugger or for a test that starts another one
/// in this way.
///
/// GoogleTest's options for choosing tests are understood, and its variables for sharing them among
/// several programs, GTEST_TOTAL_SHARDS and GTEST_SHARD_INDEX. Where the environment names a file
/// in ZEL_TEST_RESULTS, it gets a line for each test: "passed", "failed" or "skipped", and its
/// name.
/// @return 0 when tests ran and none failed; give it back from main.
int runApart(int argc, char** argv, Share share, Runner runner);

}  // namespace tests
