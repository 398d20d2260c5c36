// Refuses names of domains whose file would lie elsewhere than in the folder of the defaults.
//
// GNUstep base 1.28 puts any name into the path as it is: "../x" is written beside the folder. It
// can go when Foundation raises by itself.
#import <Foundation/Foundation.h>

#include "native/gnustep/replaced_methods.h"

typedef void (*SetPersistentDomain)(id, SEL, NSDictionary*, NSString*);
typedef void (*RemovePersistentDomain)(id, SEL, NSString*);

static SetPersistentDomain originalSetPersistentDomain;
static RemovePersistentDomain originalRemovePersistentDomain;

// Raises for a name that can't be that of a file. For none at all Foundation does what it does.
static void check(NSString* name) {
  if (name == nil) return;
  bool isGood = [name length] > 0 && ![name isEqualToString:@"."] && ![name isEqualToString:@".."];
  for (NSUInteger i = 0; isGood && i < [name length]; ++i) {
    const unichar unit = [name characterAtIndex:i];
    isGood = unit != '/' && unit != '\0';
  }
  if (isGood) return;
  [NSException raise:NSInvalidArgumentException
              format:@"attempt to write a persistent domain with a bad name (%@)", name];
}

static void setPersistentDomain(id self, SEL selector, NSDictionary* domain, NSString* name) {
  check(name);
  originalSetPersistentDomain(self, selector, domain, name);
}

static void removePersistentDomain(id self, SEL selector, NSString* name) {
  check(name);
  originalRemovePersistentDomain(self, selector, name);
}

// Carries the methods' replacements; never has an instance.
@interface ZELDomainNames : NSObject
@end

@implementation ZELDomainNames

+ (void)load {
  originalSetPersistentDomain = (SetPersistentDomain)zelReplaceMethod(
      "NSUserDefaults", "setPersistentDomain:forName:", (AnyMethod)setPersistentDomain);
  originalRemovePersistentDomain = (RemovePersistentDomain)zelReplaceMethod(
      "NSUserDefaults", "removePersistentDomainForName:", (AnyMethod)removePersistentDomain);
}

@end
