// The variables that a stretch of a program knows.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "host/value.h"
#include "runner/run/types.h"

namespace runner {

struct KnownVariable {
  enum class Where { global, slot, reference, constant };

  std::string name;  // as declared
  Type type;
  Where where = Where::slot;
  host::Value* global = nullptr;  // of a global one
  std::size_t slot = 0;           // of the others, in the frame
  host::Value value;              // of a constant
  int line = 0;                   // where it is declared
};

/// Blocks within blocks; a name is found in the innermost that has it.
class Scope {
 public:
  void enter() { blocks_.emplace_back(); }
  void leave() { blocks_.pop_back(); }
  /// Whether the next variable is one of the whole program.
  [[nodiscard]] std::size_t depth() const { return blocks_.size(); }

  /// Null when the name is unknown.
  [[nodiscard]] const KnownVariable* find(std::string_view name) const;
  /// The variable of that name in the innermost block alone; null when it has none.
  [[nodiscard]] const KnownVariable* findHere(std::string_view name) const;
  KnownVariable& add(KnownVariable variable);
  [[nodiscard]] std::vector<std::string> names() const;
  /// Those of the outermost block.
  [[nodiscard]] Scope outermost() const;
  /// The same variables as those of an earlier program, which may be declared anew.
  [[nodiscard]] Scope settled() const;

 private:
  using Variables = std::map<std::string, KnownVariable>;  // by their folded names
  std::vector<Variables> blocks_ = std::vector<Variables>(1);
};

}  // namespace runner
