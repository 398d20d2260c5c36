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

std::vector<std::string> textsOf(const Candidates& candidates) {
  std::vector<std::string> texts;
  for (const Callable* const candidate : candidates) {
    if (std::find(texts.begin(), texts.end(), candidate->text) == texts.end())
      texts.push_back(candidate->text);
  }
  return texts;
}

std::string counted(std::size_t number, const char* what) {
  return std::to_string(number) + " " + what + (number == 1 ? "" : "s");
}

std::string hintFor(const Type& wanted, const Type& given) {
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

TypedList Checker::checkAll(const Arguments& arguments) {
  TypedList checked;
  for (const ExpressionPtr& argument : arguments) checked.push_back(expression(*argument));
  return checked;
}

// --- which one is meant

std::optional<int> Checker::fit(const Callable& callable, const TypedList& arguments) {
  if (arguments.size() < callable.required || arguments.size() > callable.parameters.size())
    return std::nullopt;
  int sum = 0;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::optional<int> distance =
        library_.types().distance(arguments[i].type, callable.parameters[i]);
    if (!distance) return std::nullopt;
    sum += *distance;
  }
  return sum;
}

Checker::Match Checker::resolve(const std::string& name, const Place& place,
                                const Candidates& candidates, TypedList arguments) {
  const Callable* best = nullptr;
  int nearestYet = std::numeric_limits<int>::max();
  for (const Callable* const candidate : candidates) {
    const std::optional<int> distance = fit(*candidate, arguments);
    if (!distance || *distance >= nearestYet) continue;
    nearestYet = *distance;
    best = candidate;
  }
  if (best == nullptr) failToMatch(name, place, candidates, arguments);
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (!best->declaration.parameters[i].byRef)
      arguments[i] = convert(std::move(arguments[i]), best->parameters[i]);
  }
  for (std::size_t i = arguments.size(); i < best->parameters.size(); ++i) {
    const Value& value = best->defaults[i - best->required];
    arguments.push_back(
        {best->parameters[i], valueCode([value](Frame&) { return value; }), place, value});
  }
  return {best, std::move(arguments)};
}

void Checker::failToMatch(const std::string& name, const Place& place, const Candidates& candidates,
                          const TypedList& arguments) {
  const std::vector<std::string> declarations = textsOf(candidates);
  if (candidates.empty()) refuse(place, "\"" + name + "\" takes no arguments.", declarations);
  // Those of another number of arguments were hardly meant.
  Candidates meant = candidates;
  std::erase_if(meant, [&arguments](const Callable* candidate) {
    return arguments.size() < candidate->required ||
           arguments.size() > candidate->parameters.size();
  });
  if (candidates.size() > 1 && meant.size() != 1) {
    std::string types;
    for (const Typed& argument : arguments)
      types += (types.empty() ? "" : ", ") + nameOf(argument.type);
    refuse(place, "There is no \"" + name + "\" that takes (" + types + ").", declarations);
  }
  failToFit(name, place, meant.empty() ? *candidates.front() : *meant.front(), arguments);
}

void Checker::failToFit(const std::string& name, const Place& place, const Callable& only,
                        const TypedList& arguments) {
  const std::vector<std::string> declarations = {only.text};
  // The value of an assignment isn't counted: nobody writes it among the arguments.
  const std::size_t assigned = only.assigns() ? 1 : 0;
  const std::size_t most = only.parameters.size() - assigned;
  const std::size_t given = arguments.size() - std::min(assigned, arguments.size());
  if (given > most || arguments.size() < only.required) {
    refuse(place,
           "\"" + name + "\" takes " + counted(most, "argument") + ", but " +
               (given == 0 ? "none" : std::to_string(given)) + (given == 1 ? " is" : " are") +
               " given.",
           declarations);
  }
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const Type& wanted = only.parameters[i];
    if (library_.types().distance(arguments[i].type, wanted)) continue;
    const bool isValue = assigned == 1 && i + 1 == arguments.size();
    const std::string which =
        isValue ? "The value" : "Argument " + std::to_string(i + 1) + " of \"" + name + "\"";
    refuse(arguments[i].place,
           which + " must be " + nameOf(wanted) + ", but this is " + nameOf(arguments[i].type) +
               "." + hintFor(wanted, arguments[i].type),
           declarations);
  }
  refuse(place, "\"" + name + "\" can't be called like this.", declarations);
}

