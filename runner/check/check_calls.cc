// Calls: which of the methods of a name is meant, and with what.
#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "runner/check/checker.h"
#include "runner/check/suggest.h"
#include "runner/run/arrays.h"

namespace runner {
namespace {

std::string counted(std::size_t number, const char* what) {
  return std::to_string(number) + " " + what + (number == 1 ? "" : "s");
}

std::string hintFor(Type wanted, Type given) {
  return wanted == kString && given.isNumber() ? " Str makes a text of a number." : "";
}

// Runs a function with the values of arguments.
template <class Run>
Value withArguments(Frame& frame, const std::vector<ValueCode>& arguments, const Run& run) {
  if (arguments.empty()) return run(nullptr);
  if (arguments.size() == 1) {
    const Value one = arguments[0]->run(frame);
    return run(&one);
  }
  if (arguments.size() == 2) {
    const std::array<Value, 2> two = {arguments[0]->run(frame), arguments[1]->run(frame)};
    return run(two.data());
  }
  std::vector<Value> values;
  values.reserve(arguments.size());
  for (const ValueCode& argument : arguments) values.push_back(argument->run(frame));
  return run(values.data());
}

Value selfOf(Frame& frame, const ValueCode& self, const std::string& name, bool isObject) {
  if (self == nullptr) return {};
  Value object = self->run(frame);
  if (isObject && isNil(object))
    frame.machine.raise("NilObjectException", "\"" + name + "\" was called on Nil.");
  return object;
}

}  // namespace

TypedList Checker::checkAll(const Arguments& arguments, const Candidates& among) {
  const bool changes = std::any_of(among.begin(), among.end(), [](const Callable* callable) {
    return std::any_of(callable->parameters.begin(), callable->parameters.end(),
                       [](const Parameter& parameter) { return parameter.byRef; });
  });
  TypedList checked;
  for (const ExpressionPtr& argument : arguments)
    checked.push_back(changes ? changeable(*argument) : expression(*argument));
  return checked;
}

Typed Checker::changeable(const Expression& expression) {
  Target meant = target(expression);
  const bool isElement = meant.what == Target::What::element;
  const bool isProperty = meant.what == Target::What::method && !meant.setters.empty();
  if (!isElement && !isProperty) {
    Typed value = read(std::move(meant));
    value.place = expression.place;
    return value;
  }
  std::vector<Action> pinned = pin(meant);
  Typed value = read(again(meant));
  value.place = expression.place;
  value.changeable = std::make_shared<Changeable>(Changeable{std::move(pinned), std::move(meant)});
  return value;
}

// --- which one is meant

namespace {

ValueCode arrayCode(Type array, std::vector<ValueCode> codes) {
  return valueCode([codes = std::move(codes), array](Frame& frame) {
    std::vector<Value> values;
    for (const ValueCode& code : codes) values.push_back(code->run(frame));
    return newArray(frame.machine, array, values);
  });
}

bool gathers(const Callable& callable) {
  return !callable.parameters.empty() && callable.parameters.back().paramArray;
}

// Whether the arguments of a ParamArray are given one by one, and not as the array.
bool oneByOne(const Callable& callable, const TypedList& arguments) {
  return gathers(callable) && (arguments.size() != callable.parameters.size() ||
                               arguments.back().type != callable.parameters.back().type);
}

bool fitsInNumber(const Callable& callable, const TypedList& arguments) {
  const std::size_t given = arguments.size();
  if (gathers(callable)) return given + 1 >= callable.parameters.size();
  return given >= callable.required() && given <= callable.parameters.size();
}

// The type of an argument.
Type wantedBy(const Callable& callable, const TypedList& arguments, std::size_t i) {
  const std::size_t last = callable.parameters.size() - 1;
  if (i >= last && oneByOne(callable, arguments)) return callable.parameters[last].type.element();
  return callable.parameters[i].type;
}

// For the only one that can have been meant.
[[noreturn]] void failToFit(const Word& name, const Callable& only, const TypedList& arguments) {
  const std::vector<std::string> declarations = {only.text};
  // The value of an assignment isn't counted: nobody writes it among the arguments.
  const std::size_t assigned = only.assigns() ? 1 : 0;
  const std::size_t most = only.parameters.size() - assigned;
  const std::size_t given = arguments.size() - std::min(assigned, arguments.size());
  if (!fitsInNumber(only, arguments)) {
    refuse(name.place,
           "\"" + name.text + "\" takes " + counted(most, "argument") + ", but " +
               (given == 0 ? "none" : std::to_string(given)) + (given == 1 ? " is" : " are") +
               " given.",
           declarations);
  }
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const Type wanted = wantedBy(only, arguments, i);
    if (distance(arguments[i].type, wanted)) continue;
    const bool isValue = assigned == 1 && i + 1 == arguments.size();
    const std::string which =
        isValue ? "The value" : "Argument " + std::to_string(i + 1) + " of \"" + name.text + "\"";
    refuse(arguments[i].place,
           which + " must be " + wanted.name() + ", but this is " + arguments[i].type.name() + "." +
               hintFor(wanted, arguments[i].type),
           declarations);
  }
  refuse(name.place, "\"" + name.text + "\" can't be called like this.", declarations);
}

[[noreturn]] void failToMatch(const Word& name, const Candidates& candidates,
                              const TypedList& arguments) {
  const std::vector<std::string> declarations = textsOf(candidates);
  if (candidates.empty())
    refuse(name.place, "\"" + name.text + "\" takes no arguments.", declarations);
  // Those of another number of arguments were hardly meant.
  Candidates meant = candidates;
  std::erase_if(meant, [&arguments](const Callable* candidate) {
    return !fitsInNumber(*candidate, arguments);
  });
  if (candidates.size() > 1 && meant.size() != 1) {
    std::string types;
    for (const Typed& argument : arguments)
      types += (types.empty() ? "" : ", ") + argument.type.name();
    refuse(name.place, "There is no \"" + name.text + "\" that takes (" + types + ").",
           declarations);
  }
  failToFit(name, meant.empty() ? *candidates.front() : *meant.front(), arguments);
}

}  // namespace

