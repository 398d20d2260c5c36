// Single values by key. Every method has one shape: inside the guard, the arguments are converted
// (a null host string to nil), then the wrapped object is read and sent one message, then the reply
// is converted. Nothing is validated: what Foundation says of nil or of a wrong type holds.
#include "bridge/strings.h"
#include "defaults/instance.h"
#include "plugin/errors.h"
#include "plugin/methods.h"

namespace zel {
namespace {

// The URL of a text, autoreleased; nil for a null text and for one that is no valid URL.
CFURLRef autoreleasedURL(REALstring text) {
  const CFStringRef string = RBString2CFString(text);
  if (string == nullptr) return nullptr;
  return autoreleased(
      withCleanup([&] { return CFURLCreateWithString(kDefaultAllocator, string, nullptr); },
                  [&] { CFRelease(string); }));
}

}  // namespace

extern "C" {

std::int32_t integerForKey(REALobject instance, REALstring key) {
  return guarded<std::int32_t>([=] {
    const CFStringRef name = autoreleasedCFString(key);
    const auto reply = send<NSInteger, "integerForKey:">(wrapped(instance), name);
    return static_cast<std::int32_t>(reply);
  });
}

void setIntegerForKey(REALobject instance, REALstring key, std::int32_t value) {
  guarded([=] {
    const CFStringRef name = autoreleasedCFString(key);
    send<void, "setInteger:forKey:">(wrapped(instance), NSInteger{value}, name);
  });
}

float floatForKey(REALobject instance, REALstring key) {
  return guarded<float>([=] {
    const CFStringRef name = autoreleasedCFString(key);
    return send<float, "floatForKey:">(wrapped(instance), name);
  });
}

void setFloatForKey(REALobject instance, REALstring key, float value) {
  guarded([=] {
    const CFStringRef name = autoreleasedCFString(key);
    send<void, "setFloat:forKey:">(wrapped(instance), value, name);
  });
}

// Older Foundations have no messages for doubles: singles stand in for them, in silence.
double doubleForKey(REALobject instance, REALstring key) {
  return guarded<double>([=]() -> double {
    const CFStringRef name = autoreleasedCFString(key);
    NSUserDefaults* const defaults = wrapped(instance);
    if (respondsTo<"doubleForKey:">(defaults)) return send<double, "doubleForKey:">(defaults, name);
    return send<float, "floatForKey:">(defaults, name);
  });
}

void setDoubleForKey(REALobject instance, REALstring key, double value) {
  guarded([=] {
    const CFStringRef name = autoreleasedCFString(key);
    NSUserDefaults* const defaults = wrapped(instance);
    if (respondsTo<"setDouble:forKey:">(defaults)) {
      send<void, "setDouble:forKey:">(defaults, value, name);
    } else {
      send<void, "setFloat:forKey:">(defaults, static_cast<float>(value), name);
    }
  });
}

// The byte goes through unchanged, both ways: nothing is made 0 or 1.
HostBoolean boolForKey(REALobject instance, REALstring key) {
  return guarded<HostBoolean>([=] {
    const CFStringRef name = autoreleasedCFString(key);
    return static_cast<HostBoolean>(send<BOOL, "boolForKey:">(wrapped(instance), name));
  });
}

void setBoolForKey(REALobject instance, REALstring key, HostBoolean value) {
  guarded([=] {
    const CFStringRef name = autoreleasedCFString(key);
    send<void, "setBool:forKey:">(wrapped(instance), static_cast<BOOL>(value), name);
  });
}

REALstring stringForKey(REALobject instance, REALstring key) {
  return guarded<REALstring>([=] {
    const CFStringRef name = autoreleasedCFString(key);
    return CFString2RBString(send<CFStringRef, "stringForKey:">(wrapped(instance), name));
  });
}

// An empty text is a null host string, so it goes out as a nil object.
void setStringForKey(REALobject instance, REALstring key, REALstring value) {
  guarded([=] {
    const CFStringRef name = autoreleasedCFString(key);
    const CFStringRef text = autoreleasedCFString(value);
    send<void, "setObject:forKey:">(wrapped(instance), text, name);
  });
}

REALstring URLForKey(REALobject instance, REALstring key) {
  return guarded<REALstring>([=] {
    const CFStringRef name = autoreleasedCFString(key);
    const auto url = send<CFURLRef, "URLForKey:">(wrapped(instance), name);
    return CFString2RBString(send<CFStringRef, "absoluteString">(url));
  });
}

void setURLForKey(REALobject instance, REALstring key, REALstring value) {
  guarded([=] {
    const CFStringRef name = autoreleasedCFString(key);
    const CFURLRef url = autoreleasedURL(value);
    send<void, "setURL:forKey:">(wrapped(instance), url, name);
  });
}

}  // extern "C"
}  // namespace zel
