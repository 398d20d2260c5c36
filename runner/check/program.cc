#include "runner/check/program.h"

#include <algorithm>
#include <ostream>
#include <utility>

#include "runner/check/checker.h"
#include "runner/check/declarations.h"

namespace runner {
namespace {

class ProgramChecker {
 public:
  ProgramChecker(Library& library, Machine& machine, const Source& source)
      : context_{library, machine, source}, types_(&library.session()), scope_(&types_) {}

  Executable run(const Program& program, bool keep) {
    Declarations declarations(context_, types_, scope_);
    declarations.types(program);
    declarations.signatures(program);
    Executable executable;
    Checker checker(context_, scope_, nullptr);
    Action body = checker.block(program.body);
    declarations.bodies();
    std::vector<Action> all = declarations.takePrelude();
    all.push_back(std::move(body));
    executable.body = action([all = std::move(all)](Frame& frame) {
      for (const Action& one : all) one->run(frame);
      return Flow::next;
    });
    executable.slotCount = std::max(checker.slotCount(), declarations.slotCount());
    executable.diagnostics = sorted();
    if (keep && executable.diagnostics.empty()) {
      context_.library.sessionTypes().take(std::move(types_));
      context_.library.session().take(std::move(scope_));
      declarations.keep();
    }
    return executable;
  }

  Executable shown(const Expression& expression) {
    Executable executable;
    Checker checker(context_, scope_, nullptr);
    context_.guarded([&] {
      Typed value = checker.expression(expression);
      executable.body =
          action([code = std::move(value.code), gives = !value.type.isNothing()](Frame& frame) {
            const Value found = code->run(frame);
            if (gives) frame.machine.out() << frame.machine.host().describe(found) << '\n';
            return Flow::next;
          });
    });
    executable.slotCount = checker.slotCount();
    executable.diagnostics = sorted();
    return executable;
  }

  std::optional<Type> typeOf(const Expression& expression) {
    try {
      return Checker(context_, scope_, nullptr).expression(expression).type;
    } catch (const Problem&) {
      return std::nullopt;
    }
  }

 private:
  std::vector<Diagnostic> sorted() {
    const auto earlier = [](const Diagnostic& a, const Diagnostic& b) {
      return std::pair(a.line, a.column) < std::pair(b.line, b.column);
    };
    std::stable_sort(context_.diagnostics.begin(), context_.diagnostics.end(), earlier);
    return std::move(context_.diagnostics);
  }

  Context context_;
  Scope types_;
  Scope scope_;
};

}  // namespace

Executable checkProgram(Library& library, Machine& machine, const Source& source,
                        const Program& program, bool keep) {
  return ProgramChecker(library, machine, source).run(program, keep);
}

std::optional<Type> typeOfExpression(Library& library, Machine& machine, const Source& source,
                                     const Expression& expression) {
  return ProgramChecker(library, machine, source).typeOf(expression);
}

Executable checkShown(Library& library, Machine& machine, const Source& source,
                      const Expression& expression) {
  return ProgramChecker(library, machine, source).shown(expression);
}

}  // namespace runner
