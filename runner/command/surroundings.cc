#include "runner/command/surroundings.h"

#include "host/family/runtime.h"

namespace runner {
namespace {

constexpr char kExceptions[] = "NSExceptionZEL";

}  // namespace

Surroundings::Surroundings(host::Host& host)
    : host_(host),
      family_(host, host::addToRuntime()),
      instances_(zel::CFDictionaryCreateMutable(zel::kDefaultAllocator, 0, nullptr, nullptr)) {
  // One of the plugins may bring its own.
  host.removeClass(kExceptions);
}

void Surroundings::complete() {
  if (host_.findClass(kExceptions) == nullptr) host_.addClass(kExceptions, "RuntimeException");
  // The methods that a plugin has added stay.
  family_.provideInstances(instances_);
  family_.providePreparation();
  family_.provideExceptions();
}

}  // namespace runner
