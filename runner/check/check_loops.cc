// Loops, and the ways out of them.
#include <algorithm>
#include <optional>
#include <utility>

#include "runner/check/checker.h"
#include "runner/run/arrays.h"

namespace runner {
namespace {

// What becomes of a loop after a turn that ended so: nullopt, it goes on.
std::optional<Flow> afterTurn(Frame& frame, Flow flow) {
  frame.machine.pauseIfDue();  // also where there is no statement in the loop
  if (flow == Flow::next) return std::nullopt;
  if (flow == Flow::leave) return flow;
  if (frame.loopsToLeave > 0) {
    --frame.loopsToLeave;
    return flow;
  }
  return flow == Flow::exitLoop ? std::optional(Flow::next) : std::nullopt;
}

const char* nameOfLoop(LoopKind kind) {
  if (kind == LoopKind::forLoop) return "For loop";
  if (kind == LoopKind::whileLoop) return "While loop";
  return kind == LoopKind::doLoop ? "Do loop" : "loop";
}

// False when there is no such number any more.
bool advance(std::int64_t& counter, std::int64_t step) {
  return !__builtin_add_overflow(counter, step, &counter);
}
bool advance(double& counter, double step) {
  counter += step;
  return true;
}

// How a loop counts, in numbers of one type.
template <class Number>
Flow count(Frame& frame, Value* variable, const NumberConversion convert, Number counter,
           const Number end, const Number step, bool down, const Code<Flow>& body) {
  *variable = convert(counter);
  while (down ? counter >= end : counter <= end) {
    if (const std::optional<Flow> flow = afterTurn(frame, body.run(frame))) return *flow;
    counter = numberOf<Number>(*variable);  // which the body may have set
    if (!advance(counter, step)) break;
    *variable = convert(counter);
  }
  return Flow::next;
}

}  // namespace

KnownVariable Checker::hidden(Type type) {
  KnownVariable known;
  known.type = type;
  known.slot = body_.slotCount++;
  return known;
}

Action Checker::loopBody(const Block& body, LoopKind kind) {
  const Inner inner(body_);
  body_.loops.push_back(kind);
  return block(body);
}

KnownVariable Checker::loopVariable(const Variable& variable, const std::optional<TypeName>& type) {
  if (type) return declare(variable.name, typeNamed(*type));
  const KnownVariable* const known = scope().variable(variable.name.key);
  const Symbol* const symbol = scope().find(variable.name.key);
  if (symbol != nullptr && symbol->as<Broken>() != nullptr) giveUp();
  if (known == nullptr) context_.failToFind(variable.name, scope(), "variable");
  if (known->where == KnownVariable::Where::constant) {
    refuse(variable.name.place,
           "\"" + variable.name.text + "\" is a constant and can't be changed.");
  }
  return *known;
}

Action Checker::check(const For& what, const Place& /*place*/) {
  const Inner inner(body_);
  const KnownVariable counter = loopVariable(what.counter, what.type);
  if (!counter.type.isNumber()) {
    refuse(what.counter.name.place, "A loop counts with a number, but \"" + what.counter.name.text +
                                        "\" is " + counter.type.name() + ".");
  }
  const bool whole = counter.type.isInteger();
  const Type type = whole ? kInt64 : kDouble;
  ValueCode from = converted(*what.from, counter.type).code;
  ValueCode to = converted(*what.to, type).code;
  ValueCode step;
  if (what.step != nullptr) step = converted(*what.step, type).code;
  Action body = loopBody(what.body, LoopKind::forLoop);
  return action([from = std::move(from), to = std::move(to), step = std::move(step),
                 body = std::move(body), variable = referenceTo(counter), whole,
                 convert = counter.type->convert, down = what.down](Frame& frame) {
    Value* const place = variable->run(frame);
    const Value start = from->run(frame);
    const Value end = to->run(frame);
    const Value stride = step == nullptr ? Value(std::int32_t{1}) : step->run(frame);
    const double sign = down ? -1 : 1;
    const double wanted = sign * numberOf<double>(stride);
    if (whole) {
      return count<std::int64_t>(frame, place, convert, numberOf<std::int64_t>(start),
                                 numberOf<std::int64_t>(end), static_cast<std::int64_t>(wanted),
                                 wanted < 0, *body);
    }
    return count<double>(frame, place, convert, numberOf<double>(start), numberOf<double>(end),
                         wanted, wanted < 0, *body);
  });
}

Action Checker::check(const ForEach& what, const Place& /*place*/) {
  const Inner inner(body_);
  Typed list = expression(*what.list);
  if (!list.type.isArray())
    refuse(list.place, "For Each goes through an array, but this is " + list.type.name() + ".");
  const KnownVariable element = loopVariable(what.element, what.type);
  const KnownVariable current = hidden(list.type.element());
  Typed value = convert(variableAt(current, what.element.name.place), element.type);
  Action set = store(element, std::move(value.code));
  Action body = loopBody(what.body, LoopKind::forLoop);
  return action([list = std::move(list.code), set = std::move(set), body = std::move(body),
                 slot = current.slot](Frame& frame) {
    const Value array = list->run(frame);
    for (std::int32_t i = 0; static_cast<std::size_t>(i) < arrayIn(frame.machine, array).size();
         ++i) {
      frame.slots[slot] = runner::elementOf(frame.machine, array, i);
      set->run(frame);
      frame.slots[slot] = std::monostate();
      if (const std::optional<Flow> flow = afterTurn(frame, body->run(frame))) return *flow;
    }
    return Flow::next;
  });
}

Action Checker::check(const Loop& what, const Place& place) {
  const auto optional = [this](const ExpressionPtr& written) {
    return written == nullptr ? nullptr : condition(*written).code;
  };
  ValueCode whileTrue = optional(what.whileTrue);
  ValueCode untilFirst = optional(what.untilFirst);
  ValueCode untilLast = optional(what.untilLast);
  Action body = loopBody(what.body, what.isWhile ? LoopKind::whileLoop : LoopKind::doLoop);
  return action([whileTrue = std::move(whileTrue), untilFirst = std::move(untilFirst),
                 untilLast = std::move(untilLast), body = std::move(body),
                 line = context_.source.line(place)](Frame& frame) {
    for (;;) {
      frame.line = line;
      if (whileTrue != nullptr && !isTrue(whileTrue->run(frame))) return Flow::next;
      if (untilFirst != nullptr && isTrue(untilFirst->run(frame))) return Flow::next;
      if (const std::optional<Flow> flow = afterTurn(frame, body->run(frame))) return *flow;
      if (untilLast != nullptr && isTrue(untilLast->run(frame))) return Flow::next;
    }
  });
}

Action Checker::leaveLoop(LoopKind kind, const Place& place, Flow flow, const char* what) {
  const auto found = std::find_if(body_.loops.rbegin(), body_.loops.rend(), [kind](LoopKind loop) {
    return kind == LoopKind::any || loop == kind;
  });
  if (found == body_.loops.rend())
    refuse(place, std::string(what) + " stands in no " + nameOfLoop(kind) + ".");
  return action([flow, beyond = static_cast<int>(found - body_.loops.rbegin())](Frame& frame) {
    frame.loopsToLeave = beyond;
    return flow;
  });
}

Action Checker::check(const Exit& what, const Place& place) {
  return leaveLoop(what.kind, place, Flow::exitLoop, "\"Exit\"");
}

Action Checker::check(const Continue& what, const Place& place) {
  return leaveLoop(what.kind, place, Flow::continueLoop, "\"Continue\"");
}

}  // namespace runner
