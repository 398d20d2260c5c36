#include "macho/loader/messages.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <utility>

#include "native/numbers.h"

namespace macho {
namespace {

extern "C" {
// Of the GNU runtime.
struct objc_method;
objc_method* class_getInstanceMethod(zel::Class* owner, zel::SEL selector);
const char* method_getTypeEncoding(objc_method* method);
const char* sel_getName(zel::SEL selector);
const char* objc_skip_type_qualifiers(const char* type);
int objc_sizeof_type(const char* type);
}

using Method = void (*)();

constexpr std::size_t kWord = 4;  // bytes; also of a pointer

// The arguments of a message, receiver and selector first. A method takes what it knows of.
struct Words {
  std::uint32_t word[60];
};

Words wordsOf(zel::id receiver, zel::SEL selector, va_list arguments) {
  Words words;
  std::memcpy(&words.word[0], &receiver, kWord);
  std::memcpy(&words.word[1], &selector, kWord);
  // On this processor a va_list is the address of the words that follow.
  std::memcpy(&words.word[2], arguments, sizeof words - 2 * kWord);
  return words;
}

template <class Result>
Result call(Method method, const Words& words) {
  return reinterpret_cast<Result (*)(Words)>(method)(words);
}

// Ways in which a method's result becomes what macOS's messenger leaves in the registers.
using Returning = std::uint64_t (*)(Method method, const Words& words);

std::uint64_t returnAsItIs(Method method, const Words& words) {
  return call<std::uint64_t>(method, words);
}

template <class Number>
std::uint64_t returnExtended(Method method, const Words& words) {
  return static_cast<std::uint32_t>(std::int32_t{call<Number>(method, words)});
}

template <class Number>
std::uint64_t returnStructure(Method method, const Words& words) {
  struct Structure {
    Number content;
  };
  return call<Structure>(method, words).content;
}

[[noreturn]] void refuse(zel::SEL selector) {
  std::fprintf(stderr, "what %s gives back isn't for this messenger\n", sel_getName(selector));
  std::abort();
}

std::uint64_t refuseResult(Method /*method*/, const Words& words) {
  zel::SEL selector = nullptr;
  std::memcpy(&selector, &words.word[1], kWord);
  refuse(selector);
}

// Also tells sendMessageForFloat() that the method is one for it.
std::uint64_t refuseFloat(Method method, const Words& words) { return refuseResult(method, words); }

constexpr struct {
  char type;
  Returning returning;
} kNumbers[] = {{'c', returnExtended<signed char>},
                {'C', returnExtended<unsigned char>},
                {'B', returnExtended<unsigned char>},
                {'s', returnExtended<short>},
                {'S', returnExtended<unsigned short>},
                // They come back in registers of their own.
                {'f', refuseFloat},
                {'d', refuseFloat},
                {'D', refuseFloat}};

constexpr struct {
  int size;
  Returning returning;
} kStructures[] = {{1, returnStructure<std::uint8_t>},
                   {2, returnStructure<std::uint16_t>},
                   {4, returnStructure<std::uint32_t>},
                   {8, returnStructure<std::uint64_t>}};

Returning returningOf(const char* type) {
  if (*type == '{' || *type == '(') {
    const int size = objc_sizeof_type(type);
    for (const auto& row : kStructures) {
      if (row.size == size) return row.returning;
    }
    return refuseResult;
  }
  for (const auto& row : kNumbers) {
    if (row.type == *type) return row.returning;
  }
  return returnAsItIs;
}

// The type of what the method gives back; "" when the receiver only answers by forwarding.
const char* resultType(zel::id receiver, zel::SEL selector) {
  objc_method* const method = class_getInstanceMethod(zel::classOf(receiver), selector);
  const char* const types = method == nullptr ? nullptr : method_getTypeEncoding(method);
  return types == nullptr ? "" : objc_skip_type_qualifiers(types);
}

// Remembered, because the look-up goes through all of a class's methods.
Returning returningOf(Method method, zel::id receiver, zel::SEL selector) {
  thread_local std::map<std::pair<Method, zel::SEL>, Returning> known;
  const auto [entry, isNew] = known.try_emplace({method, selector}, nullptr);
  if (isNew) entry->second = returningOf(resultType(receiver, selector));
  return entry->second;
}

const char* numberType(zel::id number, zel::SEL /*selector*/) { return zel::zelNumberType(number); }

// The method that macOS's Foundation has where the one here answers otherwise: booleans call
// themselves "C" here.
Method methodOf(zel::id receiver, zel::SEL selector) {
  if (selector == zel::selector<"objCType">() && zel::isKindOf<"NSNumber">(receiver))
    return reinterpret_cast<Method>(numberType);
  return zel::objc_msg_lookup(receiver, selector);
}

}  // namespace

std::uint64_t sendMessage(zel::id receiver, zel::SEL selector, ...) {
  if (receiver == nullptr) return 0;
  va_list arguments;
  va_start(arguments, selector);
  const Words words = wordsOf(receiver, selector, arguments);
  va_end(arguments);
  const Method method = methodOf(receiver, selector);
  return returningOf(method, receiver, selector)(method, words);
}

long double sendMessageForFloat(zel::id receiver, zel::SEL selector, ...) {
  if (receiver == nullptr) return 0;
  va_list arguments;
  va_start(arguments, selector);
  const Words words = wordsOf(receiver, selector, arguments);
  va_end(arguments);
  const Method method = methodOf(receiver, selector);
  if (returningOf(method, receiver, selector) != refuseFloat) refuse(selector);
  return call<long double>(method, words);
}

void sendMessageForStructure(void* result, zel::id receiver, zel::SEL selector, ...) {
  if (receiver == nullptr) return;
  va_list arguments;
  va_start(arguments, selector);
  const Words words = wordsOf(receiver, selector, arguments);
  va_end(arguments);
  // Both systems pass the address for the structure in front of the words, and have it popped.
  struct Structure {
    std::uint8_t bytes[256];
  };
  const char* const type = resultType(receiver, selector);
  const std::size_t size = *type == '{' ? static_cast<std::size_t>(objc_sizeof_type(type)) : 0;
  if (size == 0 || size > sizeof(Structure)) refuse(selector);
  const Structure structure = call<Structure>(methodOf(receiver, selector), words);
  std::memcpy(result, &structure, size);
}

}  // namespace macho
