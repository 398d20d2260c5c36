// The command line of hostrun.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace runner {

struct Options {
  std::vector<std::string> plugins;
  std::optional<double> hostVersion;
  std::string store;  // "": one that is gone afterwards
  bool macos = false;
  bool check = false;
  bool leaks = false;
  bool help = false;
  std::vector<std::string> programs;  // "-" is the standard input
};

/// Reads the command line. @param problem receives what is wrong with it, in one sentence.
/// nullopt when it is wrong.
std::optional<Options> readOptions(int argc, char** argv, std::string* problem);

extern const char* const kUsage;

}  // namespace runner
