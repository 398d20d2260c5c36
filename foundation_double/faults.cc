#include "foundation_double/faults.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "foundation_double/accounts.h"
#include "foundation_double/exceptions.h"
#include "foundation_double/runtime.h"

namespace foundation_double::objc {
namespace {

/// A real runtime's reference counting never raises, and no code is prepared for it.
constexpr std::string_view kReferenceCounting[] = {"retain", "release", "autorelease"};

bool countsReferences(zel::SEL selector) {
  for (const auto name : kReferenceCounting) {
    if (selector->name == name) return true;
  }
  return false;
}

bool initialises(zel::SEL selector) {
  const std::string& name = selector->name;
  return name == "init" || name.starts_with("initWith");
}

[[noreturn]] void raiseDefault() { raise("TestException", "told to fail"); }

/// Makes the n-th call due; 0 takes it back.
void arm(CallPlan& plan, const std::string& function, long n) {
  plan.erase(function);
  if (n != 0) plan.emplace(function, n);
}

/// Whether it is the turn of a fault that was asked for.
bool isDue(CallPlan& plan, const char* function) {
  const auto found = plan.find(function);
  if (found == plan.end() || --found->second != 0) return false;
  plan.erase(found);
  return true;
}

void printAndAbort(const std::string& text) {
  std::fprintf(stderr, "Foundation double: %s\n", text.c_str());
  std::abort();
}

}  // namespace

Records& Records::shared() {
  static auto* const records = new Records;  // outlives every static object that might use it
  return *records;
}

void Records::add(std::vector<std::string>& record, const std::string& line) {
  record.push_back(line);
  if (observer) observer(line);
}

void Records::clear() {
  messages.clear();
  calls.clear();
  log.clear();
}

Faults& Faults::shared() {
  static auto* const faults = new Faults;  // outlives every static object that might use it
  return *faults;
}

void Faults::reset() { *this = Faults(); }

void Faults::throwAtMessage(long n, zel::id exception) {
  messagesUntilThrow_ = n;
  exception_ = exception;
}

void Faults::throwAtCall(const std::string& function, long n) {
  arm(callsUntilThrow_, function, n);
}

void Faults::failCall(const std::string& function, long n) { arm(callsUntilFailure_, function, n); }

bool Faults::pending() const {
  return messagesUntilThrow_ != 0 || !callsUntilThrow_.empty() || !callsUntilFailure_.empty();
}

void Faults::onFailure(std::function<void(const std::string&)> handler) {
  handler_ = std::move(handler);
}

void Faults::countMessage(Instance& receiver, zel::SEL selector) {
  if (messagesUntilThrow_ == 0) return;
  if (messagesUntilThrow_ > 1) {
    messagesUntilThrow_--;
    return;
  }
  if (countsReferences(selector)) return;
  messagesUntilThrow_ = 0;
  if (initialises(selector)) Accounts::shared().release(receiver);
  if (exception_ == nullptr) raiseDefault();
  throw NativeException{exception_};
}

bool Faults::countCall(const char* function) {
  Records::shared().addCall(function);
  if (isDue(callsUntilThrow_, function)) raiseDefault();
  return !isDue(callsUntilFailure_, function);
}

void Faults::report(const std::string& misuse) { (handler_ ? handler_ : printAndAbort)(misuse); }

void misuse(const std::string& text) { Faults::shared().report(text); }

void misuseWithoutAnswer(const std::string& text) {
  misuse(text);
  throw std::logic_error(text);
}

}  // namespace foundation_double::objc
