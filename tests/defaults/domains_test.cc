// The store as a whole.
#include "plugin/methods.h"
#include "plugin/tables.h"
#include "tests/support/plugin_test.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests

const char* const kClass = "NSUserDefaultsZEL";

class DomainsTest : public PluginTest {
 protected:
  void SetUp() override {
    PluginTest::SetUp();
    provideSiblings();
  }
};

std::uint8_t reply = 0;

TEST_F(DomainsTest, SynchronizeGivesTheReplyUnchanged) {
  const ObjectRef defaults = host->construct(kClass);
  foundation.addMethod("NSUserDefaults", "synchronize", [](id, SEL) -> BOOL { return reply; });
  for (const int byte : {0, 1, 2, 255}) {
    reply = static_cast<std::uint8_t>(byte);
    EXPECT_EQ(ask(defaults, "synchronize"), Value(static_cast<std::int8_t>(reply)));
  }
}

TEST_F(DomainsTest, SynchronizeGivesFalseAfterAnException) {
  const ObjectRef defaults = host->construct(kClass);
  foundation.throwAtMessage(1);
  const Outcome outcome = host->call(defaults, "synchronize");
  EXPECT_EQ(outcome.value, Value(std::int8_t{0}));
  EXPECT_EQ(outcome.raised, (Raised{"NSExceptionZEL", "told to fail", 0}));
}

TEST_F(DomainsTest, SynchronizeGivesFalseOnAnUnconstructedObject) {
  const ObjectRef defaults = host->make(kClass);
  EXPECT_EQ(ask(defaults, "synchronize"), Value(std::int8_t{0}));
}

TEST_F(DomainsTest, SynchronizeFindsTheObjectAtTheFixedPosition) {
  const ObjectRef defaults = host->construct(kClass);
  NSUserDefaultsClass.base.systemUse = 1000;
  foundation.clearRecords();
  EXPECT_EQ(ask(defaults, "synchronize"), Value(std::int8_t{1}));
  EXPECT_EQ(foundation.messages(), Lines{"-[NSUserDefaults synchronize]"});
}

}  // namespace
}  // namespace zel
