#include "host/internal/ledger.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <utility>

namespace host::internal {

Failures::Failures()
    : handler_([](const std::string& text) {
        std::fprintf(stderr, "reference host: %s\n", text.c_str());
        std::abort();
      }) {}

void Thing::die(State& /*state*/) {}

void Ledger::enter(std::unique_ptr<Thing> thing) {
  thing->serial_ = ++lastSerial_;
  const void* const handle = thing->handle();
  live_.insert_or_assign(handle, std::move(thing));
}

Thing* Ledger::live(const void* handle, std::string_view who) const {
  const auto found = live_.find(handle);
  if (found != live_.end()) return found->second.get();
  const auto grave = std::find_if(dead_.rbegin(), dead_.rend(), [handle](const auto& thing) {
    return thing->handle() == handle;
  });
  std::string what = "a handle that isn't the host's";
  if (handle == nullptr) what = "a null handle";
  if (grave != dead_.rend()) what = name(**grave) + ", which is dead";
  failures_.report(std::string(who) + " was given " + what);
  return nullptr;
}

void Ledger::reportWrongKind(const Thing& thing, std::string_view what,
                             std::string_view who) const {
  failures_.report(std::string(who) + " was given " + name(thing) + ", which isn't " +
                   std::string(what));
}

void Ledger::addReference(Thing& thing, std::string_view who) const {
  if (thing.references_ == 0) {
    failures_.report(std::string(who) + " was given " + name(thing) + ", which is dying");
    return;
  }
  ++thing.references_;
}

void Ledger::dropReference(State& state, Thing& thing, std::string_view who) {
  if (thing.references_ == 0) {
    failures_.report(std::string(who) + " was given " + name(thing) + ", which is dying");
    return;
  }
  if (--thing.references_ > 0) return;
  thing.die(state);
  bury(thing);
}

void Ledger::drop(State& state, const void* handle) {
  constexpr std::string_view kWho = "the host's own clean-up";
  if (handle == nullptr) return;
  if (Thing* const thing = live(handle, kWho)) dropReference(state, *thing, kWho);
}

long Ledger::references(const void* handle) const {
  const auto found = live_.find(handle);
  return found == live_.end() ? 0 : found->second->references_;
}

void Ledger::bury(Thing& thing) {
  if (!thing.intact()) failures_.report(name(thing) + " was written to outside of its data");
  thing.poison();
  const auto entry = live_.find(thing.handle());
  dead_.push_back(std::move(entry->second));
  live_.erase(entry);
  if (dead_.size() <= kGraves) return;
  const std::unique_ptr<Thing> oldest = std::move(dead_.front());
  dead_.pop_front();
  if (!oldest->intact()) failures_.report(name(*oldest) + " was written to after its death");
}

std::string Ledger::unbalanced() const {
  std::map<std::uint64_t, std::string> lines;  // in the order in which the things were made
  for (const auto& [handle, thing] : live_) {
    const long count = thing->references_;
    lines[thing->serial_] =
        name(*thing) + ": " + std::to_string(count) + (count == 1 ? " reference" : " references");
  }
  for (const auto& thing : dead_)
    if (!thing->intact()) lines[thing->serial_] = name(*thing) + ": written to after its death";
  std::string text;
  for (const auto& [serial, line] : lines) text += line + "\n";
  return text;
}

std::string Ledger::name(const Thing& thing) {
  return thing.describe() + " (#" + std::to_string(thing.serial_) + ")";
}

}  // namespace host::internal
