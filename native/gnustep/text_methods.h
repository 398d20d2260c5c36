// The methods that texts answer with, looked up once for each class of texts. Foundation has some
// ten classes of them, a program meets two or three, and to find a method costs as much as a short
// text's answer. Any thread may ask.
#pragma once

#import <Foundation/Foundation.h>
#include <objc/runtime.h>
#include <stdint.h>

typedef NSUInteger (*TextLength)(NSString*, SEL);
typedef NSStringEncoding (*TextEncoding)(NSString*, SEL);
typedef BOOL (*TextGetCString)(NSString*, SEL, char*, NSUInteger, NSStringEncoding);

// What is known of a class stays as it is, for as long as the process.
struct TextMethods {
  Class owner;
  TextLength length;
  TextEncoding fastestEncoding;
  TextGetCString getCString;
  const struct TextMethods* next;  // of another class, in the order in which they were met
};

enum { kTextPlaceBits = 3 };

// Where the methods of a class are told: when two classes meet there, the later one's are. Never
// null. The product's upper bits depend on every bit of the address.
extern const struct TextMethods* zelKnownTexts[1 << kTextPlaceBits];
static inline const struct TextMethods** zelTextPlace(Class owner) {
  const uint32_t goldenRatio = 0x9E3779B9;
  return &zelKnownTexts[(uint32_t)((uintptr_t)owner >> 4) * goldenRatio >> (32 - kTextPlaceBits)];
}

// The methods of a class that its place doesn't tell. What is no text by its class, such as a
// proxy, is sent messages, as is everything when there is no memory.
const struct TextMethods* zelMeetTexts(Class owner);

// The methods of a text. It isn't nil.
static inline const struct TextMethods* zelMethodsOf(NSString* text) {
  Class const owner = object_getClass(text);
  const struct TextMethods* const methods = __atomic_load_n(zelTextPlace(owner), __ATOMIC_ACQUIRE);
  return methods->owner == owner ? methods : zelMeetTexts(owner);
}
