// Host objects and their classes.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "host/host.h"
#include "host/internal/ledger.h"
#include "host/internal/memory.h"
#include "plugin/handles.h"
#include "plugin/records.h"

namespace host::internal {

/// What a property holds: numbers, or a nullable handle with a reference of the host.
using PropertyValue =
    std::variant<std::int32_t, std::int64_t, float, double, zel::REALstring, zel::REALobject>;

struct Property {
  std::string name;
  PropertyValue initial;  // 0 or null; also says of which type the property is
};

class HostObject;
struct HostClass;

/// Makes a plain object of a class; hooks don't run.
using ObjectFactory = std::unique_ptr<HostObject> (*)(std::shared_ptr<const HostClass>);

struct HostClass {
  RegisteredClass description;
  std::shared_ptr<const HostClass> super;  // nullable
  std::vector<Property> properties;        // its own, without those of its super classes
  ObjectFactory create = nullptr;          // null: as the super class does

  /// Whether this is the named class or one below it, by the language's rule for names.
  [[nodiscard]] bool isA(std::string_view name) const;
};

/// The classes that the host knows by name.
class Classes {
 public:
  /// Null when unknown. The case of the name matters: plugins ask by the exact name.
  [[nodiscard]] std::shared_ptr<HostClass> find(std::string_view name) const;
  /// The class that a reference stands for; null when it stands for none.
  [[nodiscard]] const HostClass* find(zel::REALclassRef reference) const;
  /// The names of all of them.
  [[nodiscard]] std::vector<std::string> names() const;
  /// False when there is a class of that name already.
  bool add(const std::shared_ptr<HostClass>& added);
  void remove(const std::string& name) { classes_.erase(name); }

 private:
  std::map<std::string, std::shared_ptr<HostClass>, std::less<>> classes_;
};

class HostObject : public AnyObject {
 public:
  static constexpr std::string_view kWhat = "an instance of a class";

  explicit HostObject(std::shared_ptr<const HostClass> objectClass);

  [[nodiscard]] const void* handle() const override { return memory_.data(); }
  [[nodiscard]] std::string describe() const override;
  void die(State& state) override;
  void poison() override;
  [[nodiscard]] bool intact() const override;

  [[nodiscard]] zel::REALobject object() const {
    return static_cast<zel::REALobject>(memory_.data());
  }
  [[nodiscard]] const HostClass& hostClass() const { return *class_; }
  /// Null when there is no such property; the name's case doesn't matter.
  PropertyValue* property(std::string_view name);

 private:
  struct Slot {
    std::string name;
    PropertyValue value;
  };

  std::shared_ptr<const HostClass> class_;
  Memory memory_;  // the header, then the instance data
  bool dead_ = false;
  std::vector<Slot> properties_;
};

/// Enters a new object, with one reference for the caller, and runs the constructor hooks.
HostObject& enter(State& state, std::unique_ptr<HostObject> object);
template <class T>
T& addObject(State& state, std::unique_ptr<T> object) {
  return static_cast<T&>(enter(state, std::move(object)));
}
/// A new object of the class with one reference for the caller, constructor hooks run.
HostObject& newObject(State& state, const std::shared_ptr<const HostClass>& objectClass);

// --- entry points
void lockObject(State& state, zel::REALobject object);
void unlockObject(State& state, zel::REALobject object);
zel::REALobject newInstance(State& state, const char* className);
zel::REALboolean objectIsA(State& state, zel::REALobject object, zel::REALclassRef reference);
zel::REALclassRef getClassRef(State& state, const char* name);

}  // namespace host::internal
