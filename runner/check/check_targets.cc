// What names, members and calls mean, and how they are read and assigned to.
#include <algorithm>
#include <utility>

#include "runner/check/checker.h"
#include "runner/check/suggest.h"
#include "runner/run/arrays.h"
#include "runner/text/text.h"

namespace runner {
namespace {

using What = Target::What;

Target valueTarget(Typed value) {
  Target target;
  target.place = value.place;
  target.value = std::move(value);
  return target;
}

Candidates settersAmong(Candidates functions) {
  std::erase_if(functions, [](const Callable* function) { return !function->assigns(); });
  return functions;
}

[[noreturn]] void failToFindMember(Library& library, const Word& name, Type type, bool isClass) {
  const std::string what = isClass ? " has no shared method \"" : " has no method or property \"";
  std::string message = type.name() + what + name.text + "\".";
  if (isClass && !library.methods(type, name.key).empty())
    message += " It is a method of objects of the class.";
  if (type == kVariant)
    message += " A Variant is first put into a variable of the type that it holds.";
  const std::string suggestion =
      nearest(name.text, isClass ? library.sharedNames(type) : library.memberNames(type));
  const std::string key = folded(suggestion);
  refuse(name.place, message,
         textsOf(isClass ? library.shared(type, key) : library.methods(type, key)), suggestion);
}

// The same expression once more; it was pinned before.
Typed again(const Typed& pinned) {
  return pinned.variable ? variableAt(*pinned.variable, pinned.place)
                         : constantAt(pinned.type, *pinned.constant, pinned.place);
}

}  // namespace

Target Checker::target(const Expression& expression) {
  if (const auto* const name = std::get_if<Name>(&expression.what))
    return target(*name, {}, expression.place);
  if (const auto* const member = std::get_if<Member>(&expression.what))
    return target(*member, {}, expression.place);
  const auto* const call = std::get_if<Call>(&expression.what);
  if (call == nullptr) return valueTarget(this->expression(expression));
  if (const auto* const member = std::get_if<Member>(&call->callee->what))
    return target(*member, call->arguments, expression.place);
  const auto* const name = std::get_if<Name>(&call->callee->what);
  if (name != nullptr && scope().variable(name->word.key) == nullptr)
    return target(*name, call->arguments, expression.place);
  return elementOf(this->expression(*call->callee), call->arguments, expression.place);
}

Target Checker::target(const Name& name, const Arguments& arguments, const Place& place) {
  if (const KnownVariable* const known = scope().variable(name.word.key)) {
    Target target;
    target.what = What::variable;
    target.place = place;
    target.name = name.word;
    target.variable = *known;
    return target;
  }
  return ofName(name.word, arguments, place);
}

Target Checker::ofName(const Word& name, const Arguments& arguments, const Place& place) {
  if (std::optional<Typed> found = special(name, arguments, place))
    return valueTarget(std::move(*found));
  const Symbol* const symbol = scope().find(name.key);
  if (symbol == nullptr) context_.failToFind(name, scope(), "variable or method");
  if (symbol->as<Broken>() != nullptr) giveUp();
  if (const Type* const type = symbol->as<Type>()) {
    if (arguments.size() == 1) return valueTarget(castTo(*type, arguments, place));
    refuse(name.place, "\"" + name.text + "\" is a type, which is no value.");
  }
  Target method;
  method.what = What::method;
  method.place = place;
  method.name = name;
  method.getters = scope().functions(name.key);
  method.setters = settersAmong(method.getters);
  return methodOrElement(std::move(method), arguments);
}

std::optional<Type> Checker::classNamed(const Expression& expression) {
  const auto* const name = std::get_if<Name>(&expression.what);
  if (name == nullptr) return std::nullopt;
  const Symbol* const symbol = scope().find(name->word.key);
  const Type* const type = symbol == nullptr ? nullptr : symbol->as<Type>();
  return type != nullptr && type->isObject() ? std::optional(*type) : std::nullopt;
}

Target Checker::target(const Member& member, const Arguments& arguments, const Place& place) {
  if (const std::optional<Type> type = classNamed(*member.object))
    return ofClass(*type, member.name, arguments, place);
  return ofObject(expression(*member.object), member.name, arguments, place);
}

Target Checker::ofClass(Type type, const Word& name, const Arguments& arguments,
                        const Place& place) {
  Target method;
  method.what = What::method;
  method.place = place;
  method.name = name;
  method.getters = library_.shared(type, name.key);
  if (method.getters.empty()) failToFindMember(library_, name, type, true);
  return methodOrElement(std::move(method), arguments);
}

Target Checker::ofObject(Typed object, const Word& name, const Arguments& arguments,
                         const Place& place) {
  const Type type = object.type;
  if (type.isNothing()) refuse(object.place, "This gives no value that could have methods.");
  Target method;
  method.what = What::method;
  method.place = place;
  method.name = name;
  method.getters = library_.methods(type, name.key);
  method.setters = library_.setters(type, name.key);
  if (!method.getters.empty() || !method.setters.empty()) {
    method.self = std::move(object);
    return methodOrElement(std::move(method), arguments);
  }
  // A function that can be called on its first argument.
  method.getters = scope().functions(name.key);
  std::erase_if(method.getters, [type](const Callable* function) {
    return !function->extends || type == kVariant ||
           !distance(type, function->parameters.front().type);
  });
  if (method.getters.empty()) failToFindMember(library_, name, type, false);
  method.setters = settersAmong(method.getters);
  method.arguments = checkAll(arguments);
  method.arguments.insert(method.arguments.begin(), std::move(object));
  return method;
}

Target Checker::methodOrElement(Target method, const Arguments& arguments) {
  const bool indexes = method.getters.size() == 1 && arguments.size() == 1 &&
                       method.getters.front()->parameters.empty() &&
                       method.getters.front()->result.isArray();
  if (!indexes) {
    method.arguments = checkAll(arguments);
    return method;
  }
  const Place place = method.place;
  return elementOf(read(std::move(method)), arguments, place);
}

Target Checker::elementOf(Typed array, const Arguments& arguments, const Place& place) {
  if (!array.type.isArray())
    refuse(array.place, "This is " + array.type.name() + ", which is no array and no method.");
  if (arguments.size() != 1) refuse(place, "An element of an array is found by one index.");
  Target target;
  target.what = What::element;
  target.place = place;
  target.self = std::move(array);
  target.arguments.push_back(converted(*arguments.front(), kInteger));
  return target;
}

Typed Checker::read(Target target) {
  const auto self = [&target] { return target.self ? std::move(target.self->code) : nullptr; };
  switch (target.what) {
    case What::value:
      return std::move(*target.value);
    case What::variable:
      return variableAt(target.variable, target.place);
    case What::element:
      return {target.self->type.element(),
              valueCode(
                  [array = self(), index = std::move(target.arguments.front().code)](Frame& frame) {
                    const Value list = array->run(frame);
                    return runner::elementOf(frame.machine, list, index->run(frame));
                  }),
              target.place};
    case What::method:
      break;
  }
  if (target.getters.empty())
    refuse(target.name.place, "\"" + target.name.text + "\" can only be assigned to.",
           textsOf(target.setters));
  Match match = resolve(target.name, target.getters, std::move(target.arguments));
  return makeCall(std::move(match), self(), target.place);
}

Action Checker::assign(Target target, Typed value) {
  if (target.what == What::value) refuse(target.place, "Nothing can be assigned to this.");
  if (target.what == What::variable) {
    if (target.variable.where == KnownVariable::Where::constant) {
      refuse(target.place, "\"" + target.name.text + "\" is a constant and can't be changed.");
    }
    return store(target.variable, convert(std::move(value), target.variable.type).code);
  }
  if (target.what == What::element) {
    Typed element = convert(std::move(value), target.self->type.element());
    return action([array = std::move(target.self->code),
                   index = std::move(target.arguments.front().code),
                   value = std::move(element.code)](Frame& frame) {
      const Value wanted = value->run(frame);
      const Value list = array->run(frame);
      setElement(frame.machine, list, index->run(frame), wanted);
      return Flow::next;
    });
  }
  if (target.setters.empty()) {
    refuse(target.name.place,
           "\"" + target.name.text + "\" can't be assigned to: it has no setter.",
           textsOf(target.getters));
  }
  target.arguments.push_back(std::move(value));
  Match match = resolve(target.name, target.setters, std::move(target.arguments));
  ValueCode self = target.self ? std::move(target.self->code) : nullptr;
  return action([code = callCode(std::move(match), std::move(self))](Frame& frame) {
    code->run(frame);
    return Flow::next;
  });
}

std::vector<Action> Checker::pin(Target& target) {
  std::vector<Action> actions;
  const auto keep = [&](Typed& typed) {
    if (typed.constant) return;
    const KnownVariable kept = hidden(typed.type);
    actions.push_back(store(kept, std::move(typed.code)));
    const Callable* const method = typed.method;
    typed = variableAt(kept, typed.place);
    typed.method = method;
  };
  if (target.self) keep(*target.self);
  for (Typed& argument : target.arguments) keep(argument);
  return actions;
}

Action Checker::check(const Assign& what, const Place& place) {
  Target wanted = target(*what.target);
  if (!what.op) return assign(std::move(wanted), expression(*what.value));
  // As target = target op value, but what the target stands on is computed once.
  std::vector<Action> pinned = pin(wanted);
  Target before;
  before.what = wanted.what;
  before.place = wanted.place;
  before.name = wanted.name;
  before.variable = wanted.variable;
  before.getters = wanted.getters;
  before.setters = wanted.setters;
  if (wanted.self) before.self = again(*wanted.self);
  for (const Typed& argument : wanted.arguments) before.arguments.push_back(again(argument));
  if (wanted.what == What::value) refuse(wanted.place, "Nothing can be assigned to this.");
  Typed sum = binary(*what.op, read(std::move(before)), expression(*what.value), place);
  pinned.push_back(assign(std::move(wanted), std::move(sum)));
  if (pinned.size() == 1) return std::move(pinned.front());
  return action([pinned = std::move(pinned)](Frame& frame) {
    for (const Action& one : pinned) one->run(frame);
    return Flow::next;
  });
}

}  // namespace runner
