// Lets the dates of XML property lists be read as they are written.
//
// They are in UTC, as the "Z" behind them says, and GNUstep base writes them so; but it reads them
// as times of the default zone. In any other zone than UTC a stored date would come back as another
// one, and move on each time that its domain is read and written.
#import <Foundation/Foundation.h>
#include <objc/runtime.h>

typedef id (*DateWithString)(id, SEL, NSString*, NSString*);

static DateWithString originalDateWithString;

// The format with which GNUstep base reads those dates, and nothing else.
static NSString* const kWritten = @"%Y-%m-%dT%H:%M:%SZ";
static NSString* const kWithZone = @"%Y-%m-%dT%H:%M:%SZ %z";

static id dateWithString(id self, SEL selector, NSString* text, NSString* format) {
  if (text == nil || ![format isEqualToString:kWritten]) {
    return originalDateWithString(self, selector, text, format);
  }
  NSCalendarDate* const date =
      originalDateWithString(self, selector, [text stringByAppendingString:@" +0000"], kWithZone);
  [date setCalendarFormat:format];
  return date;
}

// Carries the method's replacement; never has an instance.
@interface ZELPropertyListDates : NSObject
@end

@implementation ZELPropertyListDates

+ (void)load {
  Method const read = class_getClassMethod(objc_getClass("NSCalendarDate"),
                                           @selector(dateWithString:calendarFormat:));
  originalDateWithString = (DateWithString)method_setImplementation(read, (IMP)dateWithString);
}

@end
