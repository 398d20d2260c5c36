#include "tests/support/apart.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fnmatch.h>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace tests {
namespace {

using Names = std::vector<std::string>;

constexpr unsigned kSecondsForATest = 300;
constexpr std::size_t kMostOfASuite = 50;  // tests that share a process

// --- which tests

// A pattern of GoogleTest's has * and ?; several stand between colons.
bool matchesAny(const std::string& patterns, const std::string& name) {
  std::istringstream rest(patterns);
  for (std::string pattern; std::getline(rest, pattern, ':');)
    if (fnmatch(pattern.c_str(), name.c_str(), 0) == 0) return true;
  return false;
}

bool isChosen(const std::string& name) {
  const std::string filter = GTEST_FLAG_GET(filter);
  const std::size_t dash = filter.find('-');
  const std::string wanted = filter.substr(0, dash);
  if (!GTEST_FLAG_GET(also_run_disabled_tests) &&
      matchesAny("DISABLED_*:*/DISABLED_*:*.DISABLED_*", name))
    return false;
  return (wanted.empty() || matchesAny(wanted, name)) &&
         (dash == std::string::npos || !matchesAny(filter.substr(dash + 1), name));
}

std::string nameOf(const testing::TestInfo& test) {
  return std::string(test.test_suite_name()) + '.' + test.name();
}

// The names of those that share a process. A suite of many tests has several.
std::vector<Names> chosenGroups(Share share) {
  const std::size_t most = share == Share::suite ? kMostOfASuite : 1;
  std::vector<Names> groups;
  const testing::UnitTest& all = *testing::UnitTest::GetInstance();
  for (int i = 0; i < all.total_test_suite_count(); ++i) {
    const testing::TestSuite& suite = *all.GetTestSuite(i);
    std::size_t room = 0;  // in the last group, for tests of this suite
    for (int j = 0; j < suite.total_test_count(); ++j) {
      const std::string name = nameOf(*suite.GetTestInfo(j));
      if (!isChosen(name)) continue;
      if (room == 0) {
        groups.emplace_back();
        room = most;
      }
      groups.back().push_back(name);
      --room;
    }
  }
  return groups;
}

// Every so many-th of the groups; which of them, and how many programs share them, GoogleTest's own
// variables say.
std::vector<Names> ofThisShard(const std::vector<Names>& groups, const std::string& shards,
                               const std::string& index) {
  if (shards.empty()) return groups;
  const std::size_t step = std::stoul(shards);
  std::vector<Names> own;
  for (std::size_t i = std::stoul(index); i < groups.size(); i += step) own.push_back(groups[i]);
  return own;
}

// --- in the process of a group

// What the process writes itself, and what it says of its tests; null where both go to its streams.
std::FILE* written;
std::FILE* said;

class Reporter : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo& /*test*/) override { alarm(kSecondsForATest); }
  void OnTestEnd(const testing::TestInfo& test) override {
    const testing::TestResult& result = *test.result();
    const char* const kind = result.Failed() ? "failed" : result.Skipped() ? "skipped" : "passed";
    std::fprintf(said, "%s %lld %s\n", kind, static_cast<long long>(result.elapsed_time()),
                 nameOf(test).c_str());
    std::fflush(said);
  }
};

int runHere(int /*argc*/, char** /*argv*/) {
  if (said != nullptr) {
    for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) dup2(fileno(written), stream);
    testing::UnitTest::GetInstance()->listeners().Append(new Reporter);
  }
  return RUN_ALL_TESTS();
}

// --- around it

void empty(std::FILE* file) {
  std::rewind(file);
  if (ftruncate(fileno(file), 0) != 0) std::abort();
}

std::string contentsOf(std::FILE* file) {
  std::rewind(file);
  std::string text;
  for (int c = 0; (c = std::fgetc(file)) != EOF;) text += static_cast<char>(c);
  return text;
}

struct Outcome {
  std::string kind = "failed";
  long long milliseconds = 0;
};

// What became of each test; one that nothing is said of has failed.
std::map<std::string, Outcome> outcomes(const Names& names, int status) {
  std::map<std::string, Outcome> found;
  for (const std::string& name : names) found[name] = {};
  std::istringstream lines(contentsOf(said));
  Outcome outcome;
  for (std::string name;
       lines >> outcome.kind >> outcome.milliseconds && std::getline(lines >> std::ws, name);)
    found[name] = outcome;
  const bool failed =
      std::ranges::any_of(found, [](const auto& each) { return each.second.kind == "failed"; });
  if (status != EXIT_SUCCESS && !failed) found[names.front() + " and the end of its process"] = {};
  return found;
}

// Takes a setting out of the environment, so that programs that a test starts don't follow it.
std::string taken(const char* variable) {
  const char* const value = std::getenv(variable);
  std::string found = value != nullptr ? value : "";
  unsetenv(variable);
  return found;
}

std::string filterOf(const Names& names) {
  std::string filter;
  for (const std::string& name : names) filter += name + ':';
  return filter;
}

}  // namespace

int runApart(int argc, char** argv, Share share, Runner runner) {
  testing::InitGoogleTest(&argc, argv);
  const std::string resultsFile = taken("ZEL_TEST_RESULTS");
  const std::string shards = taken("GTEST_TOTAL_SHARDS");
  const std::string shard = taken("GTEST_SHARD_INDEX");
  const std::vector<Names> groups = ofThisShard(chosenGroups(share), shards, shard);
  const bool single = groups.size() == 1 && groups.front().size() == 1;
  if (GTEST_FLAG_GET(list_tests) || (single && resultsFile.empty()))
    return runner(argc, argv, runHere);
  std::ofstream results(resultsFile);
  written = std::tmpfile();
  said = std::tmpfile();
  std::map<std::string, int> counts;
  for (const Names& names : groups) {
    GTEST_FLAG_SET(filter, filterOf(names));
    empty(written);
    empty(said);
    const int status = runner(argc, argv, runHere);
    const int failedBefore = counts["failed"];
    for (const auto& [name, outcome] : outcomes(names, status)) {
      ++counts[outcome.kind];
      results << outcome.kind << ' ' << name << std::endl;
      std::cout << outcome.kind << ' ' << name << " (" << outcome.milliseconds << " ms)"
                << std::endl;
    }
    if (counts["failed"] > failedBefore)
      std::cout << contentsOf(written) << "The process ended with " << status << '.' << std::endl;
  }
  std::cout << counts["passed"] << " passed, " << counts["failed"] << " failed, "
            << counts["skipped"] << " skipped" << std::endl;
  return counts["failed"] == 0 && counts["passed"] > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace tests
