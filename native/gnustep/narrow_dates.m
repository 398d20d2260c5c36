// Lets dates be what they are on 32 bits too, where GNUstep base 1.28 takes any before 2 January of
// the year 1 for that day, and any after that of 4001 likewise. May go when it doesn't.
#import <Foundation/Foundation.h>
#include <objc/runtime.h>

#include "native/gnustep/replaced_methods.h"

#if __SIZEOF_POINTER__ == 4

typedef id (*InitWithInterval)(id, SEL, NSTimeInterval);

// Of Foundation's own date and of the calendar date.
static InitWithInterval originalOfDate;
static InitWithInterval originalOfCalendarDate;
static ptrdiff_t offsetInDate;
static ptrdiff_t offsetInCalendarDate;

static id withInterval(id date, ptrdiff_t offset, NSTimeInterval seconds) {
  if (date != nil) *(NSTimeInterval*)((char*)date + offset) = seconds;
  return date;
}

static id initDate(id self, SEL selector, NSTimeInterval seconds) {
  return withInterval(originalOfDate(self, selector, seconds), offsetInDate, seconds);
}

static id initCalendarDate(id self, SEL selector, NSTimeInterval seconds) {
  return withInterval(originalOfCalendarDate(self, selector, seconds), offsetInCalendarDate,
                      seconds);
}

static ptrdiff_t offsetIn(const char* class) {
  return ivar_getOffset(class_getInstanceVariable(objc_getClass(class), "_seconds_since_ref"));
}

// Carries the methods' replacements; never has an instance.
@interface ZELNarrowDates : NSObject
@end

@implementation ZELNarrowDates

+ (void)load {
  static const char kInit[] = "initWithTimeIntervalSinceReferenceDate:";
  offsetInDate = offsetIn("NSGDate");
  offsetInCalendarDate = offsetIn("NSCalendarDate");
  originalOfDate = (InitWithInterval)zelReplaceMethod("NSGDate", kInit, (AnyMethod)initDate);
  originalOfCalendarDate =
      (InitWithInterval)zelReplaceMethod("NSCalendarDate", kInit, (AnyMethod)initCalendarDate);
}

@end

#endif
