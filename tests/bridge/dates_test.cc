// Points in time across the border.
#include "bridge/dates.h"

#include "native/exceptions.h"
#include "plugin/host.h"
#include "tests/support/intercept.h"
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

// The names that the host is asked for, and those that it is given with their values.
Lines names;

TEST_F(DatesTest, TheFieldsAreReadByTheseNames) {
  names.clear();
  intercept("REALGetPropValueInt",
            [](REALobject object, const char* name, std::int32_t* value) -> REALboolean {
              names.emplace_back(name);
              return callHost<REALboolean>("REALGetPropValueInt", object, name, value);
            });
  EXPECT_EQ(toNative(host->date({2001, 1, 2, 3, 4, 5})), "date(97445)");
  EXPECT_EQ(names, (Lines{"Year", "Month", "Day", "Hour", "Minute", "Second"}));
}

TEST_F(DatesTest, TheFieldsAreSetInThatOrderToo) {
  names.clear();
  intercept("REALSetPropValueInt", [](REALobject object, const char* name, std::int32_t value) {
    names.push_back(name + (" " + std::to_string(value)));
    callHost<void>("REALSetPropValueInt", object, name, value);
  });
  EXPECT_EQ(toHost(97445.5), "Date 2001-01-02 03:04:05");
  EXPECT_EQ(names, (Lines{"Year 2001", "Month 1", "Day 2", "Hour 3", "Minute 4", "Second 5"}));
}

TEST_F(DatesTest, ACalendarDateIsMadeInTheLocalZone) {
  const ObjectRef date = host->date({2001, 1, 2, 3, 4, 5});
  foundation.clearRecords();
  const id made = NewNSDate(date.as<REALdate>());
  EXPECT_EQ(foundation.messages(),
            (Lines{"+[NSTimeZone localTimeZone]",
                   "+[NSCalendarDate dateWithYear:month:day:hour:minute:second:timeZone:]"}));
  EXPECT_TRUE(isKindOf<"NSCalendarDate">(made));
}

TEST_F(DatesTest, AFieldThatCannotBeReadSendsNoMessage) {
  host->answerNull("REALGetPropValueInt", 6);  // all but the seconds are read
  const ObjectRef date = host->date({2001, 1, 2, 3, 4, 5});
  foundation.clearRecords();
  EXPECT_EQ(NewNSDate(date.as<REALdate>()), nullptr);
  EXPECT_EQ(foundation.messages(), Lines{});
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

TEST_F(DatesTest, AFieldThatCannotBeSetIsSkipped) {
  host->answerNull("REALSetPropValueInt", 2);
  EXPECT_EQ(toHost(97445), "Date 2001-00-02 03:04:05");
}

}  // namespace
}  // namespace zel
