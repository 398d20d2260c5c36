#import "native/gnustep/zelnative.h"

CFTypeRef CFRetain(CFTypeRef object) { return [object retain]; }

void CFRelease(CFTypeRef object) { [object release]; }
