#include "runner/command/interactive.h"

#include <csignal>
#include <ostream>
#include <string>
#include <string_view>

#include "host/folding.h"
#include "runner/command/interrupts.h"
#include "runner/command/line_editor.h"
#include "runner/text/text.h"

namespace runner {
namespace {

constexpr std::string_view kBanner =
    "What is typed runs at once. Tab completes names; help tells more, quit ends.\n";
constexpr std::string_view kHelp =
    "  Dim d As NSUserDefaultsZEL = NSUserDefaultsZEL.standardUserDefaults\n"
    "  d.integerForKey(\"n\") = 5      a statement runs\n"
    "  d.integerForKey(\"n\")          a value is shown\n"
    "  If True Then                  a block runs when it is ended, here by End If\n"
    "  d.int<Tab>                    the names of methods are completed\n"
    "  Ctrl-C                        drops what is typed, or ends what runs\n"
    "  quit, exit, Ctrl-D            end the session\n"
    "What is set is gone afterwards, unless the command was given --store DIR.\n"
    "docs/language.md has the language, docs/methods.md every method.\n";

// The lines that are no programs.
enum class Word { none, help, quit };

Word wordOf(std::string_view line) {
  const std::string word = folded(trimmedLeft(trimmedRight(line)));
  if (word == "help" || word == "?") return Word::help;
  return word == "quit" || word == "exit" ? Word::quit : Word::none;
}

class Prompt {
 public:
  Prompt(Session& session, std::ostream& out, std::ostream& messages)
      : session_(session), out_(out), messages_(messages) {}

  // False: the session ends.
  bool take(std::string_view line) {
    const Word word = text_.empty() ? wordOf(line) : Word::none;
    if (word == Word::quit) return false;
    if (word == Word::help) {
      out_ << kHelp << std::flush;
      return true;
    }
    text_ += std::string(line) + "\n";
    const Interrupts interrupts(session_.machine());
    const std::optional<Ending> ending = session_.enter(Source("line", text_));
    if (!ending) return true;
    out_.flush();
    messages_ << format(*ending, "line") << std::flush;
    text_.clear();
    // The end of a program's input isn't that of the session's.
    session_.machine().in().clear();
    return true;
  }
  void drop() { text_.clear(); }
  [[nodiscard]] bool isWithinBlock() const { return !text_.empty(); }

 private:
  Session& session_;
  std::ostream& out_;
  std::ostream& messages_;
  std::string text_;  // the lines of what isn't finished yet
};

}  // namespace

void interact(Session& session, std::ostream& out, std::ostream& messages) {
  LineEditor editor([&session](const std::string& text) { return session.completions(text); },
                    historyFile());
  Prompt prompt(session, out, messages);
  // Between two lines there is nothing to drop or to end, and the session goes on.
  std::signal(SIGINT, SIG_IGN);
  out << kBanner << std::flush;
  for (;;) {
    const LineEditor::Entered entered = editor.read(prompt.isWithinBlock() ? "… " : "> ");
    if (entered.kind == LineEditor::Kind::end) break;
    if (entered.kind == LineEditor::Kind::interrupted) {
      prompt.drop();
      continue;
    }
    std::string_view rest = entered.text;  // what was pasted is several lines
    for (bool more = true; more;) {
      const std::size_t end = rest.find('\n');
      if (!prompt.take(rest.substr(0, end))) return;
      more = end != std::string_view::npos;
      if (more) rest.remove_prefix(end + 1);
    }
  }
  out << '\n' << std::flush;
}

}  // namespace runner
