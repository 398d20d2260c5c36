#include "runner/command/interactive.h"

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <editline/readline.h>
#include <iostream>
#include <langinfo.h>
#include <memory>
#include <string>

namespace runner {
namespace {

struct Free {
  void operator()(char* text) const { std::free(text); }
};
using Line = std::unique_ptr<char, Free>;

// The line editor asks functions without state of their own.
Session* current = nullptr;
std::vector<std::string> found;

char* nextCompletion(const char* /*prefix*/, int state) {
  const auto index = static_cast<std::size_t>(state);
  return index < found.size() ? strdup(found[index].c_str()) : nullptr;
}

char** complete(const char* prefix, int /*start*/, int end) {
  rl_attempted_completion_over = 1;  // no file names instead
  rl_completion_append_character = '\0';
  found = current->completions(std::string(rl_line_buffer, static_cast<std::size_t>(end)));
  return found.empty() ? nullptr : rl_completion_matches(prefix, nextCompletion);
}

// Texts are UTF-8 whatever the surroundings say. The line editor drops what the locale has no
// characters for, and ends the process at such a prompt. Foundation sets the locale when it is
// first used, so this is for every line.
void useUtf8() {
  std::setlocale(LC_CTYPE, "");
  if (std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0) std::setlocale(LC_CTYPE, "C.UTF-8");
}

}  // namespace

void interact(Session& session, std::ostream& out, std::ostream& messages) {
  current = &session;
  std::string name = "hostrun";
  rl_readline_name = name.data();
  rl_attempted_completion_function = complete;
  rl_basic_word_break_characters = " \t\n()+-*/\\^=<>,.\"";
  using_history();
  std::string text;
  for (;;) {
    useUtf8();
    const Line line(readline(text.empty() ? "> " : "… "));
    if (line == nullptr) break;
    if (*line != '\0') add_history(line.get());
    text += std::string(line.get()) + "\n";
    const std::optional<Ending> ending = session.enter(Source("line", text));
    const bool goesOn = !ending && *line != '\0';
    if (goesOn) continue;
    const Ending shown = ending ? *ending : session.run(Source("line", text));
    out.flush();
    messages << format(shown, "line") << std::flush;
    text.clear();
  }
  out << '\n' << std::flush;
}

}  // namespace runner
