// A host with its plugins, in which programs run one after the other.
#pragma once

#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "runner/check/program.h"
#include "runner/library/library.h"
#include "runner/run/machine.h"

namespace runner {

/// An exception that nothing in the program caught.
struct Unhandled {
  std::string className;
  std::string message;
  std::vector<StackEntry> stack;  // the innermost method first; the program's body has no name
};

/// How a program ended: well, when there is nothing of these.
struct Ending {
  [[nodiscard]] bool well() const { return diagnostics.empty() && !unhandled && !interrupted; }

  std::vector<Diagnostic> diagnostics;  // when there are any, nothing ran
  std::optional<Unhandled> unhandled;
  std::optional<Interrupted> interrupted;
};

/// For people, with an end of line each; the middle of a long stack is left out:
///   Unhandled KeyNotFoundException: message
///     at file:12 in a method
/// @param file what the program is called.
std::string format(const Ending& ending, const std::string& file);

class Session {
 public:
  /// @param host with its plugins loaded already; outlives the session.
  Session(host::Host& host, std::ostream& out, std::istream& in);
  /// Gives up what variables hold.
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  /// Checks a program and runs nothing.
  std::vector<Diagnostic> check(const Source& source);
  /// Runs a program. Its variables and methods stay for those that follow.
  Ending run(const Source& source);
  /// Runs what was typed: a program, or an expression, whose value is printed. nullopt, and nothing
  /// ran, when more lines must follow.
  std::optional<Ending> enter(const Source& source);
  /// What the part of a name at the end of a line could become.
  std::vector<std::string> completions(const std::string& line);

  Machine& machine() { return machine_; }
  Library& library() { return library_; }

 private:
  [[nodiscard]] double hostVersion() const { return machine_.hostVersion(); }
  Ending run(Executable executable);
  std::optional<Ending> show(const Source& source);

  Machine machine_;
  Library library_;
};

}  // namespace runner
