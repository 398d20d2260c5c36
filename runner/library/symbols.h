// What names stand for: one table for variables, methods and types alike, in which the scopes of a
// program stand within each other.
#pragma once

#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

#include "runner/library/callable.h"

namespace runner {

/// A variable, and where it is when the program runs.
struct KnownVariable {
  enum class Where { global, slot, reference, constant };

  Type type;
  Where where = Where::slot;
  Value* global = nullptr;  // of a global one
  std::size_t slot = 0;     // of a local one or a reference, in the frame
  Value value;              // of a constant
};

/// What stands for a name whose declaration is wrong: nothing that uses it is looked at.
struct Broken {};

struct Symbol {
  std::string name;  // as it was declared
  int line = 0;      // where, in the program that is being checked; 0: not in that one
  std::variant<KnownVariable, Candidates, Type, Broken> what;

  /// What it stands for, if that is one; else null.
  template <class What>
  [[nodiscard]] const What* as() const {
    return std::get_if<What>(&what);
  }
};

/// The names of a block, a program or the language, within those around it. Keys are folded names.
class Scope {
 public:
  /// @param outer outlives this one; null for the outermost.
  explicit Scope(const Scope* outer) : outer_(outer) {}
  Scope(const Scope&) = delete;
  Scope& operator=(const Scope&) = delete;

  /// What a name stands for in the innermost scope that has it; null when it is unknown.
  [[nodiscard]] const Symbol* find(const std::string& key) const;
  [[nodiscard]] const Symbol* findHere(const std::string& key) const;
  /// The variable that a name stands for; null when it stands for none.
  [[nodiscard]] const KnownVariable* variable(const std::string& key) const;
  /// The type of that name, whatever hides it; null when there is none.
  [[nodiscard]] const Type* type(const std::string& key) const;
  /// The functions that a name can mean, those of inner scopes first; none when it stands for
  /// something else.
  [[nodiscard]] Candidates functions(const std::string& key) const;
  /// The names of this scope and all around it, for suggestions.
  [[nodiscard]] std::vector<std::string> names() const;

  /// Adds a name, in place of what it stood for in this scope.
  Symbol& add(const std::string& key, Symbol symbol);
  /// Adds a function behind others of its name.
  void addFunction(const std::string& key, const Callable& function, int line);
  /// Takes over what another scope has. Its functions stand before those of this scope, without
  /// those that take the same.
  void take(Scope&& other);

 private:
  const Scope* outer_;
  std::unordered_map<std::string, Symbol> symbols_;
};

}  // namespace runner
