// The accounts: everything that the host hands out by handle, and the references on it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>

namespace host::internal {

class AnyObject;
struct State;

/// Where wrong use by the plugin is reported.
class Failures {
 public:
  Failures();
  void report(const std::string& text) const { handler_(text); }
  void onFailure(std::function<void(const std::string&)> handler) { handler_ = std::move(handler); }

 private:
  std::function<void(const std::string&)> handler_;
};

/// Something that is counted. A class of things has a kWhat, such as "a string".
class Thing {
 public:
  Thing() = default;
  virtual ~Thing() = default;
  Thing(const Thing&) = delete;
  Thing& operator=(const Thing&) = delete;

  [[nodiscard]] virtual const void* handle() const = 0;
  /// What it is, for messages.
  [[nodiscard]] virtual std::string describe() const = 0;
  /// The last reference has gone: runs hooks and gives up the references that it holds. The handle
  /// is still good.
  virtual void die(State& state);
  /// Makes the memory that the plugin knows of unusable.
  virtual void poison() = 0;
  /// False when somebody wrote where nobody may write.
  [[nodiscard]] virtual bool intact() const = 0;
  /// The thing as an object; null for what is none. Asked whenever a reference is copied or given
  /// up, so it is quicker than a cast.
  virtual AnyObject* asObject() { return nullptr; }

 private:
  friend class Ledger;
  long references_ = 1;
  std::uint64_t serial_ = 0;
};

/// What programs handle as an object: instances of classes, and arrays.
class AnyObject : public Thing {
 public:
  static constexpr std::string_view kWhat = "an object";

  AnyObject* asObject() final { return this; }
};

class Ledger {
 public:
  explicit Ledger(const Failures& failures) : failures_(failures) {}

  /// Enters a new thing, with one reference for the caller.
  template <class T>
  T& add(std::unique_ptr<T> thing) {
    T& added = *thing;
    enter(std::move(thing));
    return added;
  }

  /// The live thing of that handle and class. Otherwise reports a failure and gives null.
  /// @param who the entry point that was given the handle.
  template <class T>
  T* find(const void* handle, std::string_view who) const {
    Thing* const thing = live(handle, who);
    T* const found = as<T>(thing);
    if (thing != nullptr && found == nullptr) reportWrongKind(*thing, T::kWhat, who);
    return found;
  }
  /// The same, without complaint.
  template <class T>
  T* peek(const void* handle) const {
    const auto found = live_.find(handle);
    return found == live_.end() ? nullptr : as<T>(found->second.get());
  }

  void addReference(Thing& thing, std::string_view who) const;
  /// Drops a reference; the thing dies with the last one.
  void dropReference(State& state, Thing& thing, std::string_view who);
  /// Adds a reference that the host itself will hold. False, with the failure reported, when the
  /// handle is neither null nor a live thing of class T.
  template <class T>
  bool hold(const void* handle, std::string_view who) const {
    if (handle == nullptr) return true;
    T* const thing = find<T>(handle, who);
    if (thing != nullptr) addReference(*thing, who);
    return thing != nullptr;
  }
  /// Drops a reference that the host itself holds; null is allowed.
  void drop(State& state, const void* handle);
  [[nodiscard]] long references(const void* handle) const;

  /// One line for everything that is alive, or was written to after its death.
  [[nodiscard]] std::string unbalanced() const;

 private:
  /// @param thing nullable.
  template <class T>
  static T* as(Thing* thing) {
    if constexpr (std::is_same_v<T, AnyObject>) {
      return thing == nullptr ? nullptr : thing->asObject();
    } else {
      return dynamic_cast<T*>(thing);
    }
  }

  void enter(std::unique_ptr<Thing> thing);
  void bury(Thing& thing);
  Thing* live(const void* handle, std::string_view who) const;
  void reportWrongKind(const Thing& thing, std::string_view what, std::string_view who) const;
  static std::string name(const Thing& thing);

  // The dead are kept for a while, so that an address isn't used again at once and whoever comes
  // back with the old handle is found out.
  static constexpr std::size_t kGraves = 1024;

  const Failures& failures_;
  std::unordered_map<const void*, std::unique_ptr<Thing>> live_;
  std::deque<std::unique_ptr<Thing>> dead_;
  std::uint64_t lastSerial_ = 0;
};

}  // namespace host::internal
