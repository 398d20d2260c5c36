#import "native/gnustep/zelnative.h"

// Foundation's BOOL is an unsigned char here, so its booleans say "C", as any number of that type
// may. But there are only two of them.
const char* zelNumberType(NSNumber* number) {
  static NSNumber* yes = nil;
  static NSNumber* no = nil;
  if (yes == nil) {
    yes = [[NSNumber numberWithBool:YES] retain];
    no = [[NSNumber numberWithBool:NO] retain];
  }
  return number == yes || number == no ? @encode(signed char) : [number objCType];
}
