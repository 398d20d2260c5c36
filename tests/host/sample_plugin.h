// A small plugin that exercises the reference host the way real plugins do: a class with methods of
// every type, registered in either layout.
#pragma once

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "host/host.h"
#include "plugin/records.h"

namespace tests {

/// What the sample plugin does at start, and what has happened to it.
struct SamplePlugin {
  /// The plugin in use; each test starts with a new one.
  static SamplePlugin& current();
  /// Its REALPluginMain.
  static void main(zel::Resolver resolver);

  std::int32_t announced = 12;
  std::int32_t recorded = 12;
  std::int32_t dataSize = 16;
  const char* className = "SampleZEL";
  const char* superName = nullptr;
  const char* extraDeclaration = nullptr;  // of one more method

  zel::REALclassDefinition record = {};
  int constructed = 0;
  int destroyed = 0;
  std::int32_t stored = 0;  // by the setter of "count(key as string) as integer"
  std::string storedKey;
};

/// The entry point of that name in the current host, called as that function type.
template <class Function>
Function* entryPoint(const char* name) {
  return reinterpret_cast<Function*>(host::Host::resolver()(name));
}

/// A host, without plugin unless load() is called. Failures are kept; those that a test doesn't
/// take are failures of the test, and so is whatever it leaves unbalanced.
class HostTest : public testing::Test {
 protected:
  HostTest();
  void TearDown() override;

  void start(const host::HostOptions& options);
  void load() { host->load(SamplePlugin::main); }
  /// The failures so far, which are forgotten then.
  std::vector<std::string> takeFailures();

  std::unique_ptr<host::Host> host;

 private:
  std::vector<std::string> failures_;
};

}  // namespace tests
