// The Core Foundation functions and Foundation values in use, under their own names.
//
// A CFStringRef is the same object as an NSString, a CFURLRef as an NSURL: both can be sent
// messages. Functions with Create or Copy in their name give a reference that the caller owns.
#pragma once

#include "native/objc.h"

namespace zel {

struct CFStringObject;
struct CFURLObject;
struct CFAllocatorObject;
struct CFDictionaryObject;

using CFIndex = std::intptr_t;
using CFTypeRef = const void*;
using CFStringRef = const CFStringObject*;
using CFMutableStringRef = CFStringObject*;
using CFURLRef = const CFURLObject*;
using CFDictionaryRef = const CFDictionaryObject*;
using CFMutableDictionaryRef = CFDictionaryObject*;
using CFAllocatorRef = const CFAllocatorObject*;
using CFStringEncoding = std::uint32_t;
/// Core Foundation's Boolean: one byte.
using Boolean = unsigned char;
/// A UTF-16 unit.
using UniChar = std::uint16_t;

/// A part of a text or list.
struct CFRange {
  CFIndex location;
  CFIndex length;
};

inline constexpr CFAllocatorRef kDefaultAllocator = nullptr;

inline constexpr CFStringEncoding kCFStringEncodingMacRoman = 0;
inline constexpr CFStringEncoding kCFStringEncodingUnicode = 0x100;  // UTF-16, machine byte order
inline constexpr CFStringEncoding kCFStringEncodingASCII = 0x600;
inline constexpr CFStringEncoding kCFStringEncodingUTF8 = 0x08000100;

extern "C" {
/// Adds a reference, which the caller owns. Gives back the object. @param object not null.
CFTypeRef CFRetain(CFTypeRef object);
/// Gives up a reference. @param object not null.
void CFRelease(CFTypeRef object);

/// A string from bytes up to the first zero byte; owned by the caller. Null when text is null, the
/// encoding is unknown or the bytes are not valid in it.
CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text,
                                      CFStringEncoding encoding);
/// A string from UTF-16 units in machine byte order; owned by the caller, null on failure.
/// @param count units, not bytes.
CFStringRef CFStringCreateWithCharacters(CFAllocatorRef allocator, const UniChar* units,
                                         CFIndex count);
/// The length in UTF-16 units. @param string not null.
CFIndex CFStringGetLength(CFStringRef string);
/// Writes the string and a terminating zero. False when they don't fit or can't be converted; the
/// buffer is then undefined. @param size of the buffer in bytes.
Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size,
                           CFStringEncoding encoding);

/// Copies a part of the text as UTF-16 units in machine byte order. @param range within the string.
void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* units);
/// A string of the same text that can be changed; owned by the caller, null on failure.
/// @param maxLength 0: no limit.
CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef allocator, CFIndex maxLength,
                                             CFStringRef string);
/// Rewrites the string in a Unicode normalisation form. @param form 0: D, decomposed.
void CFStringNormalize(CFMutableStringRef string, CFIndex form);

/// A URL from its text; owned by the caller, null when the text is no valid URL.
/// @param base nullable.
CFURLRef CFURLCreateWithString(CFAllocatorRef allocator, CFStringRef text, CFURLRef base);

/// The URL with one more component at the end of its path, which is escaped as needed; owned by the
/// caller, null on failure. @param isFolder whether the new path ends in a slash.
CFURLRef CFURLCreateCopyAppendingPathComponent(CFAllocatorRef allocator, CFURLRef url,
                                               CFStringRef component, Boolean isFolder);
/// The URL without its path's last component; owned by the caller, null on failure.
CFURLRef CFURLCreateCopyDeletingLastPathComponent(CFAllocatorRef allocator, CFURLRef url);
/// The last component of the path, unescaped; owned by the caller, null when there is none.
CFStringRef CFURLCopyLastPathComponent(CFURLRef url);

/// A new, empty dictionary, owned by the caller. With null call-backs, the only ones in use, keys
/// and values are plain pointers: nothing is retained and keys are compared by identity.
/// @param capacity 0: no limit known.
CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                 const void* keyCallBacks,
                                                 const void* valueCallBacks);
/// The value of a key, not owned, or null.
const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key);
/// Sets the value of a key, replacing an earlier one.
void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value);
/// Removes a key; an absent one is left alone.
void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void* key);

/// Writes a line to the system log. @param format not null; "%@" takes an object, nil included.
void NSLog(CFStringRef format, ...);

/// The text constant that Foundation exports under that name, not owned; null when it has none.
CFStringRef zelFoundationConstant(const char* name);
}

/// The NSNull, the one object that stands for nothing in lists and dictionaries; not owned.
inline id nullObject() {
  static id found = nullptr;
  if (found == nullptr) found = send<id, "null">(classNamed<"NSNull">());
  return found;
}

}  // namespace zel
