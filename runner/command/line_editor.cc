#include "runner/command/line_editor.h"

#include <array>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>  // which the next two take for granted
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <langinfo.h>
#include <poll.h>
#include <readline/history.h>
#include <readline/readline.h>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace runner {
namespace {

constexpr int kRememberedLines = 1000;

// What ends the reading of a line from outside.
constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP};

// Readline asks functions without state of their own.
LineEditor::Completions completions;         // NOLINT(cert-err58-cpp): empty
std::vector<std::string> found;              // what could be meant
std::optional<LineEditor::Entered> entered;  // once the line has ended
volatile std::sig_atomic_t caught = 0;       // the signal that came

char* nextCompletion(const char* /*prefix*/, int state) {
  const auto index = static_cast<std::size_t>(state);
  return index < found.size() ? strdup(found[index].c_str()) : nullptr;
}

char** complete(const char* prefix, int /*start*/, int end) {
  rl_attempted_completion_over = 1;  // no file names instead
  rl_completion_append_character = '\0';
  found = completions(std::string(rl_line_buffer, static_cast<std::size_t>(end)));
  return found.empty() ? nullptr : rl_completion_matches(prefix, nextCompletion);
}

// At the start of a line, also of a pasted one, the key indents.
int completeOrIndent(int count, int key) {
  const std::string_view before(rl_line_buffer, static_cast<std::size_t>(rl_point));
  const bool indents = before.find_first_not_of(" \t") == std::string_view::npos;
  if (indents) return rl_insert(count, key);
  constexpr int kList = '?';
  return rl_complete_internal(rl_last_func == completeOrIndent ? kList : '\t');
}

void take(char* line) {
  entered = line == nullptr ? LineEditor::Entered{LineEditor::Kind::end, ""}
                            : LineEditor::Entered{LineEditor::Kind::line, line};
  std::free(line);
  rl_callback_handler_remove();
}

void note(int signal) { caught = signal; }

// A variable of the environment with another value for a while.
class Setting {
 public:
  Setting(const char* name, const char* value) : name_(name) {
    if (const char* const before = std::getenv(name)) before_ = before;
    setenv(name, value, 1);
  }
  ~Setting() { before_ ? setenv(name_, before_->c_str(), 1) : unsetenv(name_); }
  Setting(const Setting&) = delete;
  Setting& operator=(const Setting&) = delete;

 private:
  const char* name_;
  std::optional<std::string> before_;
};

// While it lives, texts are UTF-8 whatever the surroundings say: readline looks at the environment
// for the locale, again for every line. Foundation sets the locale when it is first used.
class Utf8 {
 public:
  Utf8() {
    std::setlocale(LC_CTYPE, "");
    if (std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0) return;
    setting_.emplace("LC_ALL", "C.UTF-8");
    std::setlocale(LC_CTYPE, "");
  }

 private:
  std::optional<Setting> setting_;
};

// Signals come in only while the editor waits, and are told apart from keys.
class Signals {
 public:
  Signals() {
    sigset_t mine;
    sigemptyset(&mine);
    for (const int signal : kSignals) sigaddset(&mine, signal);
    sigprocmask(SIG_BLOCK, &mine, &before_);
    struct sigaction action = {};
    action.sa_handler = note;
    for (std::size_t i = 0; i < kSignals.size(); ++i) sigaction(kSignals[i], &action, &actions_[i]);
  }
  ~Signals() {
    for (std::size_t i = 0; i < kSignals.size(); ++i) sigaction(kSignals[i], &actions_[i], nullptr);
    sigprocmask(SIG_SETMASK, &before_, nullptr);
  }
  Signals(const Signals&) = delete;
  Signals& operator=(const Signals&) = delete;

  // Waits for a key. False: a signal came first.
  [[nodiscard]] bool waitForKey() const {
    pollfd keys = {STDIN_FILENO, POLLIN, 0};
    for (;;) {
      if (ppoll(&keys, 1, nullptr, &before_) >= 0) return true;
      if (errno != EINTR || caught != 0) return caught == 0;
    }
  }

 private:
  sigset_t before_{};
  std::array<struct sigaction, kSignals.size()> actions_{};
};

// What was typed so far is dropped; it stays on the screen. When the terminal is given back, the
// cursor goes to the start of its line, and what is written then stands above the prompt.
void drop() {
  rl_point = rl_end;
  rl_redisplay();
  std::fputs("^C\n", rl_outstream);
  std::fflush(rl_outstream);
  rl_callback_sigcleanup();
  rl_replace_line("", 0);
  rl_callback_handler_remove();
}

}  // namespace

LineEditor::LineEditor(Completions itsCompletions, std::filesystem::path history)
    : history_(std::move(history)) {
  completions = std::move(itsCompletions);
  const Utf8 utf8;
  rl_readline_name = "hostrun";
  rl_basic_word_break_characters = " \t\n()+-*/\\^=<>,.\"";
  rl_initialize();  // which looks at what was set before it
  rl_catch_signals = 0;
  rl_attempted_completion_function = complete;
  rl_bind_key('\t', completeOrIndent);
  using_history();
  if (history_.empty()) return;
  std::error_code ignored;
  std::filesystem::create_directories(history_.parent_path(), ignored);
  const int file = open(history_.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (file >= 0) close(file);
  history_truncate_file(history_.c_str(), kRememberedLines);
  read_history(history_.c_str());
}

LineEditor::Entered LineEditor::read(const std::string& prompt) {
  const Utf8 utf8;
  entered.reset();
  caught = 0;
  {
    const Signals signals;
    rl_callback_handler_install(prompt.c_str(), take);
    while (!entered) {
      if (signals.waitForKey()) {
        rl_callback_read_char();
      } else if (caught == SIGINT) {
        drop();
        return {Kind::interrupted, ""};
      } else {
        rl_callback_handler_remove();
        break;
      }
    }
  }
  if (caught != 0) std::raise(caught);
  Entered result = entered.value_or(Entered{Kind::end, ""});
  if (result.kind == Kind::line) remember(result.text);
  return result;
}

void LineEditor::remember(const std::string& line) {
  if (line.empty() || line == last_) return;
  last_ = line;
  add_history(line.c_str());
  if (!history_.empty()) append_history(1, history_.c_str());
}

std::filesystem::path historyFile() {
  const char* const state = std::getenv("XDG_STATE_HOME");
  const char* const home = std::getenv("HOME");
  std::filesystem::path folder;
  if (state != nullptr && *state == '/') {
    folder = state;
  } else if (home != nullptr && *home != '\0') {
    folder = std::filesystem::path(home) / ".local/state";
  } else {
    return {};
  }
  return folder / "hostrun/history";
}

}  // namespace runner
