// The values of the host's own classes and its variants, as tests make and read them.
#include <cstring>
#include <stdexcept>
#include <utility>

#include "host/internal/dates.h"
#include "host/internal/describe.h"
#include "host/internal/dictionaries.h"
#include "host/internal/folder_items.h"
#include "host/internal/memory_blocks.h"
#include "host/internal/passing.h"
#include "host/internal/state.h"
#include "host/internal/variants.h"

namespace host {

using namespace internal;  // NOLINT(google-build-using-namespace): what these values are made of

namespace {

template <class T>
T& made(T* object) {
  if (object == nullptr)
    throw std::invalid_argument("the host can't make " + std::string(T::kWhat));
  return *object;
}

ObjectRef boxed(State& state, const Value& value) { return ObjectRef::adopt(box(state, value)); }

}  // namespace

ObjectRef Host::variant(const Value& value, std::optional<std::int32_t> type) {
  return ObjectRef::adopt(newVariant(*state_, value, type));
}

Value Host::valueOf(const Value& variant) const {
  const auto* const object = std::get_if<ObjectRef>(&variant);
  return object == nullptr ? variant : unbox(*state_, object->handle());
}

std::int32_t Host::typeOf(const Value& variant) const {
  return varType(*state_, boxed(*state_, variant).handle());
}

std::string Host::describe(const Value& value) const { return internal::describe(*state_, value); }

ObjectRef Host::array(std::int32_t elementType, const std::vector<Value>& elements) {
  HostArray* const array = newArray(*state_, elementType, 0);
  if (array == nullptr)
    throw std::invalid_argument("no arrays of element type " + std::to_string(elementType));
  ObjectRef result = ObjectRef::adopt(reinterpret_cast<zel::REALobject>(array->array()));
  for (const Value& element : elements) array->append(*state_, element);
  return result;
}

std::vector<Value> Host::elements(const ObjectRef& array) const {
  const Array found(*state_, thingOf<HostArray>(*state_, array));
  std::vector<Value> values;
  values.reserve(found.size());
  for (std::size_t i = 0; i < found.size(); ++i) values.push_back(found.at(i));
  return values;
}

std::optional<Array> Host::findArray(const ObjectRef& object) const {
  auto* const found = state_->ledger.peek<HostArray>(object.handle());
  return found == nullptr ? std::nullopt : std::optional(Array(*state_, *found));
}

ObjectRef Host::dictionary(const Entries& entries) {
  ObjectRef dictionary = make("Dictionary");
  for (const auto& [key, value] : entries) {
    setDictionaryValue(*state_, dictionary.handle(), boxed(*state_, key).handle(),
                       boxed(*state_, value).handle());
  }
  return dictionary;
}

Entries Host::entries(const ObjectRef& dictionary) const {
  Entries entries;
  for (const HostDictionary::Entry& entry : thingOf<HostDictionary>(*state_, dictionary).entries())
    entries.emplace_back(unbox(*state_, entry.key), unbox(*state_, entry.value));
  return entries;
}

bool Host::hasKey(const ObjectRef& dictionary, const Value& key) const {
  const zel::REALobject found = thingOf<HostDictionary>(*state_, dictionary).object();
  return hasDictionaryKey(*state_, found, boxed(*state_, key).handle());
}

std::optional<Value> Host::lookUp(const ObjectRef& dictionary, const Value& key) const {
  const zel::REALobject found = thingOf<HostDictionary>(*state_, dictionary).object();
  const ObjectRef asked = boxed(*state_, key);
  if (!hasDictionaryKey(*state_, found, asked.handle())) return std::nullopt;
  return valueOf(ObjectRef::adopt(dictionaryValue(*state_, found, asked.handle())));
}

bool Host::removeKey(const ObjectRef& dictionary, const Value& key) {
  const zel::REALobject found = thingOf<HostDictionary>(*state_, dictionary).object();
  return removeDictionaryKey(*state_, found, boxed(*state_, key).handle());
}

ObjectRef Host::memoryBlock(std::string_view bytes) {
  zel::REALmemoryBlock const block =
      newMemoryBlock(*state_, static_cast<std::int32_t>(bytes.size()));
  const auto& found = made(state_->ledger.peek<HostMemoryBlock>(block));
  if (!bytes.empty()) std::memcpy(found.bytes(), bytes.data(), bytes.size());
  return ObjectRef::adopt(found.object());
}

std::string Host::bytesOf(const ObjectRef& block) const {
  const std::span<std::byte> bytes = storageOf(block);
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::span<std::byte> Host::storageOf(const ObjectRef& block) const {
  const auto& found = thingOf<HostMemoryBlock>(*state_, block);
  return {static_cast<std::byte*>(found.bytes()), found.size()};
}

void Host::reportSize(const ObjectRef& block, std::int32_t size) {
  thingOf<HostMemoryBlock>(*state_, block).reportedSize = size;
}

ObjectRef Host::date(const DateFields& fields) {
  ObjectRef date = make("Date");
  setDateFields(thingOf<HostObject>(*state_, date), fields);
  return date;
}

DateFields Host::fieldsOf(const ObjectRef& date) const {
  return dateFields(thingOf<HostObject>(*state_, date));
}

ObjectRef Host::folderItem(const std::string& path) {
  if (path.empty() || path.front() != '/')
    throw std::invalid_argument("not an absolute path: \"" + path + "\"");
  return ObjectRef::adopt(made(newFolderItem(*state_, path)).object());
}

std::string Host::pathOf(const ObjectRef& item) const {
  return thingOf<HostFolderItem>(*state_, item).path;
}

}  // namespace host
