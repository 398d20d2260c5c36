// The encodings whose tables are Foundation's, with what its converters get wrong put right.
#import <Foundation/Foundation.h>
#include <stdbool.h>
#include <stdlib.h>
#include <string.h>

#include "native/gnustep/encodings.h"

enum { kAsciiCount = 0x80, kFoundationNumbers = 128 };

// The characters of the bytes from 0x80 on; 0 where the byte is not valid.
struct HighHalf {
  uint16_t units[kAsciiCount];
};

// Where the table of GNUstep base 1.28 is wrong.
static const struct {
  uint32_t foundation;
  uint8_t byte;
  uint16_t unit;
} kCorrections[] = {
    {NSMacOSRomanStringEncoding, 0xC6, 0x2206},  // increment, not the letter delta
    {NSMacOSRomanStringEncoding, 0xF0, 0xF8FF},  // the Apple logo
    {NSNEXTSTEPStringEncoding, 0xA9, 0x2019},    // quotation marks
    {NSNEXTSTEPStringEncoding, 0xAC, 0x2039},   {NSNEXTSTEPStringEncoding, 0xAD, 0x203A},
    {NSNEXTSTEPStringEncoding, 0xB8, 0x201A},   {NSNEXTSTEPStringEncoding, 0xB9, 0x201E},
    {NSISOThaiStringEncoding, 0xF0, 0x0E50},  // the digit zero
};

// The character that Foundation has for one byte, or 0. What doesn't become the same byte again is
// no character: undefined bytes come as replacement characters and zeros from some tables.
static uint16_t characterOfByte(uint8_t byte, NSStringEncoding foundation) {
  NSString* const text = [[[NSString alloc] initWithBytes:&byte length:1
                                                 encoding:foundation] autorelease];
  NSData* const back = [text dataUsingEncoding:foundation allowLossyConversion:NO];
  const bool same =
      [text length] == 1 && [back length] == 1 && *(const uint8_t*)[back bytes] == byte;
  return same ? [text characterAtIndex:0] : 0;
}

static struct HighHalf* makeHighHalf(NSStringEncoding foundation) {
  struct HighHalf* const half = malloc(sizeof(struct HighHalf));
  if (half == NULL) return NULL;
  NSAutoreleasePool* const pool = [NSAutoreleasePool new];
  for (size_t i = 0; i < kAsciiCount; ++i) {
    half->units[i] = characterOfByte((uint8_t)(kAsciiCount + i), foundation);
  }
  for (size_t i = 0; i < sizeof(kCorrections) / sizeof(kCorrections[0]); ++i) {
    if (kCorrections[i].foundation != foundation) continue;
    half->units[kCorrections[i].byte - kAsciiCount] = kCorrections[i].unit;
  }
  [pool release];
  return half;
}

// The table of an encoding, made at its first use and kept; null when memory is short.
static const struct HighHalf* highHalf(const struct Encoding* encoding) {
  static struct HighHalf* made[kFoundationNumbers];
  struct HighHalf** const place = &made[encoding->foundation];
  struct HighHalf* known = __atomic_load_n(place, __ATOMIC_ACQUIRE);
  if (known != NULL) return known;
  struct HighHalf* const fresh = makeHighHalf(encoding->foundation);
  if (fresh == NULL || __atomic_compare_exchange_n(place, &known, fresh, false, __ATOMIC_ACQ_REL,
                                                   __ATOMIC_ACQUIRE)) {
    return fresh;
  }
  free(fresh);  // another thread was quicker
  return known;
}

ptrdiff_t zelDecodeSingleByte(const struct Encoding* encoding, const uint8_t* bytes, size_t length,
                              uint16_t* units) {
  const struct HighHalf* const high = highHalf(encoding);
  if (high == NULL) return -1;
  for (size_t i = 0; i < length; ++i) {
    units[i] = bytes[i] < kAsciiCount ? bytes[i] : high->units[bytes[i] - kAsciiCount];
    if (units[i] == 0 && bytes[i] != 0) return -1;
  }
  return (ptrdiff_t)length;
}

