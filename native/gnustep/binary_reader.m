// Reads binary property lists, because GNUstep base fails at some that macOS writes, and at damage:
// it knows no integers of 16 bytes and no references of keyed archives above 16 bits; text with
// half of a surrogate pair stops it; lengths aren't checked against the end; nesting has no bound.
// May go when GNUstep base reads all of that; 1.28 doesn't.
#include <string.h>

#include "native/gnustep/property_lists.h"
#include "native/gnustep/zelnative.h"

enum { kHeader = 8, kTrailer = 32, kBeingRead = UINT16_MAX };

struct Reader {
  const uint8_t* bytes;
  uint64_t table;  // where the offsets of objects begin, and where the objects end
  unsigned offsetSize;
  unsigned referenceSize;
  uint64_t count;    // of objects
  id* objects;       // by number, not owned; nil before they are read
  uint16_t* levels;  // by number: of lists and dictionaries in the object, itself included
};

// Where a list or dictionary stands, and its own levels, which reading its parts raises.
struct Place {
  unsigned level;
  unsigned* levels;
};

// A part of the file that is being read.
struct Cursor {
  uint64_t at;
  uint64_t end;
};

static id readObject(struct Reader* reader, uint64_t number, unsigned level);

static uint64_t bigEndian(const uint8_t* bytes, unsigned size) {
  uint64_t number = 0;
  for (unsigned i = 0; i < size; ++i) number = number << 8 | bytes[i];
  return number;
}

// Steps over so many bytes and gives back where they are; null when there aren't as many.
static const uint8_t* take(const struct Reader* reader, struct Cursor* cursor, uint64_t size) {
  if (size > cursor->end - cursor->at) return NULL;
  cursor->at += size;
  return reader->bytes + cursor->at - size;
}

static bool takeNumber(const struct Reader* reader, struct Cursor* cursor, unsigned size,
                       uint64_t* number) {
  const uint8_t* const bytes = take(reader, cursor, size);
  if (bytes == NULL || size > sizeof *number) return false;
  *number = bigEndian(bytes, size);
  return true;
}

// What a marker says of the length: its lower half, or an integer behind it.
static bool takeLength(const struct Reader* reader, struct Cursor* cursor, unsigned low,
                       uint64_t* length) {
  *length = low;
  if (low < 0xF) return true;
  const uint8_t* const marker = take(reader, cursor, 1);
  return marker != NULL && *marker >= 0x10 && *marker <= 0x13 &&
         takeNumber(reader, cursor, 1U << (*marker & 0xF), length);
}

static id integer(const struct Reader* reader, struct Cursor* cursor, unsigned low) {
  uint64_t high = 0;
  uint64_t number = 0;
  if (low == 4 && !takeNumber(reader, cursor, sizeof high, &high)) return nil;
  if (low > 4 || !takeNumber(reader, cursor, MIN(1U << low, 8U), &number)) return nil;
  // Eight bytes have a sign and fewer have none; sixteen must say what 64 bits can.
  if (low < 4 || (high == UINT64_MAX && number > INT64_MAX)) {
    return [NSNumber numberWithLongLong:(long long)number];
  }
  return high == 0 ? [NSNumber numberWithUnsignedLongLong:number] : nil;
}

static double doubleOf(uint64_t bits) {
  double number = 0;
  memcpy(&number, &bits, sizeof number);
  return number;
}

static id real(const struct Reader* reader, struct Cursor* cursor, unsigned low) {
  uint64_t bits = 0;
  if ((low != 2 && low != 3) || !takeNumber(reader, cursor, 1U << low, &bits)) return nil;
  if (low == 3) return [NSNumber numberWithDouble:doubleOf(bits)];
  const uint32_t narrow = (uint32_t)bits;
  float number = 0;
  memcpy(&number, &narrow, sizeof number);
  return [NSNumber numberWithFloat:number];
}

