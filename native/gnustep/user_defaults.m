// Messages of NSUserDefaults that GNUstep base lacks. They are added when the library is loaded;
// one that Foundation has itself is left alone.
#import <Foundation/Foundation.h>
#include <objc/runtime.h>
#include <stdlib.h>

// Carries the methods to NSUserDefaults; never has an instance of its own.
@interface ZELUserDefaultsAdditions : NSUserDefaults
@end

// The URL in an archive that setURL:forKey: made, or nil for any other data.
static NSURL* archivedURL(NSData* data) {
  @try {
    const id object = [NSKeyedUnarchiver unarchiveObjectWithData:data];
    return [object isKindOfClass:[NSURL class]] ? object : nil;
  } @catch (NSException* noArchive) {
    return nil;
  }
}

@implementation ZELUserDefaultsAdditions

+ (void)load {
  // No message may be sent to NSUserDefaults yet: it would set itself up.
  Class const userDefaults = objc_getClass("NSUserDefaults");
  unsigned int count = 0;
  Method* const methods = class_copyMethodList(objc_getClass("ZELUserDefaultsAdditions"), &count);
  for (unsigned int i = 0; i < count; ++i) {
    class_addMethod(userDefaults, method_getName(methods[i]), method_getImplementation(methods[i]),
                    method_getTypeEncoding(methods[i]));
  }
  free(methods);
}

// A text is a path; data is an archive. Anything else is no URL.
- (NSURL*)URLForKey:(NSString*)key {
  const id value = [self objectForKey:key];
  if ([value isKindOfClass:[NSString class]]) {
    return [NSURL fileURLWithPath:[value stringByExpandingTildeInPath]];
  }
  return [value isKindOfClass:[NSData class]] ? archivedURL(value) : nil;
}

// A file URL is kept as its path, with the home folder as "~"; any other as an archive, and so is
// one whose path is no UTF-8, which Foundation has no text for. Nil removes the key.
- (void)setURL:(NSURL*)url forKey:(NSString*)key {
  id value = nil;
  NSString* const path = [url isFileURL] ? [url path] : nil;
  if (path != nil) {
    value = [path stringByAbbreviatingWithTildeInPath];
  } else if (url != nil) {
    value = [NSKeyedArchiver archivedDataWithRootObject:url];
  }
  [self setObject:value forKey:key];
}

// Nothing here is set by an administrator in a way that the user can't change.
- (BOOL)objectIsForcedForKey:(NSString*)key {
  (void)key;
  return NO;
}

- (BOOL)objectIsForcedForKey:(NSString*)key inDomain:(NSString*)domain {
  (void)key;
  (void)domain;
  return NO;
}

@end
