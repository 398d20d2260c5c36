#include "tests/end_to_end/end_to_end_test.h"

#include <cstdlib>

#include "testkit/siblings/runtime.h"

namespace tests {
namespace {

void fail(const std::string& what) { ADD_FAILURE() << what; }

// The family's map; it lives as long as the process, as with a real family.
zel::CFMutableDictionaryRef sharedInstances() {
  static const zel::CFMutableDictionaryRef instances =
      zel::CFDictionaryCreateMutable(zel::kDefaultAllocator, 0, nullptr, nullptr);
  return instances;
}

}  // namespace

std::string productFile() {
  const char* const other = std::getenv("ZEL_PLUGIN");
  return other == nullptr ? ZEL_PLUGIN : other;
}

EndToEndTest::EndToEndTest() { openPool(); }

EndToEndTest::~EndToEndTest() { zel::send<void, "drain">(pool_); }

void EndToEndTest::openPool() {
  pool_ = zel::send<zel::id, "new">(zel::classNamed<"NSAutoreleasePool">());
}

void EndToEndTest::drainPool() {
  zel::send<void, "drain">(pool_);
  openPool();
}

void EndToEndTest::startHost(const HostOptions& options) {
  library = std::make_unique<testkit::PluginLibrary>(productFile());
  HostOptions fitting = options;
  fitting.border = library->border();
  host = std::make_unique<Host>(fitting);
  host->onFailure(fail);
  host->load(library->main());
}

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

void FamilyTest::startHost(const HostOptions& options) {
  EndToEndTest::startHost(options);
  siblings = std::make_unique<testkit::Siblings>(*host, testkit::addToRuntime());
  siblings->provideInstances(sharedInstances());
  siblings->providePreparation();
  siblings->provideExceptions();
}

void FamilyTest::TearDown() {
  EndToEndTest::TearDown();
  siblings = nullptr;
}

}  // namespace tests
