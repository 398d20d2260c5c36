#include "plugin/host.h"

namespace zel {

constinit Resolver gResolver = nullptr;
constinit double rbversion = 0.0;

void* REALLoadFrameworkMethod(const char* declaration) {
  return pLoadGlobalMethod(nullptr, declaration);
}

}  // namespace zel
