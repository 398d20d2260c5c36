#include "tests/support/intercept.h"

#include <map>

#include "plugin/host.h"

namespace tests {
namespace {

std::map<std::string, void*>& replacements() {
  static std::map<std::string, void*> functions;
  return functions;
}

zel::Resolver hostResolver = nullptr;

void* resolve(const char* name) {
  const auto found = replacements().find(name);
  return found == replacements().end() ? hostResolver(name) : found->second;
}

}  // namespace

void interceptEntryPoint(const std::string& name, void* function) {
  if (zel::gResolver != resolve) {  // the plugin has been made fresh since
    replacements().clear();
    hostResolver = zel::gResolver;
    zel::gResolver = resolve;
  }
  replacements()[name] = function;
}

void* hostEntryPoint(const std::string& name) { return hostResolver(name.c_str()); }

}  // namespace tests
