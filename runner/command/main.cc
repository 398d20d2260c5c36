// hostrun: runs programs in the host's language against plugins.
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <vector>

#include "host/loading/plugin_library.h"
#include "host/store/private_store.h"
#include "runner/command/input.h"
#include "runner/command/interactive.h"
#include "runner/command/interrupts.h"
#include "runner/command/log.h"
#include "runner/command/options.h"
#include "runner/command/output.h"
#include "runner/command/program_file.h"
#include "runner/command/session.h"
#include "runner/command/starting.h"
#include "runner/command/surroundings.h"

namespace {

using runner::Options;
using runner::Output;

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;
constexpr int kInterrupted = 128 + SIGINT;

struct Streams {
  Streams() {
    messages << std::unitbuf;
    std::clog << std::unitbuf;
    std::clog.rdbuf(messages.rdbuf());
  }

  runner::Input in{STDIN_FILENO};
  Output out{STDOUT_FILENO, Output::Loss::isThrown};
  Output messages{STDERR_FILENO, Output::Loss::isIgnored};
};
// For as long as anybody may log.
Streams& streams() {
  static Streams& both = *new Streams;
  return both;
}

// Says what keeps the command from its work.
int fail(const std::string& problem, int status) {
  streams().messages << "hostrun: " << problem << std::endl;
  return status;
}
int refuse(const std::string& problem) {
  return fail(problem + "\nSee: hostrun --help", kWrongUsage);
}

// Runs or checks one program; interactive without one.
int runProgram(runner::Session& session, const Options& options, const std::string* file) {
  auto& [in, out, messages] = streams();
  if (file == nullptr) {
    interact(session, out, messages);
    return 0;
  }
  const runner::Source source = runner::readProgram(*file);
  runner::Ending ending;
  if (options.check) {
    ending.diagnostics = session.check(source);
  } else {
    const runner::Interrupts interrupts(session.machine());
    ending = session.run(source);
  }
  out.flush();
  messages << format(ending, source.name()) << std::flush;
  if (ending.interrupted) return kInterrupted;
  return ending.well() ? 0 : kFailed;
}

using Libraries = std::vector<std::unique_ptr<host::PluginLibrary>>;

Libraries load(const std::vector<std::string>& plugins) {
  Libraries libraries;
  for (const std::string& plugin : plugins) {
    try {
      libraries.push_back(std::make_unique<host::PluginLibrary>(plugin));
    } catch (const std::exception& problem) {
      throw std::runtime_error(problem.what() + std::string("\n") + runner::kPluginHelp);
    }
  }
  return libraries;
}

// A host with the plugins, for one program.
int runHost(const Options& options, const std::string* file) {
  auto& [in, out, messages] = streams();
  const Libraries libraries = load(options.plugins);
  host::HostOptions hostOptions;
  if (!libraries.empty()) hostOptions.border = libraries.front()->border();
  hostOptions.keepSequence = false;
  if (options.hostVersion) hostOptions.version = options.hostVersion;
  host::Host host(hostOptions);
  bool misused = false;
  host.onFailure([&misused](const std::string& what) { misused = fail(what, kFailed) != 0; });
  int status = 0;
  {
    runner::Surroundings surroundings(host);
    for (std::size_t i = 0; i < libraries.size(); ++i)
      runner::startPlugin(host, options.plugins[i], libraries[i]->main());
    surroundings.complete();
    {
      runner::Session session(host, out, in);
      session.machine().onPause([&surroundings] { surroundings.drain(); });
      status = runProgram(session, options, file);
    }
    surroundings.drain();
    const std::string left = options.leaks ? host.unbalanced() : "";
    if (!left.empty()) {
      messages << "Left over:\n" << left << std::flush;
      status = kFailed;
    }
  }
  return misused ? kFailed : status;
}

// What leaves the body becomes a message and a status.
template <class Body>
int guarded(const Body& body) {
  try {
    const int status = body();
    streams().out.flush();
    return status;
  } catch (const runner::OutputLost& lost) {
    // Who closes a pipe has read enough.
    return lost.code().value() == EPIPE ? kFailed : fail(lost.what(), kFailed);
  } catch (const std::exception& problem) {
    return fail(problem.what(), kWrongUsage);
  }
}

// An interrupt is for the program. It has it from the terminal too, but not from another process.
volatile pid_t apart = 0;
void handOn(int signal, siginfo_t* info, void* /*context*/) {
  if (info->si_code <= 0) kill(apart, signal);
}

int statusOf(pid_t child) {
  apart = child;
  struct sigaction action = {};
  action.sa_sigaction = handOn;
  action.sa_flags = SA_SIGINFO | SA_RESTART;
  sigaction(SIGINT, &action, nullptr);
  int status = 0;
  waitpid(child, &status, 0);
  std::signal(SIGINT, SIG_DFL);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// In a process of its own, as programs of a user's are.
int runApart(const Options& options, const std::string& file) {
  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child < 0) throw std::system_error(errno, std::generic_category(), "can't start a process");
  if (child == 0) {
    // Not longer than the store is there.
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != parent) _exit(kFailed);
    const int status = guarded([&] { return runHost(options, &file); });
    // Not abruptly: what a program has set is kept at its end.
    std::exit(status);
  }
  return statusOf(child);
}

int runAll(const Options& options) {
  runner::logTo(streams().messages);
  if (options.programs.empty()) return runHost(options, nullptr);
  if (options.programs.size() == 1) return runHost(options, options.programs.data());
  int status = 0;
  for (const std::string& program : options.programs) {
    status = std::max(status, runApart(options, program));
    if (status == kInterrupted) break;
  }
  return status;
}

int run(int argc, char** argv) {
  std::string problem;
  const std::optional<Options> options = runner::readOptions(argc, argv, &problem);
  if (!options) return refuse(problem);
  if (options->help) {
    return guarded([] {
      streams().out << runner::kUsage;
      return 0;
    });
  }
  if (options->macos && sizeof(void*) != 4) {
    return refuse(
        "--macos needs a 32-bit process, and this hostrun is a 64-bit one. tools/run --macos has "
        "the other.");
  }
  for (const std::string& plugin : options->plugins) {
    if (host::isBundle(plugin) == options->macos) continue;
    return refuse(plugin +
                  (options->macos ? " is no macOS bundle." : " is a macOS bundle: add --macos."));
  }
  if (options->programs.empty() && isatty(STDIN_FILENO) == 0)
    return refuse("the program is missing. Name one, or \"-\" for the standard input.");
  return guarded([&] { return runAll(*options); });
}

}  // namespace

int main(int argc, char** argv) {
  runner::prepareStandardStreams();
  std::string problem;  // which run() tells
  const std::optional<Options> options = runner::readOptions(argc, argv, &problem);
  const bool isKept = options && !options->store.empty();
  try {
    return isKept ? host::runInStore(options->store, argc, argv, run)
                  : host::runInPrivateStore(argc, argv, run);
  } catch (const std::system_error& failure) {
    if (isKept) return refuse("--store " + options->store + ": " + failure.code().message());
    const char* const folder = std::getenv("TMPDIR");
    return fail("can't make a store for what is set, in " +
                    std::string(folder == nullptr ? "/tmp" : folder) + ": " +
                    failure.code().message() +
                    ". Set TMPDIR to a folder that you may write, or give --store DIR.",
                kFailed);
  }
}
