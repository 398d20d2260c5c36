#include "runner/check/program.h"

#include <algorithm>
#include <ostream>
#include <utility>

#include "runner/check/checker.h"

namespace runner {
namespace {

class ProgramChecker {
 public:
  ProgramChecker(Library& library, Machine& machine, const Source& source)
      : context_{library, machine, source}, scope_(&library.session()) {}

  Executable run(const Program& program, bool keep) {
    for (const auto& method : program.methods) {
      context_.guarded([&] {
        try {
          signature(*method);
        } catch (const Problem&) {
          if (scope_.findHere(method->name.key) == nullptr)
            scope_.add(method->name.key, {method->name.text, 0, Broken()});
          throw;
        }
      });
    }
    Executable executable;
    Checker checker(context_, scope_, nullptr);
    executable.body = checker.block(program.body);
    executable.slotCount = checker.slotCount();
    for (const Declared& declared : declared_) context_.guarded([&] { body(declared); });
    executable.diagnostics = sorted();
    if (keep && executable.diagnostics.empty()) {
      context_.library.session().take(std::move(scope_));
      context_.library.keep(std::move(methods_));
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
  /// A method of the program, and what is called for it.
  struct Declared {
    const Method* method;
    Callable* callable;
  };

  std::vector<Diagnostic> sorted() {
    const auto earlier = [](const Diagnostic& a, const Diagnostic& b) {
      return std::pair(a.line, a.column) < std::pair(b.line, b.column);
    };
    std::stable_sort(context_.diagnostics.begin(), context_.diagnostics.end(), earlier);
    return std::move(context_.diagnostics);
  }

  Parameter parameter(const FormalParameter& written, const Callable& before) {
    Parameter parameter{context_.typeNamed(written.type, scope_), written.byRef, written.assigns,
                        std::nullopt};
    if (written.initial != nullptr) {
      Checker checker(context_, scope_, nullptr);
      const Typed value = checker.convert(checker.expression(*written.initial), parameter.type);
      if (!value.constant)
        refuse(value.place, "The value of a parameter that may be left out is a constant.");
      parameter.initial = value.constant;
    } else if (before.required() < before.parameters.size()) {
      refuse(written.name.place, "A parameter behind one that may be left out needs a value, too.");
    }
    return parameter;
  }

  void signature(const Method& method) {
    auto callable = std::make_unique<Callable>();
    callable->text = method.text;
    callable->name = method.name.text;
    callable->method = std::make_unique<UserMethod>();
    callable->method->name = method.name.text;
    for (const FormalParameter& written : method.parameters)
      callable->parameters.push_back(parameter(written, *callable));
    if (method.result) callable->result = context_.typeNamed(*method.result, scope_);
    callable->method->initialResult = callable->result->initial();
    const Symbol* const before = scope_.findHere(method.name.key);
    if (before != nullptr && before->as<Candidates>() != nullptr) {
      for (const Callable* const other : *before->as<Candidates>()) {
        if (other->takesTheSame(*callable))
          refuse(method.name.place, "\"" + method.name.text + "\" is declared already.",
                 {other->text});
      }
    }
    scope_.addFunction(method.name.key, *callable, context_.source.line(method.name.place));
    declared_.push_back({&method, callable.get()});
    methods_.push_back(std::move(callable));
  }

  void body(const Declared& declared) {
    Callable& callable = *declared.callable;
    Scope scope(&scope_);
    Checker checker(context_, scope, &callable);
    for (std::size_t i = 0; i < callable.parameters.size(); ++i) {
      KnownVariable& known =
          checker.declare(declared.method->parameters[i].name, callable.parameters[i].type);
      if (callable.parameters[i].byRef) known.where = KnownVariable::Where::reference;
    }
    callable.method->body = checker.block(declared.method->body);
    callable.method->slotCount = checker.slotCount();
  }

  Context context_;
  Scope scope_;
  Callables methods_;
  std::vector<Declared> declared_;
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
