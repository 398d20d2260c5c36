// Lets calendar dates be of any year.
//
// GNUstep base 1.28 finds a date's year by counting, from a number that is 0.2 % too low: far in
// the future that takes long, and before the year 1 it never ends. It takes a year before 1 for
// another when it makes a date. May go when it computes years, of either sign.
//
// Years before 1 are counted as astronomers do: 0 comes before 1, and -1 before 0. Dates more than
// some two thousand million years away have the fields of that time.
#import <Foundation/Foundation.h>
#include <math.h>
#include <stdlib.h>

#include "native/gnustep/replaced_methods.h"

// The calendar repeats itself, days of the week included.
enum { kCycleYears = 400, kCycleDays = 146097 };
enum { kMinuteSeconds = 60, kHourSeconds = 3600, kDaySeconds = 86400 };
enum { kReferenceDay = 730486 };  // the 1st of January 2001, when that of the year 1 is 1
enum { kLastYear = 9999 };        // of those that Foundation itself counts; the first is 1

static const double kFarthest = 6.7e16;  // seconds from 2001

// What a clock and a calendar on the wall show.
struct Wall {
  int64_t day;  // of the era; 1 is the first of the year 1
  int64_t year;
  int64_t month;
  int64_t dayOfMonth;
  int64_t dayOfYear;
  int64_t second;  // of the day
};

typedef id (*InitWithYear)(id, SEL, NSInteger, NSUInteger, NSUInteger, NSUInteger, NSUInteger,
                           NSUInteger, NSTimeZone*);
typedef NSString* (*Description)(id, SEL, NSString*, NSDictionary*);

static InitWithYear originalInitWithYear;
static Description originalDescription;

// Towards the past, also below 0.
static int64_t quotient(int64_t number, int64_t divisor) {
  return number / divisor - (number % divisor < 0 ? 1 : 0);
}

static bool isLeapYear(int64_t year) {
  return year % 4 == 0 && (year % 100 != 0 || year % kCycleYears == 0);
}

// Days before the year, counted from the beginning of its cycle.
static int64_t daysBefore(int64_t yearOfCycle) {
  return 365 * yearOfCycle + (yearOfCycle + 3) / 4 - (yearOfCycle + 99) / 100 +
         (yearOfCycle + 399) / kCycleYears;
}

static void findDate(struct Wall* wall) {
  static const int kMonthDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  // A cycle begins with a year that 400 divides, 366 days before the year 1 for one.
  const int64_t days = wall->day + 365;
  const int64_t cycle = quotient(days, kCycleDays);
  const int64_t dayOfCycle = days - cycle * kCycleDays;
  int64_t year = dayOfCycle / 366;
  while (year + 1 < kCycleYears && daysBefore(year + 1) <= dayOfCycle) ++year;  // once at most
  wall->year = cycle * kCycleYears + year;
  wall->dayOfYear = dayOfCycle - daysBefore(year) + 1;
  wall->month = 1;
  wall->dayOfMonth = wall->dayOfYear;
  for (const int* length = kMonthDays;; ++length, ++wall->month) {
    const int64_t here = *length + (wall->month == 2 && isLeapYear(wall->year) ? 1 : 0);
    if (wall->dayOfMonth <= here) return;
    wall->dayOfMonth -= here;
  }
}

static struct Wall wallOf(NSCalendarDate* date) {
  const double seconds =
      [date timeIntervalSinceReferenceDate] + (double)[[date timeZone] secondsFromGMTForDate:date];
  const int64_t whole = (int64_t)floor(fmax(-kFarthest, fmin(seconds, kFarthest)));
  const int64_t day = quotient(whole, kDaySeconds);
  struct Wall wall = {.day = day + kReferenceDay, .second = whole - day * kDaySeconds};
  findDate(&wall);
  return wall;
}

// How many cycles later a year is one that Foundation itself counts.
static int64_t cyclesTo(int64_t year) {
  const bool isCounted = year >= 1 && year <= kLastYear;
  return isCounted ? 0 : -quotient(year - 1, kCycleYears);
}

static double secondsIn(int64_t cycles) { return (double)cycles * kCycleDays * kDaySeconds; }

// --- the methods

