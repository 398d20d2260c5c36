#include "runner/surroundings.h"

#include "testkit/siblings/runtime.h"

namespace runner {
namespace {

zel::id newPool() { return zel::send<zel::id, "new">(zel::classNamed<"NSAutoreleasePool">()); }

}  // namespace

Surroundings::Surroundings(testkit::Host& host)
    : family_(host, testkit::addToRuntime()),
      instances_(zel::CFDictionaryCreateMutable(zel::kDefaultAllocator, 0, nullptr, nullptr)),
      pool_(newPool()) {
  // A real member of the family among the plugins has added its own by now, and they stay.
  family_.provideInstances(instances_);
  family_.providePreparation();
  family_.provideExceptions();
}

Surroundings::~Surroundings() { zel::send<void, "drain">(pool_); }

void Surroundings::drain() {
  zel::send<void, "drain">(pool_);
  pool_ = newPool();
}

}  // namespace runner
