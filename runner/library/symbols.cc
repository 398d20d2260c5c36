#include "runner/library/symbols.h"

#include <algorithm>
#include <utility>

#include "runner/library/library.h"

namespace runner {

std::size_t Callable::required() const {
  return static_cast<std::size_t>(
      std::find_if(parameters.begin(), parameters.end(),
                   [](const Parameter& parameter) { return parameter.initial.has_value(); }) -
      parameters.begin());
}

bool Callable::takesTheSame(const Callable& other) const {
  return std::equal(parameters.begin(), parameters.end(), other.parameters.begin(),
                    other.parameters.end(), [](const Parameter& mine, const Parameter& its) {
                      return mine.type == its.type && mine.assigns == its.assigns;
                    });
}

const Symbol* Scope::findHere(const std::string& key) const {
  const auto found = symbols_.find(key);
  if (found != symbols_.end()) return &found->second;
  const bool isMember =
      library_ != nullptr && library_->hasMember(members_.as<MemberOf>()->type, key);
  return isMember ? &members_ : nullptr;
}

const Symbol* Scope::find(const std::string& key) const {
  for (const Scope* scope = this; scope != nullptr; scope = scope->outer_)
    if (const Symbol* const found = scope->findHere(key)) return found;
  return nullptr;
}

const KnownVariable* Scope::variable(const std::string& key) const {
  const Symbol* const found = find(key);
  return found == nullptr ? nullptr : found->as<KnownVariable>();
}

const Type* Scope::type(const std::string& key) const {
  for (const Scope* scope = this; scope != nullptr; scope = scope->outer_) {
    const Symbol* const found = scope->findHere(key);
    if (found != nullptr && found->as<Type>() != nullptr) return found->as<Type>();
  }
  return nullptr;
}

Candidates Scope::functions(const std::string& key) const {
  Candidates all;
  for (const Scope* scope = this; scope != nullptr; scope = scope->outer_) {
    const Symbol* const found = scope->findHere(key);
    if (found == nullptr) continue;
    const auto* const group = found->as<Candidates>();
    if (group == nullptr) break;
    all.insert(all.end(), group->begin(), group->end());
  }
  return all;
}

std::vector<std::string> Scope::ownNames() const {
  std::vector<std::string> names;
  for (const auto& [key, symbol] : symbols_) names.push_back(symbol.name);
  std::sort(names.begin(), names.end());
  return names;
}

std::vector<std::string> Scope::names() const {
  std::vector<std::string> names;
  for (const Scope* scope = this; scope != nullptr; scope = scope->outer_)
    for (std::string& name : scope->ownNames()) names.push_back(std::move(name));
  return names;
}

bool Scope::isWithin(const Scope& other) const {
  for (const Scope* scope = this; scope != nullptr; scope = scope->outer_)
    if (scope == &other) return true;
  return false;
}

Symbol* Scope::ofItsOwn(const std::string& key) {
  const auto found = symbols_.find(key);
  return found == symbols_.end() ? nullptr : &found->second;
}

Symbol& Scope::add(const std::string& key, Symbol symbol) {
  return symbols_.insert_or_assign(key, std::move(symbol)).first->second;
}

Symbol& Scope::addFunction(const std::string& key, const Callable& function, int line) {
  const auto [found, added] = symbols_.try_emplace(key, Symbol{function.name, line, Candidates()});
  if (found->second.as<Candidates>() == nullptr)
    found->second = {function.name, line, Candidates()};
  std::get<Candidates>(found->second.what).push_back(&function);
  return found->second;
}

void Scope::take(Scope&& other) {
  for (auto& [key, symbol] : other.symbols_) {
    symbol.line = 0;
    if (const auto* const module = symbol.as<Module>()) module->members->outer_ = this;
    const Symbol* const mine = findHere(key);
    auto* const group = std::get_if<Candidates>(&symbol.what);
    if (mine != nullptr && group != nullptr && mine->as<Candidates>() != nullptr) {
      for (const Callable* const earlier : *mine->as<Candidates>()) {
        const bool hidden = std::any_of(group->begin(), group->end(), [&](const Callable* one) {
          return one->takesTheSame(*earlier);
        });
        if (!hidden) group->push_back(earlier);
      }
    }
    add(key, std::move(symbol));
  }
  other.symbols_.clear();
}

}  // namespace runner
