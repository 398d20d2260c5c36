// Reads and writes the file of a domain so that nothing is lost on the way.
//
// GNUstep base 1.28 takes a file that it can't read for an empty one and replaces it; takes a
// domain for written that isn't; and writes a domain when it is only looked at, which may be in the
// midst of writing the same file for another object, so that one of the two loses its values. All
// that is in two methods of its class GSPersistentDomain. They can go when Foundation tells a
// failure from an empty domain and a reader from a writer.
#import "native/gnustep/persistent_domains.h"

#include <errno.h>
#include <limits.h>
#include <objc/runtime.h>
#include <string.h>
#include <time.h>

#include "native/gnustep/replaced_methods.h"
#include "native/gnustep/store_files.h"

_Thread_local unsigned zelFailedDomains;

// What isn't in memory (errors of the system are positive).
enum { kNoPropertyList = -1 };

static struct { Ivar path, contents, added, modified, removed, loaded; } parts;

static NSString* pathOf(id domain) { return object_getIvar(domain, parts.path); }
static NSMutableDictionary* contentsOf(id domain) { return object_getIvar(domain, parts.contents); }
// Keys that the file gets, and the values are in the contents.
static NSMutableSet* addedTo(id domain) { return object_getIvar(domain, parts.added); }
// Keys that the file has, and gets with another value.
static NSMutableSet* modifiedIn(id domain) { return object_getIvar(domain, parts.modified); }
// Keys that the file loses.
static NSMutableSet* removedFrom(id domain) { return object_getIvar(domain, parts.removed); }
static BOOL* isLoaded(id domain) { return (BOOL*)(void*)domain + ivar_getOffset(parts.loaded); }

static void setContents(id domain, NSMutableDictionary* contents) {
  NSMutableDictionary* const before = contentsOf(domain);
  object_setIvar(domain, parts.contents, [contents retain]);
  [before release];
}

bool zelIsUnwritten(NSObject* domain) {
  return [addedTo(domain) count] + [modifiedIn(domain) count] + [removedFrom(domain) count] > 0;
}

NSMutableDictionary* zelDomainsOf(NSUserDefaults* defaults) {
  return object_getIvar(defaults,
                        class_getInstanceVariable([NSUserDefaults class], "_persDomains"));
}

NSString* zelReasonOf(int error) {
  switch (error) {
    case kNoPropertyList:
      return @"a property list can't hold them";
    case ETIMEDOUT:
      return @"another program keeps them locked";
    default:
      return [NSString stringWithUTF8String:strerror(error)];
  }
}

static void fail(NSString* path, NSString* what, int error) {
  ++zelFailedDomains;
  NSLog(@"The defaults in %@ can't be %@: %@.", path, what, zelReasonOf(error));
}

// The dictionary that these bytes are the property list of, or nil.
static NSMutableDictionary* parsed(void* bytes, size_t length) {
  NSData* const data = [NSData dataWithBytesNoCopy:bytes length:length freeWhenDone:YES];
  @try {
    const id list = [NSPropertyListSerialization propertyListWithData:data
                                                              options:NSPropertyListImmutable
                                                               format:NULL
                                                                error:NULL];
    if ([list isKindOfClass:[NSDictionary class]]) return [[list mutableCopy] autorelease];
  } @catch (NSException* damage) {
    return nil;  // NSMallocException as well: lengths are damaged too
  }
  return nil;
}

// Puts a file aside that is no property list of a dictionary.
static int putAside(NSString* path, struct SeenFile* seen) {
  char aside[PATH_MAX];
  const int error = zelPutAside([path fileSystemRepresentation], seen, aside);
  if (error == EAGAIN) return error;
  if (error != 0) {
    NSLog(@"The defaults in %@ are damaged.", path);
    return error;
  }
  zelForget(seen);
  NSLog(@"The defaults in %@ are damaged. They are kept as %s.", path, aside);
  return 0;
}

// What a file has; nothing when there is none, or it was damaged and has been put aside.
static int readFile(NSString* path, struct SeenFile* seen, NSMutableDictionary** values,
                    bool* wasDamaged) {
  void* bytes = NULL;
  size_t length = 0;
  int error = zelReadFile([path fileSystemRepresentation], seen, &bytes, &length);
  if (error != 0) return error;
  *values = bytes != NULL ? parsed(bytes, length) : [NSMutableDictionary dictionary];
  if (*values != nil) return 0;
  error = putAside(path, seen);
  *wasDamaged = error == 0;
  *values = [NSMutableDictionary dictionary];
  return error;
}

