// The parser of statements and programs, in parts: parser.cc has programs and blocks.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "runner/syntax/expression_parser.h"

namespace runner {

class ProgramParser {
 public:
  ProgramParser(const Source& source, TokenReader& reader)
      : source_(source), reader_(reader), expressions_(reader) {}

  Program run();

 private:
  using StatementParser = void (ProgramParser::*)(Statement& statement);
  struct Keyword {
    std::string_view word;
    StatementParser parse;
  };
  static const std::array<Keyword, 20>& keywords();
  /// What stands before the declaration of a member.
  struct Modifiers {
    Access access = Access::everybody;
    bool shared = false;
    bool global = false;
  };
  /// The Get and Set of the property that is being read; nullable.
  struct Accessors {
    std::unique_ptr<Method> getter, setter;
  };

  // blocks
  Block block();
  void line(Block& statements);
  Statement statement();
  bool endsBlock();
  void close(const Place& begin, std::string_view what, std::string_view closing);
  void closeEnd(const Place& begin, std::string_view what);
  void endOfLine();
  std::string opener(const Place& begin, std::string_view what);

  // statements; the first word is still there
  void declare(Statement& statement);
  void constant(Statement& statement);
  void ifStatement(Statement& statement);
  void forStatement(Statement& statement);
  void whileStatement(Statement& statement);
  void doStatement(Statement& statement);
  void selectStatement(Statement& statement);
  void tryStatement(Statement& statement);
  void exit(Statement& statement);
  void continueStatement(Statement& statement);
  void returnStatement(Statement& statement);
  void raise(Statement& statement);
  void redim(Statement& statement);
  void call(Statement& statement);
  void nested(Statement& statement);
  void assignmentOrCall(Statement& statement);

  // their parts
  void counted(Statement& statement, const Place& begin);
  void forEach(Statement& statement, const Place& begin);
  void singleLine(If& branches);
  Variable variable(const std::string& expected);
  std::optional<TypeName> optionalType();
  Declare declaration();
  Declare constantDeclaration();
  void initialValue(Declare& declare);
  CaseLabel caseLabel();
  Catch catchClause();
  LoopKind loopKind();
  std::unique_ptr<Method> method();
  FormalParameter parameter();

  // classes, modules and enums
  bool atSpace();
  void spaceOfProgram(Program& program);
  std::unique_ptr<Space> space();
  Modifiers modifiers();
  void member(Space& space, Accessors& accessors);
  void property(Space& space, const Modifiers& modifiers, Accessors& accessors);
  void accessor(Accessors& accessors);
  static void complete(Property& property, Accessors& accessors);
  Enumeration enumeration();

  const Source& source_;
  TokenReader& reader_;
  ExpressionParser expressions_;
  int depth_ = 0;
};

}  // namespace runner
