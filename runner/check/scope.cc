#include "runner/check/scope.h"

#include <utility>

#include "runner/text/text.h"

namespace runner {

const KnownVariable* Scope::find(std::string_view name) const {
  const std::string key = folded(name);
  for (auto block = blocks_.rbegin(); block != blocks_.rend(); ++block) {
    const auto found = block->find(key);
    if (found != block->end()) return &found->second;
  }
  return nullptr;
}

const KnownVariable* Scope::findHere(std::string_view name) const {
  const auto found = blocks_.back().find(folded(name));
  return found == blocks_.back().end() ? nullptr : &found->second;
}

KnownVariable& Scope::add(KnownVariable variable) {
  std::string key = folded(variable.name);
  return blocks_.back().insert_or_assign(std::move(key), std::move(variable)).first->second;
}

std::vector<std::string> Scope::names() const {
  std::vector<std::string> names;
  for (const Variables& block : blocks_)
    for (const auto& [key, variable] : block) names.push_back(variable.name);
  return names;
}

Scope Scope::outermost() const {
  Scope scope;
  scope.blocks_ = {blocks_.front()};
  return scope;
}

Scope Scope::settled() const {
  Scope scope = *this;
  for (Variables& block : scope.blocks_)
    for (auto& [key, variable] : block) variable.line = 0;
  return scope;
}

}  // namespace runner
