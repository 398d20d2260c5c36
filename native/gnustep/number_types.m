// Gives the outermost numbers of a type that type.
//
// GNUstep base 1.28 takes the highest and the lowest 32-bit number for 64-bit ones, and the highest
// 64-bit number for an unsigned one, so that they come back from the defaults as something else.
// May go when GNUstep base compares with <= there.
#import <Foundation/Foundation.h>
#include <limits.h>

#include "native/gnustep/replaced_methods.h"

typedef NSNumber* (*WithLongLong)(id, SEL, long long);
typedef NSNumber* (*WithUnsignedLongLong)(id, SEL, unsigned long long);

static WithLongLong originalWithLongLong;
static WithUnsignedLongLong originalWithUnsignedLongLong;

static NSNumber* withLongLong(id self, SEL selector, long long value) {
  if (value == INT_MAX || value == INT_MIN) return [self numberWithInt:(int)value];
  return originalWithLongLong(self, selector, value);
}

static NSNumber* withUnsignedLongLong(id self, SEL selector, unsigned long long value) {
  if (value == LLONG_MAX) return [self numberWithLongLong:LLONG_MAX];
  return originalWithUnsignedLongLong(self, selector, value);
}

// Carries the methods' replacements; never has an instance.
@interface ZELNumberTypes : NSObject
@end

@implementation ZELNumberTypes

+ (void)load {
  originalWithLongLong = (WithLongLong)zelReplaceClassMethod(
      "NSNumber", "numberWithLongLong:", (AnyMethod)withLongLong);
  originalWithUnsignedLongLong = (WithUnsignedLongLong)zelReplaceClassMethod(
      "NSNumber", "numberWithUnsignedLongLong:", (AnyMethod)withUnsignedLongLong);
}

@end
