// The companion plugin, freshly loaded between the reference host and the Foundation double.
#pragma once

#include <optional>
#include <string>

#include "tests/support/plugin_test.h"

namespace tests {

inline const char* const kExceptionClass = "NSExceptionZEL";

/// What the family asks of NSException when an exception has left a method.
ObjectRef newHostObject(zel::id exception);

class CompanionTest : public PluginTest {
 protected:
  void TearDown() override;
  /// A host in which no plugin has defined NSExceptionZEL.
  void prepareHost() override;

  /// Frees the map that the plugin gives the family, if it has made one.
  static void freeFamilyInstances();
};

}  // namespace tests
