#include "host/store/private_store.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

// Foundation's: the process's arguments and environment are these from now on.
extern "C" void GSInitializeProcess(int argc, char** argv, char** environment);

namespace host {
namespace {

/// Names the store's folder to the processes that run in it.
constexpr const char* kFolderVariable = "ZEL_PRIVATE_STORE";
constexpr const char* kConfigVariable = "GNUSTEP_CONFIG_FILE";

[[noreturn]] void fail(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

std::filesystem::path defaultsFolder(const std::filesystem::path& store) {
  return store / "Defaults";
}

std::filesystem::path configFileOf(const std::filesystem::path& store) {
  return store / "GNUstep.conf";
}

std::string configurationOf(const std::filesystem::path& store) {
  // The user's own configuration file would be read on top: it is given a name that nobody has.
  return "GNUSTEP_USER_DEFAULTS_DIR=" + defaultsFolder(store).native() +
         "\nGNUSTEP_USER_CONFIG_FILE=." + store.filename().native() + ".none\n";
}

// Other processes may be reading it: it is whole whenever it is there. One that says the same
// already is left alone, so that a store can be one that nobody may write.
void writeConfiguration(const std::filesystem::path& store) {
  const std::filesystem::path file = configFileOf(store);
  std::ifstream in(file);
  const std::string known(std::istreambuf_iterator<char>(in), {});
  if (known == configurationOf(store)) return;
  const std::filesystem::path part = file.native() + "." + std::to_string(getpid());
  errno = 0;
  std::ofstream out(part);
  out << configurationOf(store);
  out.close();
  if (!out) fail(("can't write " + file.native()).c_str());
  std::filesystem::rename(part, file);
}

// Foundation took the environment when it was loaded, and reads its configuration at the first
// message.
void moveInside(const std::filesystem::path& store, int argc, char** argv) {
  setenv(kFolderVariable, store.c_str(), 1);
  setenv(kConfigVariable, configFileOf(store).c_str(), 1);
  GSInitializeProcess(argc, argv, environ);
}

// What leaves the body ends the process: the store is the other one's to remove.
[[noreturn]] void endWith(int (*body)(int, char**), int argc, char** argv) noexcept {
  std::exit(body(argc, argv));
}

// What would end this process before it has removed the store waits until it asks, for as long as
// this lives.
class HeldSignals {
 public:
  HeldSignals() {
    sigemptyset(&held_);
    for (const int signal : {SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGCHLD}) sigaddset(&held_, signal);
    sigprocmask(SIG_BLOCK, &held_, &before_);
    std::signal(SIGCHLD, SIG_DFL);  // who ignores it can't wait for a process
  }
  ~HeldSignals() { release(); }
  HeldSignals(const HeldSignals&) = delete;
  HeldSignals& operator=(const HeldSignals&) = delete;

  void release() const { sigprocmask(SIG_SETMASK, &before_, nullptr); }
  // The next one that comes.
  [[nodiscard]] siginfo_t wait() const {
    siginfo_t info{};
    while (sigwaitinfo(&held_, &info) < 0 && errno == EINTR) {
    }
    return info;
  }

 private:
  sigset_t held_{};
  sigset_t before_{};
};

// Waits for the child. What a process has sent to end this one is handed on, so that the store is
// removed after the child. What is typed on the terminal, the child has from there too; the end of
// the terminal is told to one process only.
int resultOf(pid_t child, const HeldSignals& signals) {
  int status = 0;
  pid_t ended = 0;
  while ((ended = waitpid(child, &status, WNOHANG)) == 0) {
    const siginfo_t info = signals.wait();
    const bool isForBoth = info.si_code > 0 && info.si_signo != SIGHUP;
    if (info.si_signo != SIGCHLD && !isForBoth) kill(child, info.si_signo);
  }
  if (ended < 0) fail("can't wait for the process in a private store");
  if (WIFEXITED(status)) return WEXITSTATUS(status);
  const int signal = WTERMSIG(status);
  const bool wanted = signal == SIGINT || signal == SIGTERM || signal == SIGHUP;
  if (!wanted)
    std::fprintf(stderr, "the process in the private store was ended by signal %d\n", signal);
  return 128 + signal;
}

}  // namespace

PrivateStore::PrivateStore() {
  std::string name = (std::filesystem::temp_directory_path() / "private-store-XXXXXX").native();
  if (mkdtemp(name.data()) == nullptr) fail("can't make a private store");
  folder_ = name;
  std::filesystem::create_directory(defaultsFolder(folder_));
  writeConfiguration(folder_);
}

PrivateStore::~PrivateStore() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

std::filesystem::path PrivateStore::configFile() const { return configFileOf(folder_); }

int runInPrivateStore(int argc, char** argv, int (*body)(int, char**)) {
  if (std::getenv(kFolderVariable) != nullptr) return body(argc, argv);
  const HeldSignals signals;
  const PrivateStore store;
  const pid_t child = fork();
  if (child < 0) fail("can't start a process");
  if (child == 0) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);  // not longer than the store
    signals.release();
    moveInside(store.folder(), argc, argv);
    endWith(body, argc, argv);
  }
  return resultOf(child, signals);
}

int runInStore(const std::filesystem::path& folder, int argc, char** argv,
               int (*body)(int, char**)) {
  std::filesystem::create_directories(defaultsFolder(folder));
  const std::filesystem::path store = std::filesystem::canonical(folder);
  const char* const current = std::getenv(kFolderVariable);
  if (current != nullptr && current == store) return body(argc, argv);
  writeConfiguration(store);
  moveInside(store, argc, argv);
  return body(argc, argv);
}

std::filesystem::path storedDomain(std::string_view name) {
  const char* const store = std::getenv(kFolderVariable);
  if (store == nullptr) throw std::logic_error("this process doesn't run in a private store");
  return defaultsFolder(store) / (std::string(name) + ".plist");
}

}  // namespace host
