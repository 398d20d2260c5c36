#include "foundation_double/runtime.h"

#include "foundation_double/classes.h"
#include "foundation_double/exceptions.h"
#include "native/methods.h"

namespace foundation_double::objc {
namespace {

/// What a message to a dead object reaches once the failure handler has returned.
std::intptr_t answerNothing(zel::id /*self*/, zel::SEL /*selector*/) { return 0; }

Implementation reportDeadReceiver(const std::string& text) {
  misuse(text);
  return reinterpret_cast<Implementation>(&answerNothing);
}

bool isClassObject(const Instance& object) { return object.isa->meta; }

[[noreturn]] void raiseUnrecognized(const Instance& receiver, zel::SEL selector) {
  raise("NSInvalidArgumentException",
        messageText(receiver, selector) + ": unrecognized selector sent to " +
            (isClassObject(receiver) ? "class " : "instance ") + addressText(&receiver));
}

}  // namespace

Runtime& Runtime::shared() {
  static auto* const runtime = new Runtime;  // outlives every static object that might use it
  return *runtime;
}

Runtime::Runtime() {
  for (const auto& definition : kClasses) define(definition());
}

void Runtime::reset() {
  for (const auto& record : records_) {
    record->addedMethods.clear();
    record->addedTypes.clear();
    record->hidden.clear();
    record->nameless = false;
    record->defined = !record->temporary;
  }
}

zel::SEL Runtime::selector(std::string_view name) {
  const auto known = selectors_.find(name);
  if (known != selectors_.end()) return known->second.get();
  auto made = std::make_unique<zel::Selector>(zel::Selector{std::string(name)});
  return selectors_.emplace(name, std::move(made)).first->second.get();
}

ClassRecord* Runtime::find(std::string_view name) {
  const auto known = classes_.find(name);
  return known == classes_.end() || !known->second->defined ? nullptr : known->second;
}

ClassRecord& Runtime::require(std::string_view name) {
  ClassRecord* const found = find(name);
  if (found == nullptr) misuseWithoutAnswer("no class named " + std::string(name));
  return *found;
}

/// A class with its metaclass, as yet without methods.
ClassRecord& Runtime::make(const std::string& name, ClassRecord* superClass) {
  ClassRecord& meta = *records_.emplace_back(std::make_unique<ClassRecord>());
  ClassRecord& made = *records_.emplace_back(std::make_unique<ClassRecord>());
  made.isa = &meta;
  made.superClass = superClass;
  meta.meta = true;
  // The root class answers class messages with its instance methods too.
  meta.superClass = superClass == nullptr ? &made : superClass->isa;
  meta.name = made.name = name;
  Accounts::shared().makeImmortal(made);
  classes_.emplace(name, &made);
  return made;
}

ClassRecord& Runtime::define(const ClassDefinition& definition) {
  const bool root = definition.superName == nullptr;
  ClassRecord& made = make(definition.name, root ? nullptr : &require(definition.superName));
  made.makeBody = definition.makeBody;
  made.storable = definition.storable;
  for (const Method& line : definition.methods) {
    made.methods.emplace(selector(line.selector), line.implementation);
  }
  for (const Method& line : definition.classMethods) {
    made.isa->methods.emplace(selector(line.selector), line.implementation);
  }
  return made;
}

ClassRecord& Runtime::addClass(const std::string& name, const std::string& superName) {
  ClassRecord& superClass = require(superName);
  if (find(name) != nullptr) misuseWithoutAnswer("there is a class " + name + " already");
  const auto earlier = classes_.find(name);
  ClassRecord& added = earlier == classes_.end() ? make(name, &superClass) : *earlier->second;
  added.superClass = &superClass;
  added.isa->superClass = superClass.isa;
  for (ClassRecord* const record : {&added, added.isa}) {
    record->temporary = true;
    record->defined = true;
  }
  return added;
}

Implementation findMethod(const ClassRecord& isa, zel::SEL selector) {
  for (const ClassRecord* level = &isa; level != nullptr; level = level->superClass) {
    const auto added = level->addedMethods.find(selector);
    if (added != level->addedMethods.end()) return added->second;
    if (level->hidden.count(selector) != 0) return nullptr;
    const auto method = level->methods.find(selector);
    if (method != level->methods.end()) return method->second;
  }
  return nullptr;
}

Implementation findMethod(const Instance& receiver, zel::SEL selector) {
  return findMethod(*receiver.isa, selector);
}

bool isKindOf(const Instance& object, const ClassRecord& wanted) {
  const ClassRecord* level = object.isa;
  while (level != nullptr && level != &wanted) level = level->superClass;
  return level != nullptr;
}

bool isStorable(const Instance& object) {
  const ClassRecord* level = object.isa;
  while (level != nullptr && !level->storable) level = level->superClass;
  return level != nullptr;
}

zel::id createInstance(ClassRecord& isa) {
  const ClassRecord* maker = &isa;
  while (maker != nullptr && maker->makeBody == nullptr) maker = maker->superClass;
  return handle(Accounts::shared().create(isa, maker == nullptr ? nullptr : maker->makeBody()));
}

std::string messageText(const Instance& receiver, zel::SEL selector) {
  return (isClassObject(receiver) ? "+[" : "-[") + receiver.isa->name + " " + selector->name + "]";
}

}  // namespace foundation_double::objc