std::optional<int> Checker::fit(const Callable& callable, const TypedList& arguments) {
  if (!fitsInNumber(callable, arguments)) return std::nullopt;
  int sum = 0;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::optional<int> far = distance(arguments[i].type, wantedBy(callable, arguments, i));
    if (!far) return std::nullopt;
    sum += *far;
  }
  return sum;
}

Checker::Match Checker::resolve(const Word& name, const Candidates& candidates,
                                TypedList arguments) {
  const Callable* best = nullptr;
  int nearestYet = std::numeric_limits<int>::max();
  for (const Callable* const candidate : candidates) {
    const std::optional<int> distance = fit(*candidate, arguments);
    if (!distance || *distance >= nearestYet) continue;
    nearestYet = *distance;
    best = candidate;
  }
  if (best == nullptr) failToMatch(name, candidates, arguments);
  const std::vector<Parameter>& parameters = best->parameters;
  arguments = gathered(*best, std::move(arguments));
  std::vector<Reference> references(parameters.size());
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (parameters[i].byRef) {
      references[i] = referenceOf(std::move(arguments[i]), parameters[i], *best);
    } else {
      arguments[i] = convert(byValue(std::move(arguments[i])), parameters[i].type);
    }
  }
  for (std::size_t i = arguments.size(); i < parameters.size(); ++i)
    arguments.push_back(constantAt(parameters[i].type, *parameters[i].initial, name.place));
  return {best, std::move(arguments), std::move(references)};
}

TypedList Checker::gathered(const Callable& callable, TypedList arguments) {
  if (!oneByOne(callable, arguments)) return arguments;
  const std::size_t last = callable.parameters.size() - 1;
  const Type array = callable.parameters[last].type;
  std::vector<ValueCode> codes;
  for (std::size_t i = last; i < arguments.size(); ++i)
    codes.push_back(convert(byValue(std::move(arguments[i])), array.element()).code);
  arguments.erase(arguments.begin() + static_cast<std::ptrdiff_t>(last), arguments.end());
  arguments.push_back({array, arrayCode(array, std::move(codes)), {}});
  return arguments;
}

// --- what looks like a call

std::optional<Typed> Checker::special(const Word& name, const Arguments& arguments,
                                      const Place& place) {
  if (name.key == "array" && !arguments.empty()) return arrayOf(arguments, place);
  if (name.key == "ubound" && arguments.size() == 1) {
    Typed array = expression(*arguments.front());
    if (!array.type.isArray())
      refuse(array.place, "Ubound takes an array, but this is " + array.type.name() + ".");
    const Candidates candidates = library_.methods(array.type, name.key);
    return makeCall(resolve(name, candidates, {}), std::move(array.code), place);
  }
  return std::nullopt;
}

