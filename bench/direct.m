#import "bench/direct.h"

#import "bench/direct_conversions.h"

// A function that reads: its result, the result's neutral value, and the message whose reply
// becomes the result.
#define READ(type, name, neutral, expression)                                 \
  type name(LeanString* key) {                                                \
    type result = neutral;                                                    \
    DIRECTLY(NSString* const native = nativeText(key); result = (expression)) \
    return result;                                                            \
  }

#define STORE(name, type, message)                              \
  void name(LeanString* key, type value) {                      \
    DIRECTLY(NSString* const native = nativeText(key); message) \
  }

READ(int32_t, directInteger, 0, (int32_t)[standardDefaults integerForKey:native])
READ(float, directFloat, 0, [standardDefaults floatForKey:native])
READ(double, directDouble, 0, [standardDefaults doubleForKey:native])
READ(signed char, directBool, 0, (signed char)[standardDefaults boolForKey:native])
READ(LeanString*, directString, NULL, hostText([standardDefaults stringForKey:native]))
READ(LeanString*, directURL, NULL, hostText([[standardDefaults URLForKey:native] absoluteString]))
READ(LeanObject*, directData, NULL, hostData([standardDefaults dataForKey:native]))
READ(LeanObject*, directFile, NULL, hostFile([standardDefaults URLForKey:native]))
READ(LeanObject*, directVariant, NULL, hostValue([standardDefaults objectForKey:native]))
READ(LeanObject*, directStringArray, NULL, hostTexts([standardDefaults stringArrayForKey:native]))
READ(LeanObject*, directArray, NULL, hostValues([standardDefaults arrayForKey:native]))
READ(LeanObject*, directDictionary, NULL, hostEntries([standardDefaults dictionaryForKey:native]))
READ(LeanObject*, directPersistentDomain, NULL,
     hostEntries([standardDefaults persistentDomainForName:native]))
READ(LeanObject*, directVolatileDomain, NULL,
     hostEntries([standardDefaults volatileDomainForName:native]))
READ(signed char, directIsForced, 0, (signed char)[standardDefaults objectIsForcedForKey:native])

STORE(directSetInteger, int32_t, [standardDefaults setInteger:value forKey:native])
STORE(directSetFloat, float, [standardDefaults setFloat:value forKey:native])
STORE(directSetDouble, double, [standardDefaults setDouble:value forKey:native])
STORE(directSetBool, signed char, [standardDefaults setBool:(BOOL)value forKey:native])
STORE(directSetString, LeanString*, [standardDefaults setObject:nativeText(value) forKey:native])
STORE(directSetData, LeanObject*,
      [standardDefaults setObject:[NSData dataWithBytes:leanBlockBytes(value)
                                                 length:(NSUInteger)leanBlockSize(value)]
                           forKey:native])
STORE(directSetURL, LeanString*,
      [standardDefaults setURL:[NSURL URLWithString:nativeText(value)] forKey:native])
STORE(directSetFile, LeanObject*, [standardDefaults setURL:nativeFile(value) forKey:native])
STORE(directSetVariant, LeanObject*, [standardDefaults setObject:nativeValue(value) forKey:native])
STORE(directSetStringArray, LeanObject*,
      [standardDefaults setObject:nativeTexts(value) forKey:native])
STORE(directSetArray, LeanObject*, [standardDefaults setObject:nativeValues(value) forKey:native])
STORE(directSetDictionary, LeanObject*,
      [standardDefaults setObject:nativeEntries(value) forKey:native])

void directSetPersistentDomain(LeanObject* dictionary, LeanString* name) {
  DIRECTLY(NSString* const native = nativeText(name);
           [standardDefaults setPersistentDomain:nativeEntries(dictionary) forName:native])
}

void directSetVolatileDomain(LeanObject* dictionary, LeanString* name) {
  DIRECTLY(NSString* const native = nativeText(name);
           [standardDefaults setVolatileDomain:nativeEntries(dictionary) forName:native])
}

void directRemoveVolatileDomain(LeanString* name) {
  DIRECTLY([standardDefaults removeVolatileDomainForName:nativeText(name)])
}

void directRemove(LeanString* key) {
  DIRECTLY([standardDefaults removeObjectForKey:nativeText(key)])
}

void directRegister(LeanObject* dictionary){
    DIRECTLY([standardDefaults registerDefaults:nativeEntries(dictionary)])}

LeanObject* directRepresentation(void) {
  LeanObject* result = NULL;
  DIRECTLY(result = hostEntries([standardDefaults dictionaryRepresentation]))
  return result;
}

LeanObject* directPersistentNames(void) {
  LeanObject* result = NULL;
  DIRECTLY(result = hostTexts([standardDefaults persistentDomainNames]))
  return result;
}

signed char directSynchronize(void) {
  signed char result = 0;
  DIRECTLY(result = (signed char)[standardDefaults synchronize])
  return result;
}
