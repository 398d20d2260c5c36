// The built plugin in the reference host, over the real Foundation.
#pragma once

#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/family/family.h"
#include "host/host.h"
#include "host/loading/plugin_library.h"
#include "host/pool.h"
#include "native/corefoundation.h"

namespace tests {

using host::Host;
using host::HostOptions;
using host::ObjectRef;
using host::Outcome;
using host::Raised;
using host::Text;
using host::Value;
using Values = std::vector<Value>;

inline const char* const kClass = "NSUserDefaultsZEL";

/// A file of the product under test: the one just built or, where the environment names a folder in
/// ZEL_PRODUCT, the one there.
std::filesystem::path productFile(const std::string& name);
/// The file of a plugin there, NAME.bundle or NAME.so.
std::filesystem::path pluginFile(const std::string& plugin);

/// Runs another test of the suite of the one that runs, with the same parameter, in a process of
/// its own; its name begins with DISABLED_, which keeps it from being run by itself. A test failure
/// when it fails.
void inAnotherProcess(const std::string& test);

/// Loads the built plugin anew for every test, in a host of the version that the test asks for and
/// with an autorelease pool around it. Whatever the host handed out must have come back at the end.
class EndToEndTest : public testing::Test {
 protected:
  void TearDown() override;

  void startHost(const HostOptions& options);
  /// What is loaded into the new host, in its order: here, the plugin alone.
  virtual void loadPlugins();
  /// Loads the plugin.
  void loadPlugin();
  /// The standard defaults object.
  ObjectRef standard();
  /// The result of a call that must raise nothing.
  Value ask(const ObjectRef& object, const std::string& method, const Values& arguments = {});
  Value askShared(const std::string& method);
  /// Drops everything that was autoreleased so far.
  void drainPool() { pool_.drain(); }

  std::unique_ptr<host::PluginLibrary> library;
  std::unique_ptr<Host> host;

 private:
  host::Pool pool_;
};

/// The same among the other plugins of the family, whose hooks stay in a process for good, as the
/// companion plugin does.
///
/// Who they are is up to the environment's ZEL_FAMILY: "stand-ins" (so too without it),
/// "companion-first" and "companion-last" (the companion plugin, before or after the plugin),
/// "stand-ins-first" (the companion plugin too, but stand-ins have added everything before it).
class FamilyTest : public EndToEndTest {
 protected:
  FamilyTest();
  void TearDown() override;
  void loadPlugins() override;
  void loadCompanion();
  void addStandIns();
  /// Whether the stand-ins' hooks are the ones in force.
  [[nodiscard]] bool standInsRule() const;

  std::unique_ptr<host::PluginLibrary> companion;
  std::unique_ptr<host::Family> family;

 private:
  const struct FamilyKind& kind_;
};

/// The same with the standard defaults object at hand, in a host of each version that the tests are
/// instantiated with.
class DefaultsTest : public FamilyTest, public testing::WithParamInterface<double> {
 protected:
  void SetUp() override { startDefaults({.version = GetParam()}); }
  void TearDown() override {
    defaults.reset();
    FamilyTest::TearDown();
  }
  void startDefaults(const HostOptions& options) {
    startHost(options);
    defaults = standard();
  }

  ObjectRef defaults;
};

/// The host versions whose behaviour differs, and the newest of each kind.
inline constexpr double kHostVersions[] = {2011.04, 2012.0, 2012.99, 2013.0,
                                           2013.03, 2013.9, 2014.0,  2025.01};

/// The host versions of these to test in: all of them among stand-ins alone, the oldest and the
/// newest in the family's other orders, unless the environment has ZEL_EVERY_VERSION.
/// @param versions in their order.
std::vector<double> amongThese(std::span<const double> versions);
std::vector<double> amongThese(std::initializer_list<double> versions);

}  // namespace tests
