// The Objective-C runtime as C++ sees it: messages, classes and reference counts.
//
// Everything here works on nil: a message to nil does nothing and yields R{}. A message can be left
// by a native exception; exceptions.h has the two shapes that may stand around one.
#pragma once

#include <cstddef>
#include <cstdint>

#include "native/dispatch.h"

namespace zel {

/// Foundation's integer: as wide as a pointer on every target.
using NSInteger = std::intptr_t;

/// Any native object; nullable unless a declaration says otherwise.
using id = Object*;

// Opaque Foundation classes. Strings, URLs and dictionaries are toll-free: see corefoundation.h.
struct NSUserDefaults;
struct NSException;

/// The text of a selector or class name as a template argument.
template <std::size_t Size>
struct Name {
  // NOLINTNEXTLINE(google-explicit-constructor): a literal is to become a Name by itself.
  consteval Name(const char (&literal)[Size]) {
    for (std::size_t i = 0; i < Size; ++i) text[i] = literal[i];
  }
  char text[Size] = {};
};

/// The registered selector of that name; registered at its first use, once for each name.
template <Name Text>
inline SEL selector() {
  static SEL registered = nullptr;
  if (registered == nullptr) registered = sel_registerName(Text.text);
  return registered;
}

/// Sends a message and gives back its reply. The arguments go out with exactly the types they have
/// here, so they must be the method's own: nothing is promoted or converted.
/// @param receiver an object, or a class for a class message; nil yields R{}.
template <class R, Name Text, class Receiver, class... Arguments>
inline R send(Receiver* receiver, Arguments... arguments) {
  if (receiver == nullptr) return R();
  void* const self = const_cast<void*>(static_cast<const void*>(receiver));
  const SEL name = selector<Text>();
  return methodOf<R, Arguments...>(self, name)(self, name, arguments...);
}

/// One message to one receiver, for a loop: its method is looked up once where the runtime tells
/// it. The arguments go out as they do from send.
template <class R, Name Text, class... Arguments>
class Repeated {
 public:
  /// @param receiver not owned; nil yields R{} each time.
  template <class Receiver>
  explicit Repeated(Receiver* receiver)
      : receiver_(const_cast<void*>(static_cast<const void*>(receiver))),
        method_(receiver == nullptr ? toNil : methodOf<R, Arguments...>(receiver_, name_)) {}

  /// Sends the message and gives back its reply.
  R operator()(Arguments... arguments) const { return method_(receiver_, name_, arguments...); }

 private:
  static R toNil(void* /*nil*/, SEL /*selector*/, Arguments... /*arguments*/) { return R(); }

  void* receiver_;
  SEL name_ = selector<Text>();
  Method<R, Arguments...> method_;
};

/// The class of that name, not owned; null while nobody has defined it. A class that was found once
/// is remembered: classes live as long as the process.
template <Name Text>
inline Class* classNamed() {
  static Class* found = nullptr;
  if (found == nullptr) found = lookUpClass(Text.text);
  return found;
}

/// Whether the receiver (an object or a class) answers the message; false for nil.
template <Name Text, class Receiver>
inline bool respondsTo(Receiver* receiver) {
  return send<BOOL, "respondsToSelector:">(receiver, selector<Text>()) != 0;
}

/// Whether the object is of that class or of a subclass; false for nil. The class is one of
/// Foundation's own, which is always there.
template <Name ClassName, class Receiver>
inline bool isKindOf(Receiver* object) {
  return send<BOOL, "isKindOfClass:">(object, classNamed<ClassName>()) != 0;
}

/// The same without a message, by the runtime alone: for objects that may answer none.
/// @param object not nil.
template <Name ClassName>
inline bool isInstanceOf(Object* object) {
  Class* const wanted = classNamed<ClassName>();
  Class* level = classOf(object);
  while (level != nullptr && level != wanted) level = class_getSuperclass(level);
  return level != nullptr;
}

/// Whether objects of the class answer the message with NSObject's own method. @param owner not
/// nil.
template <Name Text>
inline bool inheritsFromRoot(Class* owner) {
  return class_getMethodImplementation(owner, selector<Text>()) ==
         class_getMethodImplementation(classNamed<"NSObject">(), selector<Text>());
}

/// Adds a reference, which the caller owns from here on.
template <class Native>
[[nodiscard]] inline Native* retained(Native* object) {
  send<id, "retain">(object);
  return object;
}

/// Hands the caller's reference to the current autorelease pool; the object stays usable until the
/// pool drains.
template <class Native>
inline Native* autoreleased(Native* object) {
  send<id, "autorelease">(object);
  return object;
}

/// Gives up a reference that the caller owns.
template <class Native>
inline void release(Native* object) {
  send<void, "release">(object);
}

}  // namespace zel
