#include "runner/command/session.h"

#include <algorithm>
#include <utility>

#include "runner/run/values.h"
#include "runner/syntax/parser.h"
#include "runner/text/text.h"

namespace runner {
namespace {

bool isNameCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
         (c & 0x80) != 0;
}

// Where the name at the end of a text begins.
std::size_t startOfName(const std::string& text) {
  std::size_t start = text.size();
  while (start > 0 && isNameCharacter(text[start - 1])) --start;
  return start;
}

// Where the expression before the point at the end of a text begins.
std::size_t startOfObject(const std::string& text) {
  std::size_t start = text.size();
  int open = 0;
  while (start > 0) {
    const char c = text[start - 1];
    if (c == ')') ++open;
    if (c == '(' && --open < 0) break;
    if (open == 0 && c != '(' && c != '.' && !isNameCharacter(c)) break;
    --start;
  }
  return start;
}

// Whether a text is no program, or one that could just as well be an expression.
bool mayBeExpression(const Source& source, double hostVersion) {
  try {
    const Program program = parse(source, hostVersion);
    return program.methods.empty() && program.body.size() == 1 &&
           std::holds_alternative<Perform>(program.body.front().what);
  } catch (const Problem&) {
    return true;
  }
}

// What a program that calls itself for ever was about is in the first lines and the last.
std::string format(const std::vector<StackEntry>& stack, const std::string& file) {
  constexpr std::size_t kShownOfAnEnd = 10;
  std::string text;
  for (std::size_t i = 0; i < stack.size(); ++i) {
    const std::size_t skipped = stack.size() - 2 * kShownOfAnEnd;
    if (i == kShownOfAnEnd && stack.size() > 2 * kShownOfAnEnd + 1) {
      text += "  ... " + std::to_string(skipped) + " more ...\n";
      i += skipped;
    }
    text += "  at " + file + ":" + std::to_string(stack[i].line) +
            (stack[i].method.empty() ? "" : " in " + stack[i].method) + "\n";
  }
  return text;
}

}  // namespace

std::string format(const Ending& ending, const std::string& file) {
  std::string text = format(ending.diagnostics);
  if (ending.unhandled) {
    text += "Unhandled " + ending.unhandled->className;
    if (!ending.unhandled->message.empty()) text += ": " + ending.unhandled->message;
    text += "\n" + format(ending.unhandled->stack, file);
  }
  if (ending.interrupted) text += "Interrupted\n" + format(ending.interrupted->stack, file);
  return text;
}

Session::Session(host::Host& host, std::ostream& out, std::istream& in)
    : machine_(host, out, in), library_(machine_) {}

Session::~Session() { machine_.clear(); }

std::vector<Diagnostic> Session::check(const Source& source) {
  try {
    return checkProgram(library_, machine_, source, parse(source, hostVersion()), false)
        .diagnostics;
  } catch (const Problem& problem) {
    return {diagnose(source, problem)};
  }
}

Ending Session::run(const Source& source) {
  try {
    return run(checkProgram(library_, machine_, source, parse(source, hostVersion()), true));
  } catch (const Problem& problem) {
    return {{diagnose(source, problem)}, std::nullopt, std::nullopt};
  }
}

std::optional<Ending> Session::enter(const Source& source) {
  if (isUnfinished(source, hostVersion())) return std::nullopt;
  if (mayBeExpression(source, hostVersion())) {
    if (std::optional<Ending> ending = show(source)) return ending;
  }
  return run(source);
}

// Without a value when the text isn't an expression alone.
std::optional<Ending> Session::show(const Source& source) {
  try {
    const ExpressionPtr expression = parseExpression(source);
    return run(checkShown(library_, machine_, source, *expression));
  } catch (const Problem&) {
    return std::nullopt;
  }
}

Ending Session::run(Executable executable) {
  if (!executable.diagnostics.empty())
    return {std::move(executable.diagnostics), std::nullopt, std::nullopt};
  static const std::string kBody;
  machine_.resume();
  try {
    Frame frame(machine_, kBody, executable.slotCount);
    frame.line = 1;  // where an expression stands that is no statement
    executable.body->run(frame);
    machine_.raisePending();
    return {};
  } catch (const HostThrow& thrown) {
    Unhandled unhandled;
    unhandled.className = typeOf(machine_, thrown.exception).name();
    unhandled.message = textOf(machine_.host().property(thrown.exception, "Message"));
    unhandled.stack = thrown.stack;
    return {{}, std::move(unhandled), std::nullopt};
  } catch (Interrupted& interrupted) {
    return {{}, std::nullopt, std::move(interrupted)};
  }
}

std::vector<std::string> Session::completions(const std::string& line) {
  const std::size_t start = startOfName(line);
  const std::string prefix = folded(line.substr(start));
  std::vector<std::string> names;
  if (start > 0 && line[start - 1] == '.') {
    const std::string before = line.substr(0, start - 1);
    const std::string object = before.substr(startOfObject(before));
    if (const Symbol* const space = library_.session().find(folded(object)))
      names = library_.namesIn(*space);
    const Source source("", object);
    try {
      const ExpressionPtr expression = parseExpression(source);
      if (const auto type = typeOfExpression(library_, machine_, source, *expression))
        names = library_.memberNames(*type);
    } catch (const Problem&) {
      // What stands before the point is no expression: no names.
    }
  } else {
    names = library_.session().names();
  }
  std::erase_if(names,
                [&prefix](const std::string& name) { return !folded(name).starts_with(prefix); });
  std::sort(names.begin(), names.end());
  names.erase(std::unique(names.begin(), names.end()), names.end());
  return names;
}

}  // namespace runner
