#include "host/prepared_call.h"

#include <array>
#include <ffi.h>
#include <stdexcept>

#include "host/internal/encodings.h"
#include "host/internal/passing.h"
#include "host/internal/state.h"

namespace host {

using internal::Slot;
using internal::State;
using internal::TypeRules;

namespace {

constexpr std::size_t kMost = PreparedCall::kMostParameters;

// The arguments while a call lasts; the references among them are given back on every way out.
struct Passing {
  explicit Passing(State& itsState) : state(itsState) {}
  ~Passing() {
    for (std::size_t i = 0; i < ownedCount; ++i) state.ledger.drop(state, owned[i]);
  }
  Passing(const Passing&) = delete;
  Passing& operator=(const Passing&) = delete;

  void add(const Slot& slot) {
    slots[count] = slot;
    addresses[count] = &slots[count];
    ++count;
  }
  void addHandle(void* handle) {
    Slot slot{};
    slot.handle = handle;
    add(slot);
  }
  void addOwned(const Slot& slot) {
    add(slot);
    owned[ownedCount++] = slot.handle;
  }

  State& state;
  std::array<Slot, kMost + 1> slots;
  std::array<void*, kMost + 1> addresses;
  std::array<void*, kMost> owned;
  std::size_t count = 0;
  std::size_t ownedCount = 0;
};

}  // namespace

struct PreparedCall::Plan {
  PluginFunction function;
  bool ofInstance;
  std::size_t parameterCount = 0;
  std::array<const TypeRules*, kMost> parameters{};
  const TypeRules* result = nullptr;  // null: none
  std::array<ffi_type*, kMost + 1> types{};
  ffi_cif cif{};
};

ReadyText::~ReadyText() {
  if (handle_ == nullptr) return;
  State& state = internal::currentState("a ready text");
  state.ledger.drop(state, handle_);
}

zel::REALstring ReadyText::handle() {
  if (handle_ == nullptr)
    handle_ = internal::newString(internal::currentState("a ready text"), text_, internal::kUtf8);
  return handle_;
}

PreparedCall::PreparedCall(PluginFunction function, const Declaration& declaration, bool ofInstance)
    : plan_(std::make_unique<Plan>(Plan{function, ofInstance})) {
  if (declaration.parameters.size() > kMostParameters)
    throw std::invalid_argument("too many parameters: " + declaration.name);
  ffi_type** type = plan_->types.data();
  if (ofInstance) *type++ = &ffi_type_pointer;
  for (const Parameter& parameter : declaration.parameters) {
    const TypeRules& rules = internal::rulesOf(parameter.type);
    plan_->parameters[plan_->parameterCount++] = &rules;
    *type++ = rules.passing;
  }
  if (declaration.result) plan_->result = &internal::rulesOf(*declaration.result);
  ffi_type* const result = plan_->result == nullptr ? &ffi_type_void : plan_->result->passing;
  const auto count = static_cast<unsigned>(type - plan_->types.data());
  if (ffi_prep_cif(&plan_->cif, FFI_DEFAULT_ABI, count, result, plan_->types.data()) != FFI_OK)
    throw std::logic_error("libffi refuses the call of " + declaration.name);
}

PreparedCall::~PreparedCall() = default;

Value PreparedCall::run(zel::REALobject instance, const Value* arguments, ReadyTexts ready) const {
  State& state = internal::currentState("a call");
  Passing passing(state);
  if (plan_->ofInstance) passing.addHandle(instance);
  for (std::size_t i = 0; i < plan_->parameterCount; ++i) {
    if (i < ready.size() && ready[i] != nullptr) {
      passing.addHandle(ready[i]->handle());
      continue;
    }
    const TypeRules& rules = *plan_->parameters[i];
    const Slot slot = rules.pack(state, arguments[i]);
    rules.passing == &ffi_type_pointer ? passing.addOwned(slot) : passing.add(slot);
  }
  Slot returned{};
  // Nothing here has a destructor: native exceptions may pass.
  state.options.border.in([plan = plan_.get(), &returned, &passing] {
    ffi_call(&plan->cif, plan->function, &returned, passing.addresses.data());
  });
  return plan_->result == nullptr ? Value() : plan_->result->unpack(state, returned);
}

}  // namespace host
