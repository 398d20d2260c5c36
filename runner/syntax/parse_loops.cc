// Loops, and the ways out of them.
#include <utility>

#include "runner/syntax/program_parser.h"
#include "runner/text/diagnostic.h"

namespace runner {

void ProgramParser::forStatement(Statement& statement) {
  const Place begin = reader_.current().place;
  reader_.advance();
  if (reader_.accept("each")) {
    forEach(statement, begin);
  } else {
    counted(statement, begin);
  }
}

void ProgramParser::counted(Statement& statement, const Place& begin) {
  For loop;
  loop.counter = variable("the name of a variable");
  loop.type = optionalType();
  reader_.expect("=", "\"=\"");
  loop.from = expressions_.expression();
  loop.down = reader_.accept("downto");
  if (!loop.down) reader_.expect("to", "\"To\" or \"DownTo\"");
  loop.to = expressions_.expression();
  if (reader_.accept("step")) loop.step = expressions_.expression();
  endOfLine();
  loop.body = block();
  close(begin, "For", "Next");
  if (!reader_.atEndOfLine()) {
    const Word word = reader_.name("the end of the line");
    if (word.key != loop.counter.name.key)
      refuse(word.place, "This loop's variable is \"" + loop.counter.name.text + "\".");
  }
  statement.what = std::move(loop);
}

void ProgramParser::forEach(Statement& statement, const Place& begin) {
  ForEach loop;
  loop.element = variable("the name of a variable");
  loop.type = optionalType();
  reader_.expect("in", "\"In\"");
  loop.list = expressions_.expression();
  endOfLine();
  loop.body = block();
  close(begin, "For Each", "Next");
  if (!reader_.atEndOfLine()) reader_.name("the end of the line");
  statement.what = std::move(loop);
}

void ProgramParser::whileStatement(Statement& statement) {
  const Place begin = reader_.current().place;
  reader_.advance();
  Loop loop;
  loop.isWhile = true;
  loop.whileTrue = expressions_.expression();
  endOfLine();
  loop.body = block();
  close(begin, "While", "Wend");
  statement.what = std::move(loop);
}

void ProgramParser::doStatement(Statement& statement) {
  const Place begin = reader_.current().place;
  reader_.advance();
  Loop loop;
  if (reader_.accept("until")) loop.untilFirst = expressions_.expression();
  endOfLine();
  loop.body = block();
  close(begin, "Do", "Loop");
  if (reader_.accept("until")) loop.untilLast = expressions_.expression();
  statement.what = std::move(loop);
}

LoopKind ProgramParser::loopKind() {
  if (reader_.accept("for")) return LoopKind::forLoop;
  if (reader_.accept("while")) return LoopKind::whileLoop;
  return reader_.accept("do") ? LoopKind::doLoop : LoopKind::any;
}

void ProgramParser::exit(Statement& statement) {
  reader_.advance();
  if (reader_.accept("sub") || reader_.accept("function")) {
    statement.what = Return{};
  } else {
    statement.what = Exit{loopKind()};
  }
}

void ProgramParser::continueStatement(Statement& statement) {
  reader_.advance();
  statement.what = Continue{loopKind()};
}

}  // namespace runner
