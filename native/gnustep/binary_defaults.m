// Keeps the defaults' files as binary property lists, which is how macOS keeps them.
//
// GNUstep base 1.28 writes them as XML, which changes values: text outside the Basic Multilingual
// Plane and control characters become escapes, of which it reads back only half; numbers keep 16
// digits; a Single becomes a Double. Others who ask for XML get it as ever, and files of every
// format are read as ever. May go when GNUstep base writes the defaults without loss.
#import <Foundation/Foundation.h>
#include <stdbool.h>

#include "native/gnustep/replaced_methods.h"

typedef BOOL (*Synchronize)(id, SEL);
typedef NSData* (*Write)(id, SEL, id, NSPropertyListFormat, NSString**);

static Synchronize originalSynchronize;
static Write originalWrite;

// True while a domain of the defaults is read and written.
static _Thread_local bool isOfDomain;

static BOOL synchronize(id self, SEL selector) {
  const bool before = isOfDomain;
  isOfDomain = true;
  @try {
    return originalSynchronize(self, selector);
  } @finally {
    isOfDomain = before;
  }
}

static NSData* writeList(id self, SEL selector, id list, NSPropertyListFormat format,
                         NSString** error) {
  const bool isDomain = isOfDomain && format == NSPropertyListXMLFormat_v1_0;
  return originalWrite(self, selector, list, isDomain ? NSPropertyListBinaryFormat_v1_0 : format,
                       error);
}

// Carries the methods' replacements; never has an instance.
@interface ZELBinaryDefaults : NSObject
@end

@implementation ZELBinaryDefaults

+ (void)load {
  originalSynchronize =
      (Synchronize)zelReplaceMethod("GSPersistentDomain", "synchronize", (AnyMethod)synchronize);
  originalWrite = (Write)zelReplaceClassMethod(
      "NSPropertyListSerialization",
      "dataFromPropertyList:format:errorDescription:", (AnyMethod)writeList);
}

@end
