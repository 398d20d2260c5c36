// Programs, methods and blocks.
#include <algorithm>
#include <utility>

#include "runner/check/checker.h"
#include "runner/check/suggest.h"

namespace runner {
namespace {

struct Step {
  int line;
  Action action;
};

}  // namespace

Checker::Checker(Library& library, Machine& machine, Scope& globals, const Source& source)
    : library_(library), machine_(machine), globals_(globals), source_(source), scope_(globals) {}

Executable Checker::program(const Program& program) {
  for (const auto& method : program.methods) guarded([&] { declareMethod(*method); });
  Executable executable;
  executable.body = block(program.body);
  executable.slotCount = slotCount_;
  const Scope outermost = scope_.outermost();
  for (const Declared& declared : declared_) {
    scope_ = outermost;
    guarded([&] { compileMethod(*declared.method, *declared.callable); });
  }
  library_.settle(diagnostics_.empty());
  if (diagnostics_.empty()) globals_ = outermost.settled();
  executable.diagnostics = std::move(diagnostics_);
  const auto earlier = [](const Diagnostic& a, const Diagnostic& b) {
    return std::pair(a.line, a.column) < std::pair(b.line, b.column);
  };
  std::stable_sort(executable.diagnostics.begin(), executable.diagnostics.end(), earlier);
  return executable;
}

Executable Checker::shown(const Expression& expression) {
  Executable executable;
  guarded([&] {
    Typed value = this->expression(expression);
    if (value.type.kind == Kind::nothing) {
      executable.body = action([code = std::move(value.code)](Frame& frame) {
        code->run(frame);
        return Flow::next;
      });
    } else {
      executable.body = action([code = std::move(value.code)](Frame& frame) {
        frame.machine.out() << frame.machine.host().describe(code->run(frame)) << '\n';
        return Flow::next;
      });
    }
  });
  executable.slotCount = slotCount_;
  executable.diagnostics = std::move(diagnostics_);
  return executable;
}

std::optional<Type> Checker::typeOfExpression(const Expression& expression) {
  try {
    return this->expression(expression).type;
  } catch (const Problem&) {
    return std::nullopt;
  }
}

void Checker::report(const Problem& problem) {
  constexpr std::size_t kMostDiagnostics = 20;
  if (diagnostics_.size() < kMostDiagnostics) diagnostics_.push_back(diagnose(source_, problem));
}

Type Checker::typeNamed(const host::Type& written, const Place& place) {
  if (std::optional<Type> found = library_.types().find(written)) return *found;
  refuse(place, "There is no type \"" + written.name + "\".", {},
         nearest(written.name, library_.types().names()));
}

KnownVariable& Checker::declare(const Variable& variable, const Type& type) {
  const KnownVariable* const earlier = scope_.findHere(variable.name);
  if (earlier != nullptr && earlier->line != 0) {
    refuse(variable.place, "\"" + variable.name + "\" is declared already, in line " +
                               std::to_string(earlier->line) + ".");
  }
  KnownVariable known;
  known.name = variable.name;
  known.type = type;
  known.line = source_.line(variable.place);
  if (method_ == nullptr && scope_.depth() == 1) {
    known.where = KnownVariable::Where::global;
    known.global = &machine_.addGlobal();
    *known.global = initialValue(type);
  } else {
    known.slot = newSlot();
  }
  return scope_.add(std::move(known));
}

// --- methods

void Checker::declareMethod(const Method& method) {
  auto callable = std::make_unique<Callable>();
  callable->text = method.text;
  callable->declaration.name = method.name;
  callable->declaration.result = method.result;
  callable->method = std::make_unique<UserMethod>();
  callable->method->name = method.name;
  for (const FormalParameter& parameter : method.parameters) {
    callable->declaration.parameters.push_back(parameter.declared);
    const Type type = typeNamed(parameter.declared.type, parameter.typePlace);
    callable->parameters.push_back(type);
    callable->method->byRef.push_back(parameter.declared.byRef);
    if (parameter.initial != nullptr) {
      Typed value = convert(expression(*parameter.initial), type);
      if (!value.constant)
        refuse(value.place, "The value of a parameter that may be left out is a constant.");
      callable->defaults.push_back(*value.constant);
    } else if (!callable->defaults.empty()) {
      refuse(parameter.place, "A parameter behind one that may be left out needs a value, too.");
    }
  }
  callable->required = callable->parameters.size() - callable->defaults.size();
  if (method.result) callable->result = typeNamed(*method.result, method.resultPlace);
  callable->method->initialResult = initialValue(callable->result);
  for (const auto& [earlier, other] : declared_) {
    if (host::sameName(earlier->name, method.name) && other->parameters == callable->parameters)
      refuse(method.place, "\"" + method.name + "\" is declared already.", {other->text});
  }
  declared_.push_back({&method, callable.get()});
  library_.add(std::move(callable));
}

void Checker::compileMethod(const Method& method, Callable& callable) {
  method_ = &callable;
  slotCount_ = 0;
  scope_.enter();
  for (std::size_t i = 0; i < method.parameters.size(); ++i) {
    const FormalParameter& parameter = method.parameters[i];
    Variable variable;
    variable.name = parameter.declared.name;
    variable.place = parameter.place;
    KnownVariable& known = declare(variable, callable.parameters[i]);
    if (parameter.declared.byRef) known.where = KnownVariable::Where::reference;
  }
  callable.method->body = block(method.body);
  callable.method->slotCount = slotCount_;
  scope_.leave();
  method_ = nullptr;
}

// --- blocks

Action Checker::block(const Block& statements) {
  std::vector<Step> steps;
  for (const Statement& statement : statements) {
    guarded([&] {
      Action action = check(statement);
      if (action != nullptr) steps.push_back({source_.line(statement.place), std::move(action)});
    });
  }
  return action([steps = std::move(steps)](Frame& frame) {
    for (const Step& step : steps) {
      frame.line = step.line;
      const Flow flow = step.action->run(frame);
      frame.machine.pauseIfDue();
      if (flow != Flow::next) return flow;
    }
    return Flow::next;
  });
}

}  // namespace runner
