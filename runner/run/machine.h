// What a running program consists of: frames, variables, and code that works on them.
#pragma once

#include <csignal>
#include <cstddef>
#include <deque>
#include <functional>
#include <iosfwd>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/host.h"
#include "runner/run/types.h"

namespace runner {

using host::ObjectRef;
using host::Value;

/// A method that was running, and the line that it was at.
struct StackEntry {
  std::string method;
  int line = 0;
};

/// "f, line 3"; the program's own body has no name.
std::string format(const StackEntry& entry);

/// A host exception on its way through a program.
struct HostThrow {
  ObjectRef exception;
  std::vector<StackEntry> stack;  // the innermost method first
};

/// A program that was told to end, on its way out. Nothing in the program catches it.
struct Interrupted {
  std::vector<StackEntry> stack;  // where it was, the innermost method first
};

class Machine;

/// A running method.
struct Frame {
  Frame(Machine& itsMachine, const std::string& itsMethod, std::size_t slotCount);
  ~Frame();
  Frame(const Frame&) = delete;
  Frame& operator=(const Frame&) = delete;

  Machine& machine;
  const std::string& method;
  Frame* caller;
  int line = 0;
  std::vector<Value> slots;
  std::vector<Value*> references;  // by slot: where a ByRef parameter's variable is
  Value result;
  int loopsToLeave = 0;  // by an Exit or Continue, beyond the innermost one
};

class Machine {
 public:
  /// @param out what programs print to. @param in what they read from.
  Machine(host::Host& host, std::ostream& out, std::istream& in);

  host::Host& host() { return host_; }
  /// Such as 2014.0; 0 for a host that doesn't say.
  [[nodiscard]] double hostVersion() const { return host_.version().value_or(0); }
  Types& types() { return types_; }
  std::ostream& out() { return out_; }
  std::istream& in() { return in_; }

  /// A new variable of the whole program, which stays where it is.
  Value& addGlobal() { return globals_.emplace_back(); }
  /// A value that the library keeps under a name, for all programs; nothing at first.
  Value& kept(const std::string& name) { return kept_[name]; }
  /// Forgets what the variables hold, and what the library keeps.
  void clear();

  /// Throws a new host exception of that class.
  [[noreturn]] void raise(const std::string& className, const std::string& message);
  /// Throws an exception object; Nil makes a NilObjectException.
  [[noreturn]] void raise(const ObjectRef& exception);
  /// Throws the first of the exceptions that the host has pending, if there is one.
  void raisePending() {
    if (host_.hasPending()) raiseFirstPending();
  }

  /// Calls a plugin's function, as host::PreparedCall does. A variant in the result is given as
  /// what it holds. Throws the first of the exceptions that the function raises.
  Value call(const host::PreparedCall& function, const Value& self, const Value* arguments,
             host::ReadyTexts ready);

  /// Has the program that runs throw Interrupted at its next statement or turn of a loop. A handler
  /// of a signal may call it.
  void interrupt() { interrupted_ = 1; }
  [[nodiscard]] bool isInterrupted() const { return interrupted_ != 0; }
  /// Forgets an interruption that came while nothing ran.
  void resume() { interrupted_ = 0; }

  /// What is to happen now and then between statements while plugins are called.
  void onPause(std::function<void()> pause) { pause_ = std::move(pause); }
  /// For the time between two statements or two turns of a loop.
  void pauseIfDue() {
    if (calls_ >= kCallsBetweenPauses || interrupted_ != 0) pauseNow();
  }

 private:
  friend struct Frame;
  static constexpr int kCallsBetweenPauses = 512;
  static constexpr std::ptrdiff_t kStackRoom = 4 << 20;  // bytes, of 8 MiB that there usually are

  [[noreturn]] void raiseFirstPending();
  [[nodiscard]] std::vector<StackEntry> stack() const;
  void pauseNow();

  host::Host& host_;
  Types types_;
  std::ostream& out_;
  std::istream& in_;
  std::deque<Value> globals_;
  std::map<std::string, Value> kept_;
  Frame* frame_ = nullptr;
  const char* stackStart_;  // where the processor's stack stood at first
  int calls_ = 0;
  volatile std::sig_atomic_t interrupted_ = 0;
  std::function<void()> pause_;
};

/// How a statement ended.
enum class Flow { next, exitLoop, continueLoop, leave };

/// An expression or statement ready to run.
template <class Result>
class Code {
 public:
  virtual ~Code() = default;
  virtual Result run(Frame& frame) const = 0;
};

template <class Result, class Function>
class CodeOf final : public Code<Result> {
 public:
  explicit CodeOf(Function function) : function_(std::move(function)) {}
  Result run(Frame& frame) const override { return function_(frame); }

 private:
  Function function_;
};

using ValueCode = std::unique_ptr<Code<Value>>;
using Action = std::unique_ptr<Code<Flow>>;

/// Code of a function that takes a Frame&.
template <class Function>
ValueCode valueCode(Function function) {
  return std::make_unique<CodeOf<Value, Function>>(std::move(function));
}
template <class Function>
Action action(Function function) {
  return std::make_unique<CodeOf<Flow, Function>>(std::move(function));
}

}  // namespace runner