static id initWithYear(id self, SEL selector, NSInteger year, NSUInteger month, NSUInteger day,
                       NSUInteger hour, NSUInteger minute, NSUInteger second, NSTimeZone* zone) {
  const int64_t cycles = cyclesTo(year);
  NSCalendarDate* const date =
      originalInitWithYear(self, selector, (NSInteger)(year + cycles * kCycleYears), month, day,
                           hour, minute, second, zone);
  if (cycles == 0) return date;
  // It keeps its zone and its format.
  return [date initWithTimeIntervalSinceReferenceDate:[date timeIntervalSinceReferenceDate] -
                                                      secondsIn(cycles)];
}

static NSString* description(id self, SEL selector, NSString* format, NSDictionary* locale) {
  const int64_t year = wallOf(self).year;
  const int64_t cycles = cyclesTo(year);
  if (cycles == 0) return originalDescription(self, selector, format, locale);
  NSCalendarDate* const counted = [NSCalendarDate
      dateWithTimeIntervalSinceReferenceDate:fmax(-kFarthest,
                                                  fmin([self timeIntervalSinceReferenceDate],
                                                       kFarthest)) +
                                             secondsIn(cycles)];
  [counted setTimeZone:[self timeZone]];
  NSString* const text = [NSString stringWithFormat:year < 0 ? @"-%04lld" : @"%04lld", llabs(year)];
  return originalDescription(counted, selector,
                             [format stringByReplacingOccurrencesOfString:@"%Y" withString:text],
                             locale);
}

static NSInteger dayOfCommonEra(id self, SEL selector) {
  (void)selector;
  return (NSInteger)wallOf(self).day;
}

static NSInteger yearOfCommonEra(id self, SEL selector) {
  (void)selector;
  return (NSInteger)wallOf(self).year;
}

static NSInteger monthOfYear(id self, SEL selector) {
  (void)selector;
  return (NSInteger)wallOf(self).month;
}

static NSInteger dayOfMonth(id self, SEL selector) {
  (void)selector;
  return (NSInteger)wallOf(self).dayOfMonth;
}

static NSInteger dayOfYear(id self, SEL selector) {
  (void)selector;
  return (NSInteger)wallOf(self).dayOfYear;
}

static NSInteger dayOfWeek(id self, SEL selector) {
  (void)selector;
  const int64_t day = wallOf(self).day;  // the era began on a Monday, which is 1
  return (NSInteger)(day - 7 * quotient(day, 7));
}

static NSInteger hourOfDay(id self, SEL selector) {
  (void)selector;
  return (NSInteger)wallOf(self).second / kHourSeconds;
}

static NSInteger minuteOfHour(id self, SEL selector) {
  (void)selector;
  return (NSInteger)wallOf(self).second % kHourSeconds / kMinuteSeconds;
}

static NSInteger secondOfMinute(id self, SEL selector) {
  (void)selector;
  return (NSInteger)wallOf(self).second % kMinuteSeconds;
}

// Carries the methods' replacements; never has an instance.
@interface ZELCalendarDates : NSObject
@end

@implementation ZELCalendarDates

+ (void)load {
  static const char kClass[] = "NSCalendarDate";
  static const struct {
    const char* selector;
    NSInteger (*function)(id, SEL);
  } kFields[] = {{"dayOfCommonEra", dayOfCommonEra}, {"yearOfCommonEra", yearOfCommonEra},
                 {"monthOfYear", monthOfYear},       {"dayOfMonth", dayOfMonth},
                 {"dayOfYear", dayOfYear},           {"dayOfWeek", dayOfWeek},
                 {"hourOfDay", hourOfDay},           {"minuteOfHour", minuteOfHour},
                 {"secondOfMinute", secondOfMinute}};
  for (size_t i = 0; i < sizeof kFields / sizeof *kFields; ++i) {
    zelReplaceMethod(kClass, kFields[i].selector, (AnyMethod)kFields[i].function);
  }
  originalInitWithYear = (InitWithYear)zelReplaceMethod(
      kClass, "initWithYear:month:day:hour:minute:second:timeZone:", (AnyMethod)initWithYear);
  originalDescription = (Description)zelReplaceMethod(
      kClass, "descriptionWithCalendarFormat:locale:", (AnyMethod)description);
}

@end
