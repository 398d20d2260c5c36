// The first phase: the names of classes, modules and enums, and what stands above what.
#include <cstdint>
#include <utility>

#include "runner/check/declarations.h"
#include "runner/run/values.h"

namespace runner {
namespace {

// Classes whose objects only the host can make.
constexpr std::string_view kFinal[] = {"FolderItem", "MemoryBlock", "Pair", "System"};

}  // namespace

void Declarations::types(const Program& program) {
  for (const Enumeration& one : program.enumerations)
    context_.guarded([&] { addEnum(one, types_); });
  addSpaces(program.spaces, types_);
  for (const auto& info : classes_) context_.guarded([&] { settle(*info); });
}

void Declarations::addName(Scope& scope, const Word& name, Symbol symbol) {
  const Symbol* const earlier = scope.findHere(name.key);
  if (earlier != nullptr && earlier->line != 0) {
    refuse(name.place, "\"" + name.text + "\" is declared already, in line " +
                           std::to_string(earlier->line) + ".");
  }
  if (context_.library.language().type(name.key) != nullptr)
    refuse(name.place, "There is a type \"" + name.text + "\" already.");
  symbol.name = name.text;
  symbol.line = context_.source.line(name.place);
  scope.add(name.key, std::move(symbol));
}

void Declarations::addSpaces(const std::vector<std::unique_ptr<Space>>& spaces, Scope& scope) {
  for (const auto& space : spaces) context_.guarded([&] { addSpace(*space, scope); });
}

void Declarations::addSpace(const Space& space, Scope& scope) {
  Scope* inner = nullptr;
  if (space.isModule) {
    auto members = std::make_shared<Scope>(&scope == &types_ ? &program_ : &scope);
    inner = members.get();
    addName(scope, space.name, {"", 0, Module{std::move(members)}});
    modules_.push_back({&space, inner});
  } else {
    const Type type = context_.machine.types().declareClass(space.name.text);
    inner = &context_.library.addSpace(type, &scope == &types_ ? &program_ : &scope);
    classes_.push_back(std::make_unique<ClassInfo>(
        ClassInfo{&space, inner, std::make_unique<ProgramClass>(ProgramClass{type})}));
    byRow_[type.operator->()] = classes_.back().get();
    addName(scope, space.name, {"", 0, type});
  }
  for (const Enumeration& one : space.enumerations) context_.guarded([&] { addEnum(one, *inner); });
  addSpaces(space.spaces, *inner);
}

void Declarations::addEnum(const Enumeration& enumeration, Scope& scope) {
  const Type type = context_.machine.types().declareEnum(enumeration.name.text);
  addName(scope, enumeration.name, {"", 0, type});
  if (enumeration.global && &scope != &types_)
    types_.add(enumeration.name.key, {enumeration.name.text, 0, type});
  Scope& values = context_.library.addSpace(type, &scope);
  std::int32_t next = 0;
  for (const Enumeration::Member& member : enumeration.members) {
    if (member.value != nullptr) {
      Checker checker(context_, scope, nullptr);
      const Typed value = checker.converted(*member.value, kInteger);
      if (!value.constant) refuse(value.place, "The value of an enum's member is a constant.");
      next = integerOf(*value.constant);
    }
    KnownVariable known;
    known.type = type;
    known.where = KnownVariable::Where::constant;
    known.value = next;
    values.add(member.name.key, {member.name.text, 0, std::move(known)});
    next = static_cast<std::int32_t>(static_cast<std::uint32_t>(next) + 1);
  }
}

std::optional<Type> Declarations::superOf(ClassInfo& info) {
  const TypeName& written = *info.space->super;
  const Type super = context_.typeNamed(written, *info.scope);
  if (!super.isObject()) refuse(written.place, super.name() + " is no class.");
  if (super == kAnyObject) return std::nullopt;
  for (const std::string_view name : kFinal) {
    if (super->name == name)
      refuse(written.place, "No class can stand below " + super.name() + ".");
  }
  if (const auto above = byRow_.find(super.operator->()); above != byRow_.end()) {
    if (above->second->busy) refuse(written.place, "A class can't stand above itself.");
    settle(*above->second);
  }
  return super;
}

void Declarations::settle(ClassInfo& info) {
  if (info.settled) return;
  info.settled = info.busy = true;
  std::optional<Type> super;
  if (info.space->super) context_.guarded([&] { super = superOf(info); });
  info.busy = false;
  ProgramClass& made = *info.made;
  context_.machine.types().setSuper(made.type, super, made);
  if (super) made.super = (*super)->own;
  ordered_.push_back(&info);
}

}  // namespace runner
