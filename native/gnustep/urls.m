#import "native/gnustep/zelnative.h"

CFURLRef CFURLCreateWithString(CFAllocatorRef allocator, CFStringRef text, CFURLRef base) {
  (void)allocator;
  // Foundation takes the empty text for a URL; Core Foundation doesn't.
  if ([text length] == 0) return nil;
  @try {
    return [[NSURL alloc] initWithString:text relativeToURL:base];
  } @catch (NSException* refusal) {
    return nil;
  }
}
