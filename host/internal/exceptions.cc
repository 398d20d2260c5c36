#include "host/internal/exceptions.h"

#include "host/internal/state.h"

namespace host::internal {
namespace {

Raised describe(const State& state, HostObject& exception) {
  Raised raised;
  raised.className = exception.hostClass().description.name;
  if (const PropertyValue* const number = exception.property("ErrorNumber"))
    raised.errorNumber = std::get<std::int32_t>(*number);
  const PropertyValue* const message = exception.property("Message");
  const auto* const text = message == nullptr
                               ? nullptr
                               : state.ledger.peek<HostString>(std::get<zel::REALstring>(*message));
  if (text != nullptr) {
    raised.message = std::string(text->bytes());
    raised.messageEncoding = text->encoding;
  }
  return raised;
}

}  // namespace

void raiseByName(State& state, const char* className) {
  const std::shared_ptr<HostClass> found = state.classes.find(className);
  if (found == nullptr) return;
  state.pending.push_back(newObject(state, found).object());
}

std::vector<Raised> takePending(State& state, std::size_t from) {
  const auto first = state.pending.begin() + static_cast<std::ptrdiff_t>(from);
  const std::vector<zel::REALobject> taken(first, state.pending.end());
  state.pending.erase(first, state.pending.end());
  std::vector<Raised> raised;
  for (const zel::REALobject exception : taken) {
    if (auto* const object = state.ledger.peek<HostObject>(exception))
      raised.push_back(describe(state, *object));
    state.ledger.drop(state, exception);
  }
  return raised;
}

void raiseException(State& state, zel::REALobject exception) {
  constexpr std::string_view kWho = "RuntimeRaiseException";
  const auto* const object = state.ledger.find<HostObject>(exception, kWho);
  if (object == nullptr) return;
  if (!object->hostClass().isA(kExceptionClass)) {
    state.failures.report(std::string(kWho)
                              .append(" was given an ")
                              .append(object->describe())
                              .append(", which isn't an exception"));
    return;
  }
  if (state.ledger.hold<HostObject>(exception, kWho)) state.pending.push_back(exception);
}

}  // namespace host::internal
