#include "tests/support/plugin_test.h"

#include "plugin/main.h"
#include "tests/support/fresh_plugin.h"

namespace tests {
namespace {

void fail(const std::string& what) { ADD_FAILURE() << what; }

}  // namespace

PluginTest::PluginTest() : foundation(foundation_double::Foundation::shared()) {}

void PluginTest::SetUp() {
  foundation.reset();
  foundation.onFailure(fail);
  startHost({});
}

void PluginTest::TearDown() {
  if (host != nullptr) expectBalanced();
  abandonHost();
}

void PluginTest::startHost(const HostOptions& options) {
  if (host != nullptr) expectBalanced();
  abandonHost();
  makePluginFresh();
  host = std::make_unique<Host>(options);
  host->onFailure(fail);
  prepareHost();
  host->load(zel::REALPluginMain);
  foundation_double::Allocations::shared()
      .reset();  // an older host keeps what it was given at start
  foundation.clearRecords();
  host->clearRecords();
}

void PluginTest::provideFamily() {
  family = std::make_unique<host::Family>(*host, addToDouble());
  family->provideInstances(foundation.pointerTable());
  family->providePreparation();
  family->provideExceptions();
}

void PluginTest::expectBalanced() {
  giveBackConstants();
  EXPECT_EQ(host->unbalanced(), "");
  EXPECT_EQ(foundation.unbalanced(), "");
  EXPECT_EQ(foundation_double::Allocations::shared().live(), 0U);
  EXPECT_FALSE(foundation.faultsPending());
}

void PluginTest::abandonHost() {
  family = nullptr;
  host = nullptr;
}

Value PluginTest::ask(const ObjectRef& object, const std::string& method,
                      const std::vector<Value>& arguments) {
  const Outcome outcome = host->call(object, method, arguments);
  EXPECT_EQ(outcome.raised, std::nullopt);
  return outcome.value;
}

Lines PluginTest::traced(const std::function<void()>& body) {
  Lines asked;
  const auto add = [&asked](std::string_view line) { asked.emplace_back(line); };
  host->onCall(add);
  foundation.onRecord(add);
  body();
  host->onCall(nullptr);
  foundation.onRecord(nullptr);
  return asked;
}

Lines PluginTest::sentToDefaults() {
  Lines sent;
  for (const std::string& message : foundation.messages()) {
    if (message.starts_with("-[NSUserDefaults ")) sent.push_back(message);
  }
  return sent;
}

}  // namespace tests
