#include "plugin/downgrade.h"

#include "native/libc.h"

namespace zel {
namespace {

constexpr std::int64_t kLargestArray = 0x7FFFFFFF;  // bytes

// The size of a list's older records in bytes; 0 for no list and for what the host can't count.
template <class Older>
std::size_t olderSize(const void* list, std::int32_t count) {
  const std::int64_t size = std::int64_t{count} * std::int64_t{sizeof(Older)};
  if (list == nullptr || size < 1 || size > kLargestArray) return 0;
  return static_cast<std::size_t>(size);
}

void convert(const REALmethodDefinition& source, OlderMethodRecord& older) {
  older = {source.function, source.setter, source.declaration, source.flags};
}

// Deliberately changes the source too: it points at its older twin from here on.
void convert(REALevent& source, OlderEventRecord& older) {
  older = {source.declaration, source.systemUse};
  source.systemUse = &older;
}

void convert(const REALconstant& source, OlderConstantRecord& older) {
  std::memcpy(older.words, source.words, sizeof older.words);
}

void convert(const REALproperty& source, OlderPropertyRecord& older) {
  std::memcpy(older.words, source.words, sizeof older.words);
}

// The list as older records, which are never freed; null when there are none to make, and when they
// can't be allocated.
template <class Older, class Current>
Older* olderList(Current* list, std::int32_t count) {
  const std::size_t size = olderSize<Older>(list, count);
  if (size == 0) return nullptr;
  auto* const converted = static_cast<Older*>(std::calloc(1, size));
  if (converted == nullptr) return nullptr;
  for (std::int32_t i = 0; i < count; ++i) convert(list[i], converted[i]);
  return converted;
}

constexpr auto olderMethods = olderList<OlderMethodRecord, const REALmethodDefinition>;

// Puts older records in the place of a class's list. The count stays as it is; only that of a list
// which couldn't be allocated becomes 0, so that the host reads none of it.
template <class Older, class Current, class List>
void replace(List*& list, std::int32_t& count, Older* (*older)(Current*, std::int32_t)) {
  const void* const source = list;
  Older* const converted = older(static_cast<Current*>(list), count);
  if (converted == nullptr && olderSize<Older>(source, count) != 0) count = 0;
  list = converted;
}

}  // namespace

OlderPropertyRecord* FixProperties(const REALproperty* properties, std::int32_t count) {
  return olderList<OlderPropertyRecord>(properties, count);
}

void downgrade(REALclassDefinition& definition, std::int32_t version) {
  OlderClassRecord older = definition.base;
  older.version = version;
  replace(older.properties, older.propertyCount, FixProperties);
  replace(older.methods, older.methodCount, olderMethods);
  replace(older.events, older.eventCount, olderList<OlderEventRecord, REALevent>);
  older.attributes = nullptr;
  older.attributeCount = 0;
  replace(older.constants, older.constantCount, olderList<OlderConstantRecord, const REALconstant>);
  replace(older.sharedMethods, older.sharedMethodCount, olderMethods);
  replace(older.sharedProperties, older.sharedPropertyCount, FixProperties);
  definition.base = older;
}

}  // namespace zel
