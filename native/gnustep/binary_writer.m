// Writes binary property lists, because GNUstep base does so wrongly: lists that its numbers take
// for equal become one, so that (1) comes back for (true) and for (1.0), and 0 for -0; high
// unsigned numbers become negative; and what it can't write it leaves out, which breaks the file.
// May go when GNUstep base keeps all of that; 1.28 doesn't.
#include <string.h>

#include "native/gnustep/property_list_nodes.h"
#include "native/gnustep/property_lists.h"
#include "native/gnustep/zelnative.h"

// What a value begins with: its kind, above a number that says how large it is.
enum Marker {
  kFalse = 0x08,
  kTrue = 0x09,
  kInteger = 0x10,
  kReal = 0x20,
  kDate = 0x33,
  kData = 0x40,
  kAscii = 0x50,
  kUnits = 0x60,
  kUid = 0x80,
  kList = 0xA0,
  kDictionary = 0xD0,
  kCountFollows = 0x0F
};

static void putByte(NSMutableData* out, unsigned byte) {
  const uint8_t value = (uint8_t)byte;
  [out appendBytes:&value length:1];
}

// The number in so many bytes, the highest first.
static void put(NSMutableData* out, uint64_t number, unsigned size) {
  uint8_t bytes[sizeof number];
  for (unsigned i = 0; i < size; ++i) bytes[i] = (uint8_t)(number >> 8 * (size - 1 - i));
  [out appendBytes:bytes length:size];
}

// The smallest of 1, 2, 4 and 8 bytes that hold the number, as its exponent of 2.
static unsigned exponentFor(uint64_t number) {
  unsigned exponent = 0;
  while (exponent < 3 && number >> (8U << exponent) != 0) ++exponent;
  return exponent;
}

static void putInteger(NSMutableData* out, uint64_t number) {
  const unsigned exponent = exponentFor(number);
  putByte(out, kInteger | exponent);
  put(out, number, 1U << exponent);
}

// A marker with a count, which stands behind it when it is large.
static void putMarker(NSMutableData* out, enum Marker marker, NSUInteger count) {
  putByte(out, marker | (unsigned)MIN(count, (NSUInteger)kCountFollows));
  if (count >= kCountFollows) putInteger(out, count);
}

static void putReal(NSMutableData* out, enum Marker marker, double number) {
  uint64_t bits = 0;
  memcpy(&bits, &number, sizeof bits);
  putByte(out, marker);
  put(out, bits, sizeof bits);
}

static void putSingle(NSMutableData* out, float number) {
  uint32_t bits = 0;
  memcpy(&bits, &number, sizeof bits);
  putByte(out, kReal | 2);
  put(out, bits, sizeof bits);
}

// Eight bytes have a sign and fewer have none, so negative numbers take eight, and those from 2^63
// on sixteen.
static void putWhole(NSMutableData* out, NSNumber* number, bool isUnsigned) {
  const uint64_t bits = [number unsignedLongLongValue];
  if (isUnsigned && bits > INT64_MAX) {
    putByte(out, kInteger | 4);
    put(out, 0, sizeof bits);
    put(out, bits, sizeof bits);
  } else {
    putInteger(out, bits);
  }
}

static void putNumber(NSMutableData* out, NSNumber* number) {
  const char type = *zelNumberType(number);
  switch (type) {
    case 'c':
      putByte(out, [number boolValue] ? kTrue : kFalse);
      break;
    case 'f':
      putSingle(out, [number floatValue]);
      break;
    case 'd':
      putReal(out, kReal | 3, [number doubleValue]);
      break;
    default:
      putWhole(out, number, type == 'Q');
  }
}

