#include "host/internal/control.h"

#include <stdexcept>

namespace host::internal {

Control::Control(const std::vector<std::string>& names, bool keepSequence)
    : keepSequence_(keepSequence) {
  for (const std::string& name : names) entries_.try_emplace(name);
}

bool Control::lookUp(std::string_view name) {
  const auto found = entries_.find(name);
  if (found == entries_.end()) return false;
  Entry& entry = found->second;
  ++entry.lookups;
  const bool hiddenNow = hidden(name);
  if (entry.hiddenLookups > 0) --entry.hiddenLookups;
  return !hiddenNow;
}

bool Control::call(std::string_view name) {
  Entry& entry = at(name);
  ++entry.calls;
  if (keepSequence_) sequence_.emplace_back(name);
  if (observer_) observer_(name);
  for (int& countdown : entry.callsUntilNull) --countdown;
  return std::erase(entry.callsUntilNull, 0) == 0 && !entry.null;
}

bool Control::hidden(std::string_view name) const {
  const Entry& entry = at(name);
  return entry.hidden || entry.hiddenLookups > 0;
}

void Control::unhide(std::string_view name) {
  at(name).hidden = false;
  at(name).hiddenLookups = 0;
}

void Control::answerNull(std::string_view name, int nthCall) {
  if (nthCall < 0) throw std::invalid_argument("answerNull: a call counts from 1, or 0 for every");
  if (nthCall == 0) {
    at(name).null = true;
  } else {
    at(name).callsUntilNull.push_back(nthCall);
  }
}

void Control::answerAgain(std::string_view name) {
  at(name).null = false;
  at(name).callsUntilNull.clear();
}

void Control::clearRecords() {
  for (auto& [name, entry] : entries_) {
    entry.lookups = 0;
    entry.calls = 0;
  }
  sequence_.clear();
}

Control::Entry& Control::at(std::string_view name) {
  const auto found = entries_.find(name);
  if (found == entries_.end())
    throw std::invalid_argument("the host has no entry point \"" + std::string(name) + "\"");
  return found->second;
}

const Control::Entry& Control::at(std::string_view name) const {
  return const_cast<Control*>(this)->at(name);
}

}  // namespace host::internal
