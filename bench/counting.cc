#include "bench/counting.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <spawn.h>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>
#include <valgrind/callgrind.h>

namespace bench {
namespace {

namespace fs = std::filesystem;

// A folder for valgrind's output, removed at the end.
class Folder {
 public:
  Folder() {
    std::string name = (fs::temp_directory_path() / "counts.XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
      std::perror("no temporary folder");
      std::exit(1);
    }
    path_ = name;
  }
  ~Folder() { fs::remove_all(path_); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  [[nodiscard]] const fs::path& path() const { return path_; }

 private:
  fs::path path_;
};

// What follows the word at the beginning of the line, or nothing.
std::string_view behind(std::string_view line, std::string_view word) {
  return line.starts_with(word) ? line.substr(word.size()) : std::string_view();
}

// A file of profiles, one for each stop: its trigger carries the name, its summary the number.
Counts read(const fs::path& file) {
  Counts counts;
  std::ifstream in(file);
  std::string name;
  for (std::string line; std::getline(in, line);) {
    if (const auto trigger = behind(line, "desc: Trigger: Client Request: "); !trigger.empty()) {
      name = trigger;
    } else if (const auto total = behind(line, "summary: "); !total.empty() && !name.empty()) {
      counts[name].push_back(std::strtod(std::string(total).c_str(), nullptr));
      name.clear();
    }
  }
  return counts;
}

// Runs a command, with its output in that file. Whether it has ended well.
bool run(const std::vector<std::string>& command, const fs::path& output) {
  std::vector<char*> words;
  words.reserve(command.size() + 1);
  for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);
  posix_spawn_file_actions_t streams;
  posix_spawn_file_actions_init(&streams);
  posix_spawn_file_actions_addopen(&streams, STDOUT_FILENO, output.c_str(), O_WRONLY | O_CREAT,
                                   0600);
  posix_spawn_file_actions_adddup2(&streams, STDOUT_FILENO, STDERR_FILENO);
  pid_t child = 0;
  const int error = posix_spawnp(&child, words[0], &streams, nullptr, words.data(), environ);
  posix_spawn_file_actions_destroy(&streams);
  int status = 0;
  if (error != 0 || waitpid(child, &status, 0) != child) {
    std::ofstream(output) << words[0] << ": " << std::strerror(error) << '\n';
    return false;
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace

bool hasValgrind() {
  const Folder folder;
  return run({"valgrind", "--version"}, folder.path() / "output");
}

Counts countUnderValgrind(const std::vector<std::string>& arguments) {
  const Folder folder;
  const fs::path profile = folder.path() / "profile";
  const fs::path output = folder.path() / "output";
  std::vector<std::string> command = {"valgrind",
                                      "--quiet",
                                      "--tool=callgrind",
                                      "--instr-atstart=no",
                                      "--combine-dumps=yes",
                                      "--callgrind-out-file=" + profile.string(),
                                      fs::read_symlink("/proc/self/exe").string()};
  command.insert(command.end(), arguments.begin(), arguments.end());
  if (run(command, output)) return read(profile);
  std::fprintf(stderr, "valgrind can't run here:\n");
  for (std::ifstream in(output); in.peek() != std::ifstream::traits_type::eof();) {
    std::string line;
    std::getline(in, line);
    std::fprintf(stderr, "  %s\n", line.c_str());
  }
  return {};
}

void startCounting() {
  CALLGRIND_START_INSTRUMENTATION;
  CALLGRIND_ZERO_STATS;
}

void stopCounting(const std::string& name) { CALLGRIND_DUMP_STATS_AT(name.c_str()); }

}  // namespace bench
