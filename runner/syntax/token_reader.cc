#include "runner/syntax/token_reader.h"

#include <algorithm>

#include "runner/text/diagnostic.h"

namespace runner {
namespace {

using Kind = Token::Kind;

constexpr int kDeepest = 200;

constexpr std::string_view kReserved[] = {
    "and",    "as",    "assigns",  "byref",    "byval",  "call",     "case",  "catch",
    "class",  "const", "continue", "dim",      "do",     "downto",   "each",  "else",
    "elseif", "end",   "exit",     "extends",  "false",  "finally",  "for",   "function",
    "goto",   "if",    "in",       "inherits", "is",     "isa",      "loop",  "mod",
    "module", "new",   "next",     "nil",      "not",    "optional", "or",    "paramarray",
    "raise",  "redim", "return",   "select",   "static", "step",     "sub",   "then",
    "to",     "true",  "try",      "until",    "var",    "wend",     "while", "xor",
};

// They begin what stays out of the language, where another word stands behind them; elsewhere they
// are names as any other.
constexpr std::string_view kOutside[] = {
    "addhandler", "addressof",  "async",         "declare", "delegate",   "event",         "goto",
    "hook",       "implements", "interface",     "on",      "raiseevent", "removehandler", "soft",
    "structure",  "using",      "weakaddressof",
};

std::string shown(const Token& token) {
  switch (token.kind) {
    case Kind::endOfLine:
      return "the end of the line";
    case Kind::end:
      return "the end of the program";
    case Kind::number:
      return "a number";
    case Kind::text:
      return "a text";
    case Kind::word:
    case Kind::sign:
      break;
  }
  return "\"" + token.text + "\"";
}

}  // namespace

const Token& TokenReader::ahead(std::size_t count) const {
  return tokens_[std::min(at_ + count, tokens_.size() - 1)];
}

bool TokenReader::atEndOfLine() const {
  return current().kind == Kind::endOfLine || atEnd() || current().is(":");
}

bool TokenReader::accept(std::string_view wanted) {
  if (!current().is(wanted)) return false;
  advance();
  return true;
}

void TokenReader::expect(std::string_view wanted, const std::string& expected) {
  if (!accept(wanted)) fail(expected);
}

Word TokenReader::name(const std::string& expected) {
  if (current().kind == Kind::word && isReserved(current().key)) {
    refuse(current().place, "\"" + current().text +
                                "\" has a meaning of its own and can't be used as a name; "
                                "expected " +
                                expected + ".");
  }
  return anyWord(expected);
}

Word TokenReader::anyWord(const std::string& expected) {
  if (current().kind != Kind::word) fail(expected);
  Word found = current().word();
  advance();
  return found;
}

TypeName TokenReader::type() {
  TypeName type;
  type.word = name("the name of a type");
  const Place begin = type.word.place;
  if (accept(".")) {
    type.space = std::move(type.word);
    type.word = anyWord("the name of a type");
  }
  type.array = emptyParentheses();
  type.place = span(begin, lastPlace());
  return type;
}

bool TokenReader::emptyParentheses() {
  if (!current().is("(") || !ahead().is(")")) return false;
  advance();
  advance();
  return true;
}

void TokenReader::refuseOutside() const {
  const bool isOutside =
      ahead().kind == Kind::word && !ahead().is("as") &&
      std::find(std::begin(kOutside), std::end(kOutside), current().key) != std::end(kOutside);
  if (isOutside) runner::refuseOutside(current().place, "\"" + current().text + "\" isn't");
}

void refuseOutside(const Place& place, const std::string& whatIsnt) {
  refuse(place, whatIsnt +
                    " in the language of this runner. What is in it, and what stays out, stands in "
                    "docs/language.md.");
}

void TokenReader::fail(const std::string& expected) {
  refuseOutside();
  ranOut_ = atEnd() || (current().kind == Kind::endOfLine && ahead().kind == Kind::end);
  Place place = current().place;
  if (atEnd() || current().kind == Kind::endOfLine) place.end = place.begin;
  refuse(place, "Expected " + expected + ", found " + shown(current()) + ".");
}

Nesting::Nesting(int& depth, const Place& place) : depth_(depth) {
  checkDepth(depth_ + 1, place);
  ++depth_;
}

void checkDepth(int depth, const Place& place) {
  if (depth > kDeepest) refuse(place, "This is nested too deeply.");
}

bool isReserved(std::string_view key) {
  return std::find(std::begin(kReserved), std::end(kReserved), key) != std::end(kReserved);
}

}  // namespace runner
