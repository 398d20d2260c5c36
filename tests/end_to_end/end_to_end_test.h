// The built plugin in the reference host, over the real Foundation.
#pragma once

#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "native/corefoundation.h"
#include "testkit/host/host.h"
#include "testkit/library/plugin_library.h"
#include "testkit/siblings/siblings.h"

namespace tests {

using testkit::Host;
using testkit::HostOptions;
using testkit::ObjectRef;
using testkit::Outcome;
using testkit::Raised;
using testkit::Text;
using testkit::Value;
using Values = std::vector<Value>;

/// The plugin under test: the file that ZEL_PLUGIN names in the environment, else the one that was
/// built with the tests.
std::string productFile();

inline const char* const kClass = "NSUserDefaultsZEL";

/// Loads the built plugin anew for every test, in a host of the version that the test asks for and
/// with an autorelease pool around it. Whatever the host handed out must have come back at the end.
class EndToEndTest : public testing::Test {
 protected:
  EndToEndTest();
  ~EndToEndTest() override;
  void TearDown() override;

  void startHost(const HostOptions& options);
  /// The standard defaults object.
  ObjectRef standard();
  /// The result of a call that must raise nothing.
  Value ask(const ObjectRef& object, const std::string& method, const Values& arguments = {});
  Value askShared(const std::string& method);
  /// Drops everything that was autoreleased so far.
  void drainPool();

  std::unique_ptr<testkit::PluginLibrary> library;
  std::unique_ptr<Host> host;

 private:
  void openPool();
  zel::id pool_ = nullptr;
};

/// The same among the other plugins of the family, whose hooks can't be taken back in a process:
/// tests without them stand in a program of their own.
class FamilyTest : public EndToEndTest {
 protected:
  void TearDown() override;
  void startHost(const HostOptions& options);

  std::unique_ptr<testkit::Siblings> siblings;
};

/// The host versions whose behaviour differs, and the newest of each kind.
inline constexpr double kHostVersions[] = {2011.04, 2012.0, 2012.99, 2013.0,
                                           2013.03, 2013.9, 2014.0,  2025.01};

}  // namespace tests
