// What names stand for: one table for variables, methods and types alike, in which the scopes of a
// program stand within each other.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

#include "runner/library/callable.h"

namespace runner {

class Library;

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

/// A member of the class around, or of one above that.
struct MemberOf {
  Type type;
};

class Scope;

/// A module and what it has.
struct Module {
  std::shared_ptr<Scope> members;
};

struct Symbol {
  std::string name;  // as it was declared
  int line = 0;      // where, in the program that is being checked; 0: not in that one
  std::variant<KnownVariable, Candidates, Type, Module, MemberOf, Broken> what;
  Reach reach = Reach::everybody;

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
  /// The scope of a class: it has the members of the class as well.
  Scope(const Scope* outer, Library& library, Type type)
      : outer_(outer), library_(&library), members_{"", 0, MemberOf{type}} {}
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
  /// Those of this scope alone.
  [[nodiscard]] std::vector<std::string> ownNames() const;
  /// Whether it is another scope or within it.
  [[nodiscard]] bool isWithin(const Scope& other) const;

  /// What was added to this scope; null for nothing.
  [[nodiscard]] Symbol* ofItsOwn(const std::string& key);
  /// Adds a name, in place of what it stood for in this scope.
  Symbol& add(const std::string& key, Symbol symbol);
  /// Adds a function behind others of its name.
  Symbol& addFunction(const std::string& key, const Callable& function, int line);
  /// Takes over what another scope has. Its functions stand before those of this scope, without
  /// those that take the same.
  void take(Scope&& other);

 private:
  const Scope* outer_;
  Library* library_ = nullptr;  // of the scope of a class
  Symbol members_ = {};         // what stands for each of the class's members
  std::unordered_map<std::string, Symbol> symbols_;
};

}  // namespace runner
