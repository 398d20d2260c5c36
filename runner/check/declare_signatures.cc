// The second phase: constants, methods and properties.
#include <algorithm>
#include <utility>

#include "runner/check/declarations.h"

namespace runner {
namespace {

Reach reachOf(Access access) {
  if (access == Access::everybody) return Reach::everybody;
  return access == Access::family ? Reach::family : Reach::owner;
}

constexpr std::string_view kConstructor = "constructor";

}  // namespace

void Declarations::signatures(const Program& program) {
  for (const auto& info : classes_) constants(*info->space, *info->scope);
  for (const ModuleInfo& info : modules_) constants(*info.space, *info.scope);
  for (const auto& one : program.methods) method(*one, program_);
  for (const ModuleInfo& info : modules_) methodsOf(info);
  for (ClassInfo* const info : ordered_) methodsOf(*info);
  for (ClassInfo* const info : ordered_) propertiesOf(*info);
  for (const ModuleInfo& info : modules_) propertiesOf(info);
}

void Declarations::constants(const Space& space, Scope& scope) {
  for (const Constant& constant : space.constants) {
    Checker(context_, scope, nullptr).declaration(constant.declared);
    const Word& name = constant.declared.variables.front().name;
    Symbol* const added = scope.ofItsOwn(name.key);
    if (added == nullptr) continue;
    added->reach = reachOf(constant.access);
    if (constant.global) program_.add(name.key, *added);
  }
}

// --- methods

Parameter Declarations::parameter(const FormalParameter& written, const Callable& before,
                                  Scope& scope) {
  Parameter parameter;
  parameter.type = context_.typeNamed(written.type, scope);
  parameter.byRef = written.byRef;
  parameter.assigns = written.assigns;
  parameter.paramArray = written.paramArray;
  if (written.paramArray) parameter.type = parameter.type.arrayOf();
  if (!before.parameters.empty() && before.parameters.back().paramArray)
    refuse(written.name.place, "Nothing can stand behind a ParamArray.");
  if (written.extends && !before.parameters.empty())
    refuse(written.name.place, "Only the first parameter can be what the method extends.");
  if (written.optional) parameter.initial = parameter.type->initial();
  if (written.initial != nullptr) {
    Checker checker(context_, scope, nullptr);
    const Typed value = checker.converted(*written.initial, parameter.type);
    if (!value.constant)
      refuse(value.place, "The value of a parameter that may be left out is a constant.");
    parameter.initial = value.constant;
  }
  const bool needed = !parameter.initial && !parameter.paramArray && !parameter.assigns;
  if (needed && before.required() < before.parameters.size())
    refuse(written.name.place, "A parameter behind one that may be left out needs a value, too.");
  return parameter;
}

std::unique_ptr<Callable> Declarations::signature(const Method& method, Scope& scope) {
  auto callable = std::make_unique<Callable>();
  callable->text = method.text;
  callable->name = method.name.text;
  callable->reach = reachOf(method.access);
  callable->method = std::make_unique<UserMethod>();
  callable->method->name = method.name.text;
  callable->extends = !method.parameters.empty() && method.parameters.front().extends;
  for (const FormalParameter& written : method.parameters)
    callable->parameters.push_back(parameter(written, *callable, scope));
  if (method.result) callable->result = context_.typeNamed(*method.result, scope);
  callable->method->initialResult = callable->result->initial();
  return callable;
}

void Declarations::addFunction(const Method& method, Scope& scope, const Callable& callable) {
  const Symbol* const before = scope.findHere(method.name.key);
  const auto* const group = before == nullptr ? nullptr : before->as<Candidates>();
  if (before != nullptr && group == nullptr) {
    if (before->as<Broken>() != nullptr) giveUp();
    refuse(method.name.place, "\"" + method.name.text + "\" is declared already.");
  }
  for (const Callable* const other : group == nullptr ? Candidates() : *group) {
    if (other->takesTheSame(callable)) {
      refuse(method.name.place, "\"" + method.name.text + "\" is declared already.", {other->text});
    }
  }
  scope.addFunction(method.name.key, callable, context_.source.line(method.name.place)).reach =
      callable.reach;
}

void Declarations::method(const Method& method, Scope& scope) {
  context_.guarded([&] {
    try {
      std::unique_ptr<Callable> callable = signature(method, scope);
      addFunction(method, scope, *callable);
      if (method.global && &scope != &program_) addFunction(method, program_, *callable);
      pending_.push_back({&method, callable.get(), &scope, std::nullopt, false});
      functions_.push_back(std::move(callable));
    } catch (const Problem&) {
      if (scope.findHere(method.name.key) == nullptr)
        scope.add(method.name.key, {method.name.text, 0, Broken()});
      throw;
    }
  });
}

void Declarations::methodsOf(const ModuleInfo& info) {
  for (const auto& one : info.space->methods) method(*one, *info.scope);
  for (const Property& property : info.space->properties) {
    if (property.getter != nullptr) method(*property.getter, *info.scope);
    if (property.setter != nullptr) method(*property.setter, *info.scope);
  }
}

void Declarations::methodsOf(ClassInfo& info) {
  ProgramClass& made = *info.made;
  if (made.super != nullptr) made.methods = made.super->methods;
  for (const auto& one : info.space->methods) methodOf(info, *one);
  for (const Property& property : info.space->properties) {
    if (property.getter != nullptr) methodOf(info, *property.getter);
    if (property.setter != nullptr) methodOf(info, *property.setter);
  }
}

void Declarations::methodOf(ClassInfo& info, const Method& method) {
  context_.guarded([&] {
    const std::string& key = method.name.key;
    if (key == "destructor" || key.starts_with("operator_"))
      refuse(method.name.place, "\"" + method.name.text + "\" has no meaning in this runner.");
    std::unique_ptr<Callable> callable = signature(method, *info.scope);
    const Type type = info.made->type;
    callable->owner = type;
    Members& members = context_.library.membersOf(type);
    Group& group = method.shared         ? members.shared
                   : key == kConstructor ? members.constructors
                   : callable->assigns() ? members.setters
                                         : members.methods;
    for (const Callable* const other : group.named(key)) {
      if (other->takesTheSame(*callable)) {
        refuse(method.name.place, "\"" + method.name.text + "\" is declared already.",
               {other->text});
      }
    }
    if (!method.shared && key != kConstructor) setSlot(info, method, *callable);
    pending_.push_back({&method, callable.get(), info.scope, type, !method.shared});
    group.add(std::move(callable));
  });
}

// Lets a method stand for the one of a class above that takes the same.
void Declarations::setSlot(const ClassInfo& info, const Method& method, Callable& callable) {
  ProgramClass& made = *info.made;
  if (made.super != nullptr) {
    Library& library = context_.library;
    const Type super = made.super->type;
    for (const Callable* const other : callable.assigns()
                                           ? library.setters(super, method.name.key)
                                           : library.methods(super, method.name.key)) {
      if (!other->slot || !other->takesTheSame(callable)) continue;
      if (other->result != callable.result) {
        refuse(method.name.place,
               "The method of the class above gives " + other->result.name() + ".", {other->text});
      }
      callable.slot = other->slot;
    }
  }
  if (!callable.slot) {
    callable.slot = made.methods.size();
    made.methods.push_back(nullptr);
  }
  made.methods[*callable.slot] = callable.method.get();
}

// --- properties

void Declarations::propertiesOf(const ModuleInfo& info) {
  for (const Property& property : info.space->properties) {
    if (property.getter != nullptr || property.setter != nullptr) continue;
    Checker checker(context_, *info.scope, nullptr);
    prelude_.push_back(checker.declaration(property.declared));
    slotCount_ = std::max(slotCount_, checker.slotCount());
    for (const Variable& variable : property.declared.variables) {
      Symbol* const added = info.scope->ofItsOwn(variable.name.key);
      if (added == nullptr) continue;
      added->reach = reachOf(property.access);
      if (property.global) program_.add(variable.name.key, *added);
    }
  }
}

void Declarations::propertiesOf(ClassInfo& info) {
  ProgramClass& made = *info.made;
  if (made.super != nullptr) made.fields = made.super->fields;
  for (const Property& property : info.space->properties) {
    const bool computed = property.getter != nullptr || property.setter != nullptr;
    if (!computed) context_.guarded([&] { propertyOf(info, property); });
  }
}

void Declarations::propertyOf(ClassInfo& info, const Property& property) {
  const Declare& declared = property.declared;
  if (!declared.type) refuse(declared.variables.front().name.place, "A property needs a type.");
  Type type = context_.typeNamed(*declared.type, *info.scope);
  const Type owner = info.made->type;
  Members& members = context_.library.membersOf(owner);
  for (const Variable& variable : declared.variables) {
    if (variable.array && !type.isArray()) type = type.arrayOf();
    auto getter = std::make_unique<Callable>();
    getter->name = variable.name.text;
    getter->text = property.text;
    getter->result = type;
    getter->reach = reachOf(property.access);
    getter->owner = owner;
    if (property.shared) {
      getter->global = &context_.machine.addGlobal();
      *getter->global = type->initial();
    } else {
      getter->field = info.made->fields.size();
      info.made->fields.push_back(type);
    }
    auto setter = std::make_unique<Callable>();
    setter->name = getter->name;
    setter->text = getter->text;
    setter->reach = getter->reach;
    setter->owner = owner;
    setter->field = getter->field;
    setter->global = getter->global;
    setter->parameters.push_back({type, false, true});
    (property.shared ? members.shared : members.methods).add(std::move(getter));
    (property.shared ? members.shared : members.setters).add(std::move(setter));
  }
  info.fields.push_back(&property);
}

}  // namespace runner
