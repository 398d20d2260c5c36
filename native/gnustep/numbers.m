#import "native/gnustep/zelnative.h"

// Foundation's BOOL is an unsigned char here: its booleans say "C", as numbers of that type do.
const char* zelNumberType(NSNumber* number) {
  const char* const type = [number objCType];
  return type != NULL && strcmp(type, @encode(BOOL)) == 0 ? @encode(signed char) : type;
}
