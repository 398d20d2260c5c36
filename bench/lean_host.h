// A host that costs next to nothing: what is measured beside it is the plugin, or the Objective-C
// that does the same work. Its values are plain records, its references aren't counted, and its
// memory is one block that is taken from and never given back to, except all at once.
//
// Both sides of every measurement call these very functions: the plugin through the resolver,
// bench/direct*.m by their names.
#pragma once

#ifdef __cplusplus
#include <cstddef>
#include <cstdint>
extern "C" {
#else
#include <stddef.h>
#include <stdint.h>
#endif

// Objective-C reads these, too.
// NOLINTBEGIN(modernize-use-using,modernize-redundant-void-arg)

/// A host string: UTF-8, with a zero byte behind it.
typedef struct LeanString {
  const char* bytes;
  int32_t length;
} LeanString;

/// The type codes of variants; that of an array is kLeanArray and its elements' code.
enum {
  kLeanInt32 = 2,
  kLeanInt64 = 3,
  kLeanSingle = 4,
  kLeanDouble = 5,
  kLeanDate = 7,
  kLeanText = 8,
  kLeanOther = 9,
  kLeanBoolean = 11,
  kLeanArray = 4096
};
/// The element codes by which arrays are made.
enum { kLeanStrings = 3, kLeanObjects = 4 };

/// A variant, array, Dictionary, Date, MemoryBlock or FolderItem, or an object of the plugin's
/// class.
typedef struct LeanObject {
  int32_t type;
  int32_t count;  // elements, entries, bytes
  union {
    int32_t integer;
    int64_t longInteger;
    float single;
    double real;
    LeanString* text;
    struct LeanObject* object;
    void** elements;  // of a Dictionary: keys and values by turns
    void* bytes;
    int32_t* fields;  // year to second
  } value;
  int32_t room;   // for how many elements or entries there is memory
  int32_t place;  // as a key: which entry of its Dictionary it stands for
  void* data[2];  // the instance data
} LeanObject;

/// What the resolver's caller finds under that name, or null.
void* leanResolve(const char* name);

/// Forgets every value that was made since the mark was taken.
size_t leanMark(void);
void leanForgetSince(size_t mark);

// --- what the resolver gives; plugin/host_routines.def says what each of them does

void leanLockString(LeanString* string);
void leanUnlockString(LeanString* string);
void leanLockObject(LeanObject* object);
void leanUnlockObject(LeanObject* object);

/// A CFString, owned by the caller.
const void* leanNativeString(LeanString* string, unsigned char flag);
LeanString* leanBuildString(const char* bytes, int32_t length);
void leanSetEncoding(LeanString* string, uint32_t encoding);

LeanObject* leanNewInstance(const char* className);
/// A method that is to be called by its own type, one of those below.
typedef void (*LeanMethod)(void);
LeanMethod leanLoadObjectMethod(LeanObject* object, const char* declaration);
unsigned char leanGetInteger(LeanObject* object, const char* property, int32_t* value);
unsigned char leanGetObject(LeanObject* object, const char* property, LeanObject** value);
void leanSetInteger(LeanObject* object, const char* property, int32_t value);

LeanObject* leanVariantOfString(LeanString* value);
LeanObject* leanVariantOfInt32(int32_t value);
LeanObject* leanVariantOfInt64(int64_t value);
LeanObject* leanVariantOfDouble(double value);
LeanObject* leanVariantOfSingle(float value);
LeanObject* leanVariantOfBoolean(unsigned char value);
/// A variant that holds a Date.
LeanObject* leanVariantOfDate(LeanObject* date);
int32_t leanVarType(LeanObject* variant);
int32_t leanInt32Of(LeanObject* variant);
int64_t leanInt64Of(LeanObject* variant);
float leanSingleOf(LeanObject* variant);
double leanDoubleOf(LeanObject* variant);
LeanString* leanStringOf(LeanObject* variant);

LeanObject* leanNewArray(int32_t elementType, int32_t upperBound);
int32_t leanUpperBound(LeanObject* array);
void* leanElementAt(LeanObject* array, int32_t index);
typedef void (*LeanInsert)(LeanObject* array, int32_t index, void* element);
typedef void (*LeanRead)(LeanObject* array, int32_t index, void** element);
LeanInsert leanInsertProcedure(LeanObject* array);
LeanRead leanReadProcedure(LeanObject* array);

typedef void (*LeanSetEntry)(LeanObject* dictionary, LeanObject* key, LeanObject* value);
typedef LeanObject* (*LeanKeyAt)(LeanObject* dictionary, int32_t index);
typedef LeanObject* (*LeanValueOf)(LeanObject* dictionary, LeanObject* key);

LeanObject* leanNewBlock(int32_t size);
void* leanBlockBytes(LeanObject* block);
int32_t leanBlockSize(LeanObject* block);

struct FSRef;
struct HFSUniStr255;
/// A FolderItem keeps the reference of its folder, and its own name.
LeanObject* leanItemInFolder(const struct FSRef* folder, const struct HFSUniStr255* name);
/// A FolderItem of an existing item, by its path.
LeanObject* leanItemAt(const char* path);
unsigned char leanReferenceOf(LeanObject* item, struct FSRef* ref, struct HFSUniStr255* name);

unsigned char leanObjectIsA(LeanObject* object, const char* classReference);
const char* leanClassReference(const char* className);

// NOLINTEND(modernize-use-using,modernize-redundant-void-arg)
#ifdef __cplusplus
}
#endif
