// The double's Foundation classes and Core Foundation functions.

#include <cstring>
#include <limits>

#include "tests/foundation_double/fixture.h"

namespace {

using zel::CFIndex;
using zel::CFStringEncoding;
using zel::CFStringRef;
using zel::CFURLRef;
using zel::id;
using zel::NSInteger;
using zel::send;

constexpr CFStringEncoding kUtf8 = zel::kCFStringEncodingUTF8;
constexpr CFStringEncoding kLatin1 = 0x201;

// --- strings

class FoundationStringTest : public FoundationTest {
 protected:
  /// The text that a string made from the bytes has; "(null)" when none is made.
  std::string made(const char* bytes, CFStringEncoding encoding) {
    const CFStringRef string = zel::CFStringCreateWithCString(nullptr, bytes, encoding);
    std::string text = foundation_.utf8(string);
    if (string != nullptr) zel::CFRelease(string);
    return text;
  }
};

TEST_F(FoundationStringTest, BytesAreReadInTheirEncoding) {
  EXPECT_EQ(made("plain", zel::kCFStringEncodingASCII), "plain");
  EXPECT_EQ(made("\x80\x8A\xCA\xDB\xF0\xFF", zel::kCFStringEncodingMacRoman),
            "\u00C4\u00E4\u00A0\u20AC\uF8FF\u02C7");
  EXPECT_EQ(made("\x80\xE4\xFF", kLatin1), "\u0080\u00E4\u00FF");
  EXPECT_EQ(made("a\u00E4\u20AC\U0001F600", kUtf8), "a\u00E4\u20AC\U0001F600");
  EXPECT_EQ(made("", kUtf8), "");
}

TEST_F(FoundationStringTest, InvalidBytesGiveNull) {
  EXPECT_EQ(made("\x80", zel::kCFStringEncodingASCII), "(null)");
  for (const char* const bytes :
       {"\x80", "\xC3", "\xC3(", "\xC0\x80", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80",
        "\xF8\x88\x80\x80\x80", "\xFF"}) {
    EXPECT_EQ(made(bytes, kUtf8), "(null)") << testing::PrintToString(bytes);
  }
  EXPECT_EQ(made("x", 0x12345), "(null)");
  EXPECT_EQ(made("x", zel::kCFStringEncodingUnicode), "(null)");
  EXPECT_EQ(made(nullptr, kUtf8), "(null)");
}

TEST_F(FoundationStringTest, UnitsAreTakenAsTheyAre) {
  const zel::UniChar units[] = {'a', 0, 0xD800, 'b'};
  const CFStringRef string = zel::CFStringCreateWithCharacters(nullptr, units, 4);
  EXPECT_EQ(zel::CFStringGetLength(string), 4);
  EXPECT_EQ(foundation_.utf8(string), std::string("a\0\xED\xA0\x80"
                                                  "b",
                                                  6));
  zel::CFRelease(string);
}

TEST_F(FoundationStringTest, NoUnitsMakeAnEmptyStringAndMissingOnesNone) {
  const CFStringRef empty = zel::CFStringCreateWithCharacters(nullptr, nullptr, 0);
  EXPECT_EQ(foundation_.utf8(empty), "");
  if (empty != nullptr) zel::CFRelease(empty);
  EXPECT_EQ(zel::CFStringCreateWithCharacters(nullptr, nullptr, 1), nullptr);
}

TEST_F(FoundationStringTest, TheLengthIsInUnits) {
  EXPECT_EQ(zel::CFStringGetLength(foundation_.string("a\u20AC")), 2);
  EXPECT_EQ(zel::CFStringGetLength(foundation_.string("\U0001F600")), 2);
  EXPECT_EQ(foundation_.utf8(foundation_.string16(u"\U0001F600")), "\U0001F600");
}

TEST_F(FoundationStringTest, ALengthCanBePretended) {
  constexpr CFIndex kHuge = std::numeric_limits<CFIndex>::max();
  char buffer[2] = {};
  const CFStringRef string = foundation_.stringOfLength(kHuge);
  EXPECT_EQ(zel::CFStringGetLength(string), kHuge);
  EXPECT_EQ(zel::CFStringGetCString(string, buffer, 2, kUtf8), 1);
  EXPECT_STREQ(buffer, "x");
  EXPECT_EQ(zel::CFStringGetLength(foundation_.stringOfLength(-1)), -1);
}

TEST_F(FoundationStringTest, TheBufferMustHoldTheTerminatingZero) {
  const CFStringRef string = foundation_.string("a\u20AC");
  char buffer[6] = "-----";
  EXPECT_EQ(zel::CFStringGetCString(string, buffer, 5, kUtf8), 1);
  EXPECT_STREQ(buffer, "a\u20AC");
  EXPECT_EQ(zel::CFStringGetCString(string, buffer, 4, kUtf8), 0);
  EXPECT_EQ(std::memcmp(buffer, "XXXX", 4), 0);
  EXPECT_EQ(zel::CFStringGetCString(string, buffer, 0, kUtf8), 0);
}

TEST_F(FoundationStringTest, ZeroUnitsAreWrittenThrough) {
  const CFStringRef string = foundation_.string(std::string_view("a\0b", 3));
  char buffer[4] = "---";
  EXPECT_EQ(zel::CFStringGetCString(string, buffer, 4, kUtf8), 1);
  EXPECT_EQ(std::memcmp(buffer, "a\0b", 4), 0);
}

TEST_F(FoundationStringTest, WhatUtf8CannotSayIsRefused) {
  char buffer[32];
  for (const auto* const units : {u"\xD800", u"a\xDC00", u"\xD800z", u"\xDC00\xD800"}) {
    EXPECT_EQ(zel::CFStringGetCString(foundation_.string16(units), buffer, 32, kUtf8), 0);
  }
  EXPECT_EQ(zel::CFStringGetCString(foundation_.string("a"), buffer, 32, 0x12345), 0);
}

TEST_F(FoundationStringTest, StringsCompareByText) {
  const CFStringRef string = foundation_.string("key");
  EXPECT_EQ((send<zel::BOOL, "isEqualToString:">(string, foundation_.string("key"))), 1);
  EXPECT_EQ((send<zel::BOOL, "isEqualToString:">(string, foundation_.string("Key"))), 0);
  EXPECT_EQ((send<zel::BOOL, "isEqualToString:">(string, id{nullptr})), 0);
}

TEST_F(FoundationStringTest, ConstantsHaveTheirNamesAsText) {
  for (const char* const name : {"NSGlobalDomain", "NSArgumentDomain", "NSRegistrationDomain",
                                 "NSUserDefaultsDidChangeNotification"}) {
    EXPECT_EQ(foundation_.utf8(zel::zelFoundationConstant(name)), name);
  }
  EXPECT_EQ(zel::zelFoundationConstant("NSNothing"), nullptr);
}

// --- URLs and the pointer table

TEST_F(FoundationTest, AValidTextMakesAUrl) {
  for (const char* const text : {"http://example.com/a%20b?c=d&e#f", "mailto:a@b.c", "x"}) {
    const CFURLRef url = zel::CFURLCreateWithString(nullptr, foundation_.string(text), nullptr);
    EXPECT_EQ(foundation_.utf8(send<CFStringRef, "absoluteString">(url)), text);
    if (url != nullptr) zel::CFRelease(url);
  }
}

TEST_F(FoundationTest, AnInvalidTextMakesNoUrl) {
  for (const char* const text : {"", "a b", "%", "%4", "a%4g", "%%20", "\u00E4", "<x>", "a\nb"}) {
    EXPECT_EQ(zel::CFURLCreateWithString(nullptr, foundation_.string(text), nullptr), nullptr)
        << text;
  }
  EXPECT_EQ(zel::CFURLCreateWithString(nullptr, nullptr, nullptr), nullptr);
}

TEST_F(FoundationTest, ThePointerTableMapsPointersAndRetainsNothing) {
  const zel::CFMutableDictionaryRef table = foundation_.pointerTable();
  const CFStringRef key = foundation_.string("key");
  int value = 0;
  int other = 0;
  zel::CFDictionarySetValue(table, key, &value);
  EXPECT_EQ(foundation_.references(key), 1);
  EXPECT_EQ(zel::CFDictionaryGetValue(table, key), &value);
  zel::CFDictionarySetValue(table, key, &other);
  EXPECT_EQ(zel::CFDictionaryGetValue(table, key), &other);
  EXPECT_EQ(foundation_.pointerTableEntries().size(), 1U);
  zel::CFDictionaryRemoveValue(table, key);
  zel::CFDictionaryRemoveValue(table, key);
  EXPECT_EQ(zel::CFDictionaryGetValue(table, key), nullptr);

  zel::CFDictionarySetValue(table, key, &value);
  foundation_.reset();
  EXPECT_EQ(foundation_.pointerTable(), table);
  EXPECT_TRUE(foundation_.pointerTableEntries().empty());
}

TEST_F(FoundationTest, ANewPointerTableBelongsToItsMaker) {
  const zel::CFMutableDictionaryRef table =
      zel::CFDictionaryCreateMutable(nullptr, 0, nullptr, nullptr);
  int value = 0;
  zel::CFDictionarySetValue(table, &value, &value);
  EXPECT_EQ(zel::CFDictionaryGetValue(table, &value), &value);
  EXPECT_TRUE(foundation_.pointerTableEntries().empty());
  EXPECT_EQ(foundation_.unbalanced(), "CFPointerTable: 1 reference\n");
  zel::CFRelease(table);
  EXPECT_EQ(foundation_.references(table), 0);
}

// --- numbers

TEST_F(FoundationTest, NumbersConvertAndHaveATextAsInFoundation) {
  zel::NSUserDefaults* const defaults = foundation_.standardDefaults();
  const CFStringRef key = foundation_.string("k");
  send<void, "setDouble:forKey:">(defaults, -2.75, key);
  const id number = send<id, "objectForKey:">(defaults, key);
  EXPECT_TRUE(zel::isKindOf<"NSNumber">(number));
  EXPECT_EQ((send<NSInteger, "integerValue">(number)), -2);
  EXPECT_EQ((send<float, "floatValue">(number)), -2.75F);
  EXPECT_EQ((send<double, "doubleValue">(number)), -2.75);
  EXPECT_EQ((send<zel::BOOL, "boolValue">(number)), 1);
  EXPECT_EQ(foundation_.utf8(send<CFStringRef, "stringValue">(number)), "-2.75");
}

}  // namespace
