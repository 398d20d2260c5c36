// What libzelnative exports: the Core Foundation functions of native/corefoundation.h, the
// functions of native/exceptions.h and native/numbers.h, over GNUstep base; file_records.h has
// those of native/files.h.
//
// Those headers say what each function does; they are C++ and this library is plain Objective-C, so
// the prototypes stand here once more. The tests call every function through the C++ headers.
//
// Temporary objects are autoreleased: callers have an autorelease pool in place.
#pragma once

#include <stdint.h>

#define ZEL_EXPORT __attribute__((visibility("default")))

#ifdef __OBJC__
#import <Foundation/Foundation.h>

// The toll-free Foundation objects.
typedef NSString* CFStringRef;
typedef NSMutableString* CFMutableStringRef;
typedef NSURL* CFURLRef;
typedef NSMutableDictionary* CFMutableDictionaryRef;
typedef id CFTypeRef;
typedef const void* CFAllocatorRef;
typedef intptr_t CFIndex;
typedef uint32_t CFStringEncoding;
typedef unsigned char Boolean;
typedef struct CFRange {
  CFIndex location;
  CFIndex length;
} CFRange;

ZEL_EXPORT id zelCatch(void (*body)(void*), void* context);

ZEL_EXPORT CFTypeRef CFRetain(CFTypeRef object);
ZEL_EXPORT void CFRelease(CFTypeRef object);

ZEL_EXPORT CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text,
                                                 CFStringEncoding encoding);
ZEL_EXPORT CFStringRef CFStringCreateWithCharacters(CFAllocatorRef allocator, const unichar* units,
                                                    CFIndex count);
ZEL_EXPORT CFIndex CFStringGetLength(CFStringRef string);
ZEL_EXPORT Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size,
                                      CFStringEncoding encoding);
ZEL_EXPORT void CFStringGetCharacters(CFStringRef string, CFRange range, unichar* units);
ZEL_EXPORT CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef allocator, CFIndex maxLength,
                                                        CFStringRef string);
ZEL_EXPORT void CFStringNormalize(CFMutableStringRef string, CFIndex form);

ZEL_EXPORT CFURLRef CFURLCreateWithString(CFAllocatorRef allocator, CFStringRef text,
                                          CFURLRef base);
ZEL_EXPORT CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef allocator, CFURLRef url,
                                                          CFStringRef component, Boolean isFolder);
ZEL_EXPORT CFURLRef CFURLCreateCopyDeletingLastPathComponent(CFAllocatorRef allocator,
                                                             CFURLRef url);
ZEL_EXPORT CFStringRef CFURLCopyLastPathComponent(CFURLRef url);

ZEL_EXPORT CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef allocator,
                                                            CFIndex capacity,
                                                            const void* keyCallBacks,
                                                            const void* valueCallBacks);
ZEL_EXPORT const void* CFDictionaryGetValue(CFMutableDictionaryRef dictionary, const void* key);
ZEL_EXPORT void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key,
                                     const void* value);
ZEL_EXPORT void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void* key);

ZEL_EXPORT CFStringRef zelFoundationConstant(const char* name);
ZEL_EXPORT const char* zelNumberType(NSNumber* number);
#endif

ZEL_EXPORT void zelFinally(void (*body)(void*), void (*cleanup)(void*), void* context);
