// The macOS bundle and the plugin of this system do the same, call by call.
#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <regex>
#include <set>
#include <sstream>

#include "tests/support/process.h"

namespace tests {
namespace {

using Lines = std::vector<std::string>;

constexpr int kCalls = 2000;

// What differs from run to run and isn't the plugin's.
const struct {
  std::regex pattern;
  const char* replacement;
} kForeign[] = {
    // what the log puts before a line: the time, the program and its process
    {std::regex(R"(^\d+-\d+-\d+ \d+:\d+:\d+\.\d+ .*\[\d+:\d+\] )"), "log: "},
    // the folder of the store
    {std::regex("private-store-[A-Za-z0-9]{6}"), "store"},
    // where Foundation's objects are
    {std::regex("0x[0-9a-f]+"), "0x"},
};

std::string comparable(std::string line) {
  for (const auto& foreign : kForeign)
    line = std::regex_replace(line, foreign.pattern, foreign.replacement);
  return line;
}

Lines transcriptOf(const std::string& plugin, const std::string& hostVersion) {
  std::istringstream output(outputOf(ZEL_TRANSCRIPT, {"call_transcript", plugin, "20130903",
                                                      std::to_string(kCalls), hostVersion}));
  Lines lines;
  for (std::string line; std::getline(output, line);) lines.push_back(comparable(line));
  return lines;
}

std::ptrdiff_t countOf(const Lines& lines, const std::string& beginning) {
  return std::count_if(lines.begin(), lines.end(),
                       [&](const std::string& line) { return line.starts_with(beginning); });
}

// The first lines that differ, with what led to them.
std::string differenceOf(const Lines& left, const Lines& right) {
  const auto [l, r] = std::mismatch(left.begin(), left.end(), right.begin(), right.end());
  if (l == left.end() && r == right.end()) return "";
  std::string before;
  for (auto line = std::prev(l, std::min<std::ptrdiff_t>(6, l - left.begin())); line != l; ++line)
    before += *line + "\n";
  return before + "- " + (l == left.end() ? "(the end)" : *l) + "\n+ " +
         (r == right.end() ? "(the end)" : *r) + "\n";
}

// The names of the methods that were called, assignments among them.
std::set<std::string> methodsIn(const Lines& lines) {
  std::set<std::string> methods;
  for (const std::string& line : lines) {
    const std::size_t end = line.find('(');
    const bool isCall = !line.starts_with(" ") && !line.starts_with("log: ");
    if (isCall && end != std::string::npos) methods.insert(line.substr(0, end));
  }
  return methods;
}

class DifferentialTest : public testing::TestWithParam<const char*> {};

INSTANTIATE_TEST_SUITE_P(Hosts, DifferentialTest, testing::Values("2011.04", "2013.0", "2014.0"));

TEST_P(DifferentialTest, ResultsHostCallsAndLogAreTheSame) {
  const char* const product = std::getenv("ZEL_PRODUCT");
  const Lines here = transcriptOf(
      product != nullptr ? std::string(product) + "/NSUserDefaultsZEL.so" : ZEL_PLUGIN, GetParam());
  const Lines bundle = transcriptOf(ZEL_BUNDLE, GetParam());
  EXPECT_EQ(differenceOf(here, bundle), "");
  EXPECT_EQ(countOf(here, "  = "), kCalls);
  EXPECT_EQ(countOf(here, "  asked"), kCalls);
  EXPECT_EQ(countOf(here, "FAILURE"), 0);
  EXPECT_EQ(here.back(), "left over: ");
  EXPECT_GT(countOf(here, "  raised"), 50);
  EXPECT_GT(countOf(here, "log: A NS"), 50);
  // 43 and 6 methods, of which "Constructor" and "objectIsForcedForKey" are two each, and the
  // assignments to 10 of them.
  EXPECT_EQ(methodsIn(here).size(), 57U);
}

}  // namespace
}  // namespace tests
