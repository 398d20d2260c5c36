#include <string.h>

#import "bench/direct.h"
#import "bench/direct_conversions.h"
#import "native/gnustep/file_records.h"

// Looked up once: a class that stands in the source is looked up at each use.
static Class arrays, strings, datas, numbers, dates, dictionaries, urls, calendarDates;
static NSNull* null;

NSUserDefaults* standardDefaults = nil;

void directPrepare(void) {
  arrays = [NSArray class];
  strings = [NSString class];
  datas = [NSData class];
  numbers = [NSNumber class];
  dates = [NSDate class];
  dictionaries = [NSDictionary class];
  urls = [NSURL class];
  calendarDates = [NSCalendarDate class];
  null = [NSNull null];
  standardDefaults = [[NSUserDefaults standardUserDefaults] retain];
}

void* directOpenPool(void) { return [NSAutoreleasePool new]; }

void directDrainPool(void* pool) { [(NSAutoreleasePool*)pool drain]; }

LeanString* hostText(NSString* text) {
  enum { kShort = 99, kShortBuffer = 601, kUtf8 = 0x08000100 };
  const NSUInteger length = [text length];
  if (length == 0) return NULL;
  char shortBuffer[kShortBuffer];
  const NSUInteger size = length <= kShort ? kShortBuffer : 3 * length + 1;
  char* const buffer = length <= kShort ? shortBuffer : malloc(size);
  LeanString* made = NULL;
  if ([text getCString:buffer maxLength:size - 1 encoding:NSUTF8StringEncoding]) {
    made = leanBuildString(buffer, (int32_t)strlen(buffer));
    leanSetEncoding(made, kUtf8);
  }
  if (buffer != shortBuffer) free(buffer);
  return made;
}

LeanObject* hostData(NSData* data) {
  const NSUInteger length = [data length];
  if (length == 0) return NULL;
  LeanObject* const block = leanNewBlock((int32_t)length);
  memcpy(leanBlockBytes(block), [data bytes], length);
  return block;
}

static LeanObject* hostNumber(NSNumber* number) {
  switch (zelNumberType(number)[0]) {
    case 'c':
      return leanVariantOfBoolean((unsigned char)[number boolValue]);
    case 'i':
      return leanVariantOfInt32([number intValue]);
    case 'q':
      return leanVariantOfInt64([number longLongValue]);
    case 'f':
      return leanVariantOfSingle([number floatValue]);
    default:
      return leanVariantOfDouble([number doubleValue]);
  }
}

static LeanObject* hostDate(NSDate* date) {
  NSCalendarDate* const calendarDate = [[[calendarDates alloc]
      initWithTimeIntervalSinceReferenceDate:[date timeIntervalSinceReferenceDate]] autorelease];
  LeanObject* const made = leanNewInstance("Date");
  leanSetInteger(made, "Year", (int32_t)[calendarDate yearOfCommonEra]);
  leanSetInteger(made, "Month", (int32_t)[calendarDate monthOfYear]);
  leanSetInteger(made, "Day", (int32_t)[calendarDate dayOfMonth]);
  leanSetInteger(made, "Hour", (int32_t)[calendarDate hourOfDay]);
  leanSetInteger(made, "Minute", (int32_t)[calendarDate minuteOfHour]);
  leanSetInteger(made, "Second", (int32_t)[calendarDate secondOfMinute]);
  return made;
}

LeanObject* hostFile(NSURL* url) {
  FSRef ref;
  FSRef folder;
  HFSUniStr255 name;
  const char* const path = [[url path] fileSystemRepresentation];
  if (path == NULL || FSPathMakeRef((const uint8_t*)path, &ref, NULL) != kNoError) return NULL;
  if (FSGetCatalogInfo(&ref, 0, NULL, &name, NULL, &folder) != kNoError) return NULL;
  return leanItemInFolder((const struct FSRef*)&folder, (const struct HFSUniStr255*)&name);
}

static LeanObject* hostAddress(NSURL* url) {
  LeanObject* const item = [url isFileURL] ? hostFile(url) : NULL;
  return item != NULL ? item : leanVariantOfString(hostText([url absoluteString]));
}

LeanObject* hostValue(id object) {
  if (object == nil || object == null) return NULL;
  if ([object isKindOfClass:arrays]) return hostValues(object);
  if ([object isKindOfClass:strings]) {
    LeanString* const text = hostText(object);
    LeanObject* const variant = leanVariantOfString(text);
    leanUnlockString(text);
    return variant;
  }
  if ([object isKindOfClass:datas]) return hostData(object);
  if ([object isKindOfClass:numbers]) return hostNumber(object);
  if ([object isKindOfClass:dates]) return hostDate(object);
  if ([object isKindOfClass:dictionaries]) return hostEntries(object);
  return [object isKindOfClass:urls] ? hostAddress(object) : NULL;
}

LeanObject* hostTexts(NSArray* list) {
  LeanObject* const array = leanNewArray(kLeanStrings, -1);
  const LeanInsert insert = leanInsertProcedure(array);
  NSEnumerator* const texts = [list objectEnumerator];
  int32_t index = 0;
  for (NSString* text = nil; (text = [texts nextObject]) != nil; ++index) {
    LeanString* const string = hostText(text);
    insert(array, index, string);
    leanUnlockString(string);
  }
  return array;
}

LeanObject* hostValues(NSArray* list) {
  LeanObject* const array = leanNewArray(kLeanObjects, -1);
  const LeanInsert insert = leanInsertProcedure(array);
  NSEnumerator* const objects = [list objectEnumerator];
  int32_t index = 0;
  for (id object = nil; (object = [objects nextObject]) != nil; ++index) {
    LeanObject* const value = hostValue(object);
    insert(array, index, value);
    leanUnlockObject(value);
  }
  return array;
}

LeanObject* hostEntries(NSDictionary* dictionary) {
  if (dictionary == nil) return NULL;
  LeanObject* const made = leanNewInstance("Dictionary");
  const LeanSetEntry setEntry =
      (LeanSetEntry)leanLoadObjectMethod(made, "Value(key As Variant, Assigns _value As Variant)");
  NSArray* const keys = [dictionary allKeys];
  const NSUInteger count = [keys count];
  for (NSUInteger i = 0; i < count; ++i) {
    const id nativeKey = [keys objectAtIndex:i];
    LeanObject* const key = hostValue(nativeKey);
    LeanObject* const value = hostValue([dictionary objectForKey:nativeKey]);
    setEntry(made, key, value);
    leanUnlockObject(key);
    leanUnlockObject(value);
  }
  return made;
}
