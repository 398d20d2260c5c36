#include "runner/run/plugin_call.h"

#include <stdexcept>

#include "host/internal/variants.h"

namespace runner {

using host::internal::rulesOf;
using host::internal::Slot;

namespace {

bool isVariant(const host::Type& type) {
  return !type.array && host::sameName(type.name, "variant");
}

}  // namespace

// The arguments while a call lasts; the references among them are given back on every way out.
struct PluginCall::Passing {
  explicit Passing(host::internal::State& itsState) : state(itsState) {}
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
  void addOwned(const Slot& slot) {
    add(slot);
    owned[ownedCount++] = slot.handle;
  }

  host::internal::State& state;
  std::array<Slot, kMostParameters + 1> slots;
  std::array<void*, kMostParameters + 1> addresses;
  std::array<void*, kMostParameters> owned;
  std::size_t count = 0;
  std::size_t ownedCount = 0;
};

ReadyText::~ReadyText() {
  if (handle_ != nullptr) host_->unlock(handle_);
}

zel::REALstring ReadyText::handle(Machine& machine) {
  if (handle_ == nullptr) {
    host_ = &machine.host();
    handle_ = host_->string(text_);
  }
  return handle_;
}

PluginCall::PluginCall(host::PluginFunction function, const host::Declaration& declaration,
                       bool ofInstance)
    : function_(function), ofInstance_(ofInstance) {
  if (declaration.parameters.size() > kMostParameters)
    throw std::invalid_argument("too many parameters: " + declaration.name);
  if (ofInstance) types_.push_back(&ffi_type_pointer);
  for (const host::Parameter& parameter : declaration.parameters) {
    parameters_.push_back({&rulesOf(parameter.type), isVariant(parameter.type)});
    types_.push_back(parameters_.back().rules->passing);
  }
  if (declaration.result) result_ = &rulesOf(*declaration.result);
  ffi_type* const resultType = result_ == nullptr ? &ffi_type_void : result_->passing;
  if (ffi_prep_cif(&cif_, FFI_DEFAULT_ABI, static_cast<unsigned>(types_.size()), resultType,
                   types_.data()) != FFI_OK)
    throw std::logic_error("libffi refuses the call of " + declaration.name);
}

Value PluginCall::run(Machine& machine, const Value& self, const Value* arguments,
                      const ReadyTexts& ready) const {
  host::internal::State& state = machine.state();
  Passing passing(state);
  Slot slot{};
  if (ofInstance_) {
    slot.handle = std::get<ObjectRef>(self).handle();
    passing.add(slot);
  }
  for (std::size_t i = 0; i < parameters_.size(); ++i) {
    const Parameter& parameter = parameters_[i];
    if (ready[i] != nullptr) {
      slot.handle = ready[i]->handle(machine);
      passing.add(slot);
      continue;
    }
    if (parameter.variant) {
      slot.handle = host::internal::box(state, arguments[i]);
    } else {
      slot = parameter.rules->pack(state, arguments[i]);
    }
    const bool owned = parameter.rules->passing == &ffi_type_pointer;
    owned ? passing.addOwned(slot) : passing.add(slot);
  }
  Slot returned{};
  // Nothing here has a destructor: native exceptions may pass.
  state.options.border.in([this, &returned, &passing] {
    ffi_call(const_cast<ffi_cif*>(&cif_), function_, &returned, passing.addresses.data());
  });
  Value result =
      result_ == nullptr ? Value() : machine.host().valueOf(result_->unpack(state, returned));
  machine.countCall();
  machine.raisePending();
  return result;
}

}  // namespace runner
