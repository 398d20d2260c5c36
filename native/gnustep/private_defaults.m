// Gives the objects of [[NSUserDefaults alloc] init] and initWithUser: a search list.
//
// GNUstep base makes them with an empty one and with nothing read from disk: what is set through
// them can't be read back. Elsewhere they search what the standard object searches, so that is what
// they get here as soon as they are made.
#import <Foundation/Foundation.h>
#include <objc/runtime.h>
#include <stdbool.h>

// Where GNUstep keeps what the environment sets, above everything else.
static NSString* const kPrimaryDomain = @"GSPrimaryDomain";

typedef id (*InitWithUser)(id, SEL, NSString*);
typedef id (*StandardUserDefaults)(id, SEL);

static InitWithUser originalInitWithUser;
static StandardUserDefaults originalStandardUserDefaults;

// True from the request for the standard object until its initialiser runs: GNUstep base uses the
// same initialiser for it and completes that object by itself.
static _Thread_local bool standardIsDue;

// The domains that a new standard object searches, in order.
static NSArray* standardSearchList(void) {
  NSMutableArray* const list = [NSMutableArray
      arrayWithObjects:kPrimaryDomain, NSArgumentDomain, [[NSProcessInfo processInfo] processName],
                       NSGlobalDomain, GSConfigDomain, nil];
  [list addObjectsFromArray:[NSUserDefaults userLanguages]];
  [list addObject:NSRegistrationDomain];
  return list;
}

// Gives a new object everything that the standard one has from the start. Its arguments and the
// configuration it has already.
static void complete(NSUserDefaults* defaults) {
  NSUserDefaults* const standard = [NSUserDefaults standardUserDefaults];
  // What was set through the standard object is for the new one to see.
  [standard synchronize];
  NSArray* const list = standardSearchList();
  for (NSUInteger i = 0; i < [list count]; ++i) {
    NSString* const name = [list objectAtIndex:i];
    NSDictionary* const domain = [standard volatileDomainForName:name];
    if (domain != nil && [defaults volatileDomainForName:name] == nil) {
      [defaults setVolatileDomain:domain forName:name];
    }
  }
  [defaults registerDefaults:[standard volatileDomainForName:NSRegistrationDomain]];
  [defaults setSearchList:list];
  [defaults synchronize];  // reads what is on disk
}

static id initWithUser(id self, SEL selector, NSString* user) {
  const bool isStandard = standardIsDue;
  standardIsDue = false;
  NSUserDefaults* const defaults = originalInitWithUser(self, selector, user);
  if (!isStandard && defaults != nil) complete(defaults);
  return defaults;
}

static id standardUserDefaults(id self, SEL selector) {
  const bool wasDue = standardIsDue;
  standardIsDue = true;
  @try {
    return originalStandardUserDefaults(self, selector);
  } @finally {
    standardIsDue = wasDue;
  }
}

@interface ZELPrivateUserDefaults : NSUserDefaults
@end

@implementation ZELPrivateUserDefaults

+ (void)load {
  // No message may be sent to NSUserDefaults yet: it would set itself up.
  Class const userDefaults = objc_getClass("NSUserDefaults");
  Method initialise = class_getInstanceMethod(userDefaults, @selector(initWithUser:));
  Method shared = class_getClassMethod(userDefaults, @selector(standardUserDefaults));
  originalInitWithUser = (InitWithUser)method_setImplementation(initialise, (IMP)initWithUser);
  originalStandardUserDefaults =
      (StandardUserDefaults)method_setImplementation(shared, (IMP)standardUserDefaults);
}

@end
