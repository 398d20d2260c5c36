// Making the calls of the tables, each in a plugin of its own.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/defaults/fault_calls.h"

namespace tests {

/// How a call ended; its value lives on, so that what is made next is made elsewhere.
struct Ending {
  Outcome outcome;
  std::vector<Value> arguments;
  zel::id left = nullptr;  // a native exception that went past the host, or null
  bool raised = false;     // whether there was an exception of either kind
};

class CallsTest : public PluginTest, public testing::WithParamInterface<FaultCall> {
 protected:
  static constexpr const char* kClass = "NSUserDefaultsZEL";
  static constexpr double kVersion = 2014.0;

  const FaultCall& call() { return GetParam(); }
  Kit kit() { return {*host, *family, foundation}; }

  /// A fresh plugin, everything present.
  void prepare(double version);
  /// Nothing may be lost, and Foundation is put back.
  void finish();
  /// The same, but that many of the host's blocks were lost.
  void finishWithLostBlocks(std::size_t lost);

  /// Makes the arguments, arms the fault and calls.
  Ending attempt(const std::function<void()>& arm = nullptr);
  /// The same. A native exception that arrives fails the test, unless the method has no guard.
  Ending make(const std::function<void()>& arm = nullptr);

  void expectSuccess(const Ending& ending);
  void expectFailure(const Ending& ending);
  /// What the call that reads the first one's trace gives.
  void expectTrace(const std::string& expected);

  ObjectRef object;
};

}  // namespace tests
