// The last phase: what methods do, and what properties begin with.
#include <utility>

#include "runner/check/declarations.h"

namespace runner {

void Declarations::bodies() {
  for (ClassInfo* const info : ordered_) context_.guarded([&] { prepare(*info); });
  for (const Pending& one : pending_) context_.guarded([&] { body(one); });
}

void Declarations::body(const Pending& pending) {
  Callable& callable = *pending.callable;
  Scope scope(pending.scope);
  Checker checker = pending.owner
                        ? Checker(context_, scope, &callable, *pending.owner, pending.ofObjects)
                        : Checker(context_, scope, &callable);
  for (std::size_t i = 0; i < callable.parameters.size(); ++i) {
    KnownVariable& known =
        checker.declare(pending.method->parameters[i].name, callable.parameters[i].type);
    if (callable.parameters[i].byRef) known.where = KnownVariable::Where::reference;
  }
  callable.method->body = checker.block(pending.method->body);
  callable.method->slotCount = checker.slotCount();
}

// What gives the properties of a class their values: those of objects when one is made, shared ones
// before the program runs.
void Declarations::prepare(ClassInfo& info) {
  static const Callable kPreparation;
  const Type owner = info.made->type;
  Scope scope(info.scope);
  Checker ofObjects(context_, scope, &kPreparation, owner, true);
  Checker shared(context_, scope, &kPreparation, owner, false);
  std::vector<Action> actions;
  for (const Property* const property : info.fields) {
    for (const Variable& variable : property->declared.variables) {
      context_.guarded([&] {
        Checker& checker = property->shared ? shared : ofObjects;
        Action action = checker.propertyValue(property->declared, variable);
        if (action != nullptr) (property->shared ? prelude_ : actions).push_back(std::move(action));
      });
    }
  }
  slotCount_ = std::max(slotCount_, shared.slotCount());
  info.made->prepare.name = info.space->name.text;
  info.made->prepare.slotCount = ofObjects.slotCount();
  info.made->prepare.body = action([actions = std::move(actions)](Frame& frame) {
    for (const Action& one : actions) one->run(frame);
    return Flow::next;
  });
}

void Declarations::keep() {
  for (ClassInfo* const info : ordered_) {
    establish(context_.machine, *info->made);
    context_.library.keep(std::move(info->made));
  }
  context_.library.keep(std::move(functions_));
}

}  // namespace runner
