// Text encodings by Core Foundation's numbers: bytes to UTF-16 units and back.
#pragma once

#include <stddef.h>
#include <stdint.h>

struct Encoding;

// Writes the units of a text. Returns their number, or -1 when the bytes are not valid.
// units: room for as many units as there are bytes; no encoding here yields more.
typedef ptrdiff_t (*Decoder)(const struct Encoding* encoding, const uint8_t* bytes, size_t length,
                             uint16_t* units);
// Writes the bytes of a text, without a terminating zero. Returns their number, or -1 when they
// don't fit into room or the encoding lacks a character.
typedef ptrdiff_t (*Encoder)(const struct Encoding* encoding, const uint16_t* units, size_t count,
                             uint8_t* bytes, size_t room);

enum {
  // Bytes below 0x80 are ASCII characters, and ASCII characters are those bytes.
  kAsciiSuperset = 1 << 0,
  kBigEndian = 1 << 1,
  // Bytes above 0x7F are not valid.
  kSevenBit = 1 << 2,
  // The C1 controls are not part of it.
  kNoC1Controls = 1 << 3,
  // The escape character only switches character sets: it is never part of the text.
  kEscapeIsNoText = 1 << 4,
  // The text may end in a state that swallows what was left: see zelDecodeByFoundation.
  kHasHiddenTail = 1 << 5,
};

struct Encoding {
  uint32_t number;
  Decoder decode;
  Encoder encode;
  uint32_t foundation;  // Foundation's own number; 0 where it isn't asked
  uint32_t rules;
};

// The one that nearly every text is in.
extern const struct Encoding zelUtf8;
// The encoding of that number, which isn't UTF-8's, or null.
const struct Encoding* zelFindRareEncoding(uint32_t number);
// The encoding of that number, or null.
static inline const struct Encoding* zelFindEncoding(uint32_t number) {
  return number == 0x08000100 ? &zelUtf8 : zelFindRareEncoding(number);
}

ptrdiff_t zelDecodeUtf8(const struct Encoding* encoding, const uint8_t* bytes, size_t length,
                        uint16_t* units);
ptrdiff_t zelEncodeUtf8(const struct Encoding* encoding, const uint16_t* units, size_t count,
                        uint8_t* bytes, size_t room);
ptrdiff_t zelDecodeUtf16(const struct Encoding* encoding, const uint8_t* bytes, size_t length,
                         uint16_t* units);
ptrdiff_t zelEncodeUtf16(const struct Encoding* encoding, const uint16_t* units, size_t count,
                         uint8_t* bytes, size_t room);
ptrdiff_t zelDecodeUtf32(const struct Encoding* encoding, const uint8_t* bytes, size_t length,
                         uint16_t* units);
ptrdiff_t zelEncodeUtf32(const struct Encoding* encoding, const uint16_t* units, size_t count,
                         uint8_t* bytes, size_t room);

// Character sets of one byte for each character.
ptrdiff_t zelDecodeSingleByte(const struct Encoding* encoding, const uint8_t* bytes, size_t length,
                              uint16_t* units);
ptrdiff_t zelEncodeSingleByte(const struct Encoding* encoding, const uint16_t* units, size_t count,
                              uint8_t* bytes, size_t room);

// Everything else that Foundation can convert.
ptrdiff_t zelDecodeByFoundation(const struct Encoding* encoding, const uint8_t* bytes,
                                size_t length, uint16_t* units);
ptrdiff_t zelEncodeByFoundation(const struct Encoding* encoding, const uint16_t* units,
                                size_t count, uint8_t* bytes, size_t room);