void Checker::failToFindMember(const Member& member, const Type& type) {
  const bool isClass = !classNamed(*member.object).empty();
  std::vector<std::string> names =
      isClass ? library_.sharedNames(type.className) : library_.memberNames(type);
  const std::string what = isClass ? " has no shared method \"" : " has no method or property \"";
  std::string message = nameOf(type) + what + member.name + "\".";
  const bool ofObjects = isClass && !library_.methods(type.className, member.name).empty();
  if (ofObjects) message += " It is a method of objects of the class.";
  if (type == kVariant)
    message += " A Variant is first put into a variable of the type that it holds.";
  const std::string suggestion = nearest(member.name, names);
  const Candidates suggested =
      isClass ? library_.sharedMethods(type.className, suggestion) : methodsOf(type, suggestion);
  refuse(member.namePlace, message, textsOf(suggested), suggestion);
}

void Checker::failToFindName(const std::string& name, const Place& place, const std::string& what) {
  std::vector<std::string> names = scope_.names();
  for (std::vector<std::string> more : {library_.functionNames(), library_.types().names()})
    names.insert(names.end(), more.begin(), more.end());
  const std::string suggestion = nearest(name, names);
  refuse(place, "There is no " + what + " \"" + name + "\".",
         textsOf(library_.functions(suggestion)), suggestion);
}

// --- by name

std::string Checker::classNamed(const Expression& expression) {
  const auto* const name = std::get_if<Name>(&expression.what);
  if (name == nullptr || scope_.find(name->name) != nullptr ||
      !library_.functions(name->name).empty())
    return "";
  return library_.types().className(name->name);
}

Typed Checker::callName(const Name& name, const Arguments& arguments, const Place& place) {
  if (std::optional<Typed> found = special(name, arguments, place)) return std::move(*found);
  Candidates functions = library_.functions(name.name);
  if (!functions.empty()) {
    const Place namePlace = {place.begin, place.begin + name.name.size()};
    return callOrIndex(name.name, namePlace, functions, arguments, nullptr, place);
  }
  const std::optional<Type> type = library_.types().find({name.name, false});
  if (type && arguments.size() == 1) return castTo(*type, arguments, place);
  const Place namePlace = {place.begin, place.begin + name.name.size()};
  if (type) refuse(namePlace, "\"" + name.name + "\" is a type, which is no value.");
  failToFindName(name.name, namePlace, "variable or method");
}

