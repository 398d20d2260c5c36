#import <Foundation/Foundation.h>

#include "native/gnustep/encodings.h"

enum { kMachineOrder = __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__ ? kBigEndian : 0 };

#define SINGLE_BYTE(number, foundation) \
  { number, zelDecodeSingleByte, zelEncodeSingleByte, foundation, kAsciiSuperset }
#define BY_FOUNDATION(number, foundation, rules) \
  { number, zelDecodeByFoundation, zelEncodeByFoundation, foundation, rules }

const struct Encoding zelUtf8 = {0x08000100, zelDecodeUtf8, zelEncodeUtf8, NSUTF8StringEncoding,
                                 kAsciiSuperset};

// In the order of their numbers: zelFindRareEncoding halves its way through. A number that is
// missing here is one that Foundation has no converter for.
static const struct Encoding kEncodings[] = {
    SINGLE_BYTE(0x0000, NSMacOSRomanStringEncoding),
    {0x0100, zelDecodeUtf16, zelEncodeUtf16, 0, kMachineOrder},
    SINGLE_BYTE(0x0201, NSISOLatin1StringEncoding),
    SINGLE_BYTE(0x0202, NSISOLatin2StringEncoding),
    SINGLE_BYTE(0x0203, NSISOLatin3StringEncoding),
    SINGLE_BYTE(0x0204, NSISOLatin4StringEncoding),
    SINGLE_BYTE(0x0205, NSISOCyrillicStringEncoding),
    SINGLE_BYTE(0x0206, NSISOArabicStringEncoding),
    SINGLE_BYTE(0x0207, NSISOGreekStringEncoding),
    SINGLE_BYTE(0x0208, NSISOHebrewStringEncoding),
    SINGLE_BYTE(0x0209, NSISOLatin5StringEncoding),
    SINGLE_BYTE(0x020A, NSISOLatin6StringEncoding),
    SINGLE_BYTE(0x020B, NSISOThaiStringEncoding),
    SINGLE_BYTE(0x020D, NSISOLatin7StringEncoding),
    SINGLE_BYTE(0x020E, NSISOLatin8StringEncoding),
    SINGLE_BYTE(0x020F, NSISOLatin9StringEncoding),
    SINGLE_BYTE(0x0500, NSWindowsCP1252StringEncoding),
    SINGLE_BYTE(0x0501, NSWindowsCP1250StringEncoding),
    SINGLE_BYTE(0x0502, NSWindowsCP1251StringEncoding),
    SINGLE_BYTE(0x0503, NSWindowsCP1253StringEncoding),
    SINGLE_BYTE(0x0504, NSWindowsCP1254StringEncoding),
    SINGLE_BYTE(0x0600, NSASCIIStringEncoding),
    BY_FOUNDATION(0x0820, NSISO2022JPStringEncoding, kSevenBit | kNoC1Controls | kEscapeIsNoText),
    BY_FOUNDATION(0x0920, NSJapaneseEUCStringEncoding, kAsciiSuperset | kNoC1Controls),
    BY_FOUNDATION(0x0930, NSGB2312StringEncoding, kAsciiSuperset | kNoC1Controls),
    BY_FOUNDATION(0x0940, NSKoreanEUCStringEncoding, kAsciiSuperset | kNoC1Controls),
    BY_FOUNDATION(0x0A01, NSShiftJISStringEncoding, kNoC1Controls),
    SINGLE_BYTE(0x0A02, NSKOI8RStringEncoding),
    BY_FOUNDATION(0x0A03, NSBIG5StringEncoding, kAsciiSuperset | kNoC1Controls),
    SINGLE_BYTE(0x0B01, NSNEXTSTEPStringEncoding),
    BY_FOUNDATION(0x0BFF, NSNonLossyASCIIStringEncoding, kSevenBit),
    BY_FOUNDATION(0x04000100, NSUTF7StringEncoding, kSevenBit | kHasHiddenTail),
    {0x0C000100, zelDecodeUtf32, zelEncodeUtf32, 0, kMachineOrder},
    {0x10000100, zelDecodeUtf16, zelEncodeUtf16, 0, kBigEndian},
    {0x14000100, zelDecodeUtf16, zelEncodeUtf16, 0, 0},
    {0x18000100, zelDecodeUtf32, zelEncodeUtf32, 0, kBigEndian},
    {0x1C000100, zelDecodeUtf32, zelEncodeUtf32, 0, 0},
};

const struct Encoding* zelFindRareEncoding(uint32_t number) {
  size_t low = 0;
  size_t high = sizeof(kEncodings) / sizeof(kEncodings[0]);
  while (low < high) {
    const size_t middle = (low + high) / 2;
    if (kEncodings[middle].number == number) return &kEncodings[middle];
    if (kEncodings[middle].number < number) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return NULL;
}
