// Objects of NSExceptionZEL: what they say of the native exception, and what they hold.
#include "companion/exceptions.h"

#include "bridge/native_to_variant.h"
#include "companion/tables.h"
#include "plugin/host.h"
#include "tests/companion/companion_test.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests
using namespace std::string_literals;

class ExceptionsTest : public CompanionTest, public testing::WithParamInterface<double> {
 protected:
  void SetUp() override {
    CompanionTest::SetUp();
    startHost({.version = GetParam()});
  }
};

INSTANTIATE_TEST_SUITE_P(Hosts, ExceptionsTest, testing::Values(2011.04, 2012.0, 2014.0));

TEST_P(ExceptionsTest, AnObjectTellsOfItsException) {
  const id info = foundation.dictionary({{"key", foundation.number("i", 7)}});
  const ObjectRef object =
      newHostObject(foundation.exception("NSRangeException", "Zu groß", "NSException", info));
  ASSERT_TRUE(object);
  EXPECT_EQ(host->describe(object), "NSExceptionZEL");
  EXPECT_EQ(host->property(object, "Message"), Value("Zu groß"s));
  EXPECT_EQ(host->property(object, "ErrorNumber"), Value(std::int32_t{0}));
  EXPECT_EQ(ask(object, "name"), Value("NSRangeException"s));
  EXPECT_EQ(ask(object, "reason"), Value("Zu groß"s));
  EXPECT_EQ(host->describe(ask(object, "userInfo")), "{\"key\": Int32 7}");
}

TEST_P(ExceptionsTest, AnExceptionWithoutTextsGivesNone) {
  const ObjectRef object = newHostObject(foundation.exception(std::nullopt, std::nullopt));
  ASSERT_TRUE(object);
  EXPECT_EQ(host->property(object, "Message"), Value(""s));
  EXPECT_EQ(host->property(object, "ErrorNumber"), Value(std::int32_t{0}));
  EXPECT_EQ(ask(object, "name"), Value(""s));
  EXPECT_EQ(ask(object, "reason"), Value(""s));
  EXPECT_EQ(ask(object, "userInfo"), Value(ObjectRef()));
}

TEST_P(ExceptionsTest, AnObjectKeepsItsExceptionAndGivesItUp) {
  const id exception = foundation.exception("Name", "Reason");
  EXPECT_EQ(foundation.references(exception), 1);
  ObjectRef object = newHostObject(exception);
  EXPECT_EQ(host->references(object.handle()), 1);
  EXPECT_EQ(foundation.references(exception), 2);
  object.reset();
  EXPECT_EQ(foundation.references(exception), 1);
}

TEST_P(ExceptionsTest, AnObjectWhoseLifeHasEndedHasForgottenItsException) {
  const id exception = foundation.exception("Name", "Reason");
  const ObjectRef object = newHostObject(exception);
  NSExceptionDestructor(object.handle());
  EXPECT_EQ(ask(object, "reason"), Value(""s));
  EXPECT_EQ(foundation.references(exception), 1);
}

TEST_P(ExceptionsTest, AnObjectOutlivesThePoolThatItsExceptionCameFrom) {
  const ObjectRef object = newHostObject(foundation.exception("Name", "Reason"));
  foundation.drainPool();
  EXPECT_EQ(ask(object, "reason"), Value("Reason"s));
}

TEST_P(ExceptionsTest, AnObjectOfTheProgramsOwnTellsNothing) {
  const ObjectRef object = host->make(kExceptionClass);
  EXPECT_EQ(ask(object, "name"), Value(""s));
  EXPECT_EQ(ask(object, "reason"), Value(""s));
  EXPECT_EQ(ask(object, "userInfo"), Value(ObjectRef()));
}

TEST_P(ExceptionsTest, AnExceptionAmongOtherValuesIsAnObjectToo) {
  const id exception = foundation.exception("Name", "Reason");
  ObjectRef object = ObjectRef::adopt(NewVariantFromNSObject(exception));
  EXPECT_EQ(host->describe(object), "NSExceptionZEL");
  EXPECT_EQ(ask(object, "name"), Value("Name"s));
  EXPECT_EQ(foundation.references(exception), 2);
  object.reset();
  EXPECT_EQ(foundation.references(exception), 1);
}

TEST_P(ExceptionsTest, ItIsMadeInAFixedOrder) {
  host->clearRecords();
  const ObjectRef object = newHostObject(foundation.exception("Name", "Reason"));
  EXPECT_EQ(host->sequence(),
            (Lines{"PluginNewInstance", "REALBuildString", "REALSetStringEncoding",
                   "REALSetPropValueString", "REALSetPropValueInt", "REALUnlockString"}));
}

class NewHostExceptionTest : public CompanionTest {};

TEST_F(NewHostExceptionTest, NilGivesNothing) {
  EXPECT_FALSE(newHostObject(nullptr));
  EXPECT_EQ(host->calls("PluginNewInstance"), 0);
}

TEST_F(NewHostExceptionTest, AHostThatMakesNoObjectGivesNothing) {
  const id exception = foundation.exception("Name", "Reason");
  host->answerNull("PluginNewInstance");
  EXPECT_FALSE(newHostObject(exception));
  EXPECT_EQ(foundation.references(exception), 1);
}

TEST_F(NewHostExceptionTest, AHostWithoutClassesGivesNothing) {
  host->removeClass(kExceptionClass);
  const id exception = foundation.exception("Name", "Reason");
  EXPECT_FALSE(newHostObject(exception));
  EXPECT_EQ(foundation.references(exception), 1);
}

// Another plugin has given the host the class: it has no room for data of this one.
class OthersExceptionClassTest : public CompanionTest {
 protected:
  void prepareHost() override {}
};

TEST_F(OthersExceptionClassTest, GetsTheMessageAlone) {
  const id exception = foundation.exception("Name", "Reason");
  const ObjectRef object = newHostObject(exception);
  ASSERT_TRUE(object);
  EXPECT_EQ(host->property(object, "Message"), Value("Reason"s));
  EXPECT_EQ(host->property(object, "ErrorNumber"), Value(std::int32_t{0}));
  EXPECT_EQ(foundation.references(exception), 1);
}

}  // namespace
}  // namespace zel
