// Counts of instructions, taken by valgrind: the same work gives the same number every time,
// whatever else the machine does.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace bench {

/// By the name of what was counted, one number for each time.
using Counts = std::map<std::string, std::vector<double>>;

/// Starts this program anew under valgrind, with these arguments, and gives what its calls of
/// counted() have counted. Empty when valgrind can't run it, which is then said on stderr.
Counts countUnderValgrind(const std::vector<std::string>& arguments);

/// Whether valgrind can be started at all.
bool hasValgrind();

/// Runs the body and counts its instructions under that name.
template <class Body>
void counted(const std::string& name, Body body);

// For the above: instructions are counted from one to the other.
void startCounting();
void stopCounting(const std::string& name);

template <class Body>
void counted(const std::string& name, Body body) {
  startCounting();
  body();
  stopCounting(name);
}

}  // namespace bench
