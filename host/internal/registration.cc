#include "host/internal/registration.h"

#include <stdexcept>
#include <utility>

#include "host/internal/state.h"

namespace host::internal {
namespace {

constexpr std::int32_t kNewestOlderVersion = 9;
constexpr std::int32_t kDataUnit = 16;  // instance data comes in multiples of it

template <class Record>
std::vector<RegisteredMethod> readMethods(const void* list, std::int32_t count) {
  std::vector<RegisteredMethod> methods;
  if (list == nullptr) return methods;
  const auto* const records = static_cast<const Record*>(list);
  for (std::int32_t i = 0; i < count; ++i) {
    const Record& record = records[i];
    const std::string where = "method record " + std::to_string(i);
    if (record.declaration == nullptr) throw std::invalid_argument(where + " has no declaration");
    methods.push_back({record.declaration, parseDeclaration(record.declaration), record.function,
                       record.setter, record.flags});
  }
  return methods;
}

RegisteredClass readClass(const zel::OlderClassRecord& record) {
  const bool older = record.version <= kNewestOlderVersion;
  const auto read =
      older ? readMethods<zel::OlderMethodRecord> : readMethods<zel::REALmethodDefinition>;
  RegisteredClass description;
  description.name = record.name;
  description.superName = record.superName == nullptr ? "" : record.superName;
  description.version = record.version;
  description.dataSize = record.dataSize;
  description.flags = record.flags;
  description.constructor = record.constructor;
  description.destructor = record.destructor;
  description.methods = read(record.methods, record.methodCount);
  description.sharedMethods = read(record.sharedMethods, record.sharedMethodCount);
  return description;
}

// Throws std::invalid_argument, which says why no host would take the record.
std::shared_ptr<HostClass> acceptClass(const State& state, const zel::OlderClassRecord& record) {
  if (record.name == nullptr) throw std::invalid_argument("it has no name");
  if (state.announcedVersion != record.version)
    throw std::invalid_argument("its version isn't the one that was announced");
  if (record.dataSize < 0 || record.dataSize % kDataUnit != 0) {
    throw std::invalid_argument("its data size isn't a multiple of 16: " +
                                std::to_string(record.dataSize));
  }
  auto accepted = std::make_shared<HostClass>();
  accepted->description = readClass(record);
  const std::string& superName = accepted->description.superName;
  accepted->super = state.classes.find(superName);
  if (accepted->super == nullptr && !superName.empty())
    throw std::invalid_argument("its super class \"" + superName + "\" is unknown");
  return accepted;
}

}  // namespace

void registerPluginVersion(State& state, std::int32_t version) { state.announcedVersion = version; }

void registerClass(State& state, zel::REALclassDefinition* definition) {
  if (definition == nullptr) {
    state.failures.report("PluginRegisterClass was given no record");
    return;
  }
  zel::OlderClassRecord& record = definition->base;
  const std::string name = record.name == nullptr ? "" : record.name;
  try {
    if (!state.classes.add(acceptClass(state, record)))
      throw std::invalid_argument("there is a class of that name");
    record.systemUse = zel::kInstanceDataOffset;
  } catch (const std::invalid_argument& error) {
    state.failures.report("PluginRegisterClass refuses the class \"" + name +
                          "\": " + error.what());
  }
}

}  // namespace host::internal
