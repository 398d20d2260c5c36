// Reads the integers of XML property lists from 2^63 on, each of which GNUstep base 1.28 takes for
// 2^63 - 1. May go when it reads them as what they are.
#import <Foundation/Foundation.h>
#include <errno.h>
#include <limits.h>
#include <objc/runtime.h>
#include <stdbool.h>
#include <stdlib.h>
#include <string.h>

#include "native/gnustep/replaced_methods.h"

typedef void (*DidEnd)(id, SEL, NSXMLParser*, NSString*, NSString*, NSString*);

static DidEnd originalDidEnd;
static ptrdiff_t valueOffset;  // of the element's text in the parser

// Stands in the place of an integer's text while the parser asks that for its number.
@interface ZELHighInteger : NSObject {
 @public
  unsigned long long number;
}
@end

// Whether the text is a number that needs all 64 bits.
static bool isHigh(NSString* text, unsigned long long* number) {
  const char* const digits = [text UTF8String];
  char* end = NULL;
  errno = 0;
  *number = strtoull(digits, &end, 10);
  return errno == 0 && end != digits && *number > LLONG_MAX && strchr(digits, '-') == NULL;
}

static void didEnd(id self, SEL selector, NSXMLParser* xml, NSString* name, NSString* uri,
                   NSString* qualified) {
  id* const value = (id*)((char*)self + valueOffset);
  NSMutableString* const text = *value;
  unsigned long long number = 0;
  if (![name isEqualToString:@"integer"] || !isHigh(text, &number)) {
    originalDidEnd(self, selector, xml, name, uri, qualified);
    return;
  }
  ZELHighInteger* const high = [[ZELHighInteger new] autorelease];
  high->number = number;
  *value = high;
  @try {
    originalDidEnd(self, selector, xml, name, uri, qualified);
  } @finally {
    *value = text;
    [text setString:@""];
  }
}

@implementation ZELHighInteger

+ (void)load {
  static const char kClass[] = "GSXMLPListParser";
  valueOffset = ivar_getOffset(class_getInstanceVariable(objc_getClass(kClass), "value"));
  originalDidEnd = (DidEnd)zelReplaceMethod(
      kClass, "parser:didEndElement:namespaceURI:qualifiedName:", (AnyMethod)didEnd);
}

- (BOOL)hasPrefix:(NSString*)text {
  (void)text;
  return NO;  // not even "-"
}

- (long long)longLongValue {
  return (long long)number;
}

- (void)setString:(NSString*)text {
  (void)text;
}

@end
