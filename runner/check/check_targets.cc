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
  const Place place = value.place;
  return {.place = place, .value = std::move(value)};
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
Typed onceMore(const Typed& pinned) {
  return pinned.variable ? variableAt(*pinned.variable, pinned.place)
                         : constantAt(pinned.type, *pinned.constant, pinned.place);
}

}  // namespace

Target Checker::again(const Target& pinned) {
  Target same = {.what = pinned.what,
                 .place = pinned.place,
                 .name = pinned.name,
                 .variable = pinned.variable,
                 .getters = pinned.getters,
                 .setters = pinned.setters,
                 .direct = pinned.direct};
  if (pinned.self) same.self = onceMore(*pinned.self);
  for (const Typed& argument : pinned.arguments) same.arguments.push_back(onceMore(argument));
  return same;
}

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
  const Word& word = name.word;
  if (const KnownVariable* const known = scope().variable(word.key))
    return ofVariable(*known, word, arguments, place);
  if (std::optional<Typed> self = selfNamed({place, name})) return valueTarget(std::move(*self));
  if (std::optional<Typed> found = special(word, arguments, place))
    return valueTarget(std::move(*found));
  const Symbol* const symbol = scope().find(word.key);
  if (symbol == nullptr) context_.failToFind(word, scope(), "variable or method");
  if (symbol->as<Candidates>() != nullptr)
    return ofFunctions(scope().functions(word.key), word, arguments, place);
  return ofSymbol(*symbol, word, arguments, place);
}

std::optional<Typed> Checker::selfNamed(const Expression& expression) const {
  const auto* const name = std::get_if<Name>(&expression.what);
  const bool named = name != nullptr && (name->word.key == "self" || name->word.key == "me");
  if (!named || !body_.self) return std::nullopt;
  Typed self = variableAt(*body_.self, expression.place);
  self.variable.reset();  // nothing can be assigned to it
  return self;
}

Target Checker::ofSymbol(const Symbol& symbol, const Word& name, const Arguments& arguments,
                         const Place& place) {
  if (symbol.as<Broken>() != nullptr) giveUp();
  if (const auto* const functions = symbol.as<Candidates>())
    return ofFunctions(*functions, name, arguments, place);
  if (const auto* const known = symbol.as<KnownVariable>())
    return ofVariable(*known, name, arguments, place);
  if (const auto* const member = symbol.as<MemberOf>())
    return ofMember(member->type, name, arguments, place);
  const auto* const type = symbol.as<Type>();
  if (type != nullptr && arguments.size() == 1) return valueTarget(castTo(*type, arguments, place));
  refuse(name.place, "\"" + name.text + "\" is a " + (type != nullptr ? "type" : "module") +
                         ", which is no value.");
}

Target Checker::ofVariable(const KnownVariable& variable, const Word& name,
                           const Arguments& arguments, const Place& place) {
  if (!arguments.empty()) return elementOf(variableAt(variable, name.place), arguments, place);
  return {.what = What::variable, .place = place, .name = name, .variable = variable};
}

Target Checker::ofFunctions(const Candidates& functions, const Word& name,
                            const Arguments& arguments, const Place& place) {
  Target method = {.what = What::method,
                   .place = place,
                   .name = name,
                   .getters = functions,
                   .setters = settersAmong(functions)};
  return methodOrElement(std::move(method), arguments);
}

// Within a class a member's name stands alone.
Target Checker::ofMember(Type type, const Word& name, const Arguments& arguments,
                         const Place& place) {
  if (!library_.shared(type, name.key).empty()) return ofClass(type, name, arguments, place);
  if (!body_.self) {
    refuse(name.place, "\"" + name.text + "\" belongs to objects of " + type.name() +
                           ", and a shared method has none.");
  }
  return ofObject(variableAt(*body_.self, name.place), name, arguments, place);
}

const Symbol* Checker::spaceNamed(const Expression& expression) const {
  const Symbol* symbol = nullptr;
  if (const auto* const name = std::get_if<Name>(&expression.what)) {
    symbol = scope().find(name->word.key);
  } else if (const auto* const member = std::get_if<Member>(&expression.what)) {
    const Symbol* const around = spaceNamed(*member->object);
    symbol = around == nullptr ? nullptr : context_.memberOf(*around, member->name.key);
  }
  const bool isSpace =
      symbol != nullptr && (symbol->as<Module>() != nullptr || symbol->as<Type>() != nullptr);
  return isSpace ? symbol : nullptr;
}

Target Checker::ofSpace(const Symbol& space, const Word& name, const Arguments& arguments,
                        const Place& place) {
  const auto* const module = space.as<Module>();
  if (const Symbol* const found = context_.memberOf(space, name.key)) {
    const bool hidden = found->reach != Reach::everybody && module != nullptr &&
                        !scope().isWithin(*module->members);
    if (hidden) refuse(name.place, "\"" + name.text + "\" is private to " + space.name + ".");
    return ofSymbol(*found, name, arguments, place);
  }
  if (module == nullptr) return ofClass(*space.as<Type>(), name, arguments, place);
  refuse(name.place, space.name + " has no member \"" + name.text + "\".", {},
         nearest(name.text, module->members->ownNames()));
}

