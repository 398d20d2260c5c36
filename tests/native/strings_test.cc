#include <atomic>
#include <cstring>
#include <string_view>
#include <thread>
#include <vector>

#include "native/corefoundation.h"
#include "native/exceptions.h"
#include "native/methods.h"
#include "tests/native/support.h"

extern "C" {
zel::Class* objc_allocateClassPair(zel::Class* superclass, const char* name, std::size_t extra);
void objc_registerClassPair(zel::Class* made);
}

namespace native_test {
namespace {

using zel::CFIndex;
using zel::CFStringRef;
using zel::id;
using zel::kCFStringEncodingASCII;
using zel::kCFStringEncodingMacRoman;
using zel::kCFStringEncodingUTF8;
using zel::send;
using zel::UniChar;

constexpr zel::CFAllocatorRef kAllocator = zel::kDefaultAllocator;

class StringsTest : public NativeTest {};

std::u16string unitsOf(CFStringRef string) {
  std::u16string units;
  for (CFIndex i = 0; i < zel::CFStringGetLength(string); ++i) {
    units.push_back(send<UniChar, "characterAtIndex:">(string, i));
  }
  return units;
}

CFStringRef fromUnits(std::u16string_view units) {
  const auto* const data = reinterpret_cast<const UniChar*>(units.data());
  return zel::autoreleased(
      zel::CFStringCreateWithCharacters(kAllocator, data, static_cast<CFIndex>(units.size())));
}

/// The bytes with the terminating zero, or nothing when the conversion was refused.
std::string cString(CFStringRef string, CFIndex size,
                    zel::CFStringEncoding encoding = kCFStringEncodingUTF8) {
  std::string buffer(static_cast<std::size_t>(size) + 1, '#');
  if (zel::CFStringGetCString(string, buffer.data(), size, encoding) == 0) return {};
  EXPECT_EQ(buffer.back(), '#') << "written past the end";
  return buffer.substr(0, buffer.find('#'));
}

using namespace std::string_literals;

TEST_F(StringsTest, MakesStringsFromUtf8) {
  EXPECT_EQ(unitsOf(string("")), u"");
  EXPECT_EQ(unitsOf(string("key")), u"key");
  EXPECT_EQ(unitsOf(string("Gr\xC3\xB6\xC3\x9F"
                           "e")),
            u"Größe");
  EXPECT_EQ(unitsOf(string("\xE2\x82\xAC"
                           "5")),
            u"€5");
  EXPECT_EQ(unitsOf(string("\xF0\x9F\x98\x80")), u"\xD83D\xDE00");
  EXPECT_EQ(unitsOf(string("\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF")),
            u"\x80\x7FF\x800\xD7FF\xE000\xFFFF");
  EXPECT_EQ(unitsOf(string("\xF0\x90\x80\x80\xF4\x8F\xBF\xBF")), u"\xD800\xDC00\xDBFF\xDFFF");
}

TEST_F(StringsTest, Utf8ByteOrderMarkInFrontIsDropped) {
  EXPECT_EQ(unitsOf(string("\xEF\xBB\xBF"
                           "a\xEF\xBB\xBF")),
            u"a\xFEFF");
}

TEST_F(StringsTest, InvalidUtf8GivesNull) {
  for (const char* const bytes : {
           "\x80",
           "a\xBF",
           "\xFE",
           "\xFF",  // no lead byte
           "a\xC3",
           "\xE2\x82",
           "\xF0\x9F\x98",  // cut off
           "\xC3z",
           "\xE2\x82z",
           "\xF0\x9F\x98z",  // broken off
           "\xC0\x80",
           "\xC1\xBF",
           "\xE0\x9F\xBF",
           "\xF0\x8F\xBF\xBF",  // longer than needed
           "\xED\xA0\x80",
           "\xED\xBF\xBF",  // surrogates
           "\xF4\x90\x80\x80",
           "\xF5\x80\x80\x80",  // above U+10FFFF
           "\xF8\x88\x80\x80\x80",
           "\xEF\xBB\xBF\x80",
       }) {
    EXPECT_EQ(zel::CFStringCreateWithCString(kAllocator, bytes, kCFStringEncodingUTF8), nullptr)
        << testing::PrintToString(std::string(bytes));
  }
}

TEST_F(StringsTest, NonAsciiByteIsSeenAtEveryPlace) {
  for (std::size_t place = 0; place < 20; ++place) {
    std::string bytes(20, 'a');
    bytes[place] = '\x80';
    EXPECT_EQ(zel::CFStringCreateWithCString(kAllocator, bytes.c_str(), kCFStringEncodingASCII),
              nullptr)
        << place;
    bytes.replace(place, 1, "\xC3\xA4");
    std::u16string units(20, u'a');
    units[place] = u'ä';
    EXPECT_EQ(unitsOf(string(bytes.c_str())), units) << place;
    EXPECT_EQ(cString(fromUnits(units), 22), bytes + "\0"s) << place;
  }
}

TEST_F(StringsTest, AsciiOfEveryLengthIsWhole) {
  for (const std::size_t length : {1U, 7U, 8U, 9U, 15U, 16U, 17U, 127U, 128U, 129U, 1000U}) {
    const std::string bytes(length, 'x');
    const CFStringRef string = zel::autoreleased(
        zel::CFStringCreateWithCString(kAllocator, bytes.c_str(), kCFStringEncodingUTF8));
    EXPECT_EQ(unitsOf(string), std::u16string(length, u'x'));
  }
}

TEST_F(StringsTest, NullTextAndUnknownEncodingGiveNull) {
  EXPECT_EQ(zel::CFStringCreateWithCString(kAllocator, nullptr, kCFStringEncodingUTF8), nullptr);
  EXPECT_EQ(zel::CFStringCreateWithCString(kAllocator, "a", 0xFFFF), nullptr);
  EXPECT_EQ(zel::CFStringCreateWithCString(kAllocator, "a", 0xFFFFFFFF), nullptr);
}

TEST_F(StringsTest, NewStringsBelongToTheCaller) {
  for (const char* const bytes : {"plain",
                                  "Gr\xC3\xB6\xC3\x9F"
                                  "e",
                                  "\xE2\x82\xAC"}) {
    const CFStringRef made =
        zel::CFStringCreateWithCString(kAllocator, bytes, kCFStringEncodingUTF8);
    EXPECT_EQ(referencesOf(made), 1) << bytes;
    zel::CFRelease(made);
  }
  const UniChar unit = 'x';
  const CFStringRef made = zel::CFStringCreateWithCharacters(kAllocator, &unit, 1);
  EXPECT_EQ(referencesOf(made), 1);
  zel::CFRelease(made);
}

TEST_F(StringsTest, MakesStringsFromUnits) {
  EXPECT_EQ(unitsOf(fromUnits(u"key")), u"key");
  EXPECT_EQ(unitsOf(fromUnits(u"Größe €")), u"Größe €");
  EXPECT_EQ(unitsOf(fromUnits(u"a\0b"s)), u"a\0b"s);
  EXPECT_EQ(unitsOf(fromUnits(u"\xFEFFz")), u"\xFEFFz");
  EXPECT_EQ(unitsOf(fromUnits(u"\xFFFEz")), u"\xFFFEz");
  EXPECT_EQ(unitsOf(fromUnits(u"\xD800")), u"\xD800");
  EXPECT_EQ(unitsOf(fromUnits(u"\xDC00\xD800")), u"\xDC00\xD800");
  EXPECT_EQ(unitsOf(fromUnits(u"\xFEFF\0€"s)), u"\xFEFF\0€"s);
  EXPECT_EQ(unitsOf(fromUnits(u"a\xD83D\xDE00%@\xDE00")), u"a\xD83D\xDE00%@\xDE00");
}

TEST_F(StringsTest, UnusualStringsAreStringsLikeOthers) {
  for (const auto* const units : {u"\xFEFFz", u"a\xD800"}) {
    const CFStringRef made = fromUnits(units);
    EXPECT_EQ(unitsOf(zel::autoreleased(send<CFStringRef, "copy">(made))), units);
    EXPECT_NE((send<zel::BOOL, "isEqual:">(made, fromUnits(units))), 0);
    EXPECT_EQ((send<zel::NSInteger, "hash">(made)),
              (send<zel::NSInteger, "hash">(fromUnits(units))));
    const CFStringRef owned =
        zel::CFStringCreateWithCharacters(kAllocator, reinterpret_cast<const UniChar*>(units), 2);
    EXPECT_EQ(referencesOf(owned), 1);
    zel::CFRelease(owned);
  }
}

TEST_F(StringsTest, NoUnitsGiveTheEmptyString) {
  const UniChar unit = 'x';
  const CFStringRef empty =
      zel::autoreleased(zel::CFStringCreateWithCharacters(kAllocator, &unit, 0));
  ASSERT_NE(empty, nullptr);
  EXPECT_EQ(zel::CFStringGetLength(empty), 0);
  const CFStringRef ofNull =
      zel::autoreleased(zel::CFStringCreateWithCharacters(kAllocator, nullptr, 0));
  ASSERT_NE(ofNull, nullptr);
  EXPECT_EQ(zel::CFStringGetLength(ofNull), 0);
}

TEST_F(StringsTest, ImpossibleUnitsGiveNull) {
  const UniChar unit = 'x';
  EXPECT_EQ(zel::CFStringCreateWithCharacters(kAllocator, nullptr, 1), nullptr);
  EXPECT_EQ(zel::CFStringCreateWithCharacters(kAllocator, &unit, -1), nullptr);
}

TEST_F(StringsTest, LengthCountsUnits) {
  EXPECT_EQ(zel::CFStringGetLength(string("")), 0);
  EXPECT_EQ(zel::CFStringGetLength(string("\xE2\x82\xAC")), 1);
  EXPECT_EQ(zel::CFStringGetLength(string("\xF0\x9F\x98\x80")), 2);
}

TEST_F(StringsTest, TextFitsWithItsZeroOrNotAtAll) {
  struct Case {
    std::u16string text;
    std::string bytes;
  };
  for (const Case& one :
       {Case{u"", ""}, Case{u"abc", "abc"}, Case{u"a\x7F", "a\x7F"},
        Case{u"größe",
             "gr\xC3\xB6\xC3\x9F"
             "e"},
        Case{u"\x7FF", "\xDF\xBF"}, Case{u"€", "\xE2\x82\xAC"}, Case{u"\xFFFF", "\xEF\xBF\xBF"},
        Case{u"\xD83D\xDE00", "\xF0\x9F\x98\x80"},
        Case{u"a€\xD83D\xDE00z", "a\xE2\x82\xAC\xF0\x9F\x98\x80z"}}) {
    const auto needed = static_cast<CFIndex>(one.bytes.size()) + 1;
    EXPECT_EQ(cString(fromUnits(one.text), needed), one.bytes + "\0"s) << one.bytes;
    EXPECT_EQ(cString(fromUnits(one.text), needed + 7), one.bytes + "\0"s) << one.bytes;
    for (CFIndex size = 0; size < needed; ++size) {
      EXPECT_EQ(cString(fromUnits(one.text), size), "") << one.bytes << " in " << size;
    }
  }
}

TEST_F(StringsTest, ZeroCharacterIsWrittenThrough) {
  EXPECT_EQ(cString(fromUnits(u"a\0b"s), 10), "a\0b\0"s);
  EXPECT_EQ(cString(fromUnits(u"€\0b"s), 10), "\xE2\x82\xAC\0b\0"s);
  EXPECT_EQ(cString(fromUnits(u"\0"s), 2), "\0\0"s);
}

TEST_F(StringsTest, LoneSurrogatesCantBeConverted) {
  for (const auto* const units :
       {u"\xD800", u"\xDC00", u"a\xD800z", u"a\xD800\xD800", u"\xDC00\xD800", u"ab\xDFFF"}) {
    EXPECT_EQ(cString(fromUnits(units), 100), "");
  }
}

TEST_F(StringsTest, RefusesWhatIsNotThere) {
  char buffer[4] = {};
  EXPECT_EQ(zel::CFStringGetCString(nullptr, buffer, 4, kCFStringEncodingUTF8), 0);
  EXPECT_EQ(zel::CFStringGetCString(string("a"), nullptr, 4, kCFStringEncodingUTF8), 0);
  EXPECT_EQ(zel::CFStringGetCString(string("a"), buffer, -1, kCFStringEncodingUTF8), 0);
  EXPECT_EQ(zel::CFStringGetCString(string("a"), buffer, 4, 0xFFFF), 0);
}

TEST_F(StringsTest, LongTextsAreWhole) {
  // Around the size up to which texts are converted without a memory block, and far above.
  for (const std::size_t count : {255U, 256U, 257U, 100'000U}) {
    std::string bytes;
    std::u16string units;
    for (std::size_t i = 0; i < count; ++i) {
      bytes += i % 2 == 0 ? "\xE2\x82\xAC" : "x";
      units += i % 2 == 0 ? u'€' : u'x';
    }
    const CFStringRef made = string(bytes.c_str());
    ASSERT_EQ(zel::CFStringGetLength(made), static_cast<CFIndex>(count));
    EXPECT_NE((send<zel::BOOL, "isEqual:">(made, fromUnits(units))), 0);
    EXPECT_EQ(text(made), bytes);
    const std::string ascii(count, 'k');
    EXPECT_EQ(text(string(ascii.c_str())), ascii);
  }
}

TEST_F(StringsTest, StringsOfEveryKindAreRead) {
  const id changing =
      send<id, "stringWithString:">(zel::classNamed<"NSMutableString">(), string("caf\xC3\xA9"));
  send<void, "appendString:">(changing, string(" \xE2\x82\xAC"));
  EXPECT_EQ(text(changing), "caf\xC3\xA9 \xE2\x82\xAC");
  const id part = send<id, "substringFromIndex:">(string("0123456789"), CFIndex{7});
  EXPECT_EQ(text(part), "789");
  const id part_of_wide = send<id, "substringFromIndex:">(string("\xE2\x82\xAC"
                                                                 "123456789"),
                                                          CFIndex{7});
  EXPECT_EQ(text(part_of_wide), "789");
  const id number = send<id, "numberWithInt:">(zel::classNamed<"NSNumber">(), 42);
  EXPECT_EQ(text(send<id, "description">(number)), "42");
  const id path = send<id, "stringByAppendingPathComponent:">(string("/tmp"), string("x"));
  EXPECT_EQ(text(path), "/tmp/x");
}

TEST_F(StringsTest, AsciiAndMacRomanTakeTheSameShortWay) {
  EXPECT_EQ(cString(string("plain"), 6, kCFStringEncodingASCII), "plain\0"s);
  EXPECT_EQ(cString(string("plain"), 5, kCFStringEncodingASCII), "");
  EXPECT_EQ(cString(string("caf\xC3\xA9"), 10, kCFStringEncodingASCII), "");
  EXPECT_EQ(cString(string("caf\xC3\xA9"), 5, kCFStringEncodingMacRoman), "caf\x8E\0"s);
  EXPECT_EQ(cString(string("caf\xC3\xA9"), 4, kCFStringEncodingMacRoman), "");
}

// --- classes of texts that others define

struct Method {
  const char* selector;
  void (*implementation)();
  const char* types;
};

template <class Function>
Method method(const char* selector, Function function, const char* types) {
  return {selector, reinterpret_cast<void (*)()>(function), types};
}

// An object of a new class with these methods; autoreleased.
CFStringRef instanceOf(const std::string& name, zel::Class* superclass,
                       const std::vector<Method>& methods) {
  zel::Class* const made = objc_allocateClassPair(superclass, name.c_str(), 0);
  for (const Method& one : methods) {
    zel::class_addMethod(made, zel::sel_registerName(one.selector), one.implementation, one.types);
  }
  objc_registerClassPair(made);
  return zel::autoreleased(send<CFStringRef, "alloc">(made));
}

template <CFIndex Length>
CFIndex lengthOf(CFStringRef /*self*/, zel::SEL /*selector*/) {
  return Length;
}

TEST_F(StringsTest, EveryClassOfTextsAnswersForItself) {
  constexpr CFIndex (*kLengths[])(CFStringRef, zel::SEL) = {lengthOf<1>, lengthOf<2>, lengthOf<3>};
  // More classes than are remembered at a time.
  std::vector<CFStringRef> texts;
  for (std::size_t i = 0; i < 60; ++i) {
    texts.push_back(instanceOf("OwnTexts" + std::to_string(i), zel::classNamed<"NSString">(),
                               {method("length", kLengths[i % 3], "Q@:")}));
  }
  for (int turn = 0; turn < 2; ++turn) {
    for (std::size_t i = 0; i < texts.size(); ++i) {
      EXPECT_EQ(zel::CFStringGetLength(texts[i]), static_cast<CFIndex>(i % 3) + 1) << i;
      EXPECT_EQ(zel::CFStringGetLength(texts[i]), static_cast<CFIndex>(i % 3) + 1) << i;
    }
  }
}

TEST_F(StringsTest, ThreadsMeetClassesAtOnce) {
  constexpr CFIndex (*kLengths[])(CFStringRef, zel::SEL) = {lengthOf<1>, lengthOf<2>, lengthOf<3>,
                                                            lengthOf<4>, lengthOf<5>};
  constexpr std::size_t kClasses = 20;  // some stand in the same place
  std::vector<CFStringRef> texts;
  for (std::size_t i = 0; i < kClasses; ++i) {
    texts.push_back(instanceOf("SharedTexts" + std::to_string(i), zel::classNamed<"NSString">(),
                               {method("length", kLengths[i % 5], "Q@:")}));
  }
  std::atomic<int> wrong = 0;
  std::vector<std::thread> threads;
  for (std::size_t thread = 0; thread < 4; ++thread) {
    threads.emplace_back([&, thread] {
      for (std::size_t turn = 0; turn < 200'000; ++turn) {
        const std::size_t i = (turn * (2 * thread + 1)) % kClasses;
        if (zel::CFStringGetLength(texts[i]) != static_cast<CFIndex>(i % 5) + 1) ++wrong;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

// What a proxy hands on every message to.
CFStringRef standsFor;

id signatureOf(id /*self*/, zel::SEL /*selector*/, zel::SEL asked) {
  return send<id, "methodSignatureForSelector:">(standsFor, asked);
}
void handOn(id /*self*/, zel::SEL /*selector*/, id invocation) {
  send<void, "invokeWithTarget:">(invocation, standsFor);
}

TEST_F(StringsTest, AProxyAnswersForTheTextThatItStandsFor) {
  const CFStringRef proxy = instanceOf("OwnProxy", zel::classNamed<"NSProxy">(),
                                       {method("methodSignatureForSelector:", signatureOf, "@@::"),
                                        method("forwardInvocation:", handOn, "v@:@")});
  for (const char* const bytes : {"plain", "caf\xC3\xA9", "more"}) {
    const host::Pool pool;  // what answered for it is gone with each pool
    standsFor = string(bytes);
    EXPECT_EQ(zel::CFStringGetLength(proxy), zel::CFStringGetLength(standsFor));
    EXPECT_EQ(text(proxy), bytes);
  }
}

TEST_F(StringsTest, WhatIsNoTextAnswersForItselfEachTime) {
  const auto* const data = reinterpret_cast<CFStringRef>(send<id, "dataWithBytes:length:">(
      zel::classNamed<"NSData">(), static_cast<const void*>("abc"), CFIndex{3}));
  EXPECT_EQ(zel::CFStringGetLength(data), 3);
  EXPECT_EQ(zel::CFStringGetLength(data), 3);
  const CFStringRef mute =
      zel::autoreleased(send<CFStringRef, "new">(zel::classNamed<"NSObject">()));
  char buffer[4];
  for (int turn = 0; turn < 2; ++turn) {
    EXPECT_NE(zel::catching([&] { static_cast<void>(zel::CFStringGetLength(mute)); }), nullptr);
    EXPECT_NE(
        zel::catching([&] { zel::CFStringGetCString(mute, buffer, 4, kCFStringEncodingUTF8); }),
        nullptr);
  }
}

constexpr unsigned kFoundationsUtf8 = 4;
unsigned askedEncoding;

unsigned storedAsUtf8(CFStringRef /*self*/, zel::SEL /*selector*/) { return kFoundationsUtf8; }
zel::BOOL giveUtf8(CFStringRef /*self*/, zel::SEL /*selector*/, char* buffer, std::size_t size,
                   unsigned encoding) {
  askedEncoding = encoding;
  if (size < 4) return 0;
  std::memcpy(buffer, "\xE2\x82\xAC", 4);
  return 1;
}
UniChar euro(CFStringRef /*self*/, zel::SEL /*selector*/, std::size_t /*index*/) { return u'€'; }

TEST_F(StringsTest, TextThatIsStoredAsWantedIsCopied) {
  const CFStringRef stored =
      instanceOf("OwnUtf8", zel::classNamed<"NSString">(),
                 {method("fastestEncoding", storedAsUtf8, "I@:"),
                  method("getCString:maxLength:encoding:", giveUtf8, "C@:*QI"),
                  method("length", lengthOf<1>, "Q@:"), method("characterAtIndex:", euro, "S@:Q")});
  askedEncoding = 0;
  EXPECT_EQ(cString(stored, 4), "\xE2\x82\xAC\0"s);
  EXPECT_EQ(askedEncoding, kFoundationsUtf8);
  EXPECT_EQ(cString(stored, 3), "");
  // What stands in for a text is asked as one.
  const CFStringRef standIn =
      instanceOf("OwnStandIn", zel::classNamed<"NSProxy">(),
                 {method("fastestEncoding", storedAsUtf8, "I@:"),
                  method("getCString:maxLength:encoding:", giveUtf8, "C@:*QI")});
  EXPECT_EQ(cString(standIn, 4), "\xE2\x82\xAC\0"s);
  // In any other encoding it isn't.
  askedEncoding = 0;
  EXPECT_EQ(cString(stored, 4, kCFStringEncodingMacRoman), "\xDB\0"s);
  EXPECT_EQ(cString(stored, 4, kCFStringEncodingASCII), "");
  EXPECT_EQ(askedEncoding, 0U);
}

TEST_F(StringsTest, TextsOfFoundationItselfAreWhole) {
  const CFStringRef constant = zel::zelFoundationConstant("NSGlobalDomain");
  EXPECT_EQ(cString(constant, 15), "NSGlobalDomain\0"s);
  EXPECT_EQ(cString(constant, 14), "");
  EXPECT_EQ(cString(constant, 15, kCFStringEncodingMacRoman), "NSGlobalDomain\0"s);
}

}  // namespace
}  // namespace native_test
