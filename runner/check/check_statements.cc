// Statements other than loops and assignments.
#include <utility>

#include "runner/check/checker.h"
#include "runner/run/arrays.h"

namespace runner {

Action Checker::check(const Statement& statement) {
  return std::visit([&](const auto& what) { return check(what, statement.place); }, statement.what);
}

Checker::Checker(Context& context, Scope& scope, const Callable* method)
    : context_(context),
      library_(context.library),
      machine_(context.machine),
      program_(method == nullptr ? &scope : nullptr),
      body_{method, &scope} {}

Checker::Checker(Context& context, Scope& scope, const Callable* method, Type owner, bool ofObjects)
    : Checker(context, scope, method) {
  program_ = nullptr;
  body_.owner = owner;
  if (ofObjects) body_.self = hidden(owner);
}

namespace {

struct Step {
  int line;
  Action action;
};

}  // namespace

Action Checker::block(const Block& statements) {
  std::vector<Step> steps;
  for (const Statement& statement : statements) {
    context_.guarded([&] {
      if (Action action = check(statement))
        steps.push_back({context_.source.line(statement.place), std::move(action)});
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

Action Checker::innerBlock(const Block& statements) {
  const Inner inner(body_);
  return block(statements);
}

// --- declarations

void Checker::declareBroken(const Word& name) {
  body_.scope->add(name.key, {name.text, context_.source.line(name.place), Broken()});
}

KnownVariable& Checker::declare(const Word& name, Type type) {
  const Symbol* const earlier = scope().findHere(name.key);
  if (earlier != nullptr && earlier->line != 0) {
    if (earlier->as<Broken>() != nullptr) giveUp();
    refuse(name.place, "\"" + name.text + "\" is declared already, in line " +
                           std::to_string(earlier->line) + ".");
  }
  KnownVariable known;
  known.type = type;
  if (body_.scope == program_) {
    known.where = KnownVariable::Where::global;
    known.global = &machine_.addGlobal();
    *known.global = type->initial();
  } else {
    known.slot = body_.slotCount++;
  }
  Symbol& added =
      body_.scope->add(name.key, {name.text, context_.source.line(name.place), std::move(known)});
  return std::get<KnownVariable>(added.what);
}

Action Checker::check(const Declare& what, const Place& /*place*/) {
  std::vector<Action> all;
  for (const Variable& variable : what.variables) {
    context_.guarded([&] {
      if (Action one = declareOne(what, variable)) all.push_back(std::move(one));
    });
  }
  return action([all = std::move(all)](Frame& frame) {
    for (const Action& one : all) one->run(frame);
    return Flow::next;
  });
}

Action Checker::declareOne(const Declare& what, const Variable& variable) {
  std::optional<Type> type;
  std::optional<Typed> initial;
  try {
    if (what.type) type = typeNamed(*what.type);
    if (type && variable.array && !type->isArray()) type = type->arrayOf();
    if (what.initial != nullptr) initial = expression(*what.initial);
    if (initial && !type) {
      if (initial->type == kNil || initial->type.isNothing())
        refuse(initial->place, "This has no type that the variable could have.");
      type = initial->type;
    }
    if (initial) initial = convert(std::move(*initial), *type);
  } catch (const Problem&) {
    // The variable is there all the same: what follows isn't wrong because of it.
    if (!type || what.constant) {
      declareBroken(variable.name);
    } else {
      declare(variable.name, *type);
    }
    throw;
  }
  if (what.constant && !initial->constant)
    refuse(initial->place, "A constant's value is a number, a text or a boolean.");
  ValueCode value = initial ? std::move(initial->code) : freshValue(variable, *type);
  if (what.lasting) return declareLasting(variable, *type, std::move(value));
  KnownVariable& known = declare(variable.name, *type);
  if (what.constant) {
    known.where = KnownVariable::Where::constant;
    known.value = *initial->constant;
    return nullptr;
  }
  return store(known, std::move(value));
}

Action Checker::propertyValue(const Declare& declared, const Variable& variable) {
  const bool isArray = variable.array || declared.type->array;
  if (declared.initial == nullptr && !isArray) return nullptr;
  Type type = typeNamed(*declared.type);
  if (isArray && !type.isArray()) type = type.arrayOf();
  Typed value = {type, nullptr, variable.name.place};
  if (declared.initial != nullptr) {
    value = converted(*declared.initial, type);
  } else {
    value.code = freshValue(variable, type);
  }
  return assign(ofMember(*body_.owner, variable.name, {}, variable.name.place), std::move(value));
}

// A Static variable: its value is set when the program comes by for the first time.
Action Checker::declareLasting(const Variable& variable, Type type, ValueCode value) {
  KnownVariable& known = declare(variable.name, type);
  known.where = KnownVariable::Where::global;
  known.global = &machine_.addGlobal();
  *known.global = type->initial();
  Value* const isSet = &machine_.addGlobal();
  return action([isSet, set = store(known, std::move(value))](Frame& frame) {
    if (isNil(*isSet)) set->run(frame);
    *isSet = booleanValue(true);
    return Flow::next;
  });
}

ValueCode Checker::freshValue(const Variable& variable, Type type) {
  if (!type.isArray()) return valueCode([value = type->initial()](Frame&) { return value; });
  ValueCode bound;
  if (!variable.bound.empty()) bound = converted(*variable.bound.front(), kInteger).code;
  return valueCode([type, bound = std::move(bound)](Frame& frame) {
    Value array = newArray(frame.machine, type, {});
    if (bound != nullptr) resizeArray(frame.machine, array, bound->run(frame));
    return array;
  });
}

Action Checker::check(const Redim& what, const Place& /*place*/) {
  Typed array = expression(*what.array);
  if (!array.type.isArray())
    refuse(array.place, "Redim takes an array, but this is " + array.type.name() + ".");
  ValueCode bound = converted(*what.bound, kInteger).code;
  return action([array = std::move(array.code), bound = std::move(bound)](Frame& frame) {
    resizeArray(frame.machine, array->run(frame), bound->run(frame));
    return Flow::next;
  });
}

Action Checker::check(const Perform& what, const Place& place) {
  Target called = target(*what.call);
  if (called.what != Target::What::method && !(called.value && called.value->method != nullptr))
    refuse(place, "This does nothing: a statement is an assignment, a call or a keyword's.");
  const Word name = called.name;
  Typed given = read(std::move(called));
  if (!what.discards && !given.type.isNothing()) {
    refuse(place,
           "The value that \"" + name.text +
               "\" gives isn't used. \"Call\" in front says that it "
               "isn't wanted.",
           given.method == nullptr ? std::vector<std::string>() : std::vector{given.method->text});
  }
  return action([code = std::move(given.code)](Frame& frame) {
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
    context_.guarded([&] { checked.condition = condition(*branch.condition).code; });
    checked.body = innerBlock(branch.body);
    branches.push_back(std::move(checked));
  }
  Action otherwise = innerBlock(what.otherwise);
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
  if (value.type.isNothing()) refuse(value.place, "This gives no value to select by.");
  const KnownVariable subject = hidden(value.type);
  std::vector<Checked> cases;
  for (const Case& one : what.cases) {
    Checked checked;
    for (const CaseLabel& label : one.labels)
      context_.guarded([&] { checked.labels.push_back(caseCode(label, subject)); });
    checked.body = innerBlock(one.body);
    cases.push_back(std::move(checked));
  }
  Action otherwise = innerBlock(what.otherwise);
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
  Typed value = variableAt(subject, label.place);
  if (label.type) {
    return valueCode([code = std::move(value.code), type = typeNamed(*label.type)](Frame& frame) {
      const Type found = typeOf(frame.machine, code->run(frame));
      return booleanValue(found->kind == Kind::object && found.isA(type));
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
  Typed high = binary(Operator::lessOrEqual, variableAt(subject, label.place),
                      expression(*label.to), label.place);
  return binary(Operator::bothOf, std::move(low), std::move(high), label.place).code;
}

// --- leaving

Action Checker::check(const Return& what, const Place& /*place*/) {
  const Callable* const method = body_.method;
  const Type result = method == nullptr ? kNothing : method->result;
  if (what.value == nullptr) return action([](Frame&) { return Flow::leave; });
  if (result.isNothing()) {
    refuse(what.value->place,
           method == nullptr ? "The program itself returns no value." : "A Sub returns no value.",
           method == nullptr ? std::vector<std::string>{} : std::vector{method->text});
  }
  Typed value = convert(expression(*what.value), result);
  return action([code = std::move(value.code)](Frame& frame) {
    frame.result = code->run(frame);
    return Flow::leave;
  });
}

Action Checker::check(const Raise& what, const Place& /*place*/) {
  Typed exception = expression(*what.exception);
  if (!distance(exception.type, kException)) {
    refuse(exception.place,
           "Only exceptions can be raised, but this is " + exception.type.name() + ".");
  }
  Typed converted = convert(std::move(exception), kException);
  return action([code = std::move(converted.code)](Frame& frame) -> Flow {
    frame.machine.raise(std::get<ObjectRef>(code->run(frame)));
  });
}

namespace {

struct CheckedCatch {
  Type type = kException;
  Action store;  // of the exception; nullable
  Action body;
};

// Runs what an exception goes to; false when nothing wants it.
bool handled(Frame& frame, const std::vector<CheckedCatch>& catches, const HostThrow& thrown,
             const KnownVariable& passed, Flow* flow) {
  const Type type = typeOf(frame.machine, thrown.exception);
  for (const CheckedCatch& clause : catches) {
    if (!type.isA(clause.type)) continue;
    std::vector<Value> lines;
    for (const StackEntry& entry : thrown.stack) lines.emplace_back(format(entry));
    frame.machine.host().setProperty(thrown.exception, "Stack",
                                     newArray(frame.machine, kString.arrayOf(), lines));
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
  const KnownVariable passed = hidden(kException);
  Action body = innerBlock(what.body);
  std::vector<CheckedCatch> catches;
  for (const Catch& clause : what.catches) {
    CheckedCatch checked;
    const Inner inner(body_);
    context_.guarded([&] {
      if (clause.type) checked.type = typeNamed(*clause.type);
      if (!checked.type.isA(kException)) {
        refuse(clause.type->place,
               "Only exceptions can be caught, but this is " + checked.type.name() + ".");
      }
      if (clause.variable) {
        const KnownVariable& known = declare(clause.variable->name, checked.type);
        checked.store = store(known, variableAt(passed, clause.variable->name.place).code);
      }
    });
    checked.body = block(clause.body);
    catches.push_back(std::move(checked));
  }
  Action finally = innerBlock(what.finally);
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
      // However that ends, the exception goes on.
      finally->run(frame);
      frame.loopsToLeave = 0;
      throw;
    }
    const Flow last = finally->run(frame);
    return last == Flow::next ? flow : last;
  });
}

}  // namespace runner