Target Checker::target(const Member& member, const Arguments& arguments, const Place& place) {
  if (const Symbol* const space = spaceNamed(*member.object))
    return ofSpace(*space, member.name, arguments, place);
  const auto* const name = std::get_if<Name>(&member.object->what);
  const bool isSuper = name != nullptr && name->word.key == "super" && body_.self &&
                       scope().find(name->word.key) == nullptr;
  if (!isSuper) return ofObject(expression(*member.object), member.name, arguments, place);
  if (body_.owner.value()->superClass == nullptr)
    refuse(name->word.place, body_.owner->name() + " has no super class.");
  Typed object = variableAt(*body_.self, member.object->place);
  object.type = Type(body_.owner.value()->superClass);
  Target method = ofObject(std::move(object), member.name, arguments, place);
  method.direct = true;
  return method;
}

Candidates Checker::reachable(Candidates candidates, const Word& name) const {
  const Candidates all = candidates;
  std::erase_if(candidates, [this](const Callable* one) {
    if (one->reach == Reach::everybody) return false;
    if (!body_.owner) return true;
    return one->reach == Reach::owner ? *body_.owner != *one->owner
                                      : !body_.owner->isA(*one->owner);
  });
  if (candidates.empty() && !all.empty()) {
    refuse(name.place,
           "\"" + name.text + "\" is " +
               (all.front()->reach == Reach::owner ? "private" : "protected") + " to " +
               all.front()->owner->name() + ".",
           textsOf(all));
  }
  return candidates;
}

Target Checker::ofClass(Type type, const Word& name, const Arguments& arguments,
                        const Place& place) {
  Target method = {.what = What::method,
                   .place = place,
                   .name = name,
                   .getters = reachable(library_.shared(type, name.key), name)};
  if (method.getters.empty()) failToFindMember(library_, name, type, true);
  method.setters = settersAmong(method.getters);
  return methodOrElement(std::move(method), arguments);
}

Target Checker::ofObject(Typed object, const Word& name, const Arguments& arguments,
                         const Place& place) {
  const Type type = object.type;
  if (type.isNothing()) refuse(object.place, "This gives no value that could have methods.");
  Target method = {.what = What::method,
                   .place = place,
                   .name = name,
                   .getters = reachable(library_.methods(type, name.key), name),
                   .setters = reachable(library_.setters(type, name.key), name)};
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
  method.arguments = checkAll(arguments, method.getters);
  method.arguments.insert(method.arguments.begin(), std::move(object));
  return method;
}

Target Checker::methodOrElement(Target method, const Arguments& arguments) {
  const bool indexes = method.getters.size() == 1 && arguments.size() == 1 &&
                       method.getters.front()->parameters.empty() &&
                       method.getters.front()->result.isArray();
  if (!indexes) {
    Candidates among = method.getters;
    among.insert(among.end(), method.setters.begin(), method.setters.end());
    method.arguments = checkAll(arguments, among);
    return method;
  }
  const Place place = method.place;
  return elementOf(read(std::move(method)), arguments, place);
}

Target Checker::elementOf(Typed array, const Arguments& arguments, const Place& place) {
  if (!array.type.isArray())
    refuse(array.place, "This is " + array.type.name() + ", which is no array and no method.");
  if (arguments.size() != 1) refuse(place, "An element of an array is found by one index.");
  Target target = {.what = What::element, .place = place, .self = std::move(array)};
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
  if (target.getters.empty()) {
    refuse(target.name.place, "\"" + target.name.text + "\" can only be assigned to.",
           textsOf(target.setters));
  }
  Match match = resolve(target.name, target.getters, std::move(target.arguments));
  return makeCall(std::move(match), self(), target.place, target.direct);
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
  return action([code = callCode(std::move(match), std::move(self), target.direct)](Frame& frame) {
    code->run(frame);
    return Flow::next;
  });
}

std::vector<Action> Checker::pin(Target& target) {
  std::vector<Action> actions;
  const auto keep = [&](Typed& typed) {
    if (typed.constant) return;
    typed = byValue(std::move(typed));
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
  if (wanted.what == What::value) refuse(wanted.place, "Nothing can be assigned to this.");
  Typed sum = binary(*what.op, read(again(wanted)), expression(*what.value), place);
  pinned.push_back(assign(std::move(wanted), std::move(sum)));
  if (pinned.size() == 1) return std::move(pinned.front());
  return action([pinned = std::move(pinned)](Frame& frame) {
    runAll(pinned, frame);
    return Flow::next;
  });
}

}  // namespace runner
