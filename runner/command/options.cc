#include "runner/command/options.h"

#include <charconv>
#include <getopt.h>

namespace runner {

const char* const kUsage =
    "Usage: hostrun [--plugin FILE]... [--store DIR] [--host-version V] [--macos] [--check] "
    "[--leaks]\n"
    "               [PROGRAM|-]...\n"
    "\n"
    "Runs programs in the host's language, each in a process of its own, against the plugins. "
    "What\n"
    "they store in the user defaults is gone afterwards, unless --store says where to keep it. "
    "Without\n"
    "a program and on a terminal, what is typed runs line by line.\n"
    "\n"
    "  --plugin FILE      a plugin to load; may be given more than once\n"
    "  --store DIR        a folder that keeps the user defaults; made when it isn't there\n"
    "  --host-version V   the host's version as plugins see it, such as 2013.03\n"
    "  --macos            the plugins are macOS bundles (in a 32-bit hostrun only)\n"
    "  --check            only say what is wrong with the programs\n"
    "  --leaks            say which host objects were left over at the end\n"
    "  -h, --help         this text\n"
    "\n"
    "The exit status is 1 when something is wrong with a program, it ended with an exception or "
    "its "
    "output\n"
    "was lost, 2 for a wrong command line, and 130 for a program that was ended with Ctrl-C.\n";

namespace {

// Hosts count their versions by years.
std::optional<double> versionIn(const std::string& text) {
  constexpr double kFirst = 2000;
  constexpr double kLast = 3000;
  double version = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, version, std::chars_format::fixed);
  const bool isVersion =
      error == std::errc() && rest == end && version >= kFirst && version < kLast;
  return isVersion ? std::optional(version) : std::nullopt;
}

}  // namespace

std::optional<Options> readOptions(int argc, char** argv, std::string* problem) {
  static const option kOptions[] = {
      {"plugin", required_argument, nullptr, 'p'},
      {"store", required_argument, nullptr, 's'},
      {"host-version", required_argument, nullptr, 'v'},
      {"macos", no_argument, nullptr, 'm'},
      {"check", no_argument, nullptr, 'c'},
      {"leaks", no_argument, nullptr, 'l'},
      {"help", no_argument, nullptr, 'h'},
      {nullptr, 0, nullptr, 0},
  };
  Options options;
  opterr = 0;
  optind = 1;
  for (int found = 0; (found = getopt_long(argc, argv, ":h", kOptions, nullptr)) != -1;) {
    const std::string value = optarg == nullptr ? "" : optarg;
    switch (found) {
      case 'p':
        options.plugins.push_back(value);
        break;
      case 's':
        if (value.empty()) {
          *problem = "--store takes a folder, not an empty name.";
          return std::nullopt;
        }
        options.store = value;
        break;
      case 'v':
        options.hostVersion = versionIn(value);
        if (!options.hostVersion) {
          *problem = "--host-version takes a number such as 2013.03, not \"" + value + "\".";
          return std::nullopt;
        }
        break;
      case 'm':
        options.macos = true;
        break;
      case 'c':
        options.check = true;
        break;
      case 'l':
        options.leaks = true;
        break;
      case 'h':
        options.help = true;
        break;
      case ':':
        *problem = std::string(argv[optind - 1]) + " lacks its value.";
        return std::nullopt;
      default:
        *problem = "I don't know \"" + std::string(argv[optind - 1]) + "\".";
        return std::nullopt;
    }
  }
  options.programs.assign(argv + optind, argv + argc);
  return options;
}

}  // namespace runner
