#include "tests/runner/runner_test.h"

namespace tests {

using runner::Session;
using runner::Source;

namespace {

constexpr char kFile[] = "test";

}  // namespace

RunnerTest::RunnerTest() { load(); }

void RunnerTest::TearDown() { HostTest::TearDown(); }

std::string RunnerTest::textOf(const runner::Ending& ending) { return format(ending, kFile); }

std::string RunnerTest::run(const std::string& program, const std::string& input) {
  std::ostringstream out;
  std::istringstream in(input);
  Session session(*host, out, in);
  const runner::Ending ending = session.run(Source(kFile, program));
  return out.str() + textOf(ending);
}

std::string RunnerTest::firstProblem(const std::string& program) {
  std::ostringstream out;
  std::istringstream in;
  Session session(*host, out, in);
  const std::vector<runner::Diagnostic> found = session.check(Source(kFile, program));
  if (found.empty()) return "";
  const runner::Diagnostic& first = found.front();
  std::string text = std::to_string(first.line) + ":" + std::to_string(first.column) + "+" +
                     std::to_string(first.length) + " " + first.message;
  for (const std::string& declaration : first.declarations) text += " [" + declaration + "]";
  if (!first.suggestion.empty()) text += " {" + first.suggestion + "}";
  return text;
}

std::string RunnerTest::problems(const std::string& program) {
  std::ostringstream out;
  std::istringstream in;
  Session session(*host, out, in);
  return format(session.check(Source(kFile, program)));
}

std::string RunnerTest::valueOf(const std::string& expression) {
  std::ostringstream out;
  std::istringstream in;
  Session session(*host, out, in);
  const std::optional<runner::Ending> ending = session.enter(Source(kFile, expression));
  std::string text = out.str() + (ending ? textOf(*ending) : "unfinished");
  if (text.ends_with('\n')) text.pop_back();
  return text;
}

std::string RunnerTest::enter(const std::vector<std::string>& texts) {
  std::ostringstream out;
  std::istringstream in;
  Session session(*host, out, in);
  for (const std::string& text : texts) {
    const std::optional<runner::Ending> ending = session.enter(Source(kFile, text));
    out << (ending ? textOf(*ending) : "unfinished\n");
  }
  return out.str();
}

}  // namespace tests
