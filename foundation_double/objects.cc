// NSObject: what every object and every class object answers.

#include "foundation_double/classes.h"
#include "foundation_double/exceptions.h"
#include "foundation_double/strings.h"

namespace foundation_double::objc {
namespace {

zel::id alloc(zel::id self, zel::SEL /*selector*/) { return createInstance(classRecord(self)); }

zel::id init(zel::id self, zel::SEL /*selector*/) { return self; }

zel::Class* classOfObject(zel::id self, zel::SEL /*selector*/) {
  return handle<zel::Class*>(instance(self)->isa);
}

zel::id classOfClass(zel::id self, zel::SEL /*selector*/) { return self; }

zel::id retain(zel::id self, zel::SEL /*selector*/) {
  Accounts::shared().retain(*instance(self));
  return self;
}

void release(zel::id self, zel::SEL /*selector*/) { Accounts::shared().release(*instance(self)); }

zel::id autorelease(zel::id self, zel::SEL /*selector*/) { return pooled(self); }

long retainCount(zel::id self, zel::SEL /*selector*/) { return instance(self)->count; }

zel::BOOL respondsToSelector(zel::id self, zel::SEL /*selector*/, zel::SEL asked) {
  return findMethod(*instance(self), asked) != nullptr;
}

zel::BOOL isKindOfClass(zel::id self, zel::SEL /*selector*/, zel::Class* wanted) {
  return wanted != nullptr && isKindOf(*instance(self), classRecord(wanted));
}

zel::CFStringRef description(zel::id self, zel::SEL /*selector*/) {
  const Instance& object = *instance(self);
  const auto text = object.body == nullptr ? std::nullopt : object.body->text();
  if (text) return pooled(createString(*text));
  return pooled(createString(fromUtf8("<" + object.isa->name + ": " + addressText(&object) + ">")));
}

}  // namespace

ClassDefinition objectClass() {
  return {
      .name = "NSObject",
      .superName = nullptr,
      .methods = {method("init", &init), method("class", &classOfObject), method("retain", &retain),
                  method("release", &release), method("autorelease", &autorelease),
                  method("retainCount", &retainCount),
                  method("respondsToSelector:", &respondsToSelector),
                  method("isKindOfClass:", &isKindOfClass), method("description", &description)},
      .classMethods = {method("alloc", &alloc), method("class", &classOfClass)}};
}

}  // namespace foundation_double::objc
