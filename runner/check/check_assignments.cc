// Assignments: to variables, elements of arrays, and through setters.
#include <utility>

#include "runner/check/checker.h"
#include "runner/run/arrays.h"

namespace runner {
namespace {

bool doesNotAssign(const Callable* function) { return !function->assigns(); }

}  // namespace

ReferenceCode referenceTo(const KnownVariable& variable) {
  const auto code = [](auto function) -> ReferenceCode {
    return std::make_unique<CodeOf<Value*, decltype(function)>>(std::move(function));
  };
  using Where = KnownVariable::Where;
  const std::size_t slot = variable.slot;
  if (variable.where == Where::global)
    return code([place = variable.global](Frame&) { return place; });
  if (variable.where == Where::slot)
    return code([slot](Frame& frame) { return &frame.slots[slot]; });
  if (variable.where == Where::reference)
    return code([slot](Frame& frame) { return frame.references[slot]; });
  return nullptr;
}

Action Checker::store(const KnownVariable& variable, ValueCode value) {
  return action([place = referenceTo(variable), value = std::move(value)](Frame& frame) {
    Value fresh = value->run(frame);
    std::swap(*place->run(frame), fresh);  // what was there dies when the variable is settled
    return Flow::next;
  });
}

void Checker::refuseConstant(const KnownVariable& variable, const Place& place) {
  if (variable.where == KnownVariable::Where::constant)
    refuse(place, "\"" + variable.name + "\" is a constant and can't be changed.");
}

Action Checker::check(const Assign& what, const Place& place) {
  if (!what.op) return assignTo(*what.target, expression(*what.value));
  // As target = target op value.
  Typed before = expression(*what.target);
  return assignTo(*what.target,
                  binary(*what.op, std::move(before), expression(*what.value), place));
}

Action Checker::assignTo(const Expression& target, Typed value) {
  if (const auto* const name = std::get_if<Name>(&target.what))
    return assignName(*name, target.place, std::move(value));
  if (const auto* const member = std::get_if<Member>(&target.what))
    return assignMember(*member, {}, target.place, std::move(value));
  if (const auto* const call = std::get_if<Call>(&target.what))
    return assignCall(*call, target.place, std::move(value));
  refuse(target.place, "Nothing can be assigned to this.");
}

Action Checker::assignName(const Name& name, const Place& place, Typed value) {
  if (const KnownVariable* const known = scope_.find(name.name)) {
    refuseConstant(*known, place);
    return store(*known, convert(std::move(value), known->type).code);
  }
  Candidates functions = library_.functions(name.name);
  if (functions.empty()) failToFindName(name.name, place, "variable");
  Candidates setters = functions;
  std::erase_if(setters, doesNotAssign);
  return callSetter(name.name, place, setters, functions, {}, std::move(value), nullptr);
}

Action Checker::assignCall(const Call& call, const Place& place, Typed value) {
  if (const auto* const member = std::get_if<Member>(&call.callee->what))
    return assignMember(*member, call.arguments, place, std::move(value));
  const auto* const name = std::get_if<Name>(&call.callee->what);
  if (name != nullptr && scope_.find(name->name) == nullptr) {
    Candidates functions = library_.functions(name->name);
    if (functions.empty()) failToFindName(name->name, call.callee->place, "variable or method");
    Candidates setters = functions;
    std::erase_if(setters, doesNotAssign);
    return callSetter(name->name, call.callee->place, setters, functions, call.arguments,
                      std::move(value), nullptr);
  }
  Typed array = expression(*call.callee);
  if (!array.type.array || call.arguments.size() != 1) {
    refuse(place,
           "Only an element of an array can be set like this, but what stands before the "
           "parentheses is " +
               nameOf(array.type) + ".");
  }
  ValueCode index = number(*call.arguments.front(), kInteger).code;
  Typed element = convert(std::move(value), array.type.element());
  return action([array = std::move(array.code), index = std::move(index),
                 value = std::move(element.code)](Frame& frame) {
    const Value wanted = value->run(frame);
    const Value list = array->run(frame);
    setElement(frame.machine, list, index->run(frame), wanted);
    return Flow::next;
  });
}

Action Checker::assignMember(const Member& member, const Arguments& arguments,
                             const Place& /*place*/, Typed value) {
  const std::string className = classNamed(*member.object);
  if (!className.empty()) {
    const Candidates shared = library_.sharedMethods(className, member.name);
    if (shared.empty()) failToFindMember(member, objectOf(className));
    return callSetter(member.name, member.namePlace, {}, shared, arguments, std::move(value),
                      nullptr);
  }
  Typed object = expression(*member.object);
  const Candidates getters = methodsOf(object.type, member.name);
  const Candidates setters = object.type.kind == Kind::object && !object.type.array
                                 ? library_.setters(object.type.className, member.name)
                                 : Candidates();
  if (getters.empty() && setters.empty()) failToFindMember(member, object.type);
  return callSetter(member.name, member.namePlace, setters, getters, arguments, std::move(value),
                    std::move(object.code));
}

Action Checker::callSetter(const std::string& name, const Place& place, const Candidates& setters,
                           const Candidates& getters, const Arguments& arguments, Typed value,
                           ValueCode self) {
  if (setters.empty()) {
    std::vector<std::string> declarations;
    for (const Callable* const getter : getters) declarations.push_back(getter->text);
    refuse(place, "\"" + name + "\" can't be assigned to: it has no setter.", declarations);
  }
  TypedList all = checkAll(arguments);
  all.push_back(std::move(value));
  Typed call = makeCall(resolve(name, place, setters, std::move(all)), std::move(self), place);
  return action([code = std::move(call.code)](Frame& frame) {
    code->run(frame);
    return Flow::next;
  });
}

}  // namespace runner
