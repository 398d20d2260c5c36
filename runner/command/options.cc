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
    "The exit status is 1 when something is wrong with a program or it ended with an exception, "
    "and\n"
    "2 for a wrong command line.\n";

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
      case 'v': {
        double version = 0;
        const auto [end, error] =
            std::from_chars(value.data(), value.data() + value.size(), version);
        if (error != std::errc() || end != value.data() + value.size()) {
          *problem = "--host-version takes a number such as 2013.03, not \"" + value + "\".";
          return std::nullopt;
        }
        options.hostVersion = version;
        break;
      }
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
