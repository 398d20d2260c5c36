#include "runner/check/typed.h"

#include <utility>

namespace runner {

using Where = KnownVariable::Where;

ReferenceCode referenceTo(const KnownVariable& variable) {
  const std::size_t slot = variable.slot;
  switch (variable.where) {
    case Where::global:
      return referenceCode([place = variable.global](Frame&) { return place; });
    case Where::slot:
      return referenceCode([slot](Frame& frame) { return &frame.slots[slot]; });
    case Where::reference:
      return referenceCode([slot](Frame& frame) { return frame.references[slot]; });
    case Where::constant:
      break;
  }
  return nullptr;
}

void runAll(const std::vector<Action>& actions, Frame& frame) {
  for (const Action& one : actions) one->run(frame);
}

Typed byValue(Typed typed) {
  if (typed.changeable == nullptr) return typed;
  typed.code = valueCode(
      [pinned = std::move(typed.changeable->pinned), code = std::move(typed.code)](Frame& frame) {
        runAll(pinned, frame);
        return code->run(frame);
      });
  typed.changeable = nullptr;
  return typed;
}

Typed constantAt(Type type, Value value, const Place& place) {
  return {type, valueCode([value](Frame&) { return value; }), place, value};
}

Typed variableAt(const KnownVariable& variable, const Place& place) {
  if (variable.where == Where::constant) return constantAt(variable.type, variable.value, place);
  return {variable.type, valueCode([reference = referenceTo(variable)](Frame& frame) {
            return *reference->run(frame);
          }),
          place, std::nullopt, variable};
}

Action store(const KnownVariable& variable, ValueCode value) {
  return action([place = referenceTo(variable), value = std::move(value)](Frame& frame) {
    Value fresh = value->run(frame);
    std::swap(*place->run(frame), fresh);
    return Flow::next;
  });
}

}  // namespace runner
