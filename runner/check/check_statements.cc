// Statements other than loops and assignments.
#include <utility>

#include "runner/check/checker.h"
#include "runner/run/arrays.h"

namespace runner {

Action Checker::check(const Statement& statement) {
  return std::visit([&](const auto& what) { return check(what, statement.place); }, statement.what);
}

// --- declarations

Action Checker::check(const Declare& what, const Place& /*place*/) {
  std::vector<Action> all;
  for (const Variable& variable : what.variables) {
    if (Action one = declareOne(what, variable)) all.push_back(std::move(one));
  }
  return action([all = std::move(all)](Frame& frame) {
    for (const Action& one : all) one->run(frame);
    return Flow::next;
  });
}

Action Checker::declareOne(const Declare& what, const Variable& variable) {
  std::optional<Type> type;
  if (what.type) {
    type = typeNamed(*what.type, what.typePlace);
    type->array = type->array || variable.array;
  }
  std::optional<Typed> initial;
  try {
    if (what.initial != nullptr) initial = expression(*what.initial);
    if (initial && !type) {
      if (initial->type.kind == Kind::nil || initial->type.kind == Kind::nothing)
        refuse(initial->place, "This has no type that the variable could have.");
      type = initial->type;
    }
    if (initial) initial = convert(std::move(*initial), *type);
  } catch (const Problem&) {
    // The variable is there all the same: what follows isn't wrong because of it.
    declare(variable, type.value_or(kVariant));
    throw;
  }
  if (what.constant && !initial->constant)
    refuse(initial->place, "A constant's value is a number, a text or a boolean.");
  ValueCode value = initial ? std::move(initial->code) : freshValue(what, variable, *type);
  KnownVariable& known = declare(variable, *type);
  if (what.constant) {
    known.where = KnownVariable::Where::constant;
    known.value = *initial->constant;
    return nullptr;
  }
  return store(known, std::move(value));
}

ValueCode Checker::freshValue(const Declare& /*what*/, const Variable& variable, const Type& type) {
  if (!type.array) return valueCode([value = initialValue(type)](Frame&) { return value; });
  ValueCode bound;
  if (!variable.bound.empty()) bound = number(*variable.bound.front(), kInteger).code;
  return valueCode([type, bound = std::move(bound)](Frame& frame) {
    Value array = newArray(frame.machine, type, {});
    if (bound != nullptr) resizeArray(frame.machine, array, bound->run(frame));
    return array;
  });
}

Action Checker::check(const Redim& what, const Place& /*place*/) {
  Typed array = expression(*what.array);
  if (!array.type.array)
    refuse(array.place, "Redim takes an array, but this is " + nameOf(array.type) + ".");
  ValueCode bound = number(*what.bound, kInteger).code;
  return action([array = std::move(array.code), bound = std::move(bound)](Frame& frame) {
    resizeArray(frame.machine, array->run(frame), bound->run(frame));
    return Flow::next;
  });
}

Action Checker::check(const Perform& what, const Place& place) {
  const auto* const name = std::get_if<Name>(&what.call->what);
  const bool isVariable = name != nullptr && scope_.find(name->name) != nullptr;
  const bool callable = name != nullptr || std::holds_alternative<Member>(what.call->what) ||
                        std::holds_alternative<Call>(what.call->what);
  if (isVariable || !callable)
    refuse(place, "This does nothing: a statement is an assignment, a call or a keyword's.");
  Typed value = expression(*what.call);
  return action([code = std::move(value.code)](Frame& frame) {
    code->run(frame);
    return Flow::next;
  });
}

// --- choices

Action Checker::check(const If& what, const Place& /*place*/) {
  struct Checked {
    ValueCode condition;
    Action body;
  };
  std::vector<Checked> branches;
  for (const Branch& branch : what.branches) {
    Checked checked;
    guarded([&] { checked.condition = condition(*branch.condition).code; });
    scope_.enter();
    checked.body = block(branch.body);
    scope_.leave();
    branches.push_back(std::move(checked));
  }
  scope_.enter();
  Action otherwise = block(what.otherwise);
  scope_.leave();
  return action([branches = std::move(branches), otherwise = std::move(otherwise)](Frame& frame) {
    for (const Checked& branch : branches)
      if (isTrue(branch.condition->run(frame))) return branch.body->run(frame);
    return otherwise->run(frame);
  });
}

Action Checker::check(const Select& what, const Place& /*place*/) {
  struct Checked {
    std::vector<ValueCode> labels;  // each says whether it fits
    Action body;
  };
  Typed value = expression(*what.subject);
  if (value.type.kind == Kind::nothing) refuse(value.place, "This gives no value to select by.");
  const KnownVariable subject = hidden(value.type);
  std::vector<Checked> cases;
  for (const Case& one : what.cases) {
    Checked checked;
    for (const CaseLabel& label : one.labels)
      guarded([&] { checked.labels.push_back(caseCode(label, subject)); });
    scope_.enter();
    checked.body = block(one.body);
    scope_.leave();
    cases.push_back(std::move(checked));
  }
  scope_.enter();
  Action otherwise = block(what.otherwise);
  scope_.leave();
  return action([set = store(subject, std::move(value.code)), cases = std::move(cases),
                 otherwise = std::move(otherwise)](Frame& frame) {
    set->run(frame);
    for (const Checked& one : cases) {
      for (const ValueCode& label : one.labels)
        if (isTrue(label->run(frame))) return one.body->run(frame);
    }
    return otherwise->run(frame);
  });
}

// Whether a label fits what is selected by.
ValueCode Checker::caseCode(const CaseLabel& label, const KnownVariable& subject) {
  Typed value = variable(subject, label.place);
  if (label.type) {
    const Type type = typeNamed(*label.type, label.place);
    return valueCode([code = std::move(value.code), type](Frame& frame) {
      const Type found = typeOf(frame.machine, code->run(frame));
      return booleanValue(found.kind == Kind::object &&
                          Types(frame.machine.host()).isA(found.className, type.className));
    });
  }
  Typed from = expression(*label.from);
  if (label.to == nullptr) {
    return convert(binary(label.op.value_or(Operator::equal), std::move(value), std::move(from),
                          label.place),
                   kBoolean)
        .code;
  }
  Typed low = binary(Operator::greaterOrEqual, std::move(value), std::move(from), label.place);
  Typed high = binary(Operator::lessOrEqual, variable(subject, label.place), expression(*label.to),
                      label.place);
  return binary(Operator::bothOf, std::move(low), std::move(high), label.place).code;
}

// --- leaving

Action Checker::check(const Return& what, const Place& /*place*/) {
  const Type result = method_ == nullptr ? kNothing : method_->result;
  if (what.value == nullptr) return action([](Frame&) { return Flow::leave; });
  if (result.kind == Kind::nothing) {
    refuse(what.value->place,
           method_ == nullptr ? "The program itself returns no value." : "A Sub returns no value.",
           method_ == nullptr ? std::vector<std::string>{} : std::vector{method_->text});
  }
  Typed value = convert(expression(*what.value), result);
  return action([code = std::move(value.code)](Frame& frame) {
    frame.result = code->run(frame);
    return Flow::leave;
  });
}

Action Checker::check(const Raise& what, const Place& /*place*/) {
  Typed exception = expression(*what.exception);
  const Type wanted = objectOf("RuntimeException");
  if (!library_.types().distance(exception.type, wanted)) {
    refuse(exception.place,
           "Only exceptions can be raised, but this is " + nameOf(exception.type) + ".");
  }
  Typed converted = convert(std::move(exception), wanted);
  return action([code = std::move(converted.code)](Frame& frame) -> Flow {
    frame.machine.raise(std::get<ObjectRef>(code->run(frame)));
  });
}

namespace {

struct CheckedCatch {
  Type type;
  Action store;  // of the exception; nullable
  Action body;
};

// Runs what an exception goes to; false when nothing wants it.
bool handled(Frame& frame, const std::vector<CheckedCatch>& catches, const HostThrow& thrown,
             const KnownVariable& passed, Flow* flow) {
  const Type type = typeOf(frame.machine, thrown.exception);
  for (const CheckedCatch& clause : catches) {
    if (!Types(frame.machine.host()).isA(type.className, clause.type.className)) continue;
    frame.slots[passed.slot] = thrown.exception;
    if (clause.store != nullptr) clause.store->run(frame);
    frame.slots[passed.slot] = ObjectRef();
    *flow = clause.body->run(frame);
    return true;
  }
  return false;
}

}  // namespace

Action Checker::check(const Try& what, const Place& /*place*/) {
  const KnownVariable passed = hidden(objectOf("RuntimeException"));
  scope_.enter();
  Action body = block(what.body);
  scope_.leave();
  std::vector<CheckedCatch> catches;
  for (const Catch& clause : what.catches) {
    CheckedCatch checked;
    checked.type = objectOf("RuntimeException");
    scope_.enter();
    guarded([&] {
      if (clause.type) checked.type = typeNamed(*clause.type, clause.typePlace);
      if (!library_.types().isA(checked.type.className, "RuntimeException")) {
        refuse(clause.typePlace,
               "Only exceptions can be caught, but this is " + nameOf(checked.type) + ".");
      }
      if (clause.variable) {
        checked.store =
            store(declare(*clause.variable, checked.type), variable(passed, clause.typePlace).code);
      }
    });
    checked.body = block(clause.body);
    scope_.leave();
    catches.push_back(std::move(checked));
  }
  scope_.enter();
  Action finally = block(what.finally);
  scope_.leave();
  return action([body = std::move(body), catches = std::move(catches), finally = std::move(finally),
                 passed](Frame& frame) {
    Flow flow = Flow::next;
    try {
      try {
        flow = body->run(frame);
      } catch (const HostThrow& thrown) {
        if (!handled(frame, catches, thrown, passed, &flow)) throw;
      }
    } catch (const HostThrow&) {
      if (finally->run(frame) == Flow::next) throw;
      return Flow::leave;
    }
    const Flow last = finally->run(frame);
    return last == Flow::next ? flow : last;
  });
}

}  // namespace runner