namespace zel {

using foundation_double::objc::Accounts;
using foundation_double::objc::Faults;
using foundation_double::objc::Instance;
using foundation_double::objc::Records;
using foundation_double::objc::Runtime;

SEL sel_registerName(const char* name) { return Runtime::shared().selector(name); }

Class* objc_lookUpClass(const char* name) {
  return foundation_double::objc::handle<Class*>(Runtime::shared().find(name));
}

Class* class_getSuperclass(Class* subclass) {
  return foundation_double::objc::handle<Class*>(
      foundation_double::objc::classRecord(subclass).superClass);
}

void (*class_getMethodImplementation(Class* owner, SEL selector))() {
  return findMethod(foundation_double::objc::classRecord(owner), selector);
}

Class* objc_getMetaClass(const char* className) {
  const foundation_double::objc::ClassRecord* const found = Runtime::shared().find(className);
  return found == nullptr ? nullptr : foundation_double::objc::handle<Class*>(found->isa);
}

BOOL class_addMethod(Class* owner, SEL selector, void (*implementation)(), const char* types) {
  if (!Faults::shared().countCall("class_addMethod") || owner == nullptr) return 0;
  foundation_double::objc::ClassRecord& record = foundation_double::objc::classRecord(owner);
  const bool hidden = record.hidden.count(selector) != 0;
  if (!hidden && record.methods.count(selector) != 0) return 0;
  if (!record.addedMethods.emplace(selector, implementation).second) return 0;
  record.addedTypes[selector] = types;
  return 1;
}

const char* object_getClassName(void* object) {
  const Instance* const found = Accounts::shared().find(object);
  if (found == nullptr || found->dead) {
    foundation_double::objc::misuseWithoutAnswer("the class name of what is no live object");
  }
  return found->isa->nameless ? nullptr : found->isa->name.c_str();
}

void (*objc_msg_lookup(void* receiver, SEL selector))() {
  Instance* const object = Accounts::shared().find(receiver);
  if (object == nullptr) {
    return foundation_double::objc::reportDeadReceiver(selector->name +
                                                       " sent to what is no object");
  }
  const std::string message = messageText(*object, selector);
  Records::shared().addMessage(message);
  if (object->dead)
    return foundation_double::objc::reportDeadReceiver(message + " sent to a dead object");
  if (!object->isa->defined) {
    return foundation_double::objc::reportDeadReceiver(message + " sent to a class that is gone");
  }
  Faults::shared().countMessage(*object, selector);
  const auto method = findMethod(*object, selector);
  if (method == nullptr) foundation_double::objc::raiseUnrecognized(*object, selector);
  return method;
}

}  // namespace zel