static id date(const struct Reader* reader, struct Cursor* cursor, unsigned low) {
  uint64_t bits = 0;
  if (low != 3 || !takeNumber(reader, cursor, sizeof bits, &bits)) return nil;
  const double seconds = doubleOf(bits);
  // Foundation has no date for what is no number.
  return seconds == seconds ? [NSDate dateWithTimeIntervalSinceReferenceDate:seconds] : nil;
}

static id data(const struct Reader* reader, struct Cursor* cursor, unsigned low) {
  uint64_t length = 0;
  if (!takeLength(reader, cursor, low, &length)) return nil;
  const uint8_t* const bytes = take(reader, cursor, length);
  return bytes == NULL ? nil : [NSData dataWithBytes:bytes length:(NSUInteger)length];
}

static id ascii(const struct Reader* reader, struct Cursor* cursor, unsigned low) {
  uint64_t length = 0;
  if (!takeLength(reader, cursor, low, &length)) return nil;
  const uint8_t* const bytes = take(reader, cursor, length);
  if (bytes == NULL) return nil;
  return [[[NSString alloc] initWithBytes:bytes
                                   length:(NSUInteger)length
                                 encoding:NSUTF8StringEncoding] autorelease];
}

static id units(const struct Reader* reader, struct Cursor* cursor, unsigned low) {
  uint64_t length = 0;
  if (!takeLength(reader, cursor, low, &length) || length > SIZE_MAX / 4) return nil;
  const uint8_t* const bytes = take(reader, cursor, 2 * length);
  if (bytes == NULL) return nil;
  NSMutableData* const room = [NSMutableData dataWithLength:(NSUInteger)length * sizeof(unichar)];
  unichar* const made = [room mutableBytes];
  for (uint64_t i = 0; i < length; ++i) made[i] = (unichar)bigEndian(bytes + 2 * i, 2);
  return [CFStringCreateWithCharacters(NULL, made, (CFIndex)length) autorelease];
}

// A reference within a keyed archive, as GNUstep's own reader gives it.
static id uid(const struct Reader* reader, struct Cursor* cursor, unsigned low) {
  uint64_t number = 0;
  if (!takeNumber(reader, cursor, low + 1, &number)) return nil;
  return [NSDictionary dictionaryWithObject:[NSNumber numberWithUnsignedLongLong:number]
                                     forKey:@"CF$UID"];
}

// --- what has parts

// The objects that the next so many references name; nil when there aren't as many, or when one is
// damaged.
static NSMutableData* parts(struct Reader* reader, struct Cursor* cursor, uint64_t count,
                            struct Place place) {
  if (count > (cursor->end - cursor->at) / reader->referenceSize) return nil;
  NSMutableData* const made = [NSMutableData dataWithLength:(NSUInteger)count * sizeof(id)];
  for (uint64_t i = 0; i < count; ++i) {
    uint64_t number = 0;
    takeNumber(reader, cursor, reader->referenceSize, &number);
    const id part = readObject(reader, number, place.level + 1);
    if (part == nil) return nil;
    ((id*)[made mutableBytes])[i] = part;
    *place.levels = MAX(*place.levels, reader->levels[number] + 1U);
  }
  return made;
}

static id list(struct Reader* reader, struct Cursor* cursor, uint64_t count, struct Place place) {
  NSMutableData* const elements = parts(reader, cursor, count, place);
  if (elements == nil) return nil;
  return [NSArray arrayWithObjects:[elements mutableBytes] count:(NSUInteger)count];
}

static bool areTexts(NSMutableData* keys, uint64_t count) {
  const id* const all = [keys mutableBytes];
  for (uint64_t i = 0; i < count; ++i) {
    if (![all[i] isKindOfClass:[NSString class]]) return false;
  }
  return true;
}

static id dictionary(struct Reader* reader, struct Cursor* cursor, uint64_t count,
                     struct Place place) {
  NSMutableData* const keys = parts(reader, cursor, count, place);
  if (keys == nil || !areTexts(keys, count)) return nil;
  NSMutableData* const values = parts(reader, cursor, count, place);
  if (values == nil) return nil;
  return [NSDictionary dictionaryWithObjects:[values mutableBytes]
                                     forKeys:[keys mutableBytes]
                                       count:(NSUInteger)count];
}

