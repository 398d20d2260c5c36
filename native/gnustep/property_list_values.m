// Refuses what no property list can hold when it is set, with the exception that Foundation raises
// for it anywhere else.
//
// GNUstep base 1.28 takes dictionaries whose keys are no texts, and in a whole domain anything: the
// domain is then not written, or null as the text "<null>". A list that holds itself ends the
// process. May go when GNUstep base looks at keys and at domains.
#include "native/gnustep/property_lists.h"
#include "native/gnustep/replaced_methods.h"

typedef void (*SetObject)(id, SEL, id, NSString*);
typedef void (*SetDomain)(id, SEL, NSDictionary*, NSString*);

static SetObject originalSetObject;
static SetDomain originalSetDomain;

static void setObject(id self, SEL selector, id value, NSString* key) {
  NSString* const fault = value == nil ? nil : zelPropertyListFault(value, kDeepestValue);
  if (fault != nil) {
    [NSException raise:NSInvalidArgumentException
                format:@"attempt to set non property list object for key (%@): %@", key, fault];
  }
  originalSetObject(self, selector, value, key);
}

static void setDomain(id self, SEL selector, NSDictionary* domain, NSString* name) {
  NSString* const fault = domain == nil ? nil : zelPropertyListFault(domain, kDeepestDomain);
  if (fault != nil) {
    [NSException raise:NSInvalidArgumentException
                format:@"attempt to set non property list object as domain (%@): %@", name, fault];
  }
  originalSetDomain(self, selector, domain, name);
}

// Carries the methods' replacements; never has an instance.
@interface ZELPropertyListValues : NSObject
@end

@implementation ZELPropertyListValues

+ (void)load {
  originalSetObject =
      (SetObject)zelReplaceMethod("NSUserDefaults", "setObject:forKey:", (AnyMethod)setObject);
  originalSetDomain = (SetDomain)zelReplaceMethod(
      "NSUserDefaults", "setPersistentDomain:forName:", (AnyMethod)setDomain);
}

@end
