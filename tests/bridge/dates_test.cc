// Points in time across the border.
#include "bridge/dates.h"

#include "native/exceptions.h"
#include "tests/support/plugin_test.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests

class DatesTest : public PluginTest {
 protected:
  std::string toNative(const ObjectRef& date) {
    return foundation.describe(NewNSDate(date.as<REALdate>()));
  }
  std::string toHost(double seconds) {
    return host->describe(ObjectRef::adopt(NSDateRB(foundation.date(seconds))));
  }
};

TEST_F(DatesTest, TheFieldsAreReadInOrder) {
  const ObjectRef date = host->date({2001, 1, 2, 3, 4, 5});
  host->clearRecords();
  EXPECT_EQ(toNative(date), "date(97445)");
  EXPECT_EQ(host->sequence(),
            (Lines{"REALGetPropValueInt", "REALGetPropValueInt", "REALGetPropValueInt",
                   "REALGetPropValueInt", "REALGetPropValueInt", "REALGetPropValueInt"}));
}

TEST_F(DatesTest, TheFieldsAreWallClockTimeInTheLocalZone) {
  foundation.setTimeZone(3600);
  EXPECT_EQ(toNative(host->date({2001, 1, 1, 1, 0, 0})), "date(0)");
  foundation.setTimeZone(-(9 * 3600 + 1800));
  EXPECT_EQ(toNative(host->date({2000, 12, 31, 14, 30, 0})), "date(0)");
}

TEST_F(DatesTest, NoDateGivesNil) { EXPECT_EQ(NewNSDate(nullptr), nullptr); }

TEST_F(DatesTest, AFieldThatCannotBeReadGivesNilAtOnce) {
  const ObjectRef date = host->date({2001, 1, 2, 3, 4, 5});
  for (int field = 1; field <= 6; ++field) {
    host->clearRecords();
    host->answerNull("REALGetPropValueInt", field);
    EXPECT_EQ(toNative(date), "nil");
    EXPECT_EQ(host->calls("REALGetPropValueInt"), field);
  }
}

TEST_F(DatesTest, AHostWithoutPropertiesGivesNil) {
  host->hide("REALGetPropValueInt");
  EXPECT_EQ(toNative(host->date({2001, 1, 2, 3, 4, 5})), "nil");
}

TEST_F(DatesTest, ANativeDateBecomesOneOfWholeSecondsInLocalTime) {
  EXPECT_EQ(toHost(97445.75), "Date 2001-01-02 03:04:05");
  foundation.setTimeZone(3600);
  EXPECT_EQ(toHost(0), "Date 2001-01-01 01:00:00");
  foundation.setTimeZone(-3600);
  EXPECT_EQ(toHost(0.5), "Date 2000-12-31 23:00:00");
}

TEST_F(DatesTest, TheCalendarDateIsAskedInAFixedOrder) {
  const id date = foundation.date(0);
  foundation.clearRecords();
  EXPECT_EQ(host->describe(ObjectRef::adopt(NSDateRB(date))), "Date 2001-01-01 00:00:00");
  EXPECT_EQ(foundation.messages(),
            (Lines{"-[NSDate timeIntervalSinceReferenceDate]", "+[NSCalendarDate alloc]",
                   "-[NSCalendarDate initWithTimeIntervalSinceReferenceDate:]",
                   "-[NSCalendarDate autorelease]", "-[NSCalendarDate yearOfCommonEra]",
                   "-[NSCalendarDate monthOfYear]", "-[NSCalendarDate dayOfMonth]",
                   "-[NSCalendarDate secondOfMinute]", "-[NSCalendarDate minuteOfHour]",
                   "-[NSCalendarDate hourOfDay]"}));
}

TEST_F(DatesTest, ACalendarDateThatCannotBeMadeGivesNothing) {
  foundation.addMethod("NSCalendarDate",
                       "initWithTimeIntervalSinceReferenceDate:", [](id self, SEL, double) -> id {
                         release(self);
                         return nullptr;
                       });
  EXPECT_EQ(toHost(0), "nil");
  EXPECT_EQ(host->calls("PluginNewInstance"), 0);
}

TEST_F(DatesTest, AHostThatMakesNoDatesGetsNothing) {
  host->answerNull("PluginNewInstance");
  EXPECT_EQ(toHost(0), "nil");
}

TEST_F(DatesTest, AHostThatSetsNoPropertiesStillGetsADate) {
  host->hide("REALSetPropValueInt");
  EXPECT_EQ(toHost(0), "Date 0000-00-00 00:00:00");
}

}  // namespace
}  // namespace zel
