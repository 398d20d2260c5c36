#include "tests/end_to_end/end_to_end_test.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <string_view>

#include "host/family/runtime.h"
#include "tests/support/process.h"

namespace tests {
namespace {

void fail(const std::string& what) { ADD_FAILURE() << what; }

// The family's map; it lives as long as the process, as with a real family.
zel::CFMutableDictionaryRef sharedInstances() {
  static const zel::CFMutableDictionaryRef instances =
      zel::CFDictionaryCreateMutable(zel::kDefaultAllocator, 0, nullptr, nullptr);
  return instances;
}

const char* setting(const char* name, const char* otherwise) {
  const char* const value = std::getenv(name);
  return value != nullptr ? value : otherwise;
}

}  // namespace

std::filesystem::path productFile(const std::string& name) {
  return std::filesystem::path(setting("ZEL_PRODUCT", ZEL_PRODUCT)) / name;
}

std::filesystem::path pluginFile(const std::string& plugin) {
  const std::filesystem::path bundle = productFile(plugin + ".bundle");
  return std::filesystem::exists(bundle) ? bundle : productFile(plugin + ".so");
}

void inAnotherProcess(const std::string& test) {
  const testing::TestInfo& own = *testing::UnitTest::GetInstance()->current_test_info();
  const std::string name = own.name();
  const std::size_t parameter = std::min(name.find('/'), name.size());
  const std::string said =
      outputOf("/proc/self/exe", {program_invocation_name, "--gtest_also_run_disabled_tests",
                                  std::string("--gtest_filter=") + own.test_suite_name() + '.' +
                                      test + name.substr(parameter)});
  EXPECT_NE(said.find("[  PASSED  ] 1 test."), std::string::npos) << said;
}

void EndToEndTest::startHost(const HostOptions& options) {
  library = std::make_unique<host::PluginLibrary>(pluginFile(kClass));
  HostOptions fitting = options;
  fitting.border = library->border();
  host = std::make_unique<Host>(fitting);
  host->onFailure(fail);
  loadPlugins();
}

void EndToEndTest::loadPlugins() { loadPlugin(); }

void EndToEndTest::loadPlugin() { host->load(library->main()); }

void EndToEndTest::TearDown() {
  if (host != nullptr) {
    EXPECT_EQ(host->unbalanced(), "");
  }
  host = nullptr;
  library = nullptr;
}

ObjectRef EndToEndTest::standard() {
  return std::get<ObjectRef>(askShared("standardUserDefaults"));
}

Value EndToEndTest::ask(const ObjectRef& object, const std::string& method,
                        const Values& arguments) {
  const Outcome outcome = host->call(object, method, arguments);
  EXPECT_EQ(outcome.raised, std::nullopt);
  return outcome.value;
}

Value EndToEndTest::askShared(const std::string& method) {
  const Outcome outcome = host->callShared(kClass, method);
  EXPECT_EQ(outcome.raised, std::nullopt);
  return outcome.value;
}

// What is loaded or added, in this order.
struct FamilyKind {
  enum class Part { plugin, companion, standIns };
  std::string_view name;
  std::vector<Part> parts;

  [[nodiscard]] bool has(Part part) const { return std::ranges::count(parts, part) != 0; }
};

namespace {

using Part = FamilyKind::Part;

const FamilyKind& familyOfEnvironment() {
  static const std::vector<FamilyKind> kKinds = {
      {"stand-ins", {Part::plugin, Part::standIns}},
      {"companion-first", {Part::companion, Part::plugin}},
      {"companion-last", {Part::plugin, Part::companion}},
      {"stand-ins-first", {Part::standIns, Part::companion, Part::plugin}},
  };
  const std::string_view name = setting("ZEL_FAMILY", "stand-ins");
  const auto found = std::ranges::find(kKinds, name, &FamilyKind::name);
  if (found == kKinds.end())
    throw std::runtime_error("ZEL_FAMILY: no family is called " + std::string(name));
  return *found;
}

}  // namespace

std::vector<double> amongThese(std::span<const double> versions) {
  if (familyOfEnvironment().has(Part::companion) && std::getenv("ZEL_EVERY_VERSION") == nullptr)
    return {versions.front(), versions.back()};
  return {versions.begin(), versions.end()};
}

std::vector<double> amongThese(std::initializer_list<double> versions) {
  return amongThese(std::span(versions.begin(), versions.size()));
}

FamilyTest::FamilyTest() : kind_(familyOfEnvironment()) {}

void FamilyTest::loadPlugins() {
  family = std::make_unique<host::Family>(*host, host::addToRuntime());
  for (const Part part : kind_.parts) {
    if (part == Part::plugin) loadPlugin();
    if (part == Part::companion) loadCompanion();
    if (part == Part::standIns) addStandIns();
  }
}

void FamilyTest::loadCompanion() {
  // The host has the class from its start, as one that another plugin has given it.
  if (!standInsRule()) host->removeClass("NSExceptionZEL");
  companion = std::make_unique<host::PluginLibrary>(pluginFile("NSExceptionZEL"));
  host->load(companion->main());
}

void FamilyTest::addStandIns() {
  family->provideInstances(sharedInstances());
  family->providePreparation();
  family->provideExceptions();
}

bool FamilyTest::standInsRule() const { return kind_.has(Part::standIns); }

void FamilyTest::TearDown() {
  EndToEndTest::TearDown();
  family = nullptr;
  companion = nullptr;
}

}  // namespace tests
