#import "native/gnustep/zelnative.h"

// A table of pointers stands behind CFDictionaryCreateMutable; it answers the dictionary messages
// that are sent here, so that these functions serve Foundation's dictionaries as well.
//
// Plugins of one family share such a table, and hosts have threads: two that write to it at once
// would leave it in knots, and the next look-up would never end. So one at a time.
CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                 const void* keyCallBacks,
                                                 const void* valueCallBacks) {
  (void)allocator;
  if (capacity < 0 || keyCallBacks != NULL || valueCallBacks != NULL) return nil;
  return (CFMutableDictionaryRef)NSCreateMapTable(
      NSNonOwnedPointerMapKeyCallBacks, NSNonOwnedPointerMapValueCallBacks, (NSUInteger)capacity);
}

const void* CFDictionaryGetValue(CFMutableDictionaryRef dictionary, const void* key) {
  @synchronized(dictionary) {
    return [dictionary objectForKey:(id)key];
  }
}

void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value) {
  @synchronized(dictionary) {
    [dictionary setObject:(id)value forKey:(id)key];
  }
}

void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void* key) {
  @synchronized(dictionary) {
    [dictionary removeObjectForKey:(id)key];
  }
}
