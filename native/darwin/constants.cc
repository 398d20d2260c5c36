#include "native/corefoundation.h"

namespace zel {
namespace {

extern "C" void* dlsym(void* handle, const char* name);

// The handle that means every library of the process.
void* everywhere() { return reinterpret_cast<void*>(std::intptr_t{-2}); }

}  // namespace

// By its name: a constant that this system's Foundation lacks must not keep the plugin from
// loading.
CFStringRef zelFoundationConstant(const char* name) {
  auto* const constant = static_cast<const CFStringRef*>(dlsym(everywhere(), name));
  return constant == nullptr ? nullptr : *constant;
}

}  // namespace zel
