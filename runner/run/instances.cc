#include "runner/run/instances.h"

#include <memory>

namespace runner {
namespace {

struct Instance {
  const ProgramClass* itsClass;
  std::vector<Value> fields;
};

/// What stands in the instance data, behind what classes of plugins keep there.
constexpr std::size_t kPlaceOfInstance = 256;
struct InstanceData {
  std::byte ofPlugins[kPlaceOfInstance];
  Instance* instance;
};
constexpr std::int32_t kDataSize = kPlaceOfInstance + 16;  // a multiple of 16, as all are

Instance*& instanceIn(const ObjectRef& object) {
  return host::Host::data<InstanceData>(object).instance;
}

// The host calls it when an object dies.
void destroy(zel::REALobject handle) {
  auto* const data = reinterpret_cast<std::byte*>(handle) + zel::kInstanceDataOffset;
  delete std::exchange(reinterpret_cast<InstanceData*>(data)->instance, nullptr);
}

void prepare(Machine& machine, const ProgramClass& ofClass, const Value& object) {
  if (ofClass.super != nullptr) prepare(machine, *ofClass.super, object);
  if (ofClass.prepare.body == nullptr) return;
  Frame frame(machine, ofClass.prepare.name, ofClass.prepare.slotCount);
  frame.slots.front() = object;
  ofClass.prepare.body->run(frame);
}

}  // namespace

Value newInstance(Machine& machine, const ProgramClass& itsClass) {
  const ObjectRef object = machine.host().make(itsClass.type.name());
  auto instance = std::make_unique<Instance>(Instance{&itsClass, {}});
  instance->fields.reserve(itsClass.fields.size());
  for (const Type field : itsClass.fields) instance->fields.push_back(field->initial());
  instanceIn(object) = instance.release();
  prepare(machine, itsClass, object);
  return object;
}

Value& fieldOf(const Value& object, std::size_t slot) {
  return instanceIn(std::get<ObjectRef>(object))->fields[slot];
}

const ProgramClass* classOf(const Value& object) {
  const Instance* const instance = instanceIn(std::get<ObjectRef>(object));
  return instance == nullptr ? nullptr : instance->itsClass;
}

void establish(Machine& machine, const ProgramClass& added) {
  const std::string name = added.type.name();
  host::Host& host = machine.host();
  if (host.findClass(name) != nullptr) host.removeClass(name);
  const TypeRow* const super = added.type->superClass;
  host.addClass(name, super == nullptr ? "" : std::string(super->name), kDataSize);
  // Once for each object, however many classes of the program are above each other.
  if (added.super == nullptr)
    host.setDestructor(name, reinterpret_cast<host::PluginFunction>(destroy));
  machine.types().establish(added.type);
}

}  // namespace runner
