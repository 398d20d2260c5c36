// The Core Foundation functions, those of URLs excepted, NSLog and the constants.

#include "native/corefoundation.h"

#include <cstdarg>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "foundation_double/normalization.h"
#include "foundation_double/pointer_table.h"
#include "foundation_double/runtime.h"
#include "foundation_double/strings.h"

namespace foundation_double::objc {
namespace {

/// The constants that Foundation exports; each one's text is its name.
constexpr const char* kConstants[] = {
    "NSGlobalDomain",
    "NSArgumentDomain",
    "NSRegistrationDomain",
    "NSUserDefaultsDidChangeNotification",
};

constexpr zel::CFIndex kFormD = 0;
/// What a string is full of beyond its real text, when it pretends to be longer.
constexpr zel::UniChar kPretendedUnit = 'x';

/// Records the call; false when it is to fail.
bool enter(const char* function) { return Faults::shared().countCall(function); }

/// The object, which may be a dead one; anything else, null included, is misuse.
Instance& checkedObject(const void* object) {
  Instance* const found = Accounts::shared().find(object);
  if (found == nullptr) misuseWithoutAnswer("a Core Foundation call with what is no object");
  return *found;
}

/// What the object answers to `description`; a message of Foundation's own, so not recorded.
std::u16string descriptionOf(zel::id object) {
  if (object == nullptr) return u"(null)";
  const Instance* const found = Accounts::shared().find(object);
  if (found == nullptr || found->dead) misuseWithoutAnswer("NSLog of what is no live object");
  const zel::SEL selector = Runtime::shared().selector("description");
  using Description = zel::CFStringRef (*)(zel::id, zel::SEL);
  const auto describe = reinterpret_cast<Description>(findMethod(*found, selector));
  return stringBody(describe(object, selector)).units;
}

/// The literal text before, between and behind the objects ("%@") of a log format.
std::vector<std::u16string> literalsOf(std::u16string_view format) {
  std::vector<std::u16string> literals(1);
  while (!format.empty()) {
    const std::u16string_view conversion = format.substr(0, 2);
    if (format.front() != u'%') {
      literals.back() += format.front();
      format.remove_prefix(1);
      continue;
    }
    if (conversion == u"%@") {
      literals.emplace_back();
    } else if (conversion == u"%%") {
      literals.back() += u'%';
    } else {
      misuseWithoutAnswer("NSLog with a conversion other than %@ and %%");
    }
    format.remove_prefix(2);
  }
  return literals;
}

bool writeUtf8(const std::u16string& units, char* buffer, zel::CFIndex size) {
  const auto bytes = encode(units);
  if (!bytes || size < 0 || bytes->size() >= static_cast<std::size_t>(size)) return false;
  std::memcpy(buffer, bytes->c_str(), bytes->size() + 1);
  return true;
}

/// Makes a buffer that promises nothing any more look like it.
void spoil(char* buffer, zel::CFIndex size) {
  constexpr int kSpoiled = 'X';
  if (size > 0) std::memset(buffer, kSpoiled, static_cast<std::size_t>(size));
}

}  // namespace
}  // namespace foundation_double::objc

namespace zel {

using namespace foundation_double::objc;  // NOLINT(google-build-using-namespace): this file is its
                                          // C face.

CFTypeRef CFRetain(CFTypeRef object) {
  if (!enter(__func__)) return nullptr;
  Accounts::shared().retain(checkedObject(object));
  return object;
}

void CFRelease(CFTypeRef object) {
  if (enter(__func__)) Accounts::shared().release(checkedObject(object));
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef /*allocator*/, const char* text,
                                      CFStringEncoding encoding) {
  if (!enter(__func__) || text == nullptr) return nullptr;
  auto units = decode(text, encoding);
  return units ? createString(*std::move(units)) : nullptr;
}

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef /*allocator*/, const UniChar* units,
                                         CFIndex count) {
  if (!enter(__func__)) return nullptr;
  if (count < 0) misuseWithoutAnswer("a string of a negative number of characters");
  if (units == nullptr && count > 0) return nullptr;
  // The units of an older host's string begin at any address.
  std::u16string text(static_cast<std::size_t>(count), u'\0');
  if (count > 0) std::memcpy(text.data(), units, text.size() * sizeof(UniChar));
  return createString(text);
}

CFIndex CFStringGetLength(CFStringRef string) {
  return enter(__func__) ? stringBody(string).length() : 0;
}

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size,
                           CFStringEncoding encoding) {
  const bool written = enter(__func__) && encoding == kCFStringEncodingUTF8 &&
                       writeUtf8(stringBody(string).units, buffer, size);
  if (!written) spoil(buffer, size);
  return written;
}

void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* units) {
  if (!enter(__func__)) return;
  const StringBody& body = stringBody(string);
  if (range.location < 0 || range.length < 0 || range.length > body.length() - range.location) {
    misuseWithoutAnswer("characters outside of the string");
  }
  const auto real = static_cast<CFIndex>(body.units.size());
  for (CFIndex i = range.location; i < range.location + range.length; ++i) {
    *units++ = i < real ? body.units[static_cast<std::size_t>(i)] : kPretendedUnit;
  }
}

CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef /*allocator*/, CFIndex maxLength,
                                             CFStringRef string) {
  if (!enter(__func__)) return nullptr;
  if (maxLength != 0) misuseWithoutAnswer("a limited string, which the double doesn't know");
  return createMutableString(stringBody(string));
}

void CFStringNormalize(CFMutableStringRef string, CFIndex form) {
  if (!enter(__func__)) return;
  StringBody& body = stringBody(string);
  if (!isKindOf(*instance(string), Runtime::shared().require("NSMutableString"))) {
    misuseWithoutAnswer("a string changed that can't be");
  }
  if (form != kFormD) misuseWithoutAnswer("a normalisation form other than D");
  body.units = decomposed(body.units);
}

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef /*allocator*/, CFIndex capacity,
                                                 const void* keyCallBacks,
                                                 const void* valueCallBacks) {
  if (!enter(__func__)) return nullptr;
  if (capacity != 0) {
    misuseWithoutAnswer("a dictionary with a limit, which the double doesn't know");
  }
  if (keyCallBacks != nullptr || valueCallBacks != nullptr) {
    misuseWithoutAnswer("a dictionary with call-backs, which the double doesn't know");
  }
  return createPointerTable();
}

const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key) {
  if (!enter(__func__)) return nullptr;
  const auto& entries = tableEntries(dictionary);
  const auto found = entries.find(key);
  return found == entries.end() ? nullptr : found->second;
}

void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value) {
  if (enter(__func__)) tableEntries(dictionary).insert_or_assign(key, value);
}

void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void* key) {
  if (enter(__func__)) tableEntries(dictionary).erase(key);
}

void NSLog(CFStringRef format, ...) {
  if (!enter(__func__)) return;
  const auto literals = literalsOf(stringBody(format).units);
  std::vector<id> objects(literals.size() - 1);
  std::va_list arguments;
  va_start(arguments, format);
  for (id& object : objects) object = va_arg(arguments, id);
  va_end(arguments);
  std::u16string line = literals.front();
  for (std::size_t i = 0; i < objects.size(); ++i) {
    line += descriptionOf(objects[i]) + literals[i + 1];
  }
  Records::shared().log.push_back(encodeLosslessly(line));
}

CFStringRef zelFoundationConstant(const char* name) {
  if (!enter(__func__) || Faults::shared().isHidden(name)) return nullptr;
  for (const char* const constant : kConstants) {
    if (std::strcmp(constant, name) == 0) return constantString(name);
  }
  return nullptr;
}

}  // namespace zel
