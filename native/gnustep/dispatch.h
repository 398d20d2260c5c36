// How a message reaches its method in the GNU runtime: a look-up and a call. The portable test
// build's Foundation double answers the same functions.
#pragma once

namespace zel {

struct Object;
struct Class;
struct Selector;
using SEL = const Selector*;

/// Foundation's boolean, one byte, passed on unchanged and never normalised.
using BOOL = unsigned char;

extern "C" {
/// The registered selector of that name. @param name NUL-terminated, never null.
SEL sel_registerName(const char* name);
/// The method that the receiver answers this message with; never null. May raise.
void (*objc_msg_lookup(void* receiver, SEL selector))();
/// The class of that name, not owned, or null.
Class* objc_lookUpClass(const char* name);
/// The super class, not owned, or null for a class without one.
Class* class_getSuperclass(Class* subclass);
/// What objects of the class answer the message with: a function that is only ever compared, not
/// called. It's the same for classes that inherit it. @param owner not nil.
void (*class_getMethodImplementation(Class* owner, SEL selector))();
/// The name of the object's class; of a class, its own name. Not owned. @param object not nil.
const char* object_getClassName(void* object);
}

inline Class* lookUpClass(const char* name) { return objc_lookUpClass(name); }

/// The object's class, not owned: every object begins with it. @param object not nil.
inline Class* classOf(Object* object) { return *reinterpret_cast<Class**>(object); }

/// A method as the function that it is.
template <class R, class... Arguments>
using Method = R (*)(void*, SEL, Arguments...);

/// The method that answers the message. @param receiver not nil.
template <class R, class... Arguments>
inline Method<R, Arguments...> methodOf(void* receiver, SEL selector) {
  return reinterpret_cast<Method<R, Arguments...>>(objc_msg_lookup(receiver, selector));
}

}  // namespace zel
