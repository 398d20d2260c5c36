// hostrun: runs programs in the host's language against plugins.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

#include "host/loading/plugin_library.h"
#include "host/store/private_store.h"
#include "runner/command/interactive.h"
#include "runner/command/options.h"
#include "runner/command/session.h"
#include "runner/command/surroundings.h"

namespace {

using runner::Options;

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

int refuse(const std::string& problem) {
  std::cerr << "hostrun: " << problem << "\nSee: hostrun --help\n";
  return kWrongUsage;
}

runner::Source read(const std::string& file) {
  if (file == "-")
    return {"standard input", std::string(std::istreambuf_iterator<char>(std::cin), {})};
  errno = 0;
  std::ifstream in(file, std::ios::binary);
  std::string text(std::istreambuf_iterator<char>(in), {});
  if (!in) throw std::system_error(errno, std::generic_category(), "can't read " + file);
  return {file, std::move(text)};
}

// Runs or checks one program; interactive without one.
int runProgram(runner::Session& session, const Options& options, const std::string* file) {
  if (file == nullptr) {
    runner::interact(session);
    return 0;
  }
  const runner::Source source = read(*file);
  runner::Ending ending;
  if (options.check) {
    ending.diagnostics = session.check(source);
  } else {
    ending = session.run(source);
  }
  std::cout.flush();
  std::cerr << format(ending.diagnostics);
  if (ending.unhandled) std::cerr << format(*ending.unhandled, source.name());
  return ending.diagnostics.empty() && !ending.unhandled ? 0 : kFailed;
}

// A host with the plugins, for one program.
int runHost(const Options& options, const std::string* file) {
  std::vector<std::unique_ptr<host::PluginLibrary>> libraries;
  for (const std::string& plugin : options.plugins)
    libraries.push_back(std::make_unique<host::PluginLibrary>(plugin));
  host::HostOptions hostOptions;
  if (!libraries.empty()) hostOptions.border = libraries.front()->border();
  hostOptions.keepSequence = false;
  if (options.hostVersion) hostOptions.version = options.hostVersion;
  host::Host host(hostOptions);
  bool misused = false;
  host.onFailure([&misused](const std::string& what) {
    misused = true;
    std::cerr << "hostrun: " << what << '\n';
  });
  int status = 0;
  {
    runner::Surroundings surroundings(host);
    for (const auto& library : libraries) host.load(library->main());
    surroundings.complete();
    {
      runner::Session session(host, std::cout, std::cin);
      session.machine().onPause([&surroundings] { surroundings.drain(); });
      status = runProgram(session, options, file);
    }
    surroundings.drain();
    const std::string left = options.leaks ? host.unbalanced() : "";
    if (!left.empty()) {
      std::cerr << "Left over:\n" << left;
      status = kFailed;
    }
  }
  return misused ? kFailed : status;
}

int runGuarded(const Options& options, const std::string* file) {
  try {
    return runHost(options, file);
  } catch (const std::exception& problem) {
    std::cerr << "hostrun: " << problem.what() << '\n';
    return kWrongUsage;
  }
}

// In a process of its own, as programs of a user's are.
int runApart(const Options& options, const std::string& file) {
  std::cout.flush();
  const pid_t child = fork();
  if (child < 0) throw std::system_error(errno, std::generic_category(), "can't start a process");
  if (child == 0) {
    const int status = runGuarded(options, &file);
    // Not abruptly: what a program has set is kept at its end.
    std::exit(status);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : kFailed;
}

int run(int argc, char** argv) {
  std::string problem;
  const std::optional<Options> options = runner::readOptions(argc, argv, &problem);
  if (!options) return refuse(problem);
  if (options->help) {
    std::cout << runner::kUsage;
    return 0;
  }
  if (options->macos && sizeof(void*) != 4)
    return refuse("--macos needs a 32-bit process, and this hostrun is a 64-bit one.");
  for (const std::string& plugin : options->plugins) {
    if (host::isBundle(plugin) == options->macos) continue;
    return refuse(plugin +
                  (options->macos ? " is no macOS bundle." : " is a macOS bundle: add --macos."));
  }
  if (options->programs.empty()) {
    if (isatty(STDIN_FILENO) == 0)
      return refuse("the program is missing. Name one, or \"-\" for the standard input.");
    return runGuarded(*options, nullptr);
  }
  if (options->programs.size() == 1) return runGuarded(*options, options->programs.data());
  int status = 0;
  for (const std::string& program : options->programs)
    status = std::max(status, runApart(*options, program));
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  std::string problem;  // which run() tells
  const std::optional<Options> options = runner::readOptions(argc, argv, &problem);
  if (!options || options->store.empty()) return host::runInPrivateStore(argc, argv, run);
  try {
    return host::runInStore(options->store, argc, argv, run);
  } catch (const std::system_error& failure) {
    return refuse("--store " + options->store + ": " + failure.code().message());
  }
}
