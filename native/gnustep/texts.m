// Text that is taken out, copied and normalised.
#import "native/gnustep/zelnative.h"

void CFStringGetCharacters(CFStringRef string, CFRange range, unichar* units) {
  [string getCharacters:units
                  range:NSMakeRange((NSUInteger)range.location, (NSUInteger)range.length)];
}

CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef allocator, CFIndex maxLength,
                                             CFStringRef string) {
  (void)allocator;
  // A limit is a promise of the caller's, not a length to cut to.
  if (string == nil || (maxLength > 0 && (CFIndex)[string length] > maxLength)) return nil;
  // Foundation's own message gives an empty copy of text with half of a surrogate pair.
  NSMutableString* const copy = [NSMutableString new];
  [copy setString:string];
  return copy;
}

void CFStringNormalize(CFMutableStringRef string, CFIndex form) {
  SEL const kForms[] = {
    @selector(decomposedStringWithCanonicalMapping),
    @selector(decomposedStringWithCompatibilityMapping),
    @selector(precomposedStringWithCanonicalMapping),
    @selector(precomposedStringWithCompatibilityMapping)
  };
  if (form < 0 || form >= (CFIndex)(sizeof kForms / sizeof *kForms)) return;
  NSString* const normal = [string performSelector:kForms[form]];
  // Text with half of a surrogate pair has no normal form: Foundation gives back nothing for it.
  if ([normal length] > 0) [string setString:normal];
}