// --- any object

static id constant(const struct Reader* reader, struct Cursor* cursor, unsigned low) {
  (void)reader;
  (void)cursor;
  return low == 8 || low == 9 ? [NSNumber numberWithBool:low == 9] : nil;
}

// By the upper half of an object's marker.
static id (*const kLeaves[16])(const struct Reader*, struct Cursor*, unsigned) = {
    [0x0] = constant, [0x1] = integer, [0x2] = real,  [0x3] = date,
    [0x4] = data,     [0x5] = ascii,   [0x6] = units, [0x8] = uid};
static id (*const kContainers[16])(struct Reader*, struct Cursor*, uint64_t, struct Place) = {
    [0xA] = list, [0xD] = dictionary};

static id readContainer(struct Reader* reader, struct Cursor* cursor, unsigned marker,
                        struct Place place) {
  uint64_t count = 0;
  if (kContainers[marker >> 4] == NULL || place.level > kDeepestDomain ||
      !takeLength(reader, cursor, marker & 0xF, &count)) {
    return nil;
  }
  *place.levels = 1;
  return kContainers[marker >> 4](reader, cursor, count, place);
}

static id readNew(struct Reader* reader, uint64_t number, unsigned level) {
  const uint8_t* const entry = reader->bytes + reader->table + number * reader->offsetSize;
  struct Cursor cursor = {bigEndian(entry, reader->offsetSize), reader->table};
  if (cursor.at < kHeader || cursor.at >= cursor.end) return nil;
  const unsigned marker = *take(reader, &cursor, 1);
  unsigned levels = 0;
  reader->levels[number] = kBeingRead;
  const id object = kLeaves[marker >> 4] != NULL
                        ? kLeaves[marker >> 4](reader, &cursor, marker & 0xF)
                        : readContainer(reader, &cursor, marker, (struct Place){level, &levels});
  reader->levels[number] = (uint16_t)levels;
  reader->objects[number] = object;
  return object;
}

// An object, which as a list or dictionary stands within level - 1 others; nil when it is damaged.
static id readObject(struct Reader* reader, uint64_t number, unsigned level) {
  if (number >= reader->count || reader->levels[number] == kBeingRead) return nil;
  const id known = reader->objects[number];
  const id object = known != nil ? known : readNew(reader, number, level);
  return level + reader->levels[number] > kDeepestDomain + 1U ? nil : object;
}

bool zelIsBinaryPropertyList(NSData* data) {
  return [data length] >= kHeader && memcmp([data bytes], "bplist00", kHeader) == 0;
}

id zelReadBinaryPropertyList(NSData* data) {
  const uint64_t length = [data length];
  if (!zelIsBinaryPropertyList(data) || length < kHeader + kTrailer) return nil;
  const uint8_t* const bytes = [data bytes];
  const uint8_t* const trailer = bytes + length - kTrailer;
  struct Reader reader = {.bytes = bytes,
                          .offsetSize = trailer[6],
                          .referenceSize = trailer[7],
                          .count = bigEndian(trailer + 8, 8),
                          .table = bigEndian(trailer + 24, 8)};
  const uint64_t room = length - kTrailer;
  if (reader.offsetSize - 1U >= 8 || reader.referenceSize - 1U >= 8 || reader.table > room ||
      reader.count > (room - reader.table) / reader.offsetSize) {
    return nil;
  }
  const NSUInteger count = (NSUInteger)reader.count;
  reader.objects = [[NSMutableData dataWithLength:count * sizeof(id)] mutableBytes];
  reader.levels = [[NSMutableData dataWithLength:count * sizeof(uint16_t)] mutableBytes];
  return readObject(&reader, bigEndian(trailer + 16, 8), 1);
}
