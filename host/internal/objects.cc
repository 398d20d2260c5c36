#include "host/internal/objects.h"

#include <algorithm>
#include <utility>

#include "host/internal/properties.h"
#include "host/internal/state.h"

namespace host::internal {
namespace {

constexpr std::size_t kHeaderSize = zel::kInstanceDataOffset;
constexpr std::byte kHeader{0xA5};

using Hook = void (*)(zel::REALobject);

void runHook(const State& state, PluginFunction hook, zel::REALobject object) {
  if (hook == nullptr) return;
  state.options.border.in([hook, object] { reinterpret_cast<Hook>(hook)(object); });
}

void runConstructors(const State& state, const HostClass* objectClass, zel::REALobject object) {
  if (objectClass == nullptr) return;
  runConstructors(state, objectClass->super.get(), object);
  runHook(state, objectClass->description.constructor, object);
}

std::size_t dataSize(const HostClass* objectClass) {
  std::int32_t size = 0;
  for (; objectClass != nullptr; objectClass = objectClass->super.get())
    size = std::max(size, objectClass->description.dataSize);
  return static_cast<std::size_t>(size);
}

}  // namespace

bool HostClass::isA(std::string_view name) const {
  return sameName(description.name, name) || (super != nullptr && super->isA(name));
}

std::shared_ptr<HostClass> Classes::find(std::string_view name) const {
  const auto found = classes_.find(name);
  return found == classes_.end() ? nullptr : found->second;
}

const HostClass* Classes::find(zel::REALclassRef reference) const {
  const auto* const wanted = reinterpret_cast<const HostClass*>(reference);
  const auto found = std::find_if(classes_.begin(), classes_.end(), [wanted](const auto& entry) {
    return entry.second.get() == wanted;
  });
  return found == classes_.end() ? nullptr : wanted;
}

std::vector<std::string> Classes::names() const {
  std::vector<std::string> names;
  for (const auto& [name, known] : classes_) names.push_back(name);
  return names;
}

bool Classes::add(const std::shared_ptr<HostClass>& added) {
  return classes_.try_emplace(added->description.name, added).second;
}

HostObject::HostObject(std::shared_ptr<const HostClass> objectClass)
    : class_(std::move(objectClass)), memory_(kHeaderSize + dataSize(class_.get())) {
  std::fill_n(memory_.at(0), kHeaderSize, kHeader);
  for (const HostClass* c = class_.get(); c != nullptr; c = c->super.get()) {
    for (const Property& property : c->properties)
      properties_.push_back({property.name, property.initial});
  }
}

std::string HostObject::describe() const { return "object of " + class_->description.name; }

void HostObject::die(State& state) {
  for (const HostClass* c = class_.get(); c != nullptr; c = c->super.get())
    runHook(state, c->description.destructor, object());
  for (const Slot& property : std::exchange(properties_, {}))
    state.ledger.drop(state, referenceIn(property.value));
}

void HostObject::poison() {
  memory_.poison();
  dead_ = true;
}

bool HostObject::intact() const {
  const auto isHeader = [](std::byte b) { return b == kHeader; };
  return memory_.intact() &&
         (dead_ || std::all_of(memory_.at(0), memory_.at(kHeaderSize), isHeader));
}

PropertyValue* HostObject::property(std::string_view name) {
  const auto found = std::find_if(properties_.begin(), properties_.end(),
                                  [name](const Slot& slot) { return sameName(slot.name, name); });
  return found == properties_.end() ? nullptr : &found->value;
}

HostObject& enter(State& state, std::unique_ptr<HostObject> object) {
  HostObject& entered = state.ledger.add(std::move(object));
  runConstructors(state, &entered.hostClass(), entered.object());
  return entered;
}

HostObject& newObject(State& state, const std::shared_ptr<const HostClass>& objectClass) {
  for (const HostClass* c = objectClass.get(); c != nullptr; c = c->super.get())
    if (c->create != nullptr) return enter(state, c->create(objectClass));
  return enter(state, std::make_unique<HostObject>(objectClass));
}

void lockObject(State& state, zel::REALobject object) {
  if (auto* const found = state.ledger.find<AnyObject>(object, "REALLockObject"))
    state.ledger.addReference(*found, "REALLockObject");
}

void unlockObject(State& state, zel::REALobject object) {
  if (auto* const found = state.ledger.find<AnyObject>(object, "REALUnlockObject"))
    state.ledger.dropReference(state, *found, "REALUnlockObject");
}

zel::REALobject newInstance(State& state, const char* className) {
  if (className == nullptr) {
    state.failures.report("PluginNewInstance was given no class name");
    return nullptr;
  }
  const std::shared_ptr<HostClass> found = state.classes.find(className);
  return found == nullptr ? nullptr : newObject(state, found).object();
}

zel::REALboolean objectIsA(State& state, zel::REALobject object, zel::REALclassRef reference) {
  const auto* const found = state.ledger.find<AnyObject>(object, "RuntimeObjectIsa");
  const HostClass* const wanted = state.classes.find(reference);
  if (wanted == nullptr) state.failures.report("RuntimeObjectIsa was given no class of the host");
  if (found == nullptr || wanted == nullptr) return 0;
  const auto* const instance = dynamic_cast<const HostObject*>(found);
  return instance != nullptr && instance->hostClass().isA(wanted->description.name) ? 1 : 0;
}

zel::REALclassRef getClassRef(State& state, const char* name) {
  if (name == nullptr) {
    state.failures.report("pluginObjectType was given no class name");
    return nullptr;
  }
  return reinterpret_cast<zel::REALclassRef>(state.classes.find(name).get());
}

}  // namespace host::internal