// The byte of a character of 0x80 or above, or 0.
static uint8_t byteOfCharacter(const struct HighHalf* high, uint16_t unit) {
  for (size_t i = 0; i < kAsciiCount; ++i) {
    if (high->units[i] == unit) return (uint8_t)(kAsciiCount + i);
  }
  return 0;
}

ptrdiff_t zelEncodeSingleByte(const struct Encoding* encoding, const uint16_t* units, size_t count,
                              uint8_t* bytes, size_t room) {
  const struct HighHalf* const high = highHalf(encoding);
  if (high == NULL || room < count) return -1;
  for (size_t i = 0; i < count; ++i) {
    bytes[i] = units[i] < kAsciiCount ? (uint8_t)units[i] : byteOfCharacter(high, units[i]);
    if (bytes[i] == 0 && units[i] != 0) return -1;
  }
  return (ptrdiff_t)count;
}

// Whether the encoding has these characters as text.
static bool mayHold(const struct Encoding* encoding, const uint16_t* units, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    const bool control = units[i] >= 0x80 && units[i] < 0xA0;
    if (control && (encoding->rules & kNoC1Controls) != 0) return false;
    if (units[i] == 0x1B && (encoding->rules & kEscapeIsNoText) != 0) return false;
  }
  return true;
}

static bool isSevenBit(const uint8_t* bytes, size_t length) {
  for (size_t i = 0; i < length; ++i) {
    if (bytes[i] >= kAsciiCount) return false;
  }
  return true;
}

// The text of the bytes, not owned, or nil.
static NSString* foundationText(const struct Encoding* encoding, const uint8_t* bytes,
                                size_t length) {
  if ((encoding->rules & kHasHiddenTail) == 0) {
    return [[[NSString alloc] initWithBytes:bytes length:length
                                   encoding:encoding->foundation] autorelease];
  }
  // A sequence that breaks off at the end is dropped without a word, so one space is put behind:
  // it closes what is open, and an unfinished sequence is then an error.
  NSMutableData* const closed = [NSMutableData dataWithBytes:bytes length:length];
  [closed appendBytes:" " length:1];
  NSString* const text = [[[NSString alloc] initWithData:closed
                                                encoding:encoding->foundation] autorelease];
  return [text hasSuffix:@" "] ? [text substringToIndex:[text length] - 1] : nil;
}

ptrdiff_t zelDecodeByFoundation(const struct Encoding* encoding, const uint8_t* bytes,
                                size_t length, uint16_t* units) {
  if ((encoding->rules & kSevenBit) != 0 && !isSevenBit(bytes, length)) return -1;
  NSString* const text = foundationText(encoding, bytes, length);
  const size_t count = [text length];
  if (text == nil || count > length) return -1;
  [text getCharacters:units range:NSMakeRange(0, count)];
  return mayHold(encoding, units, count) ? (ptrdiff_t)count : -1;
}

// Whether the bytes mean exactly this text. Some converters write what reads differently: Shift JIS
// has a yen sign in the backslash's place, yet a backslash is written as that byte.
static bool meansText(const struct Encoding* encoding, NSData* bytes, const uint16_t* units,
                      size_t count) {
  NSMutableData* const again = [NSMutableData dataWithLength:[bytes length] * sizeof(uint16_t)];
  const ptrdiff_t length =
      zelDecodeByFoundation(encoding, [bytes bytes], [bytes length], [again mutableBytes]);
  return length == (ptrdiff_t)count && memcmp([again bytes], units, count * sizeof *units) == 0;
}

ptrdiff_t zelEncodeByFoundation(const struct Encoding* encoding, const uint16_t* units,
                                size_t count, uint8_t* bytes, size_t room) {
  NSString* const text = [[[NSString alloc] initWithCharacters:units length:count] autorelease];
  NSData* const data = [text dataUsingEncoding:encoding->foundation allowLossyConversion:NO];
  if (data == nil || [data length] > room || !meansText(encoding, data, units, count)) return -1;
  memcpy(bytes, [data bytes], [data length]);
  return (ptrdiff_t)[data length];
}
