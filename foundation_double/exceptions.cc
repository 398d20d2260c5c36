#include "foundation_double/exceptions.h"

#include "foundation_double/classes.h"
#include "foundation_double/faults.h"
#include "foundation_double/strings.h"
#include "native/exceptions.h"

namespace foundation_double::objc {
namespace {

struct ExceptionBody : Body {
  Held name;  // strings
  Held reason;
  Held userInfo;

  [[nodiscard]] std::optional<std::u16string> text() const override {
    const Held& shown = reason.get() == nullptr ? name : reason;
    if (shown.get() == nullptr) return std::nullopt;
    return stringBody(shown.get()).units;
  }
};

ExceptionBody& exceptionBody(const void* exception) {
  return bodyOf<ExceptionBody>(exception, "exception");
}

Held heldString(const std::optional<std::string>& utf8) {
  return utf8 ? kept(createString(fromUtf8(*utf8))) : Held();
}

template <Held ExceptionBody::*Part>
zel::id get(zel::id self, zel::SEL /*selector*/) {
  return (exceptionBody(self).*Part).get();
}

zel::id initWithName(zel::id self, zel::SEL /*selector*/, zel::id name, zel::id reason,
                     zel::id userInfo) {
  ExceptionBody& body = exceptionBody(self);
  body.name = Held(name);
  body.reason = Held(reason);
  body.userInfo = Held(userInfo);
  return self;
}

zel::id exceptionWithName(zel::id self, zel::SEL selector, zel::id name, zel::id reason,
                          zel::id userInfo) {
  const zel::id made = createInstance(classRecord(self));
  return pooled(initWithName(made, selector, name, reason, userInfo));
}

void raiseSelf(zel::id self, zel::SEL /*selector*/) { throw NativeException{self}; }

}  // namespace

ClassDefinition exceptionClass() {
  return {
      .name = "NSException",
      .makeBody = []() -> std::unique_ptr<Body> { return std::make_unique<ExceptionBody>(); },
      .methods = {method("initWithName:reason:userInfo:", &initWithName),
                  method("name", &get<&ExceptionBody::name>),
                  method("reason", &get<&ExceptionBody::reason>),
                  method("userInfo", &get<&ExceptionBody::userInfo>), method("raise", &raiseSelf)},
      .classMethods = {method("exceptionWithName:reason:userInfo:", &exceptionWithName)}};
}

zel::id createException(const std::string& className, const std::optional<std::string>& name,
                        const std::optional<std::string>& reason, zel::id userInfo) {
  auto body = std::make_unique<ExceptionBody>();
  body->name = heldString(name);
  body->reason = heldString(reason);
  body->userInfo = Held(userInfo);
  return createObject(className, std::move(body));
}

void raise(const std::string& name, const std::string& reason) {
  throw NativeException{pooled(createException("NSException", name, reason, nullptr))};
}

}  // namespace foundation_double::objc

namespace zel {

using foundation_double::objc::Faults;
using foundation_double::objc::misuseWithoutAnswer;
using foundation_double::objc::NativeException;

Object* zelCatch(void (*body)(void*), void* context) {
  Faults::shared().announceCatching();
  try {
    body(context);
  } catch (const NativeException& thrown) {
    return thrown.object;
  }
  return nullptr;
}

void zelFinally(void (*body)(void*), void (*cleanup)(void*), void* context) {
  try {
    body(context);
  } catch (...) {
    cleanup(context);
    throw;
  }
  cleanup(context);
}

void objc_exception_throw(Object* exception) {
  if (exception == nullptr) misuseWithoutAnswer("nil thrown as an exception");
  throw NativeException{exception};
}

}  // namespace zel
