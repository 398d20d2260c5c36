// Objects and who holds them.
//
// Every reference of an object is one of three: kept (Foundation itself holds it: the store,
// another object), pooled (the autorelease pool will drop it) or owned (everybody else's: the
// product's and the test's). Only owned ones can be released, and at the end none may be left.
// Dead objects stay in memory, poisoned, until reset, so that whoever still uses one is caught.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "foundation_double/faults.h"
#include "native/objc.h"

namespace foundation_double::objc {

struct ClassRecord;

/// What the instances of a class hold beside their class and their references.
struct Body {
  Body() = default;
  Body(const Body&) = delete;
  Body& operator=(const Body&) = delete;
  virtual ~Body() = default;

  /// What `description` answers; nullopt: the class and the address.
  [[nodiscard]] virtual std::optional<std::u16string> text() const { return std::nullopt; }
  /// The object in literals.h's form; nullopt: the name of its class.
  [[nodiscard]] virtual std::optional<std::string> literal() const { return std::nullopt; }
};

/// An object as the runtime sees it.
struct Instance {
  ClassRecord* isa = nullptr;
  long count = 0;         // all references
  long kept = 0;          // of these, Foundation's own
  long pooled = 0;        // of these, the pool's
  bool immortal = false;  // references don't count
  bool dead = false;
  std::unique_ptr<Body> body;

  [[nodiscard]] long owned() const { return count - kept - pooled; }
};

/// The object behind a handle, which must be one.
inline Instance* instance(const void* object) {
  return static_cast<Instance*>(const_cast<void*>(object));
}

/// The handle that product code knows an object by.
template <class Handle = zel::id>
Handle handle(Instance* object) {
  return reinterpret_cast<Handle>(object);
}

class Accounts {
 public:
  static Accounts& shared();

  /// Frees every object but the immortal ones.
  void reset();

  /// A new object with one owned reference.
  Instance* create(ClassRecord& isa, std::unique_ptr<Body> body);
  /// A new object that outlives reset and stands outside all accounts.
  Instance* createImmortal(ClassRecord& isa, std::unique_ptr<Body> body);
  /// The same for an object that the caller stores.
  void makeImmortal(Instance& object);
  /// The object at that address, dead ones included; null when there is none.
  [[nodiscard]] Instance* find(const void* object) const;

  void retain(Instance& object);
  void release(Instance& object);
  void autorelease(Instance& object);
  /// Takes and drops a kept reference: see Held.
  void hold(Instance& object);
  void drop(Instance& object);
  void drainPool();

  /// Drains the pool and describes every object with owned references, one a line.
  std::string unbalanced();

 private:
  Accounts() = default;
  bool own(Instance& object, const char* operation);
  static void unreference(Instance& object);

  std::vector<std::unique_ptr<Instance>> objects_;  // in the order of their making
  std::vector<std::unique_ptr<Instance>> immortals_;
  std::unordered_set<const void*> known_;
  std::unordered_set<const void*> knownImmortals_;
  std::vector<Instance*> pool_;
};

/// A reference that Foundation itself holds; nullable.
class Held {
 public:
  Held() = default;
  explicit Held(const void* object) : object_(const_cast<void*>(object)) {
    if (object_ != nullptr) Accounts::shared().hold(*instance(object_));
  }
  Held(Held&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  Held& operator=(Held&& other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  Held(const Held&) = delete;
  Held& operator=(const Held&) = delete;
  ~Held() {
    if (object_ != nullptr) Accounts::shared().drop(*instance(object_));
  }

  template <class Handle = zel::id>
  [[nodiscard]] Handle get() const {
    return static_cast<Handle>(object_);
  }

 private:
  void* object_ = nullptr;
};

/// Turns the caller's reference to a new object into one that Foundation holds.
inline Held kept(const void* object) {
  Held held(object);
  Accounts::shared().release(*instance(object));
  return held;
}

/// Hands the caller's reference to the pool.
template <class Handle>
Handle pooled(Handle object) {
  Accounts::shared().autorelease(*instance(object));
  return object;
}

/// What an object of a known kind holds; anything else, nil and dead objects included, is misuse.
/// @param wanted names the kind in the failure's text.
template <class Kind>
Kind& bodyOf(const void* object, const char* wanted) {
  const Instance* const found = Accounts::shared().find(object);
  Kind* const body = found == nullptr ? nullptr : dynamic_cast<Kind*>(found->body.get());
  // Appended, not added up: optimised, the sum makes g++ warn of what isn't there.
  if (body == nullptr) misuseWithoutAnswer(std::string("not a live ").append(wanted));
  return *body;
}

/// The class's name and, in quotes, the object's text if it has one.
std::string describe(const Instance& object);
/// An address as Foundation writes it: "0x7f00".
std::string addressText(const void* object);

}  // namespace foundation_double::objc
