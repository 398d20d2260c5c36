// Lets the dates of XML property lists be read as they are written.
//
// They are in UTC, as the "Z" behind them says, and GNUstep base 1.28 writes them so; but it reads
// them as times of the default zone. In any other zone than UTC a stored date would come back as
// another one, and move on each time that its domain is read and written. Those of years that don't
// have four digits it can't read at all, nor then the file. May go when it reads what it writes.
#import <Foundation/Foundation.h>
#include <stdbool.h>
#include <stdio.h>

#include "native/gnustep/replaced_methods.h"

typedef id (*DateWithString)(id, SEL, NSString*, NSString*);

static DateWithString originalDateWithString;

// The format with which GNUstep base writes those dates, and nothing else. It reads those that have
// another length with its format for everything.
static NSString* const kWritten = @"%Y-%m-%dT%H:%M:%SZ";
static NSString* const kAnything = @"%Y-%m-%d %H:%M:%S %z";

struct Parts {
  int year;
  unsigned month, day, hour, minute, second;
};

static bool scan(NSString* text, struct Parts* parts) {
  int end = 0;
  const int found =
      sscanf([text UTF8String], "%d-%2u-%2uT%2u:%2u:%2uZ%n", &parts->year, &parts->month,
             &parts->day, &parts->hour, &parts->minute, &parts->second, &end);
  return found == 6 && (NSUInteger)end == [text length] && parts->month - 1 < 12 &&
         parts->day - 1 < 31 && parts->hour < 24 && parts->minute < 60 && parts->second < 60;
}

static id dateWithString(id self, SEL selector, NSString* text, NSString* format) {
  struct Parts parts;
  const bool isOfList = [format isEqualToString:kWritten] || [format isEqualToString:kAnything];
  if (!isOfList || !scan(text, &parts)) return originalDateWithString(self, selector, text, format);
  NSCalendarDate* const date =
      [NSCalendarDate dateWithYear:parts.year
                             month:parts.month
                               day:parts.day
                              hour:parts.hour
                            minute:parts.minute
                            second:parts.second
                          timeZone:[NSTimeZone timeZoneForSecondsFromGMT:0]];
  [date setCalendarFormat:kWritten];
  return date;
}

// Carries the method's replacement; never has an instance.
@interface ZELPropertyListDates : NSObject
@end

@implementation ZELPropertyListDates

+ (void)load {
  originalDateWithString = (DateWithString)zelReplaceClassMethod(
      "NSCalendarDate", "dateWithString:calendarFormat:", (AnyMethod)dateWithString);
}

@end
