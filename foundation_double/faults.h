// What a test can make go wrong, and the records of what happened.
#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "native/objc.h"

namespace foundation_double::objc {

struct Instance;

struct Records {
  std::vector<std::string> messages;
  std::vector<std::string> calls;
  std::vector<std::string> log;
  std::function<void(const std::string&)> observer;  // of messages and calls; nullable

  static Records& shared();
  void addMessage(const std::string& message) { add(messages, message); }
  void addCall(const char* function) { add(calls, function); }
  void clear();

 private:
  void add(std::vector<std::string>& record, const std::string& line);
};

/// By function: how many calls are left until the fault; the last of them is the one that fails.
using CallPlan = std::map<std::string, long, std::less<>>;

class Faults {
 public:
  static Faults& shared();
  void reset();

  void throwAtMessage(long n, zel::id exception);
  void throwAtCall(const std::string& function, long n);
  void failCall(const std::string& function, long n);
  [[nodiscard]] bool pending() const;
  void hideConstant(const std::string& name) { hiddenConstants_.insert(name); }
  [[nodiscard]] bool isHidden(const std::string& name) const {
    return hiddenConstants_.count(name) != 0;
  }
  void onFailure(std::function<void(const std::string&)> handler);
  void beforeCatching(std::function<void()> action) { beforeCatching_ = std::move(action); }

  /// Counts a message; raises when it is its turn.
  void countMessage(Instance& receiver, zel::SEL selector);
  /// Records and counts a call; raises when it is its turn. False: the call is to fail.
  [[nodiscard]] bool countCall(const char* function);
  /// A body is about to run whose exceptions are caught.
  void announceCatching() const {
    if (beforeCatching_) beforeCatching_();
  }
  /// Tells the failure handler.
  void report(const std::string& misuse);

 private:
  Faults() = default;

  long messagesUntilThrow_ = 0;  // 0: never
  zel::id exception_ = nullptr;  // null: the default one
  CallPlan callsUntilThrow_;
  CallPlan callsUntilFailure_;
  std::set<std::string> hiddenConstants_;
  std::function<void()> beforeCatching_;
  std::function<void(const std::string&)> handler_;
};

/// Reports misuse that can be survived.
void misuse(const std::string& text);
/// Reports misuse that leaves nothing to answer: throws std::logic_error if the handler returns.
[[noreturn]] void misuseWithoutAnswer(const std::string& text);

}  // namespace foundation_double::objc
