// The host's services as ordinary functions.
//
// The host gives the plugin one resolver; everything else is asked from it by name. A wrapper asks
// at its first use and remembers what it found. A service that the host lacks is skipped in silence
// (the wrapper's neutral result, out-arguments untouched) and asked for again at every later use.
#pragma once

#include <cstdint>

#include "native/files.h"
#include "plugin/handles.h"

namespace zel {

struct REALclassDefinition;

/// Gives the entry point of that name (NUL-terminated), or null.
using Resolver = void* (*)(const char* name);

/// The host's resolver; REALPluginMain stores it before anything else happens.
extern Resolver gResolver;
/// The host's version, such as 2013.03; 0.0 until the host has told it.
extern double rbversion;

/// The entry point of that name, or null.
inline void* askResolver(const char* name) { return gResolver(name); }

/// The entry point of a method that the host's framework declares, found by its declaration, or
/// null. The caller keeps it: the look-up is costly.
void* REALLoadFrameworkMethod(const char* declaration);

/// A function of the host, found by its name (or declaration) at the first use that finds it.
template <void* (*LookUp)(const char*), class Signature>
class HostFunctionCache;

template <void* (*LookUp)(const char*), class R, class... Arguments>
class HostFunctionCache<LookUp, R(Arguments...)> {
 public:
  using EntryPoint = R (*)(Arguments...);

  /// @param name never copied.
  constexpr explicit HostFunctionCache(const char* name) : name_(name) {}

  /// The function, or null while the host doesn't know the name.
  EntryPoint find() { return entry_ != nullptr ? entry_ : lookUp(); }

  /// Calls the function; R{} when the host lacks it.
  R operator()(Arguments... arguments) {
    const EntryPoint entry = find();
    return entry == nullptr ? R() : entry(arguments...);
  }

 private:
  // Out of line: it happens once, and what stands at every use is to be small.
  [[gnu::noinline]] EntryPoint lookUp() {
    return entry_ = reinterpret_cast<EntryPoint>(LookUp(name_));
  }

  EntryPoint entry_ = nullptr;
  const char* name_;
};

/// One service of the host.
template <class R, class... Arguments>
using HostRoutine = HostFunctionCache<askResolver, R(Arguments...)>;

/// One global method of the host's framework.
template <class R, class... Arguments>
using FrameworkMethod = HostFunctionCache<REALLoadFrameworkMethod, R(Arguments...)>;

/// One service of the host that goes through a procedure of the array itself. The host is asked for
/// that procedure at every call: only the first step is remembered.
template <class... Arguments>
class ArrayRoutine {
 public:
  constexpr explicit ArrayRoutine(const char* name) : procedureOf_(name) {}

  /// Calls the array's procedure; does nothing when the host or the array has none.
  void operator()(REALarray array, Arguments... arguments) {
    const Procedure procedure = procedureOf_(array);
    if (procedure != nullptr) procedure(array, arguments...);
  }

 private:
  using Procedure = void (*)(REALarray, Arguments...);
  HostRoutine<Procedure, REALarray> procedureOf_;
};

#define HOST_ROUTINE(wrapper, entryPoint, doc, ...) \
  inline constinit HostRoutine<__VA_ARGS__> wrapper{entryPoint};
#define ARRAY_ROUTINE(wrapper, entryPoint, doc, ...) \
  inline constinit ArrayRoutine<__VA_ARGS__> wrapper{entryPoint};
#define FRAMEWORK_METHOD(wrapper, declaration, doc, ...) \
  inline constinit FrameworkMethod<__VA_ARGS__> wrapper{declaration};

#include "plugin/host_routines.def"

#undef HOST_ROUTINE
#undef ARRAY_ROUTINE
#undef FRAMEWORK_METHOD

/// The host's own conversion of a string, asked a first time: what REALGetStringCFString does,
/// behind a cache of its own. Owned by the caller; null when the host can't.
inline CFStringRef REALCopyStringCFString(REALstring string) {
  return pCopyStringCFString(string, 0);
}

}  // namespace zel
