// The Unicode encodings. They are converted here because they are on the way of every string, and
// because Foundation's converters take and add byte order marks.
#include <string.h>

#include "native/gnustep/encodings.h"

enum { kMaximum = 0x10FFFF, kPairBase = 0x10000 };

static int isHighSurrogate(uint32_t unit) { return (unit & 0xFC00) == 0xD800; }
static int isLowSurrogate(uint32_t unit) { return (unit & 0xFC00) == 0xDC00; }
static int isCodePoint(uint32_t value) {
  return value <= kMaximum && !isHighSurrogate(value) && !isLowSurrogate(value);
}

// Writes a code point as one or two units; returns their number.
static size_t putUnits(uint32_t codePoint, uint16_t* units) {
  if (codePoint < kPairBase) {
    units[0] = (uint16_t)codePoint;
    return 1;
  }
  units[0] = (uint16_t)(0xD800 + ((codePoint - kPairBase) >> 10));
  units[1] = (uint16_t)(0xDC00 + ((codePoint - kPairBase) & 0x3FF));
  return 2;
}

// Reads the code point at *position and steps over it; -1 for a lone surrogate.
static int32_t takeCodePoint(const uint16_t* units, size_t count, size_t* position) {
  const uint16_t unit = units[(*position)++];
  if (isLowSurrogate(unit)) return -1;
  if (!isHighSurrogate(unit)) return unit;
  if (*position == count || !isLowSurrogate(units[*position])) return -1;
  const uint16_t low = units[(*position)++];
  return (int32_t)(kPairBase + ((unit & 0x3FFu) << 10) + (low & 0x3FFu));
}

// Reads the sequence behind a lead byte of 0x80 or above; returns its length, or 0 when it is cut
// off, longer than it needs to be, or no code point.
static size_t takeUtf8Sequence(const uint8_t* bytes, size_t length, uint32_t* codePoint) {
  static const uint32_t kSmallest[] = {0, 0x80, 0x800, kPairBase};
  const uint8_t lead = bytes[0];
  if (lead < 0xC2 || lead > 0xF4) return 0;
  const size_t more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
  if (more >= length) return 0;
  uint32_t value = lead & (0x3Fu >> more);
  for (size_t i = 1; i <= more; ++i) {
    if ((bytes[i] & 0xC0) != 0x80) return 0;
    value = value << 6 | (bytes[i] & 0x3Fu);
  }
  if (value < kSmallest[more] || !isCodePoint(value)) return 0;
  *codePoint = value;
  return more + 1;
}

ptrdiff_t zelDecodeUtf8(const struct Encoding* encoding, const uint8_t* bytes, size_t length,
                        uint16_t* units) {
  (void)encoding;
  // A byte order mark in front is dropped, as Core Foundation does.
  size_t position = length >= 3 && memcmp(bytes, "\xEF\xBB\xBF", 3) == 0 ? 3 : 0;
  uint16_t* out = units;
  while (position < length) {
    if (bytes[position] < 0x80) {
      *out++ = bytes[position++];
      continue;
    }
    uint32_t codePoint = 0;
    const size_t taken = takeUtf8Sequence(bytes + position, length - position, &codePoint);
    if (taken == 0) return -1;
    position += taken;
    out += putUnits(codePoint, out);
  }
  return out - units;
}

// Writes a code point of 0x80 or above; returns its number of bytes, which is at most room, or 0.
static size_t putUtf8(uint32_t codePoint, uint8_t* bytes, size_t room) {
  const size_t more = codePoint >= kPairBase ? 3 : codePoint >= 0x800 ? 2 : 1;
  if (more >= room) return 0;
  for (size_t i = more; i > 0; --i, codePoint >>= 6) {
    bytes[i] = (uint8_t)(0x80 | (codePoint & 0x3F));
  }
  bytes[0] = (uint8_t)((0xFF00u >> (more + 1)) | codePoint);
  return more + 1;
}

ptrdiff_t zelEncodeUtf8(const struct Encoding* encoding, const uint16_t* units, size_t count,
                        uint8_t* bytes, size_t room) {
  (void)encoding;
  size_t used = 0;
  for (size_t position = 0; position < count;) {
    if (used == room) return -1;
    if (units[position] < 0x80) {
      bytes[used++] = (uint8_t)units[position++];
      continue;
    }
    const int32_t codePoint = takeCodePoint(units, count, &position);
    const size_t put = codePoint < 0 ? 0 : putUtf8((uint32_t)codePoint, bytes + used, room - used);
    if (put == 0) return -1;
    used += put;
  }
  return (ptrdiff_t)used;
}

static uint32_t readBytes(const uint8_t* bytes, size_t width, uint32_t rules) {
  uint32_t value = 0;
  for (size_t i = 0; i < width; ++i) {
    value = value << 8 | bytes[(rules & kBigEndian) != 0 ? i : width - 1 - i];
  }
  return value;
}

static void writeBytes(uint32_t value, uint8_t* bytes, size_t width, uint32_t rules) {
  for (size_t i = 0; i < width; ++i, value >>= 8) {
    bytes[(rules & kBigEndian) != 0 ? width - 1 - i : i] = (uint8_t)value;
  }
}

// Surrogates pass as they are: in this encoding text can hold what a string can.
ptrdiff_t zelDecodeUtf16(const struct Encoding* encoding, const uint8_t* bytes, size_t length,
                         uint16_t* units) {
  if (length % 2 != 0) return -1;
  for (size_t i = 0; i < length / 2; ++i) {
    units[i] = (uint16_t)readBytes(bytes + 2 * i, 2, encoding->rules);
  }
  return (ptrdiff_t)(length / 2);
}

ptrdiff_t zelEncodeUtf16(const struct Encoding* encoding, const uint16_t* units, size_t count,
                         uint8_t* bytes, size_t room) {
  if (room / 2 < count) return -1;
  for (size_t i = 0; i < count; ++i) writeBytes(units[i], bytes + 2 * i, 2, encoding->rules);
  return (ptrdiff_t)(2 * count);
}

ptrdiff_t zelDecodeUtf32(const struct Encoding* encoding, const uint8_t* bytes, size_t length,
                         uint16_t* units) {
  if (length % 4 != 0) return -1;
  uint16_t* out = units;
  for (size_t i = 0; i < length; i += 4) {
    const uint32_t value = readBytes(bytes + i, 4, encoding->rules);
    if (!isCodePoint(value)) return -1;
    out += putUnits(value, out);
  }
  return out - units;
}

ptrdiff_t zelEncodeUtf32(const struct Encoding* encoding, const uint16_t* units, size_t count,
                         uint8_t* bytes, size_t room) {
  size_t used = 0;
  for (size_t position = 0; position < count; used += 4) {
    const int32_t codePoint = takeCodePoint(units, count, &position);
    if (codePoint < 0 || room - used < 4) return -1;
    writeBytes((uint32_t)codePoint, bytes + used, 4, encoding->rules);
  }
  return (ptrdiff_t)used;
}
