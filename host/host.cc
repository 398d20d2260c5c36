#include "host/host.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ostream>
#include <stdexcept>
#include <utility>

#include "host/internal/built_in_classes.h"
#include "host/internal/encodings.h"
#include "host/internal/entry_points.h"
#include "host/internal/exceptions.h"
#include "host/internal/methods.h"
#include "host/internal/passing.h"
#include "host/internal/properties.h"
#include "host/internal/state.h"

namespace host {

using namespace internal;  // NOLINT(google-build-using-namespace): what this class is made of

namespace {

State* current = nullptr;

void* resolve(const char* name) {
  State& state = currentState("the resolver");
  if (name == nullptr) {
    state.failures.report("the resolver was given no name");
    return nullptr;
  }
  const std::string_view asked = name;
  if (!state.control.lookUp(asked)) return nullptr;
  if (asked == "REALGetRBVersion" && !state.options.version) return nullptr;
  return outward(state, findEntryPoint(asked));
}

std::shared_ptr<HostClass> classNamed(const State& state, const std::string& name) {
  std::shared_ptr<HostClass> found = state.classes.find(name);
  if (found == nullptr) throw std::invalid_argument("the host has no class \"" + name + "\"");
  return found;
}

// Runs a call; what it raises belongs to its outcome.
template <class Call>
Outcome outcomeOf(State& state, Call&& call) {
  const std::size_t before = state.pending.size();
  Outcome outcome;
  outcome.value = call();
  std::vector<Raised> raised = takePending(state, before);
  outcome.raisedCount = static_cast<int>(raised.size());
  if (!raised.empty()) outcome.raised = std::move(raised.front());
  return outcome;
}

}  // namespace

namespace internal {

State::State(HostOptions hostOptions)
    : options(hostOptions), control(entryPointNames(), hostOptions.keepSequence) {
  addBuiltInClasses(classes);
}

State& currentState(std::string_view who) {
  if (current == nullptr) {
    std::fprintf(stderr, "%s was used while there is no host\n", std::string(who).c_str());
    std::abort();
  }
  return *current;
}

}  // namespace internal

Host::Host(HostOptions options) {
  if (current != nullptr) throw std::logic_error("there is a host already");
  state_ = std::make_unique<State>(options);
  current = state_.get();
}

Host::~Host() { current = nullptr; }

zel::Resolver Host::resolver() { return resolve; }

void Host::load(PluginMain pluginMain) {
  state_->options.border.in([pluginMain] { pluginMain(resolver()); });
}

std::optional<std::int32_t> Host::announcedVersion() const { return state_->announcedVersion; }

std::optional<double> Host::version() const { return state_->options.version; }

std::vector<std::string> Host::classNames() const { return state_->classes.names(); }

const RegisteredClass* Host::findClass(std::string_view name) const {
  const std::shared_ptr<HostClass> found = state_->classes.find(name);
  return found == nullptr ? nullptr : &found->description;
}

ObjectRef Host::make(const std::string& className) {
  return ObjectRef::adopt(newObject(*state_, classNamed(*state_, className)).object());
}

ObjectRef Host::construct(const std::string& className, const std::vector<Value>& arguments) {
  ObjectRef object = make(className);
  const HostClass& hostClass = thingOf<HostObject>(*state_, object).hostClass();
  callMethod(*state_, {hostClass, object.handle()}, "Constructor", arguments);
  return object;
}

Outcome Host::call(const ObjectRef& object, const std::string& method,
                   const std::vector<Value>& arguments) {
  const HostClass& hostClass = thingOf<HostObject>(*state_, object).hostClass();
  return outcomeOf(*state_, [&] {
    return callMethod(*state_, {hostClass, object.handle()}, method, arguments);
  });
}

Outcome Host::callShared(const std::string& className, const std::string& method,
                         const std::vector<Value>& arguments) {
  const std::shared_ptr<HostClass> hostClass = classNamed(*state_, className);
  return outcomeOf(*state_, [&] { return callMethod(*state_, {*hostClass}, method, arguments); });
}

Outcome Host::assign(const ObjectRef& object, const std::string& getter,
                     const std::vector<Value>& arguments, const Value& value) {
  const HostClass& hostClass = thingOf<HostObject>(*state_, object).hostClass();
  return outcomeOf(*state_, [&] {
    assignToMethod(*state_, {hostClass, object.handle()}, getter, arguments, value);
    return Value();
  });
}

bool Host::assignable(const std::string& className, const std::string& getter) const {
  return host::assignable(*classNamed(*state_, className), getter);
}

zel::REALstring Host::string(std::string_view bytes, std::uint32_t encoding) {
  return newString(*state_, bytes, encoding);
}

std::string Host::bytes(zel::REALstring string) const {
  if (string == nullptr) return "";
  const auto* const found = state_->ledger.find<HostString>(string, "Host::bytes");
  return found == nullptr ? "" : std::string(found->bytes());
}

std::uint32_t Host::encoding(zel::REALstring string) const {
  if (string == nullptr) return zel::kNoEncoding;
  const auto* const found = state_->ledger.find<HostString>(string, "Host::encoding");
  return found == nullptr ? zel::kNoEncoding : found->encoding;
}

long Host::references(zel::REALstring string) const { return state_->ledger.references(string); }

long Host::references(zel::REALobject object) const { return state_->ledger.references(object); }

void Host::unlock(zel::REALstring string) {
  if (auto* const found = state_->ledger.find<HostString>(string, "Host::unlock"))
    state_->ledger.dropReference(*state_, *found, "Host::unlock");
}

const RegisteredClass* Host::classOf(const ObjectRef& object) const {
  const auto* const found = state_->ledger.peek<HostObject>(object.handle());
  return found == nullptr ? nullptr : &found->hostClass().description;
}

Value Host::property(const ObjectRef& object, const std::string& name) const {
  return readProperty(*state_, thingOf<HostObject>(*state_, object), name);
}

void Host::setProperty(const ObjectRef& object, const std::string& name, const Value& value) {
  writeProperty(*state_, thingOf<HostObject>(*state_, object), name, value);
}

void Host::hide(const std::string& entryPoint) { state_->control.hide(entryPoint); }

void Host::hideFirst(const std::string& entryPoint, int lookups) {
  state_->control.hideFirst(entryPoint, lookups);
}

void Host::unhide(const std::string& entryPoint) { state_->control.unhide(entryPoint); }

void Host::answerNull(const std::string& entryPoint, int nthCall) {
  state_->control.answerNull(entryPoint, nthCall);
}

void Host::answerAgain(const std::string& entryPoint) { state_->control.answerAgain(entryPoint); }

int Host::lookups(const std::string& entryPoint) const {
  return state_->control.lookups(entryPoint);
}

int Host::calls(const std::string& entryPoint) const { return state_->control.calls(entryPoint); }

const std::vector<std::string>& Host::sequence() const { return state_->control.sequence(); }

void Host::clearRecords() { state_->control.clearRecords(); }

void Host::onCall(std::function<void(std::string_view)> observer) {
  state_->control.onCall(std::move(observer));
}

void Host::addClass(const std::string& name, const std::string& superName, std::int32_t dataSize) {
  const auto added = std::make_shared<HostClass>();
  added->description.name = name;
  added->description.superName = superName;
  added->description.dataSize = dataSize;
  if (!superName.empty()) added->super = classNamed(*state_, superName);
  if (!state_->classes.add(added))
    throw std::invalid_argument("the host has a class \"" + name + "\" already");
}

void Host::addProperty(const std::string& className, const std::string& declaration) {
  classNamed(*state_, className)->properties.push_back(parseProperty(declaration));
}

void Host::addMethod(const std::string& className, const std::string& declaration,
                     PluginFunction function, PluginFunction setter) {
  classNamed(*state_, className)
      ->description.methods.push_back(
          {declaration, parseDeclaration(declaration), function, setter, 0});
}

void Host::setDestructor(const std::string& className, PluginFunction destructor) {
  classNamed(*state_, className)->description.destructor = destructor;
}

void Host::removeClass(const std::string& name) {
  classNamed(*state_, name);
  state_->classes.remove(name);
}

std::vector<Raised> Host::takePending() { return host::takePending(*state_, 0); }

std::vector<ObjectRef> Host::takePendingObjects() {
  std::vector<ObjectRef> raised;
  for (const zel::REALobject exception : std::exchange(state_->pending, {}))
    raised.push_back(ObjectRef::adopt(exception));
  return raised;
}

bool Host::hasPending() const { return !state_->pending.empty(); }

std::string Host::unbalanced() const { return state_->ledger.unbalanced(); }

void Host::onFailure(std::function<void(const std::string&)> handler) {
  state_->failures.onFailure(std::move(handler));
}

}  // namespace host
