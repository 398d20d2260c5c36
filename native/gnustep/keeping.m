// Keeps what was set when the program ends, forks or lets go of an object, without synchronize.
//
// GNUstep base 1.28 writes by itself only in a program with a run loop, and drops what is left when
// the object goes. It can go when Foundation writes at those times.
#import "native/gnustep/persistent_domains.h"

#include <objc/runtime.h>
#include <pthread.h>
#include <stdlib.h>

#include "native/gnustep/replaced_methods.h"
#include "native/gnustep/store_lock.h"

typedef id (*InitWithContentsOfFile)(id, SEL, NSString*);
typedef void (*Dealloc)(id, SEL);

static InitWithContentsOfFile originalInitWithContentsOfFile;
static Dealloc originalDealloc;

// All objects that live, not owned. The mutex is held while they are written, and recursive: that
// may let another object go.
static NSHashTable* objects;
static pthread_mutex_t objectsMutex;
static pthread_once_t isSetUp = PTHREAD_ONCE_INIT;
static bool hasEnded;

static void writeDomains(NSUserDefaults* defaults) {
  NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
  for (NSObject* domain in [zelDomainsOf(defaults) allValues]) {
    if (zelIsUnwritten(domain)) [domain synchronize];
  }
  [pool drain];
}

// Another thread may be using the object, and has a second to finish.
static void writeObject(NSUserDefaults* defaults) {
  static const NSTimeInterval kPatience = 1;
  NSRecursiveLock* const lock =
      object_getIvar(defaults, class_getInstanceVariable([NSUserDefaults class], "_lock"));
  if (![lock lockBeforeDate:[NSDate dateWithTimeIntervalSinceNow:kPatience]]) return;
  writeDomains(defaults);
  [lock unlock];
}

static void writeAll(void) {
  const BOOL isStranger = GSRegisterCurrentThread();
  NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
  NSHashEnumerator all = NSEnumerateHashTable(objects);
  NSUserDefaults* defaults = nil;
  while ((defaults = NSNextHashEnumeratorItem(&all)) != nil) writeObject(defaults);
  NSEndHashTableEnumeration(&all);
  [pool drain];
  if (isStranger) GSUnregisterCurrentThread();
}

static void endProcess(void) {
  pthread_mutex_lock(&objectsMutex);
  zelHurryWithLocks();
  writeAll();
  hasEnded = true;  // what is left of the program takes Foundation to pieces
  pthread_mutex_unlock(&objectsMutex);
}

// A child would have copies of what isn't written, and write them when it ends: too late.
static void prepareFork(void) {
  pthread_mutex_lock(&objectsMutex);
  if (!hasEnded) writeAll();
}

static void completeFork(void) { pthread_mutex_unlock(&objectsMutex); }

// Also in a child, where the mutex is a thread's that the child doesn't have.
static void makeMutex(void) {
  pthread_mutexattr_t recursive;
  pthread_mutexattr_init(&recursive);
  pthread_mutexattr_settype(&recursive, PTHREAD_MUTEX_RECURSIVE);
  pthread_mutex_init(&objectsMutex, &recursive);
}

static void setUp(void) {
  makeMutex();
  objects = NSCreateHashTable(NSNonOwnedPointerHashCallBacks, 0);
  // Foundation's own handler is registered by now, so it runs after this one.
  atexit(endProcess);
  pthread_atfork(prepareFork, completeFork, makeMutex);
}

static id initWithContentsOfFile(id self, SEL selector, NSString* path) {
  NSUserDefaults* const made = originalInitWithContentsOfFile(self, selector, path);
  if (made == nil) return nil;
  pthread_once(&isSetUp, setUp);
  pthread_mutex_lock(&objectsMutex);
  NSHashInsert(objects, made);
  pthread_mutex_unlock(&objectsMutex);
  return made;
}

static void dealloc(id self, SEL selector) {
  pthread_once(&isSetUp, setUp);
  pthread_mutex_lock(&objectsMutex);
  const bool isKnown = NSHashGet(objects, self) != NULL;
  if (isKnown) NSHashRemove(objects, self);
  const bool isToWrite = isKnown && !hasEnded;
  pthread_mutex_unlock(&objectsMutex);
  if (isToWrite) writeDomains(self);
  originalDealloc(self, selector);
}

// Carries the methods' replacements; never has an instance.
@interface ZELKeeping : NSObject
@end

@implementation ZELKeeping

+ (void)load {
  originalInitWithContentsOfFile = (InitWithContentsOfFile)zelReplaceMethod(
      "NSUserDefaults", "initWithContentsOfFile:", (AnyMethod)initWithContentsOfFile);
  originalDealloc = (Dealloc)zelReplaceMethod("NSUserDefaults", "dealloc", (AnyMethod)dealloc);
}

@end