// What looks like a call and takes what no declaration can say.
std::optional<Typed> Checker::special(const Name& name, const Arguments& arguments,
                                      const Place& place) {
  if (host::sameName(name.name, "Array") && !arguments.empty()) return arrayOf(arguments, place);
  if (host::sameName(name.name, "Ubound") && arguments.size() == 1) {
    Typed array = expression(*arguments.front());
    if (!array.type.array)
      refuse(array.place, "Ubound takes an array, but this is " + nameOf(array.type) + ".");
    const Candidates candidates = library_.arrayMethods(array.type, name.name);
    return makeCall(resolve(name.name, place, candidates, {}), std::move(array.code), place);
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
  if (type.array || type.kind == Kind::nil) type = kVariant;
  std::vector<ValueCode> codes;
  for (Typed& element : elements) codes.push_back(convert(std::move(element), type).code);
  const Type array = type.arrayOf();
  return {array, valueCode([codes = std::move(codes), array](Frame& frame) {
            std::vector<Value> values;
            for (const ValueCode& code : codes) values.push_back(code->run(frame));
            return newArray(frame.machine, array, values);
          }),
          place, std::nullopt};
}

Typed Checker::castTo(const Type& type, const Arguments& arguments, const Place& place) {
  Typed value = expression(*arguments.front());
  const Types& types = library_.types();
  if (!types.distance(value.type, type) && !types.distance(type, value.type))
    refuse(place, nameOf(value.type) + " can't be cast to " + nameOf(type) + ".");
  return {type, valueCode([code = std::move(value.code), type](Frame& frame) {
            return cast(frame.machine, code->run(frame), type);
          }),
          place, std::nullopt};
}

// --- of objects

Candidates Checker::methodsOf(const Type& type, const std::string& name) {
  if (type.array) return library_.arrayMethods(type, name);
  Candidates found;
  if (type.kind == Kind::object) found = library_.methods(type.className, name);
  // An object can be constructed again, if its class lets it.
  if (found.empty() && type.kind == Kind::object && host::sameName(name, "Constructor")) {
    found = library_.constructors(type.className);
    std::erase_if(found, [](const Callable* c) { return c->result.kind != Kind::nothing; });
  }
  if (type.kind == Kind::variant) found = library_.methods("Variant", name);
  return found;
}

Typed Checker::callMember(const Member& member, const Arguments& arguments, const Place& place) {
  const std::string className = classNamed(*member.object);
  if (!className.empty()) {
    const Candidates shared = library_.sharedMethods(className, member.name);
    if (shared.empty()) failToFindMember(member, objectOf(className));
    return callOrIndex(member.name, member.namePlace, shared, arguments, nullptr, place);
  }
  Typed object = expression(*member.object);
  if (object.type.kind == Kind::nothing)
    refuse(object.place, "This gives no value that could have methods.");
  const Candidates methods = methodsOf(object.type, member.name);
  if (!methods.empty()) {
    return callOrIndex(member.name, member.namePlace, methods, arguments, std::move(object.code),
                       place);
  }
  // A function of texts or numbers, called on its first argument.
  Candidates extensions = library_.extensions(member.name);
  std::erase_if(extensions, [this, &object](const Callable* extension) {
    return object.type == kVariant ||
           !library_.types().distance(object.type, extension->parameters.front());
  });
  if (extensions.empty()) failToFindMember(member, object.type);
  TypedList all = checkAll(arguments);
  all.insert(all.begin(), std::move(object));
  return makeCall(resolve(member.name, member.namePlace, extensions, std::move(all)), nullptr,
                  place);
}

Typed Checker::callOrIndex(const std::string& name, const Place& namePlace,
                           const Candidates& candidates, const Arguments& arguments, ValueCode self,
                           const Place& place) {
  // An element of an array that a method without parameters gives.
  const bool indexes = candidates.size() == 1 && candidates.front()->parameters.empty() &&
                       candidates.front()->result.array && arguments.size() == 1;
  if (indexes) {
    Typed array = makeCall({candidates.front(), {}}, std::move(self), place);
    return element(std::move(array), arguments, place);
  }
  return makeCall(resolve(name, namePlace, candidates, checkAll(arguments)), std::move(self),
                  place);
}

// --- the call itself

Typed Checker::makeCall(Match match, ValueCode self, const Place& place) {
  const Callable& callable = *match.callable;
  return {callable.result, callCode(std::move(match), std::move(self)), place, std::nullopt,
          callable.text};
}

ValueCode Checker::callCode(Match match, ValueCode self) {
  const Callable& callable = *match.callable;
  if (callable.method != nullptr) return userCall(callable, std::move(match.arguments));
  std::vector<ValueCode> arguments;
  std::vector<std::unique_ptr<host::ReadyText>> ready;
  for (Typed& argument : match.arguments) {
    const bool known = argument.type == kString && argument.constant;
    const std::string text = known ? textOf(*argument.constant) : std::string();
    ready.push_back(text.empty() ? nullptr : std::make_unique<host::ReadyText>(text));
    arguments.push_back(std::move(argument.code));
  }
  const std::string name = callable.declaration.name;
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

ValueCode Checker::userCall(const Callable& callable, TypedList arguments) {
  struct Passed {
    ValueCode value;
    ReferenceCode reference;
  };
  std::vector<Passed> all;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    Passed passed;
    if (callable.method->byRef[i]) {
      const std::string text(source_.text(arguments[i].place));
      const KnownVariable* const known = scope_.find(text);
      if (known == nullptr || known->where == KnownVariable::Where::constant ||
          known->type != callable.parameters[i]) {
        refuse(arguments[i].place,
               "A ByRef parameter takes a variable of type " + nameOf(callable.parameters[i]) + ".",
               {callable.text});
      }
      passed.reference = referenceTo(*known);
    } else {
      passed.value = std::move(arguments[i].code);
    }
    all.push_back(std::move(passed));
  }
  return valueCode([method = callable.method.get(), all = std::move(all)](Frame& caller) {
    std::vector<Value> values(all.size());
    std::vector<Value*> references(all.size());
    for (std::size_t i = 0; i < all.size(); ++i) {
      if (all[i].value != nullptr) {
        values[i] = all[i].value->run(caller);
      } else {
        references[i] = all[i].reference->run(caller);
      }
    }
    Frame frame(caller.machine, method->name, method->slotCount);
    std::move(values.begin(), values.end(), frame.slots.begin());
    std::copy(references.begin(), references.end(), frame.references.begin());
    frame.result = method->initialResult;
    method->body->run(frame);
    return std::move(frame.result);
  });
}

}  // namespace runner
