#import "native/gnustep/text_methods.h"

#include <stdbool.h>
#include <stdlib.h>

#include "native/gnustep/replaced_methods.h"

static NSUInteger askLength(NSString* text, SEL selector) {
  (void)selector;
  return [text length];
}

static NSStringEncoding askFastestEncoding(NSString* text, SEL selector) {
  (void)selector;
  return [text fastestEncoding];
}

static BOOL askCString(NSString* text, SEL selector, char* buffer, NSUInteger size,
                       NSStringEncoding encoding) {
  (void)selector;
  return [text getCString:buffer maxLength:size encoding:encoding];
}

static const struct TextMethods kAsked = {Nil, askLength, askFastestEncoding, askCString, NULL};

const struct TextMethods* zelKnownTexts[1 << kTextPlaceBits] = {&kAsked, &kAsked, &kAsked, &kAsked,
                                                                &kAsked, &kAsked, &kAsked, &kAsked};

// All that are known, the last one that was met first.
static const struct TextMethods* known = &kAsked;

static bool isText(Class owner) {
  Class const texts = [NSString class];
  while (owner != Nil && owner != texts) owner = class_getSuperclass(owner);
  return owner != Nil;
}

static AnyMethod find(Class owner, SEL selector) {
  return (AnyMethod)class_getMethodImplementation(owner, selector);
}

static const struct TextMethods* findKnown(Class owner) {
  const struct TextMethods* methods = __atomic_load_n(&known, __ATOMIC_ACQUIRE);
  while (methods != NULL && methods->owner != owner) methods = methods->next;
  return methods;
}

// Two threads may add the same class: either tells the same.
static const struct TextMethods* addKnown(Class owner) {
  struct TextMethods* const added = malloc(sizeof(*added));
  if (added == NULL) return NULL;
  *added = (struct TextMethods) {
    owner, (TextLength)find(owner, @selector(length)),
        (TextEncoding)find(owner, @selector(fastestEncoding)),
        (TextGetCString)find(owner, @selector(getCString:maxLength:encoding:)),
        __atomic_load_n(&known, __ATOMIC_ACQUIRE)
  };
  while (!__atomic_compare_exchange_n(&known, &added->next, added, false, __ATOMIC_RELEASE,
                                      __ATOMIC_ACQUIRE)) {
  }
  return added;
}

const struct TextMethods* zelMeetTexts(Class owner) {
  if (!isText(owner)) return &kAsked;
  const struct TextMethods* methods = findKnown(owner);
  if (methods == NULL) methods = addKnown(owner);
  if (methods == NULL) return &kAsked;
  __atomic_store_n(zelTextPlace(owner), methods, __ATOMIC_RELEASE);
  return methods;
}
