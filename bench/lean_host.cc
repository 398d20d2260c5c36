#include "bench/lean_host.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <sys/mman.h>

#include "native/files.h"

namespace {

// --- memory

// Reserved, not taken: the system gives a page when it is first written to.
constexpr std::size_t kRoom = sizeof(void*) == 4 ? std::size_t{512} << 20 : std::size_t{4} << 30;

char* reserve() {
  void* const room = mmap(nullptr, kRoom, PROT_READ | PROT_WRITE,
                          MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (room == MAP_FAILED) {
    std::perror("no memory for the host's values");
    std::exit(1);
  }
  return static_cast<char*>(room);
}

char* const memory = reserve();
std::size_t used = 0;

void* take(std::size_t size) {
  void* const taken = memory + used;
  used += (size + 15) & ~std::size_t{15};
  return taken;
}

LeanObject* newObject(std::int32_t type) {
  auto* const made = static_cast<LeanObject*>(take(sizeof(LeanObject)));
  made->type = type;
  made->count = 0;
  made->room = 0;
  made->data[0] = nullptr;
  return made;
}

// Room for one more group of so many pointers.
void grow(LeanObject* object, std::int32_t groupSize) {
  constexpr std::int32_t kFirstRoom = 16;
  const std::int32_t room = object->room == 0 ? kFirstRoom : 2 * object->room;
  const auto groups = static_cast<std::size_t>(groupSize) * sizeof(void*);
  auto** const elements = static_cast<void**>(take(static_cast<std::size_t>(room) * groups));
  std::memcpy(elements, object->value.elements, static_cast<std::size_t>(object->count) * groups);
  object->value.elements = elements;
  object->room = room;
}

// --- what arrays and dictionaries are read and written by

// The host of the benchmarks only ever appends.
void insert(LeanObject* array, std::int32_t index, void* element) {
  if (array->count == array->room) grow(array, 1);
  array->value.elements[index] = element;
  ++array->count;
}

void read(LeanObject* array, std::int32_t index, void** element) {
  *element = array->value.elements[index];
}

void setEntry(LeanObject* dictionary, LeanObject* key, LeanObject* value) {
  if (dictionary->count == dictionary->room) grow(dictionary, 2);
  const std::int32_t place = dictionary->count++;
  key->place = place;
  dictionary->value.elements[std::ptrdiff_t{2} * place] = key;
  dictionary->value.elements[std::ptrdiff_t{2} * place + 1] = value;
}

LeanObject* keyAt(LeanObject* dictionary, std::int32_t index) {
  return static_cast<LeanObject*>(dictionary->value.elements[std::ptrdiff_t{2} * index]);
}

LeanObject* valueOf(LeanObject* dictionary, LeanObject* key) {
  return static_cast<LeanObject*>(dictionary->value.elements[std::ptrdiff_t{2} * key->place + 1]);
}

// --- dates

constexpr const char* kFields[] = {"Year", "Month", "Day", "Hour", "Minute", "Second"};
constexpr std::int32_t kFieldCount = 6;

// The second letter tells them apart, but for the last two.
std::int32_t* fieldOf(LeanObject* date, const char* property) {
  for (std::int32_t i = 0; i < kFieldCount; ++i) {
    if (kFields[i][0] == property[0] && kFields[i][1] == property[1]) return &date->value.fields[i];
  }
  return nullptr;
}

struct Item {
  zel::FSRef ref;
  zel::HFSUniStr255 name;
  bool exists;  // the reference is its own, and not its folder's
};

LeanObject* newItem(const Item& item) {
  LeanObject* const made = newObject(kLeanOther);
  made->value.bytes = take(sizeof item);
  std::memcpy(made->value.bytes, &item, sizeof item);
  return made;
}

// --- what the resolver finds

void announceVersion(std::int32_t /*version*/) {}
double hostVersion() { return 2014.0; }

void* loadGlobalMethod(LeanObject* /*null*/, const char* declaration) {
  const bool known = std::strcmp(declaration, "VarType(value As Variant) As Int32") == 0;
  return known ? reinterpret_cast<void*>(leanVarType) : nullptr;
}

template <class Function>
void* entry(Function* function) {
  return reinterpret_cast<void*>(function);
}

}  // namespace

void* leanResolve(const char* name) {
  static const struct {
    std::string_view name;
    void* function;
  } kEntryPoints[] = {
      {"RegisterPluginVersion", entry(announceVersion)},
      {"REALGetRBVersion", entry(hostVersion)},
      {"PluginNewInstance", entry(leanNewInstance)},
      {"REALLockString", entry(leanLockString)},
      {"REALUnlockString", entry(leanUnlockString)},
      {"REALLockObject", entry(leanLockObject)},
      {"REALUnlockObject", entry(leanUnlockObject)},
      {"REALGetStringCFString", entry(leanNativeString)},
      {"REALBuildString", entry(leanBuildString)},
      {"REALSetStringEncoding", entry(leanSetEncoding)},
      {"REALLoadObjectMethod", entry(leanLoadObjectMethod)},
      {"REALLoadGlobalMethod", entry(loadGlobalMethod)},
      {"REALGetPropValueInt", entry(leanGetInteger)},
      {"REALGetPropValueObject", entry(leanGetObject)},
      {"REALSetPropValueInt", entry(leanSetInteger)},
      {"StringToVariant", entry(leanVariantOfString)},
      {"Int32ToVariant", entry(leanVariantOfInt32)},
      {"Int64ToVariant", entry(leanVariantOfInt64)},
      {"SingleToVariant", entry(leanVariantOfSingle)},
      {"DoubleToVariant", entry(leanVariantOfDouble)},
      {"BooleanToVariant", entry(leanVariantOfBoolean)},
      {"VariantToInt32", entry(leanInt32Of)},
      {"VariantToInt64", entry(leanInt64Of)},
      {"VariantToSingle", entry(leanSingleOf)},
      {"VariantToDouble", entry(leanDoubleOf)},
      {"VariantToString", entry(leanStringOf)},
      {"RuntimeArrayCreateSingleDimBoundedArray", entry(leanNewArray)},
      {"RuntimeUBound", entry(leanUpperBound)},
      {"RuntimeDirectReadStringArray", entry(leanElementAt)},
      {"RuntimeDirectReadObjectArray", entry(leanElementAt)},
      {"RuntimeArrayDirectGetInsertProc", entry(leanInsertProcedure)},
      {"RuntimeArrayDirectGetGetProc", entry(leanReadProcedure)},
      {"newMemoryBlock", entry(leanNewBlock)},
      {"memoryBlockGetPtr", entry(leanBlockBytes)},
      {"memoryBlockGetSize", entry(leanBlockSize)},
      {"REALFSRefFromFolderItem", entry(leanReferenceOf)},
      {"REALFolderItemFromParentFSRef", entry(leanItemInFolder)},
      {"RuntimeObjectIsa", entry(leanObjectIsA)},
      {"pluginObjectType", entry(leanClassReference)},
  };
  for (const auto& row : kEntryPoints) {
    if (row.name == name) return row.function;
  }
  return nullptr;
}

std::size_t leanMark() { return used; }
void leanForgetSince(std::size_t mark) { used = mark; }

void leanLockString(LeanString* /*string*/) {}
void leanUnlockString(LeanString* /*string*/) {}
void leanLockObject(LeanObject* /*object*/) {}
void leanUnlockObject(LeanObject* /*object*/) {}

// --- strings

const void* leanNativeString(LeanString* string, unsigned char /*flag*/) {
  return zel::CFStringCreateWithCString(zel::kDefaultAllocator, string->bytes,
                                        zel::kCFStringEncodingUTF8);
}

LeanString* leanBuildString(const char* bytes, std::int32_t length) {
  const auto size = static_cast<std::size_t>(length);
  auto* const made = static_cast<LeanString*>(take(sizeof(LeanString) + size + 1));
  auto* const copy = reinterpret_cast<char*>(made + 1);
  std::memcpy(copy, bytes, size);
  copy[size] = 0;
  *made = {copy, length};
  return made;
}

void leanSetEncoding(LeanString* /*string*/, std::uint32_t /*encoding*/) {}

// --- objects

LeanObject* leanNewInstance(const char* className) {
  if (std::strcmp(className, "Dictionary") == 0) return newObject(kLeanOther);
  if (std::strcmp(className, "NSUserDefaultsZEL") == 0) return newObject(kLeanOther);
  if (std::strcmp(className, "Date") != 0) return nullptr;
  LeanObject* const made = newObject(kLeanDate);
  made->value.fields = static_cast<std::int32_t*>(take(kFieldCount * sizeof(std::int32_t)));
  return made;
}

LeanMethod leanLoadObjectMethod(LeanObject* object, const char* declaration) {
  static const struct {
    std::string_view declaration;
    LeanMethod function;
  } kMethods[] = {
      {"Value(key As Variant, Assigns _value As Variant)", reinterpret_cast<LeanMethod>(setEntry)},
      {"Value(key As Variant) As Variant", reinterpret_cast<LeanMethod>(valueOf)},
      {"Key(index As Integer) As Variant", reinterpret_cast<LeanMethod>(keyAt)},
  };
  if (object->type != kLeanOther) return nullptr;
  for (const auto& row : kMethods) {
    if (row.declaration == declaration) return row.function;
  }
  return nullptr;
}

unsigned char leanGetInteger(LeanObject* object, const char* property, std::int32_t* value) {
  const bool counts = property[0] == 'C';  // "Count"
  *value = counts ? object->count : *fieldOf(object, property);
  return 1;
}

// "DateValue" of a variant is the only one that is asked for.
unsigned char leanGetObject(LeanObject* object, const char* /*property*/, LeanObject** value) {
  *value = object->value.object;
  return 1;
}

void leanSetInteger(LeanObject* object, const char* property, std::int32_t value) {
  *fieldOf(object, property) = value;
}

// A reference is the name; an object is what it was made as.
const char* leanClassReference(const char* className) { return className; }
unsigned char leanObjectIsA(LeanObject* object, const char* classReference) {
  const char* const own = object->room < 0 ? "MemoryBlock" : "Dictionary";
  return std::strcmp(own, classReference) == 0 ? 1 : 0;
}

// --- variants

LeanObject* leanVariantOfString(LeanString* value) {
  LeanObject* const made = newObject(kLeanText);
  made->value.text = value;
  return made;
}
LeanObject* leanVariantOfInt32(std::int32_t value) {
  LeanObject* const made = newObject(kLeanInt32);
  made->value.integer = value;
  return made;
}
LeanObject* leanVariantOfInt64(std::int64_t value) {
  LeanObject* const made = newObject(kLeanInt64);
  made->value.longInteger = value;
  return made;
}
LeanObject* leanVariantOfDouble(double value) {
  LeanObject* const made = newObject(kLeanDouble);
  made->value.real = value;
  return made;
}
LeanObject* leanVariantOfSingle(float value) {
  LeanObject* const made = newObject(kLeanSingle);
  made->value.single = value;
  return made;
}
LeanObject* leanVariantOfBoolean(unsigned char value) {
  LeanObject* const made = newObject(kLeanBoolean);
  made->value.integer = value;
  return made;
}
LeanObject* leanVariantOfDate(LeanObject* date) {
  LeanObject* const made = newObject(kLeanDate);
  made->value.object = date;
  return made;
}

std::int32_t leanVarType(LeanObject* variant) { return variant->type; }
std::int32_t leanInt32Of(LeanObject* variant) { return variant->value.integer; }
std::int64_t leanInt64Of(LeanObject* variant) { return variant->value.longInteger; }
float leanSingleOf(LeanObject* variant) { return variant->value.single; }
double leanDoubleOf(LeanObject* variant) { return variant->value.real; }
LeanString* leanStringOf(LeanObject* variant) { return variant->value.text; }

// --- arrays

LeanObject* leanNewArray(std::int32_t elementType, std::int32_t /*upperBound*/) {
  constexpr std::int32_t kTextElements = kLeanArray + 8;
  constexpr std::int32_t kVariantElements = kLeanArray + 9;
  return newObject(elementType == kLeanStrings ? kTextElements : kVariantElements);
}
std::int32_t leanUpperBound(LeanObject* array) { return array->count - 1; }
void* leanElementAt(LeanObject* array, std::int32_t index) { return array->value.elements[index]; }
LeanInsert leanInsertProcedure(LeanObject* /*array*/) { return insert; }
LeanRead leanReadProcedure(LeanObject* /*array*/) { return read; }

// --- memory blocks and files

LeanObject* leanNewBlock(std::int32_t size) {
  LeanObject* const made = newObject(kLeanOther);
  made->count = size;
  made->room = -1;  // no Dictionary
  made->value.bytes = take(static_cast<std::size_t>(size));
  return made;
}
void* leanBlockBytes(LeanObject* block) { return block->value.bytes; }
std::int32_t leanBlockSize(LeanObject* block) { return block->count; }

LeanObject* leanItemInFolder(const FSRef* folder, const HFSUniStr255* name) {
  Item item{};
  std::memcpy(&item.ref, folder, sizeof item.ref);
  std::memcpy(&item.name, name, sizeof item.name);
  return newItem(item);
}

LeanObject* leanItemAt(const char* path) {
  Item item{};
  item.exists = true;
  if (zel::FSPathMakeRef(reinterpret_cast<const std::uint8_t*>(path), &item.ref, nullptr) != 0) {
    std::fprintf(stderr, "there is no %s\n", path);
    std::exit(1);
  }
  return newItem(item);
}

unsigned char leanReferenceOf(LeanObject* object, FSRef* ref, HFSUniStr255* name) {
  const auto& item = *static_cast<const Item*>(object->value.bytes);
  if (item.exists != (name == nullptr)) return 0;
  std::memcpy(ref, &item.ref, sizeof item.ref);
  if (name != nullptr) std::memcpy(name, &item.name, sizeof item.name);
  return 1;
}
