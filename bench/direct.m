#import "bench/direct.h"

#import <Foundation/Foundation.h>
#include <string.h>

static NSUserDefaults* standardDefaults(void) {
  static NSUserDefaults* defaults = nil;
  if (defaults == nil) defaults = [[NSUserDefaults standardUserDefaults] retain];
  return defaults;
}

int32_t directIntegerForKey(const char* key) {
  @try {
    NSString* const name = [[[NSString alloc] initWithUTF8String:key] autorelease];
    return (int32_t)[standardDefaults() integerForKey:name];
  } @catch (NSException* exception) {
    NSLog(@"%@", exception);
    return 0;
  }
}

void directSetIntegerForKey(const char* key, int32_t value) {
  @try {
    NSString* const name = [[[NSString alloc] initWithUTF8String:key] autorelease];
    [standardDefaults() setInteger:value forKey:name];
  } @catch (NSException* exception) {
    NSLog(@"%@", exception);
  }
}

int32_t directStringForKey(const char* key, char* buffer, int32_t size) {
  @try {
    NSString* const name = [[[NSString alloc] initWithUTF8String:key] autorelease];
    NSString* const text = [standardDefaults() stringForKey:name];
    if (![text getCString:buffer maxLength:(NSUInteger)size encoding:NSUTF8StringEncoding])
      return 0;
    return (int32_t)strlen(buffer);
  } @catch (NSException* exception) {
    NSLog(@"%@", exception);
    return 0;
  }
}

void* directOpenPool(void) { return [NSAutoreleasePool new]; }

void directDrainPool(void* pool) { [(NSAutoreleasePool*)pool drain]; }