Typed Checker::arrayOf(const Arguments& arguments, const Place& place) {
  TypedList elements = checkAll(arguments);
  Type type = elements.front().type;
  for (const Typed& element : elements) {
    if (element.type == type) continue;
    const bool numbers = type.isNumber() && element.type.isNumber();
    type = numbers ? commonNumber(type, element.type) : kVariant;
  }
  if (type->array == nullptr) type = kVariant;
  std::vector<ValueCode> codes;
  for (Typed& element : elements) codes.push_back(convert(std::move(element), type).code);
  const Type array = type.arrayOf();
  return {array, arrayCode(array, std::move(codes)), place};
}

Typed Checker::castTo(Type type, const Arguments& arguments, const Place& place) {
  Typed value = expression(*arguments.front());
  const bool isEnum = type->kind == Kind::enumeration && value.type.isInteger();
  const bool ofEnum = value.type->kind == Kind::enumeration && type.isInteger();
  if (isEnum || ofEnum) {
    return {type, convert({kInteger, std::move(value.code), place}, isEnum ? kInteger : type).code,
            place};
  }
  if (!distance(value.type, type) && !distance(type, value.type))
    refuse(place, value.type.name() + " can't be cast to " + type.name() + ".");
  return {type, valueCode([code = std::move(value.code), type](Frame& frame) {
            return cast(frame.machine, code->run(frame), type);
          }),
          place};
}

// --- what a call changes

Reference Checker::referenceOf(Typed argument, const Parameter& parameter,
                               const Callable& callable) {
  const bool isVariable =
      argument.variable && argument.variable->where != KnownVariable::Where::constant;
  if (argument.type != parameter.type || (!isVariable && argument.changeable == nullptr)) {
    refuse(argument.place,
           "A ByRef parameter takes a variable, an element of an array or a property of type " +
               parameter.type.name() + ".",
           {callable.text});
  }
  if (isVariable) return {referenceTo(*argument.variable), nullptr};
  auto& [pinned, changed] = *argument.changeable;
  const Callable* const property = argument.method;
  if (property != nullptr && property->global != nullptr)
    return {referenceCode([global = property->global](Frame&) { return global; }), nullptr};
  if (property != nullptr && property->field) {
    return {referenceCode([pinned = std::move(pinned), object = std::move(changed.self->code),
                           slot = *property->field, name = property->name](Frame& frame) {
              runAll(pinned, frame);
              return &fieldOf(selfOf(frame, object, name, true), slot);
            }),
            nullptr};
  }
  // The method changes a copy.
  const KnownVariable copy = hidden(parameter.type);
  Action after = assign(std::move(changed), variableAt(copy, argument.place));
  return {referenceCode([pinned = std::move(pinned), code = std::move(argument.code),
                         slot = copy.slot](Frame& frame) {
            runAll(pinned, frame);
            frame.slots[slot] = code->run(frame);
            return &frame.slots[slot];
          }),
          std::move(after)};
}

// --- the call itself

Typed Checker::makeCall(Match match, ValueCode self, const Place& place, bool direct) {
  const Callable& callable = *match.callable;
  return {callable.result, callCode(std::move(match), std::move(self), direct),
          place,           std::nullopt,
          std::nullopt,    &callable};
}

namespace {

// An argument of a method of the program: its value, or where it is.
struct Passed {
  ValueCode value;
  Reference reference;
};

// Runs a method of the program. @param self nullable: the object that becomes its first slot.
Value runMethod(Frame& caller, const UserMethod& method, const std::vector<Passed>& all,
                const Value* self) {
  const std::size_t first = self == nullptr ? 0 : 1;
  std::vector<Value> values(all.size());
  std::vector<Value*> references(all.size());
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (all[i].reference.place != nullptr) {
      references[i] = all[i].reference.place->run(caller);
    } else {
      values[i] = all[i].value->run(caller);
    }
  }
  Frame frame(caller.machine, method.name, method.slotCount);
  if (self != nullptr) frame.slots.front() = *self;
  const auto offset = static_cast<std::ptrdiff_t>(first);
  std::move(values.begin(), values.end(), frame.slots.begin() + offset);
  std::copy(references.begin(), references.end(), frame.references.begin() + offset);
  frame.result = method.initialResult;
  method.body->run(frame);
  return std::move(frame.result);
}

