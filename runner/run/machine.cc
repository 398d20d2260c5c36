#include "runner/run/machine.h"

namespace runner {

Frame::Frame(Machine& itsMachine, const std::string& itsMethod, std::size_t slotCount)
    : machine(itsMachine),
      method(itsMethod),
      caller(itsMachine.frame_),
      slots(slotCount),
      references(slotCount) {
  const char here = 0;
  if (machine.stackStart_ - &here > Machine::kStackRoom)
    machine.raise("StackOverflowException", "Methods call each other too deeply.");
  machine.frame_ = this;
}

Frame::~Frame() { machine.frame_ = caller; }

std::string format(const StackEntry& entry) {
  return (entry.method.empty() ? "" : entry.method + ", ") + "line " + std::to_string(entry.line);
}

Machine::Machine(host::Host& host, std::ostream& out, std::istream& in)
    : host_(host),
      types_(host),
      out_(out),
      in_(in),
      stackStart_(static_cast<const char*>(__builtin_frame_address(0))) {}

void Machine::clear() {
  for (Value& global : globals_) global = std::monostate();
  kept_.clear();
}

std::vector<StackEntry> Machine::stack() const {
  std::vector<StackEntry> entries;
  for (const Frame* frame = frame_; frame != nullptr; frame = frame->caller)
    entries.push_back({frame->method, frame->line});
  return entries;
}

void Machine::raise(const std::string& className, const std::string& message) {
  const ObjectRef exception = host_.make(className);
  host_.setProperty(exception, "Message", message);
  throw HostThrow{exception, stack()};
}

void Machine::raise(const ObjectRef& exception) {
  if (!exception) raise("NilObjectException", "Nil can't be raised.");
  throw HostThrow{exception, stack()};
}

void Machine::raiseFirstPending() {
  const std::vector<ObjectRef> raised = host_.takePendingObjects();
  raise(raised.front());
}

Value Machine::call(const host::PreparedCall& function, const Value& self, const Value* arguments,
                    host::ReadyTexts ready) {
  const auto* const object = std::get_if<ObjectRef>(&self);
  Value result = function.run(object == nullptr ? nullptr : object->handle(), arguments, ready);
  ++calls_;
  raisePending();
  if (std::holds_alternative<ObjectRef>(result)) result = host_.valueOf(result);
  return result;
}

void Machine::pauseNow() {
  if (interrupted_ != 0) throw Interrupted{stack()};
  calls_ = 0;
  if (pause_) pause_();
}

}  // namespace runner
