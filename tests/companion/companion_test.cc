#include "tests/companion/companion_test.h"

#include "companion/family.h"

namespace tests {

void CompanionTest::TearDown() {
  freeFamilyInstances();
  PluginTest::TearDown();
}

void CompanionTest::prepareHost() { host->removeClass(kExceptionClass); }

void CompanionTest::freeFamilyInstances() {
  if (zel::familyInstances != nullptr) zel::CFRelease(zel::familyInstances);
  zel::familyInstances = nullptr;
}

ObjectRef newHostObject(zel::id exception) {
  return ObjectRef::adopt(zel::send<zel::REALobject, "NewNSExceptionZEL:">(
      zel::classNamed<"NSException">(), exception));
}

}  // namespace tests
