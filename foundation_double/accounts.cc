#include "foundation_double/accounts.h"

#include <cstdio>
#include <string>

#include "foundation_double/encodings.h"
#include "foundation_double/runtime.h"

namespace foundation_double::objc {

Accounts& Accounts::shared() {
  static auto* const accounts = new Accounts;  // outlives every static object that might use it
  return *accounts;
}

void Accounts::reset() {
  pool_.clear();
  // All bodies go before the first object does: they drop references to other objects.
  for (const auto& object : objects_) object->dead = true;
  for (const auto& object : objects_) object->body.reset();
  objects_.clear();
  known_.clear();
}

Instance* Accounts::create(ClassRecord& isa, std::unique_ptr<Body> body) {
  Instance& object = *objects_.emplace_back(std::make_unique<Instance>());
  object.isa = &isa;
  object.count = 1;
  object.body = std::move(body);
  known_.insert(&object);
  return &object;
}

Instance* Accounts::createImmortal(ClassRecord& isa, std::unique_ptr<Body> body) {
  Instance& object = *immortals_.emplace_back(std::make_unique<Instance>());
  object.isa = &isa;
  object.count = 1;
  object.body = std::move(body);
  makeImmortal(object);
  return &object;
}

void Accounts::makeImmortal(Instance& object) {
  object.immortal = true;
  knownImmortals_.insert(&object);
}

Instance* Accounts::find(const void* object) const {
  const bool known = known_.count(object) != 0 || knownImmortals_.count(object) != 0;
  return known ? instance(object) : nullptr;
}

/// Whether there is an owned reference to give up; misuse when there isn't.
bool Accounts::own(Instance& object, const char* operation) {
  if (object.immortal) return false;
  if (!object.dead && object.owned() > 0) return true;
  misuse(std::string(operation) + " without a reference: " + describe(object));
  return false;
}

void Accounts::unreference(Instance& object) {
  object.count--;
  if (object.count != 0) return;
  object.dead = true;
  object.body.reset();
}

void Accounts::retain(Instance& object) {
  if (object.immortal) return;
  if (object.dead) {
    misuse("retain of a dead object: " + describe(object));
    return;
  }
  object.count++;
}

void Accounts::release(Instance& object) {
  if (own(object, "release")) unreference(object);
}

void Accounts::autorelease(Instance& object) {
  if (!own(object, "autorelease")) return;
  object.pooled++;
  pool_.push_back(&object);
}

void Accounts::hold(Instance& object) {
  if (object.immortal) return;
  retain(object);
  object.kept++;
}

void Accounts::drop(Instance& object) {
  if (object.immortal || object.dead) return;  // dead: in a reset
  object.kept--;
  unreference(object);
}

void Accounts::drainPool() {
  while (!pool_.empty()) {
    Instance& object = *pool_.back();
    pool_.pop_back();
    object.pooled--;
    unreference(object);
  }
}

std::string Accounts::unbalanced() {
  drainPool();
  std::string lines;
  for (const auto& object : objects_) {
    const long owned = object->owned();
    if (owned == 0) continue;
    lines += describe(*object) + ": " + std::to_string(owned) +
             (owned == 1 ? " reference\n" : " references\n");
  }
  return lines;
}

std::string describe(const Instance& object) {
  std::string description = (object.dead ? "dead " : "") + object.isa->name;
  if (object.body == nullptr) return description;
  const auto text = object.body->text();
  return text ? description + " \"" + encodeLosslessly(*text) + '"' : description;
}

std::string addressText(const void* object) {
  char text[2 + 2 * sizeof(void*) + 1];
  std::snprintf(text, sizeof text, "%p", object);
  return text;
}

}  // namespace foundation_double::objc
