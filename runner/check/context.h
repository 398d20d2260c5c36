// What all bodies of a program are checked with: the library, the source, and what is wrong in it.
#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "runner/library/library.h"
#include "runner/syntax/ast.h"
#include "runner/text/diagnostic.h"

namespace runner {

struct Context {
  /// Runs a check whose problem, if it has one, must not hide those of others.
  template <class Check>
  void guarded(const Check& check) {
    try {
      check();
    } catch (const Problem& problem) {
      report(problem);
    }
  }
  void report(const Problem& problem);

  [[nodiscard]] Type typeNamed(const TypeName& written, const Scope& scope);
  /// What a name means behind a module or type and a point; null when it means nothing there.
  [[nodiscard]] const Symbol* memberOf(const Symbol& space, const std::string& key) const;
  /// A name that is unknown is said to be so once.
  /// @param what the kind of thing that was expected: "variable".
  [[noreturn]] void failToFind(const Word& name, const Scope& scope, const char* what);

  Library& library;
  Machine& machine;
  const Source& source;
  std::vector<Diagnostic> diagnostics = {};
  std::unordered_set<std::string> unknown = {};  // names that were said to be so
};

/// The declarations of candidates, each once.
std::vector<std::string> textsOf(const Candidates& candidates);

}  // namespace runner
