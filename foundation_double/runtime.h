// The runtime under the double's classes: selectors, classes and the look-up of methods.
//
// To add a class: describe it with a ClassDefinition in a unit of its own, declare the function
// that gives the description in classes.h and list it there. Method bodies are plain functions
// R f(zel::id self, zel::SEL selector, arguments...).
#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "foundation_double/accounts.h"

namespace zel {
/// A selector is its name, kept once for the whole process.
struct Selector {
  std::string name;
};
}  // namespace zel

namespace foundation_double::objc {

/// A method's body with its type erased.
using Implementation = void (*)();

struct Method {
  const char* selector;
  Implementation implementation;
};

/// A line of a class's method table.
template <class R, class... Arguments>
Method method(const char* selector, R (*function)(zel::id, zel::SEL, Arguments...)) {
  return {selector, reinterpret_cast<Implementation>(function)};
}

struct ClassDefinition {
  const char* name;
  const char* superName = "NSObject";
  std::unique_ptr<Body> (*makeBody)() = nullptr;  // for alloc; null: as the super class does
  bool storable = false;                          // whether the defaults store takes instances
  std::vector<Method> methods = {};
  std::vector<Method> classMethods = {};
};

using Methods = std::map<zel::SEL, Implementation>;

/// A class or a metaclass. A class is an object too: its isa is the metaclass, where its class
/// methods stand. Never freed.
struct ClassRecord : Instance {
  ClassRecord* superClass = nullptr;
  std::string name;
  std::unique_ptr<Body> (*makeBody)() = nullptr;
  bool storable = false;
  bool meta = false;
  bool temporary = false;  // added by a test
  bool defined = true;     // false: a temporary class after the end of its test
  bool nameless = false;   // by a test, of a metaclass: its class has no name
  Methods methods;
  Methods addedMethods;                        // by a test; these win
  std::map<zel::SEL, std::string> addedTypes;  // of those that class_addMethod has added
  std::set<zel::SEL> hidden;                   // by a test; inherited methods are hidden too
};

class Runtime {
 public:
  static Runtime& shared();

  /// Undoes what tests have defined and hidden.
  void reset();

  zel::SEL selector(std::string_view name);

  /// The class of that name, or null.
  ClassRecord* find(std::string_view name);
  /// The class of that name; there not being one is misuse.
  ClassRecord& require(std::string_view name);
  ClassRecord& addClass(const std::string& name, const std::string& superName);

 private:
  Runtime();
  ClassRecord& define(const ClassDefinition& definition);
  ClassRecord& make(const std::string& name, ClassRecord* superClass);

  std::map<std::string, std::unique_ptr<zel::Selector>, std::less<>> selectors_;
  std::map<std::string, ClassRecord*, std::less<>> classes_;
  std::vector<std::unique_ptr<ClassRecord>> records_;  // metaclasses too
};

/// The method that the receiver answers the message with, or null.
Implementation findMethod(const Instance& receiver, zel::SEL selector);
/// The same for objects of the class.
Implementation findMethod(const ClassRecord& isa, zel::SEL selector);
/// Whether the object is of that class or of a subclass.
bool isKindOf(const Instance& object, const ClassRecord& wanted);
/// Whether the defaults store takes the object.
bool isStorable(const Instance& object);
/// "-[NSString length]"; "+[...]" for a class object.
std::string messageText(const Instance& receiver, zel::SEL selector);

inline ClassRecord& classRecord(const void* classObject) {
  return static_cast<ClassRecord&>(*instance(classObject));
}

/// A new, empty object of the class with one reference for the caller.
zel::id createInstance(ClassRecord& isa);

/// A new object of the named class with one reference for the caller.
template <class Handle = zel::id>
Handle createObject(std::string_view className, std::unique_ptr<Body> body) {
  return handle<Handle>(
      Accounts::shared().create(Runtime::shared().require(className), std::move(body)));
}

}  // namespace foundation_double::objc
