// Every text encoding that the library promises, with literal bytes, both ways.
#include <optional>
#include <sstream>

#include "native/corefoundation.h"
#include "tests/native/support.h"

namespace native_test {
namespace {

using zel::CFIndex;
using zel::CFStringEncoding;
using zel::CFStringRef;
using zel::UniChar;

using namespace std::string_literals;

struct Sample {
  CFStringEncoding encoding;
  std::string bytes;
  std::u16string text;
};

void PrintTo(const Sample& sample, std::ostream* out) {
  *out << std::hex << "encoding 0x" << sample.encoding;
}

class EncodingsTest : public NativeTest {};

std::optional<std::u16string> decoded(const std::string& bytes, CFStringEncoding encoding) {
  const CFStringRef made = zel::autoreleased(
      zel::CFStringCreateWithCString(zel::kDefaultAllocator, bytes.c_str(), encoding));
  if (made == nullptr) return std::nullopt;
  std::u16string units;
  for (CFIndex i = 0; i < zel::CFStringGetLength(made); ++i) {
    units.push_back(zel::send<UniChar, "characterAtIndex:">(made, i));
  }
  return units;
}

/// @param size that the result is expected to have, without the zero.
std::optional<std::string> encoded(const std::u16string& units, CFStringEncoding encoding,
                                   std::size_t size) {
  const CFStringRef made = zel::autoreleased(zel::CFStringCreateWithCharacters(
      zel::kDefaultAllocator, reinterpret_cast<const UniChar*>(units.data()),
      static_cast<CFIndex>(units.size())));
  std::string buffer(size + 1, '#');
  if (zel::CFStringGetCString(made, buffer.data(), static_cast<CFIndex>(buffer.size()), encoding) ==
      0) {
    return std::nullopt;
  }
  EXPECT_EQ(buffer.back(), '\0');
  buffer.pop_back();
  return buffer;
}

constexpr std::size_t kPlenty = 100;

class BothWaysTest : public EncodingsTest, public testing::WithParamInterface<Sample> {};

TEST_P(BothWaysTest, BytesAreText) {
  EXPECT_EQ(decoded(GetParam().bytes, GetParam().encoding), GetParam().text);
}

TEST_P(BothWaysTest, TextIsBytes) {
  const Sample& sample = GetParam();
  EXPECT_EQ(encoded(sample.text, sample.encoding, sample.bytes.size()), sample.bytes);
}

TEST_P(BothWaysTest, OneByteTooFewIsRefused) {
  const Sample& sample = GetParam();
  EXPECT_EQ(encoded(sample.text, sample.encoding, sample.bytes.size() - 1), std::nullopt);
}

std::string byNumber(const testing::TestParamInfo<Sample>& info) {
  std::ostringstream name;
  name << "x" << std::hex << info.param.encoding;
  return name.str();
}

INSTANTIATE_TEST_SUITE_P(
    Encodings, BothWaysTest,
    testing::Values(Sample{0x0000, "Caf\x8E \xC6\xDB\xF0\xBD\x80\xFF",
                           u"Café ∆€\xF8FFΩÄˇ"},                     // Mac Roman
                    Sample{0x0201, "\xA1\xE9\xFF\x80", u"¡éÿ\x80"},  // ISO Latin-1
                    Sample{0x0202, "\xA1\xB1\xF8", u"Ąąř"},          // -2
                    Sample{0x0203, "\xA1\xA9\xFE", u"Ħİŝ"},          // -3
                    Sample{0x0204, "\xA2\xD1\xFF", u"ĸŅ˙"},          // -4
                    Sample{0x0205, "\xB6\xD6\xF0", u"Жж№"},          // -5 Cyrillic
                    Sample{0x0206, "\xC7\xE4\xAC", u"ال،"},          // -6 Arabic
                    Sample{0x0207, "\xC1\xE1\xD6", u"ΑαΦ"},          // -7 Greek
                    Sample{0x0208, "\xE0\xFA", u"את"},               // -8 Hebrew
                    Sample{0x0209, "\xD0\xFD\xFE", u"Ğış"},          // -9 Turkish
                    Sample{0x020A, "\xA1\xBD\xFF", u"Ą―ĸ"},          // -10 Nordic
                    Sample{0x020B, "\xA1\xE0\xF0\xFB", u"กเ๐๛"},     // -11 Thai
                    Sample{0x020D, "\xA5\xC0\xFF", u"„Ą’"},          // -13 Baltic
                    Sample{0x020E, "\xA1\xD0\xFF", u"ḂŴÿ"},          // -14 Celtic
                    Sample{0x020F, "\xA4\xBD\xBE", u"€œŸ"},          // -15
                    Sample{0x0500, "\x80\x93\x94\xE9", u"€“”é"},     // Windows 1252
                    Sample{0x0501, "\x8A\xA5\xF8", u"ŠĄř"},          // 1250
                    Sample{0x0502, "\xC6\xE6\xA8", u"ЖжЁ"},          // 1251
                    Sample{0x0503, "\xA2\xC1\xE1", u"ΆΑα"},          // 1253
                    Sample{0x0504, "\xD0\xFD\x80", u"Ğı€"},          // 1254
                    Sample{0x0600, "plain \x7F", u"plain \x7F"},     // ASCII
                    Sample{0x0A02, "\xF2\xD5\xD3", u"Рус"},          // KOI8-R
                    Sample{0x0B01, "\x81\xA9\xAC\xAD\xB8\xB9\xBA\xFD", u"À’‹›‚„”ÿ"}),  // NextStep
    byNumber);

INSTANTIATE_TEST_SUITE_P(
    EastAsia, BothWaysTest,
    testing::Values(Sample{0x0820, "a\x1B$BF|K\\\x1B(Bz", u"a日本z"},  // ISO-2022-JP
                    Sample{0x0920, "a\xC6\xFC\xCB\xDC\x8E\xB1\x8F\xB0\xA1", u"a日本ｱ丂"},  // EUC-JP
                    Sample{0x0930, "a\xC4\xE3\xBA\xC3", u"a你好"},                         // EUC-CN
                    Sample{0x0940, "a\xC7\xD1\xB1\xDB", u"a한글"},                         // EUC-KR
                    Sample{0x0A01, "a\x93\xFA\x96\x7B\xB1\x5C", u"a日本ｱ¥"},  // Shift JIS
                    Sample{0x0A03, "a\xA4\xA4\xA4\xE5", u"a中文"}),           // Big5
    byNumber);

INSTANTIATE_TEST_SUITE_P(
    Unicode, BothWaysTest,
    testing::Values(Sample{0x08000100, "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", u"aé€\xD83D\xDE00"},
                    Sample{0x0100, "\xE9\x20\xAC\x20", u"\x20E9\x20AC"},  // the machine's order
                    Sample{0x14000100, "\xE9\x20\xAC\x20\x3D\xD8", u"\x20E9\x20AC\xD83D"},
                    Sample{0x10000100, "\x20\xE9\x20\xAC\xFE\xFF", u"\x20E9\x20AC\xFEFF"},
                    Sample{0x04000100, "Hi +Jjo-", u"Hi ☺"},
                    Sample{0x0BFF, "caf\\351 \\u2603\\\\", u"café ☃\\"}),
    byNumber);

TEST_F(EncodingsTest, Utf32HoldsOnlyWholeCodePointsWithoutAZeroByte) {
  // A C string of UTF-32 ends in its first character; only its absence can be read.
  for (const CFStringEncoding encoding : {0x0C000100U, 0x18000100U, 0x1C000100U}) {
    EXPECT_EQ(decoded("", encoding), u"");
    EXPECT_EQ(decoded("abc", encoding), std::nullopt);
    EXPECT_EQ(decoded("\xFF\xFF\xFF\xFF", encoding), std::nullopt);
    EXPECT_EQ(encoded(u"\xD800", encoding, kPlenty), std::nullopt);
    EXPECT_EQ(encoded(u"ab", encoding, 7), std::nullopt);
  }
  EXPECT_EQ(encoded(u"a\xD83D\xDE00", 0x18000100, 8), "\0\0\0a\0\x01\xF6\0"s);
  EXPECT_EQ(encoded(u"a\xD83D\xDE00", 0x1C000100, 8), "a\0\0\0\0\xF6\x01\0"s);
  EXPECT_EQ(encoded(u"a\xD83D\xDE00", 0x0C000100, 8), "a\0\0\0\0\xF6\x01\0"s);
}

TEST_F(EncodingsTest, TextEndsAtTheFirstZeroByteInEveryEncoding) {
  EXPECT_EQ(decoded("ab\0cd"s, 0x0000), u"ab");
  EXPECT_EQ(decoded("\xE9\x20\0\x20"s, 0x14000100), u"\x20E9");
}

TEST_F(EncodingsTest, MacRomanIsWhole) {
  std::string bytes;
  for (int byte = 0x80; byte < 0x100; ++byte) bytes.push_back(static_cast<char>(byte));
  const std::u16string text =
      u"ÄÅÇÉÑÖÜáàâäãåçéèêëíìîïñóòôöõúùûü†°¢£§•¶ß®©™´¨≠ÆØ∞±≤≥¥µ∂∑∏π∫ªºΩæø"
      u"¿¡¬√ƒ≈∆«»…\xA0ÀÃÕŒœ–—“”‘’÷◊ÿŸ⁄€‹›ﬁﬂ‡·‚„‰ÂÊÁËÈÍÎÏÌÓÔ\xF8FFÒÚÛÙıˆ˜¯˘˙˚¸˝˛ˇ";
  EXPECT_EQ(decoded(bytes, 0x0000), text);
  EXPECT_EQ(encoded(text, 0x0000, bytes.size()), bytes);
}

TEST_F(EncodingsTest, BytesThatAreNotValidGiveNull) {
  const Sample cases[] = {
      {0x0600, "a\x80", {}},         {0x0600, "\xFF", {}},   {0x0203, "\xA5", {}},
      {0x0206, "\xA1", {}},          {0x0207, "\xFF", {}},   {0x0208, "\xFF", {}},
      {0x020B, "\xDB", {}},          {0x020B, "\xFC", {}},   {0x0500, "\x81", {}},
      {0x0500, "a\x9D", {}},         {0x0501, "\x81", {}},   {0x0502, "\x98", {}},
      {0x0503, "\xFF", {}},          {0x0504, "\x81", {}},   {0x0B01, "\xFE", {}},
      {0x0B01, "\xFF", {}},          {0x0820, "\x80", {}},   {0x0820, "\x1B$BF", {}},
      {0x0820, "\x1B(I1", {}},       {0x0920, "\xC6", {}},   {0x0920, "\x80", {}},
      {0x0920, "\xC6 ", {}},         {0x0930, "\xC4", {}},   {0x0930, "\x90", {}},
      {0x0940, "\xC7", {}},          {0x0940, "\x80", {}},   {0x0A01, "\x93", {}},
      {0x0A01, "\x93\x20", {}},      {0x0A01, "\x80", {}},   {0x0A03, "\xA4", {}},
      {0x0A03, "\x80", {}},          {0x0100, "abc", {}},    {0x10000100, "a", {}},
      {0x14000100, "a", {}},         {0x04000100, "+J", {}}, {0x04000100, "+Jj", {}},
      {0x04000100, "+Jjo-\xE9", {}}, {0x04000100, "a~", {}}, {0x0BFF, "\xE9", {}},
      {0x0BFF, "\\u26", {}},         {0x0BFF, "\\q", {}},
  };
  for (const Sample& one : cases) {
    EXPECT_EQ(decoded(one.bytes, one.encoding), std::nullopt)
        << testing::PrintToString(one) << " " << testing::PrintToString(one.bytes);
  }
}

TEST_F(EncodingsTest, CharactersThatAnEncodingLacksAreRefused) {
  const Sample cases[] = {
      {0x0000, "", u"ж"},      {0x0000, "", u"Δ"},      {0x0000, "", u"\xE01E"},
      {0x0600, "", u"é"},      {0x0201, "", u"€"},      {0x0202, "", u"¥"},
      {0x020B, "", u"№"},      {0x0500, "", u"ж"},      {0x0500, "", u"\x81"},
      {0x0B01, "", u"ﾸ"},      {0x0A02, "", u"é"},      {0x0820, "", u"é"},
      {0x0820, "", u"\x1B"},   {0x0920, "", u"ก"},      {0x0920, "", u"\x81"},
      {0x0930, "", u"ก"},      {0x0940, "", u"ก"},      {0x0A01, "", u"ก"},
      {0x0A01, "", u"\\"},     {0x0A01, "", u"~"},      {0x0A03, "", u"ก"},
      {0x0000, "", u"\xD800"}, {0x0920, "", u"\xD800"}, {0x0BFF, "", u"\xD800\xD800"},
  };
  for (const Sample& one : cases) {
    EXPECT_EQ(encoded(one.text, one.encoding, kPlenty), std::nullopt)
        << std::hex << one.encoding << " " << testing::PrintToString(one.text);
  }
}

TEST_F(EncodingsTest, EncodingsWithoutAConverterGiveNull) {
  // Mac Japanese, ISO 8859-16, DOS, Windows Hebrew to Vietnamese, GBK, HZ, EUC-TW, EBCDIC.
  for (const CFStringEncoding encoding :
       {0x0001U, 0x0210U, 0x0400U, 0x0505U, 0x0506U, 0x0507U, 0x0508U, 0x0631U, 0x0A05U, 0x0931U,
        0x0C01U, 0x020CU, 0xFFFFU}) {
    EXPECT_EQ(decoded("a", encoding), std::nullopt) << encoding;
    EXPECT_EQ(encoded(u"a", encoding, kPlenty), std::nullopt) << encoding;
  }
}

}  // namespace
}  // namespace native_test
