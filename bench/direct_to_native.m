#import "bench/direct_conversions.h"
#import "native/gnustep/file_records.h"

// Looked up once, at the first use of any.
static Class lists, dictionaries, numbers, datas, calendarDates, zones, urls, strings;

__attribute__((constructor)) static void remember(void) {
  lists = objc_getClass("NSMutableArray");
  dictionaries = objc_getClass("NSMutableDictionary");
  numbers = objc_getClass("NSNumber");
  datas = objc_getClass("NSData");
  calendarDates = objc_getClass("NSCalendarDate");
  zones = objc_getClass("NSTimeZone");
  urls = objc_getClass("NSURL");
  strings = objc_getClass("NSString");
}

NSString* nativeText(LeanString* text) {
  return [(NSString*)leanNativeString(text, 0) autorelease];
}

static NSDate* nativeDate(LeanObject* date) {
  static const char* const kFields[] = {"Year", "Month", "Day", "Hour", "Minute", "Second"};
  int32_t fields[6] = {0};
  for (int i = 0; i < 6; ++i) leanGetInteger(date, kFields[i], &fields[i]);
  return [calendarDates dateWithYear:fields[0]
                               month:(NSUInteger)fields[1]
                                 day:(NSUInteger)fields[2]
                                hour:(NSUInteger)fields[3]
                              minute:(NSUInteger)fields[4]
                              second:(NSUInteger)fields[5]
                            timeZone:[zones localTimeZone]];
}

static id nativeObject(LeanObject* object) {
  if (leanObjectIsA(object, leanClassReference("MemoryBlock")) != 0) {
    return [datas dataWithBytes:leanBlockBytes(object) length:(NSUInteger)leanBlockSize(object)];
  }
  return nativeEntries(object);
}

static NSString* nativeVariantText(LeanObject* variant) {
  LeanString* const text = leanStringOf(variant);
  if (text == NULL) return @"";
  NSString* const native = nativeText(text);
  leanUnlockString(text);
  return native;
}

id nativeValue(LeanObject* variant) {
  if (variant == NULL) return nil;
  LeanObject* date = NULL;
  switch (leanVarType(variant)) {
    case kLeanInt32:
      return [numbers numberWithLong:leanInt32Of(variant)];
    case kLeanInt64:
      return [numbers numberWithLongLong:leanInt64Of(variant)];
    case kLeanSingle:
      return [numbers numberWithFloat:leanSingleOf(variant)];
    case kLeanDouble:
      return [numbers numberWithDouble:leanDoubleOf(variant)];
    case kLeanBoolean:
      return [numbers numberWithBool:(BOOL)leanInt32Of(variant)];
    case kLeanText:
      return nativeVariantText(variant);
    case kLeanDate:
      leanGetObject(variant, "DateValue", &date);
      return nativeDate(date);
    case kLeanOther:
      return nativeObject(variant);
    case kLeanArray + kLeanOther:
      return nativeValues(variant);
    default:
      return nil;
  }
}

NSMutableArray* nativeTexts(LeanObject* array) {
  const int32_t last = leanUpperBound(array);
  NSMutableArray* const list = [lists arrayWithCapacity:(NSUInteger)last + 1];
  for (int32_t i = 0; i <= last; ++i) {
    LeanString* const text = leanElementAt(array, i);
    if (text == NULL) continue;
    [list addObject:nativeText(text)];
    leanUnlockString(text);
  }
  return list;
}

NSMutableArray* nativeValues(LeanObject* array) {
  const int32_t last = leanUpperBound(array);
  NSMutableArray* const list = [lists arrayWithCapacity:(NSUInteger)last + 1];
  for (int32_t i = 0; i <= last; ++i) {
    LeanObject* const element = leanElementAt(array, i);
    const id object = nativeValue(element);
    if (object != nil) [list addObject:object];
    leanUnlockObject(element);
  }
  return list;
}

NSMutableDictionary* nativeEntries(LeanObject* dictionary) {
  int32_t count = 0;
  leanGetInteger(dictionary, "Count", &count);
  NSMutableDictionary* const made = [dictionaries dictionaryWithCapacity:(NSUInteger)count];
  const LeanKeyAt keyAt =
      (LeanKeyAt)leanLoadObjectMethod(dictionary, "Key(index As Integer) As Variant");
  const LeanValueOf valueOf =
      (LeanValueOf)leanLoadObjectMethod(dictionary, "Value(key As Variant) As Variant");
  for (int32_t i = 0; i < count; ++i) {
    LeanObject* const key = keyAt(dictionary, i);
    LeanObject* const value = valueOf(dictionary, key);
    [made setObject:nativeValue(value) forKey:nativeValue(key)];
    leanUnlockObject(key);
    leanUnlockObject(value);
  }
  return made;
}

NSURL* nativeFile(LeanObject* item) {
  FSRef ref;
  uint8_t path[4096];
  if (leanReferenceOf(item, (struct FSRef*)&ref, NULL) == 0) return nil;
  if (FSRefMakePath(&ref, path, sizeof path) != kNoError) return nil;
  return [urls fileURLWithPath:[strings stringWithUTF8String:(const char*)path]];
}
