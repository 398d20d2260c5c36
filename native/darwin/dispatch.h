// How a message reaches its method on macOS: the messenger calls it. Which messenger depends on
// where the processor's calling convention returns the result.
#pragma once

#include <cstddef>
#include <type_traits>

namespace zel {

struct Object;
struct Class;
struct Selector;
using SEL = const Selector*;

/// Foundation's boolean, one byte.
#if defined(__arm64__)
using BOOL = bool;  // C's own: whatever isn't 0 becomes 1
#else
using BOOL = signed char;  // passed on unchanged and never normalised
#endif

extern "C" {
/// The registered selector of that name. @param name NUL-terminated, never null.
SEL sel_registerName(const char* name);
/// The class of that name, not owned, or null.
Class* objc_getClass(const char* name);
/// The object's class, not owned. @param object not nil.
Class* object_getClass(void* object);
/// The super class, not owned, or null for a class without one.
Class* class_getSuperclass(Class* subclass);
/// What objects of the class answer the message with: a function that is only ever compared, not
/// called. It's the same for classes that inherit it. @param owner not nil.
void (*class_getMethodImplementation(Class* owner, SEL selector))();
/// The name of the object's class; of a class, its own name. Not owned. @param object not nil.
const char* object_getClassName(void* object);

// The messengers. They are called as the method itself, never through this type.
using Messenger = void();
/// For every result that the others don't serve.
Messenger objc_msgSend;
#if !defined(__arm64__)
/// For structures that are written through an address that the caller passes.
Messenger objc_msgSend_stret;
#endif
#if defined(__i386__)
/// For floating-point results, which come back on a stack of their own.
Messenger objc_msgSend_fpret;
#endif
}

inline Class* lookUpClass(const char* name) { return objc_getClass(name); }

/// The object's class, not owned. @param object not nil.
inline Class* classOf(Object* object) { return object_getClass(object); }

// Which messenger sends for a method that returns a number with a fraction, or a structure of so
// many bytes.
#if defined(__i386__)
constexpr Messenger* fractionMessenger() { return objc_msgSend_fpret; }
constexpr Messenger* structureMessenger(std::size_t size) {
  return size == 1 || size == 2 || size == 4 || size == 8 ? objc_msgSend : objc_msgSend_stret;
}
#elif defined(__x86_64__)
constexpr Messenger* fractionMessenger() { return objc_msgSend; }
constexpr Messenger* structureMessenger(std::size_t size) {
  return size <= 16 ? objc_msgSend : objc_msgSend_stret;
}
#else
constexpr Messenger* fractionMessenger() { return objc_msgSend; }
constexpr Messenger* structureMessenger(std::size_t /*size*/) { return objc_msgSend; }
#endif

/// The messenger for methods with a result of this type.
template <class R>
constexpr Messenger* messenger() {
  static_assert(!std::is_same_v<R, long double>, "no method that is called here returns one");
  if constexpr (std::is_class_v<R>) {
    static_assert(std::is_trivially_copyable_v<R>, "it doesn't come back as a C structure does");
    return structureMessenger(sizeof(R));
  } else {
    return std::is_floating_point_v<R> ? fractionMessenger() : objc_msgSend;
  }
}

/// A method as the function that it is.
template <class R, class... Arguments>
using Method = R (*)(void*, SEL, Arguments...);

/// What answers the message: the messenger, which finds the method at every call.
template <class R, class... Arguments>
inline Method<R, Arguments...> methodOf(void* /*receiver*/, SEL /*selector*/) {
  return reinterpret_cast<Method<R, Arguments...>>(messenger<R>());
}

}  // namespace zel
