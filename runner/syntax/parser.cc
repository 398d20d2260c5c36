#include "runner/syntax/parser.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "runner/syntax/preprocessor.h"
#include "runner/syntax/program_parser.h"
#include "runner/text/diagnostic.h"
#include "runner/text/text.h"

namespace runner {
namespace {

using Kind = Token::Kind;

// The words that end a block; whose they are is for whoever began the block to see.
constexpr std::string_view kEnds[] = {"end",  "else", "elseif", "case",   "next",
                                      "wend", "loop", "catch",  "finally"};

}  // namespace

const std::array<ProgramParser::Keyword, 20>& ProgramParser::keywords() {
  static constexpr std::array<Keyword, 20> kKeywords = {{
      {"dim", &ProgramParser::declare},
      {"var", &ProgramParser::declare},
      {"static", &ProgramParser::declare},
      {"const", &ProgramParser::constant},
      {"if", &ProgramParser::ifStatement},
      {"for", &ProgramParser::forStatement},
      {"while", &ProgramParser::whileStatement},
      {"do", &ProgramParser::doStatement},
      {"select", &ProgramParser::selectStatement},
      {"try", &ProgramParser::tryStatement},
      {"exit", &ProgramParser::exit},
      {"continue", &ProgramParser::continueStatement},
      {"return", &ProgramParser::returnStatement},
      {"raise", &ProgramParser::raise},
      {"redim", &ProgramParser::redim},
      {"call", &ProgramParser::call},
      {"sub", &ProgramParser::nested},
      {"function", &ProgramParser::nested},
      {"class", &ProgramParser::nested},
      {"module", &ProgramParser::nested},
  }};
  return kKeywords;
}

Program ProgramParser::run() {
  Program program;
  while (!reader_.atEnd()) {
    if (reader_.current().is("sub") || reader_.current().is("function")) {
      program.methods.push_back(method());
    } else if (atSpace()) {
      spaceOfProgram(program);
    } else if (endsBlock()) {
      refuse(reader_.current().place, "\"" + reader_.current().text + "\" closes nothing here.");
    } else {
      line(program.body);
    }
  }
  return program;
}

// --- blocks

bool ProgramParser::endsBlock() {
  return std::any_of(std::begin(kEnds), std::end(kEnds),
                     [this](std::string_view end) { return reader_.current().is(end); });
}

Block ProgramParser::block() {
  const Nesting nesting(depth_, reader_.current().place);
  Block statements;
  while (!reader_.atEnd() && !endsBlock()) line(statements);
  return statements;
}

void ProgramParser::line(Block& statements) {
  if (!reader_.atEndOfLine()) statements.push_back(statement());
  endOfLine();
}

Statement ProgramParser::statement() {
  Statement statement;
  statement.place = reader_.current().place;
  reader_.refuseOutside();
  const auto* const found =
      std::find_if(keywords().begin(), keywords().end(),
                   [this](const Keyword& keyword) { return reader_.current().is(keyword.word); });
  if (found != keywords().end()) {
    (this->*found->parse)(statement);
  } else {
    assignmentOrCall(statement);
  }
  return statement;
}

void ProgramParser::endOfLine() {
  if (!reader_.atEndOfLine()) reader_.fail("the end of the line");
  reader_.advance();
}

std::string ProgramParser::opener(const Place& begin, std::string_view what) {
  return ", which closes the \"" + std::string(what) + "\" of line " +
         std::to_string(source_.line(begin));
}

void ProgramParser::close(const Place& begin, std::string_view what, std::string_view closing) {
  reader_.expect(folded(closing), "\"" + std::string(closing) + "\"" + opener(begin, what));
}

void ProgramParser::closeEnd(const Place& begin, std::string_view what) {
  const std::string whole = "\"End " + std::string(what) + "\"";
  const std::string key = folded(what);
  if (reader_.current().is("end") && !reader_.ahead().is(key) &&
      reader_.ahead().kind == Kind::word) {
    reader_.advance();
  } else if (reader_.accept("end") && (reader_.accept(key) || reader_.atEndOfLine())) {
    return;
  }
  reader_.fail(whole + opener(begin, what));
}

// --- methods

std::unique_ptr<Method> ProgramParser::method() {
  const Place begin = reader_.current().place;
  const bool function = reader_.current().is("function");
  const std::string_view what = function ? "Function" : "Sub";
  reader_.advance();
  auto method = std::make_unique<Method>();
  method->name = reader_.name("the name of a method");
  if (reader_.accept("(") && !reader_.accept(")")) {
    do method->parameters.push_back(parameter());
    while (reader_.accept(","));
    reader_.expect(")", "\",\" or \")\"");
  }
  if (function) {
    if (!reader_.current().is("as")) reader_.fail("\"As\" and the type of the result");
    method->result = optionalType();
  }
  method->text = source_.text(span(begin, reader_.lastPlace()));
  endOfLine();
  method->body = block();
  closeEnd(begin, what);
  endOfLine();
  return method;
}

FormalParameter ProgramParser::parameter() {
  FormalParameter parameter;
  struct Modifier {
    std::string_view word;
    bool FormalParameter::*set;  // null: what holds anyway
  };
  constexpr Modifier kModifiers[] = {{"assigns", &FormalParameter::assigns},
                                     {"byref", &FormalParameter::byRef},
                                     {"byval", nullptr},
                                     {"extends", &FormalParameter::extends},
                                     {"optional", &FormalParameter::optional},
                                     {"paramarray", &FormalParameter::paramArray}};
  for (const Modifier& modifier : kModifiers)
    if (reader_.accept(modifier.word) && modifier.set != nullptr) parameter.*modifier.set = true;
  const Variable named = variable("the name of a parameter");
  parameter.name = named.name;
  reader_.expect("as", "\"As\" and the parameter's type");
  parameter.type = reader_.type();
  parameter.type.array = parameter.type.array || named.array;
  if (reader_.accept("=")) parameter.initial = expressions_.expression();
  return parameter;
}

// --- texts

Program parse(const Source& source, double hostVersion) {
  TokenReader reader(preprocessed(tokens(source), hostVersion));
  return ProgramParser(source, reader).run();
}

ExpressionPtr parseExpression(const Source& source) {
  TokenReader reader(tokens(source));
  ExpressionPtr expression = ExpressionParser(reader).expression();
  while (reader.current().kind == Kind::endOfLine) reader.advance();
  if (!reader.atEnd()) reader.fail("the end of the expression");
  return expression;
}

bool isUnfinished(const Source& source, double hostVersion) {
  try {
    bool open = false;
    TokenReader reader(preprocessed(tokens(source), hostVersion, &open));
    if (open) return true;
    try {
      ProgramParser(source, reader).run();
    } catch (const Problem&) {
      return reader.ranOut();
    }
  } catch (const Problem&) {
    return false;
  }
  return false;
}

}  // namespace runner
