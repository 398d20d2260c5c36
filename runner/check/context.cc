#include "runner/check/context.h"

#include <algorithm>

#include "runner/check/suggest.h"
#include "runner/text/text.h"

namespace runner {

void Context::report(const Problem& problem) {
  constexpr std::size_t kMostDiagnostics = 20;
  if (problem.message.empty()) return;
  if (diagnostics.size() < kMostDiagnostics) diagnostics.push_back(diagnose(source, problem));
}

Type Context::typeNamed(const TypeName& written, const Scope& scope) {
  const Type* found = nullptr;
  if (written.space) {
    const Symbol* const space = scope.find(written.space->key);
    const Symbol* const member = space == nullptr ? nullptr : memberOf(*space, written.word.key);
    if (member != nullptr) found = member->as<Type>();
  } else {
    found = scope.type(written.word.key);
  }
  if (found != nullptr) return written.array ? found->arrayOf() : *found;
  if (!unknown.insert(written.word.key).second) giveUp();
  refuse(written.place, "There is no type \"" + written.word.text + "\".", {},
         nearest(written.word.text, machine.types().names()));
}

const Symbol* Context::memberOf(const Symbol& space, const std::string& key) const {
  if (const auto* const module = space.as<Module>()) return module->members->findHere(key);
  const auto* const type = space.as<Type>();
  const Scope* const members = type == nullptr ? nullptr : library.spaceOf(*type);
  const Symbol* const found = members == nullptr ? nullptr : members->findHere(key);
  return found == nullptr || found->as<MemberOf>() != nullptr ? nullptr : found;
}

void Context::failToFind(const Word& name, const Scope& scope, const char* what) {
  if (!unknown.insert(name.key).second) giveUp();
  const std::string suggestion = nearest(name.text, scope.names());
  refuse(name.place, std::string("There is no ") + what + " \"" + name.text + "\".",
         textsOf(scope.functions(folded(suggestion))), suggestion);
}

std::vector<std::string> textsOf(const Candidates& candidates) {
  std::vector<std::string> texts;
  for (const Callable* const candidate : candidates) {
    if (std::find(texts.begin(), texts.end(), candidate->text) == texts.end())
      texts.push_back(candidate->text);
  }
  return texts;
}

}  // namespace runner
