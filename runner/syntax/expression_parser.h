// The parser of expressions.
#pragma once

#include <vector>

#include "runner/syntax/token_reader.h"

namespace runner {

class ExpressionParser {
 public:
  explicit ExpressionParser(TokenReader& reader) : reader_(reader) {}

  ExpressionPtr expression();
  /// What can stand on the left of an assignment or be called: names, members, calls.
  ExpressionPtr designator();
  /// Expressions with commas between them, up to but without the closing parenthesis; the opening
  /// one is past already.
  std::vector<ExpressionPtr> argumentsUntil(const char* closing);
  /// Arguments without parentheses, up to the end of the line.
  std::vector<ExpressionPtr> bareArguments();
  /// An expression that calls what was read with these arguments.
  ExpressionPtr makeCall(ExpressionPtr callee, std::vector<ExpressionPtr> arguments);

 private:
  ExpressionPtr pair();
  ExpressionPtr choice();
  ExpressionPtr binary(std::size_t level);
  ExpressionPtr unary();
  ExpressionPtr power();
  ExpressionPtr typeTest();
  ExpressionPtr postfix();
  ExpressionPtr primary();
  ExpressionPtr creation();
  ExpressionPtr literal(host::Value value, bool bits = false);

  template <class What>
  ExpressionPtr make(const Place& place, What what);

  TokenReader& reader_;
  int depth_ = 0;
};

}  // namespace runner
