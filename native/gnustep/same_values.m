// Lets a value be replaced by one that only looks the same.
//
// GNUstep base 1.28 keeps what a domain holds when the new value equals it. True equals 1 there,
// and so do 1.0 and a Single; -0 equals 0, and an accented letter its two characters. A list
// or a dictionary of such values equals the other, too, and so does a whole domain. May go when it
// compares what is written.
#include <string.h>

#include "native/gnustep/property_lists.h"
#include "native/gnustep/replaced_methods.h"
#include "native/gnustep/zelnative.h"

typedef BOOL (*SetObject)(id, SEL, id, NSString*);
typedef BOOL (*SetContents)(id, SEL, NSDictionary*);

static SetObject originalSetObject;
static SetContents originalSetContents;

// What a domain of the defaults answers to.
@interface NSObject (ZELDomain)
- (NSDictionary*)contents;
@end

static bool isSame(id left, id right);

// By which 0 is another number than -0, and what is no number is the same as itself.
static uint64_t bitsOf(double number) {
  uint64_t bits = 0;
  memcpy(&bits, &number, sizeof bits);
  return bits;
}

static bool isSameNumber(NSNumber* left, NSNumber* right) {
  const char type = *zelNumberType(left);
  if (type != *zelNumberType(right)) return false;
  if (type != 'f' && type != 'd') return [left isEqual:right];
  return bitsOf([left doubleValue]) == bitsOf([right doubleValue]);
}

static bool isSameList(NSArray* left, NSArray* right) {
  const NSUInteger count = [left count];
  for (NSUInteger i = 0; i < count; ++i) {
    if (!isSame([left objectAtIndex:i], [right objectAtIndex:i])) return false;
  }
  return true;
}

static bool isSameDictionary(NSDictionary* left, NSDictionary* right) {
  NSMutableSet* const keys = [NSMutableSet setWithArray:[right allKeys]];
  for (NSString* key in left) {
    NSString* const other = [keys member:key];
    if (other == nil || !zelSameText(key, other)) return false;
    if (!isSame([left objectForKey:key], [right objectForKey:key])) return false;
  }
  return true;
}

// Whether values that are equal for Foundation are written the same.
static bool isSame(id left, id right) {
  if ([left isKindOfClass:[NSString class]]) return zelSameText(left, right);
  if ([left isKindOfClass:[NSNumber class]]) return isSameNumber(left, right);
  if ([left isKindOfClass:[NSArray class]]) return isSameList(left, right);
  if ([left isKindOfClass:[NSDictionary class]]) return isSameDictionary(left, right);
  return true;
}

static bool onlyLooksTheSame(id left, id right) {
  return left != nil && right != nil && [left isEqual:right] && !isSame(left, right);
}

static BOOL setObject(id self, SEL selector, id value, NSString* key) {
  if (onlyLooksTheSame(value, [self objectForKey:key])) {
    originalSetObject(self, selector, nil, key);  // then it differs
  }
  return originalSetObject(self, selector, value, key);
}

static BOOL setContents(id self, SEL selector, NSDictionary* domain) {
  if (!onlyLooksTheSame(domain, [self contents])) {
    return originalSetContents(self, selector, domain);
  }
  for (NSString* key in domain) [self setObject:[domain objectForKey:key] forKey:key];
  return YES;
}

// Carries the methods' replacements; never has an instance.
@interface ZELSameValues : NSObject
@end

@implementation ZELSameValues

+ (void)load {
  static const char kClass[] = "GSPersistentDomain";
  originalSetObject =
      (SetObject)zelReplaceMethod(kClass, "setObject:forKey:", (AnyMethod)setObject);
  originalSetContents =
      (SetContents)zelReplaceMethod(kClass, "setContents:", (AnyMethod)setContents);
}

@end