static void putText(NSMutableData* out, NSString* text) {
  const NSUInteger length = [text length];
  unichar* const units = [[NSMutableData dataWithLength:length * sizeof(unichar)] mutableBytes];
  [text getCharacters:units range:NSMakeRange(0, length)];
  bool isAscii = true;
  for (NSUInteger i = 0; i < length; ++i) isAscii = isAscii && units[i] < 0x80;
  uint8_t* const bytes = (uint8_t*)units;
  for (NSUInteger i = 0; i < length; ++i) {
    if (isAscii) {
      bytes[i] = (uint8_t)units[i];
    } else {
      units[i] = NSSwapHostShortToBig(units[i]);
    }
  }
  putMarker(out, isAscii ? kAscii : kUnits, length);
  [out appendBytes:bytes length:isAscii ? length : length * sizeof(unichar)];
}

static void putReferences(NSMutableData* out, struct Nodes nodes, const struct Node* node,
                          unsigned size) {
  const uint32_t* const references = (const uint32_t*)[nodes.references bytes] + node->first;
  const size_t each = node->kind == kDictionaryNode ? 2 : 1;
  for (size_t i = 0; i < each * node->count; ++i) put(out, references[i], size);
}

// Keyed archives refer to their objects by marks that are read as dictionaries of this one entry.
// GNUstep's own tools know those of up to two bytes; with a higher number it stays a dictionary.
static bool isUid(NSDictionary* dictionary) {
  NSNumber* const number = [dictionary objectForKey:@"CF$UID"];
  return [dictionary count] == 1 && [number isKindOfClass:[NSNumber class]] &&
         *zelNumberType(number) == 'i' && [number intValue] >= 0 && [number intValue] <= UINT16_MAX;
}

static void putDictionary(NSMutableData* out, struct Nodes nodes, const struct Node* node,
                          unsigned size) {
  if (isUid(node->object)) {
    const uint64_t uid = [[node->object objectForKey:@"CF$UID"] unsignedLongLongValue];
    putByte(out, kUid | exponentFor(uid));
    put(out, uid, 1U << exponentFor(uid));
  } else {
    putMarker(out, kDictionary, node->count);
    putReferences(out, nodes, node, size);
  }
}

static void putNode(NSMutableData* out, struct Nodes nodes, const struct Node* node,
                    unsigned size) {
  switch (node->kind) {
    case kTextNode:
      putText(out, node->object);
      break;
    case kNumberNode:
      putNumber(out, node->object);
      break;
    case kDateNode:
      putReal(out, kDate, [node->object timeIntervalSinceReferenceDate]);
      break;
    case kDataNode:
      putMarker(out, kData, [node->object length]);
      [out appendData:node->object];
      break;
    case kListNode:
      putMarker(out, kList, node->count);
      putReferences(out, nodes, node, size);
      break;
    case kDictionaryNode:
      putDictionary(out, nodes, node, size);
      break;
  }
}

// Where every object stands, and at the end how to read that.
static void putTable(NSMutableData* out, const uint64_t* offsets, size_t count, unsigned size) {
  const uint64_t table = [out length];
  const unsigned offsetSize = 1U << exponentFor(table);
  for (size_t i = 0; i < count; ++i) put(out, offsets[i], offsetSize);
  put(out, 0, 6);  // five bytes of nothing, and the version by which keys would be sorted
  putByte(out, offsetSize);
  putByte(out, size);
  put(out, count, sizeof(uint64_t));
  put(out, 0, sizeof(uint64_t));  // the root is the first object
  put(out, table, sizeof(uint64_t));
}

NSData* zelBinaryPropertyList(id root, NSString** fault) {
  const struct Nodes nodes = zelTakeApart(root, kDeepestDomain);
  *fault = nodes.fault;
  if (nodes.fault != nil) return nil;
  const struct Node* const all = [nodes.nodes bytes];
  const size_t count = [nodes.nodes length] / sizeof *all;
  const unsigned size = 1U << exponentFor(count);
  NSMutableData* const offsets = [NSMutableData dataWithLength:count * sizeof(uint64_t)];
  NSMutableData* const out = [NSMutableData dataWithBytes:"bplist00" length:8];
  for (size_t i = 0; i < count; ++i) {
    ((uint64_t*)[offsets mutableBytes])[i] = [out length];
    putNode(out, nodes, all + i, size);
  }
  putTable(out, [offsets bytes], count, size);
  return out;
}
