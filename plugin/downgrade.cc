#include "plugin/downgrade.h"

#include "native/libc.h"

namespace zel {
namespace {

constexpr std::int64_t kLargestArray = 0x7FFFFFFF;  // bytes

// A zero-filled array that is never freed; null when its byte size is out of bounds.
template <class Record>
Record* newRecords(std::int32_t count) {
  const std::int64_t size = std::int64_t{count} * std::int64_t{sizeof(Record)};
  if (size < 1 || size > kLargestArray) return nullptr;
  return static_cast<Record*>(std::calloc(1, static_cast<std::size_t>(size)));
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

// The list as older records; null for an empty list.
template <class Older, class Current>
Older* olderList(Current* list, std::int32_t count) {
  if (list == nullptr || count == 0) return nullptr;
  auto* const converted = newRecords<Older>(count);
  if (converted == nullptr) return nullptr;
  for (std::int32_t i = 0; i < count; ++i) convert(list[i], converted[i]);
  return converted;
}

OlderMethodRecord* olderMethods(const void* list, std::int32_t count) {
  return olderList<OlderMethodRecord>(static_cast<const REALmethodDefinition*>(list), count);
}

}  // namespace

OlderPropertyRecord* FixProperties(const REALproperty* properties, std::int32_t count) {
  return olderList<OlderPropertyRecord>(properties, count);
}

void downgrade(REALclassDefinition& definition, std::int32_t version) {
  OlderClassRecord older = definition.base;
  older.version = version;
  older.properties =
      FixProperties(static_cast<const REALproperty*>(older.properties), older.propertyCount);
  older.methods = olderMethods(older.methods, older.methodCount);
  older.events =
      olderList<OlderEventRecord>(static_cast<REALevent*>(older.events), older.eventCount);
  older.attributes = nullptr;
  older.attributeCount = 0;
  older.constants = olderList<OlderConstantRecord>(
      static_cast<const REALconstant*>(older.constants), older.constantCount);
  older.sharedMethods = olderMethods(older.sharedMethods, older.sharedMethodCount);
  older.sharedProperties = FixProperties(static_cast<const REALproperty*>(older.sharedProperties),
                                         older.sharedPropertyCount);
  definition.base = older;
}

}  // namespace zel