// What a domain holds is from now on what its file has, with what isn't written yet.
static void layOver(id domain, NSMutableDictionary* values) {
  NSDictionary* const held = contentsOf(domain);
  for (id key in removedFrom(domain)) [values removeObjectForKey:key];
  for (id key in [addedTo(domain) allObjects]) {
    if ([values objectForKey:key] == nil) continue;
    // Somebody else has added it as well; to remove it takes more than not to add it.
    [modifiedIn(domain) addObject:key];
    [addedTo(domain) removeObject:key];
  }
  for (id key in addedTo(domain)) [values setObject:[held objectForKey:key] forKey:key];
  for (id key in modifiedIn(domain)) [values setObject:[held objectForKey:key] forKey:key];
  setContents(domain, values);
}

static int readDomain(id domain, struct SeenFile* seen) {
  NSMutableDictionary* values = nil;
  bool wasDamaged = false;
  const bool isFirst = !*isLoaded(domain);
  // To read some values takes the defaults themselves, this domain's among them.
  *isLoaded(domain) = YES;
  const int error = readFile(pathOf(domain), seen, &values, &wasDamaged);
  if (error != 0) return error;
  if (wasDamaged && !isFirst) [addedTo(domain) addObjectsFromArray:[contentsOf(domain) allKeys]];
  layOver(domain, values);
  return 0;
}

static NSData* propertyList(NSDictionary* values) {
  NSString* fault = nil;
  @try {
    return [NSPropertyListSerialization dataFromPropertyList:values
                                                      format:NSPropertyListBinaryFormat_v1_0
                                            errorDescription:&fault];
  } @catch (NSException* exception) {
    return nil;
  }
}

static int writeDomain(id domain, const struct SeenFile* seen) {
  const char* const path = [pathOf(domain) fileSystemRepresentation];
  int error = 0;
  if ([contentsOf(domain) count] == 0) {
    error = zelRemoveFile(path, seen);
  } else {
    NSData* const list = propertyList(contentsOf(domain));
    if (list == nil) return kNoPropertyList;
    error = zelReplaceFile(path, seen, [list bytes], [list length]);
  }
  if (error != 0) return error;
  [addedTo(domain) removeAllObjects];
  [modifiedIn(domain) removeAllObjects];
  [removedFrom(domain) removeAllObjects];
  return 0;
}

// Reads the file, and writes if asked to and there is something to write.
static int exchange(id domain, bool mayWrite) {
  struct SeenFile seen;
  int error = readDomain(domain, &seen);
  const bool isRead = error == 0;
  if (isRead && mayWrite && zelIsUnwritten(domain)) error = writeDomain(domain, &seen);
  zelForget(&seen);
  if (error == EAGAIN) return error;
  if (error != 0) fail(pathOf(domain), isRead ? @"written" : @"read", error);
  return 0;
}

// Until no other process changes the file between reading and writing.
static void exchangeAll(id domain, bool mayWrite) {
  enum { kPatience = 10 };
  const time_t end = time(NULL) + kPatience;
  int error = EAGAIN;
  while (error == EAGAIN && time(NULL) <= end) {
    NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
    error = exchange(domain, mayWrite);
    [pool drain];
  }
  if (error == EAGAIN) fail(pathOf(domain), @"written", ETIMEDOUT);
}

static BOOL synchronize(id self, SEL selector) {
  (void)selector;
  if (pathOf(self) == nil) return NO;  // the configuration wants nothing kept
  NSDictionary* const before = [contentsOf(self) retain];
  exchangeAll(self, true);
  const BOOL hasChanged = ![before isEqual:contentsOf(self)];
  [before release];
  return hasChanged;
}

static id contents(id self, SEL selector) {
  (void)selector;
  if (!*isLoaded(self) && pathOf(self) != nil) exchangeAll(self, false);
  return contentsOf(self);
}

// Carries the methods' replacements; never has an instance.
@interface ZELPersistentDomains : NSObject
@end

@implementation ZELPersistentDomains

+ (void)load {
  Class const domains = objc_getClass("GSPersistentDomain");
  parts.path = class_getInstanceVariable(domains, "path");
  parts.contents = class_getInstanceVariable(domains, "contents");
  parts.added = class_getInstanceVariable(domains, "added");
  parts.modified = class_getInstanceVariable(domains, "modified");
  parts.removed = class_getInstanceVariable(domains, "removed");
  parts.loaded = class_getInstanceVariable(domains, "loaded");
  zelReplaceMethod("GSPersistentDomain", "synchronize", (AnyMethod)synchronize);
  zelReplaceMethod("GSPersistentDomain", "contents", (AnyMethod)contents);
}

@end
