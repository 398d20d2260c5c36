// What a program declares, in phases: its types, the signatures of its methods and its properties,
// and then the bodies.
#pragma once

#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "runner/check/checker.h"
#include "runner/check/context.h"
#include "runner/syntax/ast.h"

namespace runner {

class Declarations {
 public:
  /// @param types what the program's types and modules are added to. @param scope the program's,
  /// within that: a variable may have the name of a type.
  Declarations(Context& context, Scope& types, Scope& scope)
      : context_(context), types_(types), program_(scope) {}

  void types(const Program& program);
  void signatures(const Program& program);
  void bodies();

  /// What gives properties that aren't those of objects their values, before the program's body.
  [[nodiscard]] std::vector<Action> takePrelude() { return std::move(prelude_); }
  /// How many slots that takes.
  [[nodiscard]] std::size_t slotCount() const { return slotCount_; }
  /// Leaves everything to the library's session. The classes become the host's.
  void keep();

 private:
  struct ClassInfo {
    const Space* space;
    Scope* scope;
    std::unique_ptr<ProgramClass> made;
    std::vector<const Property*> fields = {};
    bool busy = false;
    bool settled = false;
  };
  struct ModuleInfo {
    const Space* space;
    Scope* scope;
  };
  /// A method whose body is still to be checked.
  struct Pending {
    const Method* method;
    Callable* callable;
    Scope* scope;
    std::optional<Type> owner;
    bool ofObjects;
  };

  // --- types
  void addName(Scope& scope, const Word& name, Symbol symbol);
  void addSpaces(const std::vector<std::unique_ptr<Space>>& spaces, Scope& scope);
  void addSpace(const Space& space, Scope& scope);
  void addEnum(const Enumeration& enumeration, Scope& scope);
  void settle(ClassInfo& info);
  std::optional<Type> superOf(ClassInfo& info);

  // --- signatures
  void method(const Method& method, Scope& scope);
  void constants(const Space& space, Scope& scope);
  void methodsOf(ClassInfo& info);
  void methodOf(ClassInfo& info, const Method& method);
  void setSlot(const ClassInfo& info, const Method& method, Callable& callable);
  void methodsOf(const ModuleInfo& info);
  void propertiesOf(ClassInfo& info);
  void propertyOf(ClassInfo& info, const Property& property);
  void propertiesOf(const ModuleInfo& info);
  std::unique_ptr<Callable> signature(const Method& method, Scope& scope);
  Parameter parameter(const FormalParameter& written, const Callable& before, Scope& scope);
  void addFunction(const Method& method, Scope& scope, const Callable& callable);

  // --- bodies
  void body(const Pending& pending);
  void prepare(ClassInfo& info);

  Context& context_;
  Scope& types_;
  Scope& program_;
  std::vector<std::unique_ptr<ClassInfo>> classes_;
  std::unordered_map<const TypeRow*, ClassInfo*> byRow_;
  std::vector<ClassInfo*> ordered_;  // those above before those below
  std::vector<ModuleInfo> modules_;
  std::vector<Pending> pending_;
  Callables functions_;
  std::vector<Action> prelude_;
  std::size_t slotCount_ = 0;
};

}  // namespace runner
