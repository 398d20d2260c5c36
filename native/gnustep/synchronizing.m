// Lets synchronize say whether it has written everything.
//
// GNUstep base 1.28 answers YES when nothing could be written, forgets then which domains have
// changed, and reads nothing at all from a folder that it can't lock. It also overlooks what
// another process writes within the tick of the clock in which it has read itself. It can go when
// Foundation does none of that.
#import "native/gnustep/persistent_domains.h"

#include <errno.h>
#include <objc/runtime.h>
#include <sys/stat.h>

#include "native/gnustep/replaced_methods.h"

typedef BOOL (*Synchronize)(id, SEL);
typedef BOOL (*WantToReadDefaultsSince)(id, SEL, NSDate*);
typedef void (*RemovePersistentDomainForName)(id, SEL, NSString*);

static Synchronize originalSynchronize;
static WantToReadDefaultsSince originalWantToReadDefaultsSince;
static RemovePersistentDomainForName originalRemovePersistentDomainForName;

static struct { Ivar changedDomains, lastSync, lock, folder; } parts;

// Names of domains that are to be written at the next synchronize, or to be removed; or nil.
static NSMutableArray* changedIn(NSUserDefaults* defaults) {
  return object_getIvar(defaults, parts.changedDomains);
}

static bool hasFile(NSUserDefaults* defaults, NSString* domain) {
  NSString* const folder = object_getIvar(defaults, parts.folder);
  NSString* const path =
      [[folder stringByAppendingPathComponent:domain] stringByAppendingPathExtension:@"plist"];
  struct stat state;
  return path != nil && lstat([path fileSystemRepresentation], &state) == 0;
}

// Names of domains whose files are to be removed.
static NSArray* removedFrom(NSUserDefaults* defaults) {
  NSMutableArray* const removed = [NSMutableArray array];
  for (NSString* name in changedIn(defaults)) {
    if ([zelDomainsOf(defaults) objectForKey:name] == nil) [removed addObject:name];
  }
  return removed;
}

static void markChanged(NSUserDefaults* defaults, NSString* domain) {
  if (changedIn(defaults) == nil) {
    object_setIvar(defaults, parts.changedDomains, [[NSMutableArray alloc] init]);
  }
  if (![changedIn(defaults) containsObject:domain]) [changedIn(defaults) addObject:domain];
}

// Lets the next synchronize read and write everything again.
static void tryAgain(NSUserDefaults* defaults, NSArray* notRemoved) {
  for (NSString* name in notRemoved) markChanged(defaults, name);
  NSDictionary* const domains = zelDomainsOf(defaults);
  for (NSString* name in domains) {
    if (zelIsUnwritten([domains objectForKey:name])) markChanged(defaults, name);
  }
  [object_getIvar(defaults, parts.lastSync) release];
  object_setIvar(defaults, parts.lastSync, nil);
}

static BOOL synchronize(NSUserDefaults* self, SEL selector) {
  NSRecursiveLock* const lock = object_getIvar(self, parts.lock);
  const unsigned failedBefore = zelFailedDomains;
  [lock lock];
  NSArray* const removed = removedFrom(self);
  [lock unlock];
  originalSynchronize(self, selector);
  NSMutableArray* const notRemoved = [NSMutableArray array];
  for (NSString* name in removed) {
    if (hasFile(self, name)) [notRemoved addObject:name];
  }
  if (zelFailedDomains == failedBefore && [notRemoved count] == 0) return YES;
  [lock lock];
  tryAgain(self, notRemoved);
  [lock unlock];
  return NO;
}

// What was removed at once need not be removed by the next synchronize, which may come when
// somebody else has made the domain anew.
static void removePersistentDomainForName(NSUserDefaults* self, SEL selector, NSString* name) {
  originalRemovePersistentDomainForName(self, selector, name);
  NSRecursiveLock* const lock = object_getIvar(self, parts.lock);
  [lock lock];
  const bool isThere = [zelDomainsOf(self) objectForKey:name] != nil;
  if (!isThere && !hasFile(self, name)) [changedIn(self) removeObject:name];
  [lock unlock];
}

// Looks behind a little farther than the last time: the kernel's clock stands still between ticks.
static BOOL wantToReadDefaultsSince(id self, SEL selector, NSDate* date) {
  static const NSTimeInterval kTicks = 0.02;
  NSDate* const before = [date addTimeInterval:-kTicks];
  return originalWantToReadDefaultsSince(self, selector, before);
}

// Nothing is locked for the time of a whole synchronize: a file is, while it is replaced.
static BOOL lockDefaultsFile(id self, SEL selector, BOOL* wasLocked) {
  (void)self;
  (void)selector;
  *wasLocked = YES;
  return YES;
}

// Whether a domain can be written shows when it is written.
static BOOL isReadOnly(id self, SEL selector) {
  (void)selector;
  return object_getIvar(self, parts.folder) == nil;
}

// Carries the methods' replacements; never has an instance.
@interface ZELSynchronizing : NSObject
@end

@implementation ZELSynchronizing

+ (void)load {
  static const char kDefaults[] = "NSUserDefaults";
  Class const defaults = objc_getClass(kDefaults);
  parts.changedDomains = class_getInstanceVariable(defaults, "_changedDomains");
  parts.lastSync = class_getInstanceVariable(defaults, "_lastSync");
  parts.lock = class_getInstanceVariable(defaults, "_lock");
  parts.folder = class_getInstanceVariable(defaults, "_defaultsDatabase");
  originalSynchronize =
      (Synchronize)zelReplaceMethod(kDefaults, "synchronize", (AnyMethod)synchronize);
  originalWantToReadDefaultsSince = (WantToReadDefaultsSince)zelReplaceMethod(
      kDefaults, "wantToReadDefaultsSince:", (AnyMethod)wantToReadDefaultsSince);
  originalRemovePersistentDomainForName = (RemovePersistentDomainForName)zelReplaceMethod(
      kDefaults, "removePersistentDomainForName:", (AnyMethod)removePersistentDomainForName);
  zelReplaceMethod(kDefaults, "_lockDefaultsFile:", (AnyMethod)lockDefaultsFile);
  zelReplaceMethod(kDefaults, "_readOnly", (AnyMethod)isReadOnly);
}

@end
