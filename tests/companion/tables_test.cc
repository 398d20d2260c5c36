// The description of NSExceptionZEL, and its registration in hosts of every kind.
#include "companion/tables.h"

#include "companion/exceptions.h"
#include "tests/companion/companion_test.h"
#include "tests/support/fresh_plugin.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests

template <class Function>
HostFunction address(Function* function) {
  return reinterpret_cast<HostFunction>(function);
}

TEST(ExceptionTablesTest, TheClassAsDeclared) {
  makePluginFresh();
  const OlderClassRecord& record = NSExceptionClass.base;
  EXPECT_EQ(record.version, 12);
  EXPECT_STREQ(record.name, "NSExceptionZEL");
  EXPECT_STREQ(record.superName, "RuntimeException");
  EXPECT_EQ(record.dataSize, static_cast<std::int32_t>(sizeof(void*)));
  EXPECT_EQ(record.systemUse, 0);
  EXPECT_EQ(record.constructor, nullptr);
  EXPECT_EQ(record.destructor, address(NSExceptionDestructor));
  EXPECT_EQ(record.properties, nullptr);
  EXPECT_EQ(record.propertyCount, 0);
  EXPECT_EQ(record.methods, NSExceptionMethods);
  EXPECT_EQ(record.methodCount, 3);
  EXPECT_EQ(record.events, nullptr);
  EXPECT_EQ(record.eventCount, 0);
  EXPECT_EQ(record.eventInstances, nullptr);
  EXPECT_EQ(record.eventInstanceCount, 0);
  EXPECT_EQ(record.interfaces, nullptr);
  EXPECT_EQ(record.attributes, nullptr);
  EXPECT_EQ(record.attributeCount, 0);
  EXPECT_EQ(record.constants, nullptr);
  EXPECT_EQ(record.constantCount, 0);
  EXPECT_EQ(record.flags, 4);
  EXPECT_EQ(record.sharedProperties, nullptr);
  EXPECT_EQ(record.sharedPropertyCount, 0);
  EXPECT_EQ(record.sharedMethods, nullptr);
  EXPECT_EQ(record.sharedMethodCount, 0);
  EXPECT_EQ(NSExceptionClass.delegates, nullptr);
  EXPECT_EQ(NSExceptionClass.delegateCount, 0);
  EXPECT_EQ(NSExceptionClass.enums, nullptr);
  EXPECT_EQ(NSExceptionClass.enumCount, 0);
}

TEST(ExceptionTablesTest, TheMethodsAsDeclared) {
  const struct {
    const char* declaration;
    HostFunction function;
  } expected[3] = {{"name as string", address(exceptionName)},
                   {"reason as string", address(exceptionReason)},
                   {"userInfo as dictionary", address(exceptionUserInfo)}};
  for (int i = 0; i < 3; ++i) {
    SCOPED_TRACE(expected[i].declaration);
    EXPECT_STREQ(NSExceptionMethods[i].declaration, expected[i].declaration);
    EXPECT_EQ(NSExceptionMethods[i].function, expected[i].function);
    EXPECT_EQ(NSExceptionMethods[i].setter, nullptr);
    EXPECT_EQ(NSExceptionMethods[i].flags, 4);
    EXPECT_EQ(NSExceptionMethods[i].attributeCount, 0);
    EXPECT_EQ(NSExceptionMethods[i].attributes, nullptr);
  }
}

struct HostCase {
  double host;
  std::int32_t version;
};

class ExceptionRegistrationTest : public CompanionTest,
                                  public testing::WithParamInterface<HostCase> {
 protected:
  void SetUp() override {
    CompanionTest::SetUp();
    startHost({.version = GetParam().host});
  }
};

INSTANTIATE_TEST_SUITE_P(Hosts, ExceptionRegistrationTest,
                         testing::Values(HostCase{2011.04, 9}, HostCase{2012.0, 10},
                                         HostCase{2013.0, 11}, HostCase{2013.03, 12},
                                         HostCase{2025.01, 12}));

TEST_P(ExceptionRegistrationTest, TheClassIsRegisteredWhole) {
  EXPECT_EQ(host->announcedVersion(), GetParam().version);
  const host::RegisteredClass* const registered = host->findClass(kExceptionClass);
  ASSERT_NE(registered, nullptr);
  EXPECT_EQ(registered->version, GetParam().version);
  EXPECT_EQ(registered->superName, "RuntimeException");
  EXPECT_EQ(registered->dataSize, 16);
  EXPECT_EQ(registered->flags, 4);
  ASSERT_EQ(registered->methods.size(), 3U);
  EXPECT_EQ(registered->methods.at(0).text, "name as string");
  EXPECT_EQ(registered->methods.at(2).text, "userInfo as dictionary");
  EXPECT_TRUE(registered->sharedMethods.empty());
}

class OtherExceptionClassTest : public CompanionTest {
 protected:
  void prepareHost() override {}  // a class of that name is there from the start
};

TEST_F(OtherExceptionClassTest, AClassThatIsThereStays) {
  startHost({.version = 2014.0, .keepSequence = true});
  const host::RegisteredClass* const there = host->findClass(kExceptionClass);
  ASSERT_NE(there, nullptr);
  EXPECT_EQ(there->version, 0);  // the host's own
  EXPECT_EQ(NSExceptionClass.base.systemUse, 0);
}

}  // namespace
}  // namespace zel
