// Lines typed on a terminal: edited, completed, and remembered from one time to the next.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace runner {

/// The line editor of the standard input's terminal; there is one in a process. Texts are UTF-8
/// whatever the locale is.
class LineEditor {
 public:
  /// What the end of a text could become: whole names, in order.
  using Completions = std::function<std::vector<std::string>(const std::string& text)>;

  /// How the reading of a line ended.
  enum class Kind { line, interrupted, end };
  struct Entered {
    Kind kind;
    std::string text;  // without its end; pasted, it may be several lines
  };

  /// @param history the file in which lines are remembered; made, with its folder, when it isn't
  /// there. "": they are forgotten. One that can't be read or written is as good as none.
  LineEditor(Completions completions, std::filesystem::path history);
  LineEditor(const LineEditor&) = delete;
  LineEditor& operator=(const LineEditor&) = delete;

  /// Reads a line. Ctrl-C drops what was typed so far; a signal that ends the process leaves the
  /// terminal as it was before.
  Entered read(const std::string& prompt);

 private:
  void remember(const std::string& line);

  std::filesystem::path history_;
  std::string last_;
};

/// Where a user's lines are remembered: hostrun/history in the folder of XDG_STATE_HOME or, without
/// it, in ~/.local/state; "" without a home.
std::filesystem::path historyFile();

}  // namespace runner
