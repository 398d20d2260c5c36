// Binary property lists are written and read by binary_writer.m and binary_reader.m, and others
// looked at by text_nesting.c, which say why, for everyone who asks for them in this process. May
// go with those.
#include "native/gnustep/property_lists.h"

#include "native/gnustep/replaced_methods.h"
#include "native/gnustep/text_nesting.h"

typedef NSData* (*Write)(id, SEL, id, NSPropertyListFormat, NSPropertyListWriteOptions, NSError**);
typedef id (*Read)(id, SEL, NSData*, NSPropertyListReadOptions, NSPropertyListFormat*, NSError**);

static Write originalWrite;
static Read originalRead;

static void setError(NSError** error, NSString* reason) {
  if (error == NULL) return;
  NSDictionary* const info = [NSDictionary dictionaryWithObject:reason
                                                         forKey:NSLocalizedDescriptionKey];
  *error = [NSError errorWithDomain:@"NSPropertyListSerialization" code:0 userInfo:info];
}

static NSData* writeList(id self, SEL selector, id list, NSPropertyListFormat format,
                         NSPropertyListWriteOptions options, NSError** error) {
  if (list == nil || format != NSPropertyListBinaryFormat_v1_0) {
    return originalWrite(self, selector, list, format, options, error);
  }
  NSString* fault = nil;
  NSData* const data = zelBinaryPropertyList(list, &fault);
  if (data == nil) setError(error, fault);
  return data;
}

// Those who want to change what they get, which the defaults don't, get it from GNUstep base.
static id readList(id self, SEL selector, NSData* data, NSPropertyListReadOptions options,
                   NSPropertyListFormat* format, NSError** error) {
  const bool isData = [data isKindOfClass:[NSData class]];
  const bool isBinary = isData && zelIsBinaryPropertyList(data);
  if (isData && !isBinary && zelTextNestsDeeper([data bytes], [data length], kDeepestDomain)) {
    setError(error, @"the property list nests too deep");
    return nil;
  }
  if (!isBinary || options != NSPropertyListImmutable) {
    return originalRead(self, selector, data, options, format, error);
  }
  const id list = zelReadBinaryPropertyList(data);
  if (format != NULL) *format = NSPropertyListBinaryFormat_v1_0;
  if (list == nil) setError(error, @"the binary property list is damaged");
  return list;
}

// Carries the methods' replacements; never has an instance.
@interface ZELPropertyLists : NSObject
@end

@implementation ZELPropertyLists

+ (void)load {
  static const char kClass[] = "NSPropertyListSerialization";
  originalWrite = (Write)zelReplaceClassMethod(
      kClass, "dataWithPropertyList:format:options:error:", (AnyMethod)writeList);
  originalRead = (Read)zelReplaceClassMethod(
      kClass, "propertyListWithData:options:format:error:", (AnyMethod)readList);
}

@end
