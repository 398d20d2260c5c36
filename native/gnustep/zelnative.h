// What libzelnative exports: the Core Foundation functions of native/corefoundation.h and the
// exception functions of native/exceptions.h, over GNUstep base.
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
typedef NSURL* CFURLRef;
typedef NSMutableDictionary* CFMutableDictionaryRef;
typedef id CFTypeRef;
typedef const void* CFAllocatorRef;
typedef intptr_t CFIndex;
typedef uint32_t CFStringEncoding;
typedef unsigned char Boolean;

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

ZEL_EXPORT CFURLRef CFURLCreateWithString(CFAllocatorRef allocator, CFStringRef text,
                                          CFURLRef base);

ZEL_EXPORT CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef allocator,
                                                            CFIndex capacity,
                                                            const void* keyCallBacks,
                                                            const void* valueCallBacks);
ZEL_EXPORT const void* CFDictionaryGetValue(CFMutableDictionaryRef dictionary, const void* key);
ZEL_EXPORT void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key,
                                     const void* value);
ZEL_EXPORT void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void* key);

ZEL_EXPORT CFStringRef zelFoundationConstant(const char* name);
#endif

ZEL_EXPORT void zelFinally(void (*body)(void*), void (*cleanup)(void*), void* context);
