#include <limits.h>
#include <stdbool.h>
#include <stdlib.h>
#include <string.h>

#include "native/gnustep/encodings.h"
#import "native/gnustep/zelnative.h"

// Text of up to this many units is converted without allocating memory.
enum { kShortText = 256 };

static bool isAscii(const char* bytes, size_t length) {
  size_t position = 0;
  for (uint64_t block; position + sizeof block <= length; position += sizeof block) {
    memcpy(&block, bytes + position, sizeof block);
    if ((block & UINT64_C(0x8080808080808080)) != 0) return false;
  }
  for (; position < length; ++position) {
    if ((bytes[position] & 0x80) != 0) return false;
  }
  return true;
}

// Room for that many units: the given short room if they fit, else memory for the caller to free.
// Null when memory is short.
static unichar* roomForUnits(size_t count, unichar shortRoom[kShortText]) {
  if (count <= kShortText) return shortRoom;
  return count > SIZE_MAX / sizeof(unichar) ? NULL : malloc(count * sizeof(unichar));
}

static bool isByteOrderMark(unichar unit) { return unit == 0xFEFF || unit == 0xFFFE; }

// Foundation makes no string that has half of a surrogate pair, and takes a byte order mark in
// front for one. As parts of a format it lets both pass.
static NSString* unusualString(const unichar* units, size_t count) {
  NSMutableString* const string = [[NSMutableString alloc] initWithCapacity:count];
  for (size_t i = 0; i < count; ++i) [string appendFormat:@"%C", units[i]];
  return string;
}

// A new string of these units.
static NSString* newString(const unichar* units, size_t count) {
  if (count > 0 && isByteOrderMark(units[0])) return unusualString(units, count);
  NSString* const string = [[NSString alloc] initWithCharacters:units length:count];
  return string == nil ? unusualString(units, count) : string;
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text,
                                      CFStringEncoding number) {
  (void)allocator;
  const struct Encoding* const encoding = zelFindEncoding(number);
  if (text == NULL || encoding == NULL) return nil;
  const size_t length = strlen(text);
  if ((encoding->rules & kAsciiSuperset) != 0 && isAscii(text, length)) {
    // Latin-1 is how Foundation stores such text: asked that way, it only copies.
    return [[NSString alloc] initWithBytes:text length:length encoding:NSISOLatin1StringEncoding];
  }
  unichar shortRoom[kShortText];
  unichar* const units = roomForUnits(length, shortRoom);
  if (units == NULL) return nil;
  const ptrdiff_t count = encoding->decode(encoding, (const uint8_t*)text, length, units);
  NSString* const string = count < 0 ? nil : newString(units, (size_t)count);
  if (units != shortRoom) free(units);
  return string;
}

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef allocator, const unichar* units,
                                         CFIndex count) {
  (void)allocator;
  if (count < 0 || (units == NULL && count > 0)) return nil;
  return newString(units, (size_t)count);
}

CFIndex CFStringGetLength(CFStringRef string) { return (CFIndex)[string length]; }

// Converts the text into room bytes; the number of bytes, or -1.
static ptrdiff_t encode(NSString* string, const struct Encoding* encoding, char* bytes,
                        size_t room) {
  unichar shortRoom[kShortText];
  const size_t count = [string length];
  unichar* const units = roomForUnits(count, shortRoom);
  if (units == NULL) return -1;
  [string getCharacters:units range:NSMakeRange(0, count)];
  const ptrdiff_t length = encoding->encode(encoding, units, count, (uint8_t*)bytes, room);
  if (units != shortRoom) free(units);
  return length;
}

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size,
                           CFStringEncoding number) {
  const struct Encoding* const encoding = zelFindEncoding(number);
  if (string == nil || buffer == NULL || size <= 0 || encoding == NULL) return false;
  // Most text is ASCII, which Foundation stores as Latin-1: a copy is all it takes.
  if ((encoding->rules & kAsciiSuperset) != 0 &&
      [string fastestEncoding] == NSISOLatin1StringEncoding &&
      [string getCString:buffer maxLength:(NSUInteger)size encoding:NSISOLatin1StringEncoding] &&
      isAscii(buffer, [string length])) {
    return true;
  }
  const ptrdiff_t length = encode(string, encoding, buffer, (size_t)size - 1);
  if (length < 0) return false;
  buffer[length] = 0;
  return true;
}
