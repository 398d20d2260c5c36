#include "host/internal/methods.h"

#include <algorithm>
#include <optional>
#include <stdexcept>

#include "host/internal/entry_points.h"
#include "host/internal/passing.h"
#include "host/internal/state.h"
#include "host/prepared_call.h"

namespace host::internal {
namespace {

using Methods = std::vector<RegisteredMethod>;
using Candidates = std::vector<const RegisteredMethod*>;

const Methods& methodsOf(const HostClass& hostClass, bool shared) {
  return shared ? hostClass.description.sharedMethods : hostClass.description.methods;
}

// The methods of that name, those of the class itself first.
Candidates methodsNamed(const HostClass& hostClass, bool shared, const std::string& name) {
  Candidates named;
  for (const HostClass* c = &hostClass; c != nullptr; c = c->super.get()) {
    for (const RegisteredMethod& method : methodsOf(*c, shared))
      if (sameName(method.declaration.name, name)) named.push_back(&method);
  }
  return named;
}

bool acceptsAll(const State& state, const std::vector<Parameter>& parameters,
                const std::vector<Value>& arguments) {
  return std::equal(parameters.begin(), parameters.end(), arguments.begin(), arguments.end(),
                    [&state](const Parameter& parameter, const Value& argument) {
                      return !parameter.byRef &&
                             rulesOf(parameter.type).accepts(state, parameter.type, argument);
                    });
}

bool assigns(const RegisteredMethod& method) {
  const std::vector<Parameter>& parameters = method.declaration.parameters;
  return !parameters.empty() && parameters.back().assigns;
}

[[noreturn]] void failToFind(const HostClass& hostClass, bool shared, const std::string& name,
                             const char* why) {
  std::string text = hostClass.description.name + "." + name + ": " + why + ". There is:";
  const Candidates named = methodsNamed(hostClass, shared, name);
  for (const RegisteredMethod* const method : named) text += "\n  " + method->text;
  if (named.empty()) {
    for (const RegisteredMethod& method : methodsOf(hostClass, shared))
      text += "\n  " + method.text;
  }
  throw std::invalid_argument(text);
}

// The one method that fits. A method of the class itself hides one of the same types above it.
template <class Fits>
const RegisteredMethod& theMethod(const Target& target, const std::string& name, const Fits& fits) {
  const bool shared = target.instance == nullptr;
  const RegisteredMethod* found = nullptr;
  for (const RegisteredMethod* const method : methodsNamed(target.hostClass, shared, name)) {
    if (!fits(*method)) continue;
    if (found != nullptr && !sameSignature(found->declaration, method->declaration))
      failToFind(target.hostClass, shared, name, "more than one method takes such arguments");
    if (found == nullptr) found = method;
  }
  if (found == nullptr)
    failToFind(target.hostClass, shared, name, "no method takes such arguments");
  return *found;
}

Value invoke(const Target& target, const RegisteredMethod& method,
             const std::vector<Value>& arguments) {
  const PreparedCall call(method.function, method.declaration, target.instance != nullptr);
  return call.run(target.instance, arguments.data());
}

// What an assignment to the method calls: the method itself when it assigns, or the setter of a
// getter as a method of its own, whose function is null when it has none. Null for a method that
// has no value.
std::optional<RegisteredMethod> setterOf(const RegisteredMethod& method) {
  if (assigns(method)) return method;
  if (!method.declaration.result) return std::nullopt;
  RegisteredMethod setter;
  setter.declaration.name = method.declaration.name;
  setter.declaration.parameters = method.declaration.parameters;
  setter.declaration.parameters.push_back({"value", *method.declaration.result, false, true});
  setter.function = method.setter;
  return setter;
}

}  // namespace

Value callMethod(State& state, const Target& target, const std::string& name,
                 const std::vector<Value>& arguments) {
  const RegisteredMethod& method =
      theMethod(target, name, [&state, &arguments](const RegisteredMethod& candidate) {
        return !assigns(candidate) &&
               acceptsAll(state, candidate.declaration.parameters, arguments);
      });
  if (method.function == nullptr)
    failToFind(target.hostClass, target.instance == nullptr, name, "it has no function");
  return invoke(target, method, arguments);
}

void assignToMethod(State& state, const Target& target, const std::string& name,
                    const std::vector<Value>& arguments, const Value& value) {
  std::vector<Value> all = arguments;
  all.push_back(value);
  const auto fits = [&state, &all](const RegisteredMethod& candidate) {
    const std::optional<RegisteredMethod> setter = setterOf(candidate);
    return setter && acceptsAll(state, setter->declaration.parameters, all);
  };
  const RegisteredMethod setter = setterOf(theMethod(target, name, fits)).value();
  if (setter.function == nullptr)
    failToFind(target.hostClass, target.instance == nullptr, name, "it has no setter");
  invoke(target, setter, all);
}

bool assignable(const HostClass& hostClass, const std::string& name) {
  const Candidates named = methodsNamed(hostClass, false, name);
  if (named.empty()) failToFind(hostClass, false, name, "no method has that name");
  return std::any_of(named.begin(), named.end(), [](const RegisteredMethod* method) {
    const std::optional<RegisteredMethod> setter = setterOf(*method);
    return setter && setter->function != nullptr;
  });
}

PluginFunction findFunction(const HostClass& hostClass, const Declaration& declaration) {
  for (const RegisteredMethod* const method : methodsNamed(hostClass, false, declaration.name)) {
    if (sameSignature(method->declaration, declaration)) return method->function;
    const std::optional<RegisteredMethod> setter = setterOf(*method);
    if (setter && setter->function != nullptr && sameSignature(setter->declaration, declaration))
      return setter->function;
  }
  return nullptr;
}

std::optional<Declaration> declarationFor(const State& state, const char* text,
                                          std::string_view who) {
  try {
    return parseDeclaration(text == nullptr ? "" : text);
  } catch (const std::invalid_argument& error) {
    state.failures.report(std::string(who) + " was given a bad " + error.what());
    return std::nullopt;
  }
}

void* loadObjectMethod(State& state, zel::REALobject object, const char* declaration) {
  constexpr std::string_view kWho = "REALLoadObjectMethod";
  const auto* const any = state.ledger.find<AnyObject>(object, kWho);
  const std::optional<Declaration> wanted = declarationFor(state, declaration, kWho);
  const auto* const instance = dynamic_cast<const HostObject*>(any);  // an array has no methods
  if (instance == nullptr || !wanted) return nullptr;
  const PluginFunction found = findFunction(instance->hostClass(), *wanted);
  const std::string_view name = nameOfMethod(found);
  if (!name.empty() && !state.control.lookUp(name)) return nullptr;
  return outward(state, reinterpret_cast<void*>(found));
}

}  // namespace host::internal
