#include <limits.h>
#include <stdbool.h>
#include <stdlib.h>
#include <string.h>

#include "native/gnustep/encodings.h"
#import "native/gnustep/text_methods.h"
#import "native/gnustep/zelnative.h"

enum {
  // Text of up to this many units is converted without allocating memory.
  kShortText = 256,
  // ASCII of up to this many bytes is copied one by one, which is cheaper than a block of its own.
  kInlineText = 128
};

// Looked up once: a class that stands in the source is looked up at each use.
static Class stringClass(void) {
  static Class strings = Nil;
  if (strings == Nil) strings = [NSString class];
  return strings;
}

static bool isAsciiBlock(const char* bytes) {
  uint64_t block = 0;
  memcpy(&block, bytes, sizeof block);
  return (block & UINT64_C(0x8080808080808080)) == 0;
}

// By blocks, of which the last may overlap the one before it.
static inline bool isAscii(const char* bytes, size_t length) {
  enum { kBlock = sizeof(uint64_t) };
  size_t position = 0;
  for (; length >= kBlock && position < length - kBlock; position += kBlock) {
    if (!isAsciiBlock(bytes + position)) return false;
  }
  if (length >= kBlock) return isAsciiBlock(bytes + length - kBlock);
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

// A new string of ASCII, which ends in a zero byte. Foundation stores it as bytes, whichever way it
// is made: of UTF-8 within the object itself, after a look at every byte; of Latin-1 as a copy in a
// block of its own.
static NSString* newAsciiString(const char* text, size_t length) {
  NSString* const blank = [stringClass() alloc];
  if (length <= kInlineText) return [blank initWithUTF8String:text];
  return [blank initWithBytes:text length:length encoding:NSISOLatin1StringEncoding];
}

// A new string of these units.
static NSString* newString(const unichar* units, size_t count) {
  if (count > 0 && isByteOrderMark(units[0])) return unusualString(units, count);
  NSString* const string = [[stringClass() alloc] initWithCharacters:units length:count];
  return string == nil ? unusualString(units, count) : string;
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text,
                                      CFStringEncoding number) {
  (void)allocator;
  const struct Encoding* const encoding = zelFindEncoding(number);
  if (text == NULL || encoding == NULL) return nil;
  const size_t length = strlen(text);
  if ((encoding->rules & kAsciiSuperset) != 0 && isAscii(text, length)) {
    return newAsciiString(text, length);
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

CFIndex CFStringGetLength(CFStringRef string) {
  return (CFIndex)zelMethodsOf(string)->length(string, @selector(length));
}

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

// Most text is ASCII, which Foundation stores as Latin-1, or as UTF-8 where it stands in a program:
// a copy is all it takes. Whether the text is such a one and is in the buffer now.
static bool copyStored(NSString* string, const struct Encoding* wanted, char* buffer, size_t size) {
  const struct TextMethods* const methods = zelMethodsOf(string);
  const NSStringEncoding stored = methods->fastestEncoding(string, @selector(fastestEncoding));
  const bool asWanted = stored == wanted->foundation;
  if (!asWanted && stored != NSISOLatin1StringEncoding) return false;
  return methods->getCString(string, @selector(getCString:maxLength:encoding:), buffer, size,
                             stored) &&
         (asWanted || isAscii(buffer, methods->length(string, @selector(length))));
}

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size,
                           CFStringEncoding number) {
  const struct Encoding* const encoding = zelFindEncoding(number);
  if (string == nil || buffer == NULL || size <= 0 || encoding == NULL) return false;
  if ((encoding->rules & kAsciiSuperset) != 0 &&
      copyStored(string, encoding, buffer, (size_t)size)) {
    return true;
  }
  const ptrdiff_t length = encode(string, encoding, buffer, (size_t)size - 1);
  if (length < 0) return false;
  buffer[length] = 0;
  return true;
}
