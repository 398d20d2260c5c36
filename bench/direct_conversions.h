// Host values of Foundation's objects and back, for bench/direct*.m.
#pragma once

#import <Foundation/Foundation.h>

#include "bench/lean_host.h"

// What Foundation's NSUserDefaults has, and the seam gives that of GNUstep base.
@interface NSUserDefaults (Additions)
- (NSURL*)URLForKey:(NSString*)key;
- (void)setURL:(NSURL*)url forKey:(NSString*)key;
- (BOOL)objectIsForcedForKey:(NSString*)key;
@end

/// The standard defaults.
extern NSUserDefaults* standardDefaults;

/// Every body is run like this; the result of a function is set before it.
#define DIRECTLY(body)                 \
  @try {                               \
    body;                              \
  } @catch (NSException * exception) { \
    NSLog(@"%@", exception);           \
  }

/// Autoreleased.
NSString* nativeText(LeanString* text);
id nativeValue(LeanObject* variant);
NSMutableArray* nativeTexts(LeanObject* array);
NSMutableArray* nativeValues(LeanObject* array);
NSMutableDictionary* nativeEntries(LeanObject* dictionary);
NSURL* nativeFile(LeanObject* item);

/// Null for nil.
LeanString* hostText(NSString* text);
LeanObject* hostValue(id object);
LeanObject* hostTexts(NSArray* list);
LeanObject* hostValues(NSArray* list);
LeanObject* hostEntries(NSDictionary* dictionary);
LeanObject* hostData(NSData* data);
LeanObject* hostFile(NSURL* url);
