// What the parser of expressions and that of statements stand on: a way through the tokens.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "runner/syntax/ast.h"
#include "runner/syntax/lexer.h"

namespace runner {

class TokenReader {
 public:
  explicit TokenReader(std::vector<Token> tokens) : tokens_(std::move(tokens)) {}

  [[nodiscard]] const Token& current() const { return tokens_[at_]; }
  [[nodiscard]] const Token& ahead(std::size_t count = 1) const;
  [[nodiscard]] const Place& lastPlace() const { return tokens_[at_ == 0 ? 0 : at_ - 1].place; }
  [[nodiscard]] bool atEndOfLine() const;
  [[nodiscard]] bool atEnd() const { return current().kind == Token::Kind::end; }
  /// Whether the program ended where something was still expected.
  [[nodiscard]] bool ranOut() const { return ranOut_; }

  void advance() { at_ += atEnd() ? 0 : 1; }
  bool accept(std::string_view wanted);
  /// @param expected how messages call it, such as "\")\"".
  void expect(std::string_view wanted, const std::string& expected);
  /// A word that can be a name. @param expected such as "the name of a variable".
  Word name(const std::string& expected);
  /// Any word: behind a point even those with a meaning of their own are names.
  Word anyWord(const std::string& expected);

  /// A type, with its parentheses if it is an array.
  TypeName type();
  /// "()".
  bool emptyParentheses();

  /// Throws Problem when something begins here that stays out of the language.
  void refuseOutside() const;
  /// Throws Problem for the current token.
  [[noreturn]] void fail(const std::string& expected);

 private:
  std::vector<Token> tokens_;
  std::size_t at_ = 0;
  bool ranOut_ = false;
};

/// Throws Problem for what stays out of the language. @param whatIsnt such as "\"GoTo\" isn't".
[[noreturn]] void refuseOutside(const Place& place, const std::string& whatIsnt);

/// Keeps trees from growing deeper than what walks through them can stand.
class Nesting {
 public:
  Nesting(int& depth, const Place& place);
  ~Nesting() { --depth_; }
  Nesting(const Nesting&) = delete;
  Nesting& operator=(const Nesting&) = delete;

 private:
  int& depth_;
};

/// Throws Problem when a tree is too deep.
void checkDepth(int depth, const Place& place);

/// Whether a word can't be a name. @param key of the word.
bool isReserved(std::string_view key);

}  // namespace runner
