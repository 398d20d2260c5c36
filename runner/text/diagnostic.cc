#include "runner/text/diagnostic.h"

#include <algorithm>

#include "runner/text/text.h"

namespace runner {

void refuse(const Place& place, std::string message, std::vector<std::string> declarations,
            std::string suggestion) {
  throw Problem{place, std::move(message), std::move(declarations), std::move(suggestion)};
}

void giveUp() { throw Problem{}; }

Diagnostic diagnose(const Source& source, const Problem& problem) {
  Diagnostic diagnostic;
  diagnostic.file = source.name();
  diagnostic.line = source.line(problem.place);
  diagnostic.column = source.column(problem.place);
  diagnostic.lineText = source.lineText(diagnostic.line);
  const auto rest = static_cast<int>(characters(diagnostic.lineText)) - diagnostic.column + 1;
  const auto wanted = static_cast<int>(characters(source.text(problem.place)));
  diagnostic.length = std::max(1, std::min(wanted, rest));
  diagnostic.message = problem.message;
  diagnostic.declarations = problem.declarations;
  diagnostic.suggestion = problem.suggestion;
  return diagnostic;
}

std::string format(const Diagnostic& diagnostic) {
  const std::string number = std::to_string(diagnostic.line);
  const std::string margin(number.size(), ' ');
  // Tabs stay tabs, so that the mark stands below what it marks.
  std::string indent;
  std::string_view rest = diagnostic.lineText;
  for (int column = 1; column < diagnostic.column && !rest.empty(); ++column) {
    const std::size_t size = byteOffset(rest, 1);
    indent += rest.front() == '\t' ? '\t' : ' ';
    rest.remove_prefix(size);
  }
  std::string text = diagnostic.file + ":" + number + ":" + std::to_string(diagnostic.column) +
                     ": error: " + diagnostic.message + "\n";
  text += "  " + number + " | " + diagnostic.lineText + "\n";
  text += "  " + margin + " | " + indent + "^" +
          std::string(static_cast<std::size_t>(diagnostic.length) - 1, '~') + "\n";
  for (const std::string& declaration : diagnostic.declarations)
    text += "  declared: " + declaration + "\n";
  if (!diagnostic.suggestion.empty()) text += "  Did you mean \"" + diagnostic.suggestion + "\"?\n";
  return text;
}

std::string format(const std::vector<Diagnostic>& diagnostics) {
  std::string text;
  for (const Diagnostic& diagnostic : diagnostics) text += format(diagnostic);
  return text;
}

}  // namespace runner