// The same, and what it has left in places that are no variables goes to where it belongs.
Value callMethod(Frame& caller, const UserMethod& method, const std::vector<Passed>& all,
                 const Value* self) {
  Value result = runMethod(caller, method, all, self);
  for (const Passed& one : all)
    if (one.reference.after != nullptr) one.reference.after->run(caller);
  return result;
}

ValueCode userCall(const Callable& callable, std::vector<Passed> all, ValueCode self, bool direct) {
  const UserMethod* const method = callable.method.get();
  if (self == nullptr) {
    return valueCode([method, all = std::move(all)](Frame& caller) {
      return callMethod(caller, *method, all, nullptr);
    });
  }
  const std::optional<std::size_t> slot = direct ? std::nullopt : callable.slot;
  return valueCode([method, all = std::move(all), self = std::move(self), slot,
                    name = callable.name](Frame& caller) {
    const Value object = selfOf(caller, self, name, true);
    const UserMethod& meant = slot ? *classOf(object)->methods[*slot] : *method;
    return callMethod(caller, meant, all, &object);
  });
}

// Reads or sets a property that is kept in an object, or shared.
ValueCode fieldCall(std::size_t slot, const std::string& name, ValueCode self, ValueCode value) {
  if (value == nullptr) {
    return valueCode([slot, name, self = std::move(self)](Frame& frame) {
      return fieldOf(selfOf(frame, self, name, true), slot);
    });
  }
  return valueCode([slot, name, self = std::move(self), value = std::move(value)](Frame& frame) {
    Value fresh = value->run(frame);
    const Value object = selfOf(frame, self, name, true);
    std::swap(fieldOf(object, slot), fresh);
    return Value();
  });
}

ValueCode globalCall(Value* global, ValueCode value) {
  if (value == nullptr) return valueCode([global](Frame&) { return *global; });
  return valueCode([global, value = std::move(value)](Frame& frame) {
    Value fresh = value->run(frame);
    std::swap(*global, fresh);
    return Value();
  });
}

// A function of a plugin or of the runner.
ValueCode outsideCall(const Callable& callable, TypedList given, ValueCode self) {
  std::vector<ValueCode> arguments;
  std::vector<std::unique_ptr<host::ReadyText>> ready;
  for (Typed& argument : given) {
    const bool known = argument.type == kString && argument.constant;
    const std::string text = known ? textOf(*argument.constant) : std::string();
    ready.push_back(text.empty() ? nullptr : std::make_unique<host::ReadyText>(text));
    arguments.push_back(std::move(argument.code));
  }
  const std::string name = callable.name;
  if (callable.plugin != nullptr) {
    return valueCode([call = callable.plugin.get(), self = std::move(self),
                      arguments = std::move(arguments), ready = std::move(ready),
                      name](Frame& frame) {
      const Value object = selfOf(frame, self, name, true);
      return withArguments(frame, arguments, [&](const Value* values) {
        return frame.machine.call(*call, object, values, ready);
      });
    });
  }
  return valueCode([native = callable.native, self = std::move(self),
                    arguments = std::move(arguments), name, onNil = callable.onNil](Frame& frame) {
    const Value object = selfOf(frame, self, name, !onNil);
    return withArguments(frame, arguments, [&](const Value* values) {
      return native(frame.machine, object, values);
    });
  });
}

}  // namespace

ValueCode Checker::callCode(Match match, ValueCode self, bool direct) {
  const Callable& callable = *match.callable;
  if (callable.method != nullptr) {
    std::vector<Passed> all;
    for (std::size_t i = 0; i < match.arguments.size(); ++i)
      all.push_back({std::move(match.arguments[i].code), std::move(match.references[i])});
    return userCall(callable, std::move(all), std::move(self), direct);
  }
  ValueCode value;
  if (!match.arguments.empty()) value = std::move(match.arguments.front().code);
  if (callable.field)
    return fieldCall(*callable.field, callable.name, std::move(self), std::move(value));
  if (callable.global != nullptr) return globalCall(callable.global, std::move(value));
  if (value != nullptr) match.arguments.front().code = std::move(value);
  return outsideCall(callable, std::move(match.arguments), std::move(self));
}

}  // namespace runner
