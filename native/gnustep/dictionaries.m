#import "native/gnustep/zelnative.h"

// A table of pointers stands behind CFDictionaryCreateMutable; it answers the dictionary messages
// that are sent here, so that these functions serve Foundation's dictionaries as well.
CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                 const void* keyCallBacks,
                                                 const void* valueCallBacks) {
  (void)allocator;
  if (capacity < 0 || keyCallBacks != NULL || valueCallBacks != NULL) return nil;
  return (CFMutableDictionaryRef)NSCreateMapTable(
      NSNonOwnedPointerMapKeyCallBacks, NSNonOwnedPointerMapValueCallBacks, (NSUInteger)capacity);
}

const void* CFDictionaryGetValue(CFMutableDictionaryRef dictionary, const void* key) {
  return [dictionary objectForKey:(id)key];
}

void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value) {
  [dictionary setObject:(id)value forKey:(id)key];
}

void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void* key) {
  [dictionary removeObjectForKey:(id)key];
}
