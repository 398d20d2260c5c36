// Reads texts of XML property lists as they were written.
//
// GNUstep base 1.28, its `defaults` tool among it, writes characters that XML doesn't allow as
// \U and four digits, one for each half of a surrogate pair. It reads one at a time, so that only
// the second half is left of a pair; and it reads such an escape of any character, so that
// x\U0041y, which others write as it is, becomes xAy. May go when GNUstep base reads the escapes
// that it writes, and no others.
#include <ctype.h>
#include <objc/runtime.h>
#include <stdbool.h>

#include "native/gnustep/replaced_methods.h"
#include "native/gnustep/zelnative.h"

enum { kEscapeLength = 6 };  // \UD83D

static ptrdiff_t valueOffset;  // of the text in the parser

static int digitOf(unichar unit) {
  if (unit >= 0x80 || !isxdigit(unit)) return -1;
  return isdigit(unit) ? unit - '0' : toupper(unit) - 'A' + 10;
}

// Whether GNUstep base writes that character as an escape.
static bool isEscaped(unsigned unit) {
  const bool isControl = unit < 0x20 && unit != '\t' && unit != '\n' && unit != '\r';
  return isControl || (unit >= 0xD800 && unit <= 0xDFFF) || unit > 0xFFFD;
}

// The character of an escape that begins there, or -1.
static int escapedAt(const unichar* units, size_t left) {
  if (left < kEscapeLength || units[0] != '\\' || units[1] != 'U') return -1;
  int unit = 0;
  for (size_t i = 2; i < kEscapeLength; ++i) {
    const int digit = digitOf(units[i]);
    if (digit < 0) return -1;
    unit = unit << 4 | digit;
  }
  return isEscaped((unsigned)unit) ? unit : -1;
}

// Puts the characters in the escapes' place; how many are left.
static size_t unescape(unichar* units, size_t count) {
  size_t made = 0;
  for (size_t i = 0; i < count;) {
    const int escaped = escapedAt(units + i, count - i);
    units[made++] = escaped < 0 ? units[i] : (unichar)escaped;
    i += escaped < 0 ? 1 : kEscapeLength;
  }
  return made;
}

static void unescapeText(id parser, SEL selector) {
  (void)selector;
  NSMutableString* const text = *(NSMutableString**)((char*)parser + valueOffset);
  if ([text rangeOfString:@"\\U" options:NSLiteralSearch].length == 0) return;
  const NSUInteger length = [text length];
  NSMutableData* const room = [NSMutableData dataWithLength:length * sizeof(unichar)];
  unichar* const units = [room mutableBytes];
  [text getCharacters:units range:NSMakeRange(0, length)];
  const size_t made = unescape(units, length);
  [text setString:[CFStringCreateWithCharacters(NULL, units, (CFIndex)made) autorelease]];
}

// Carries the method's replacement; never has an instance.
@interface ZELXmlTexts : NSObject
@end

@implementation ZELXmlTexts

+ (void)load {
  static const char kClass[] = "GSXMLPListParser";
  valueOffset = ivar_getOffset(class_getInstanceVariable(objc_getClass(kClass), "value"));
  zelReplaceMethod(kClass, "unescape", (AnyMethod)unescapeText);
}

@end
