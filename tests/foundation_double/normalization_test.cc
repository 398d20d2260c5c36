// Strings that can be changed, their characters and Unicode form D in the double.

#include <array>

#include "tests/foundation_double/fixture.h"

namespace {

using zel::CFMutableStringRef;
using zel::CFStringRef;
using zel::UniChar;

class FoundationNormalizationTest : public FoundationTest {
 protected:
  std::string decomposed(const char* utf8) {
    const CFMutableStringRef copy =
        zel::CFStringCreateMutableCopy(nullptr, 0, foundation_.string(utf8));
    zel::CFStringNormalize(copy, 0);
    std::string text = foundation_.utf8(copy);
    zel::CFRelease(copy);
    return text;
  }
};

TEST_F(FoundationNormalizationTest, LettersComeApart) {
  EXPECT_EQ(decomposed("\u00C0\u00E9\u00FC\u00F1\u00E7\u00FF"),
            "A\u0300e\u0301u\u0308n\u0303c\u0327y\u0308");
  EXPECT_EQ(decomposed("\u0100\u0151\u017E"), "A\u0304o\u030Bz\u030C");
  EXPECT_EQ(decomposed("\u01A1\u01B0\u1EA0\u1EF9"), "o\u031Bu\u031BA\u0323y\u0303");
  EXPECT_EQ(decomposed("\u1EBF\u1EE3"), "e\u0302\u0301o\u031B\u0323");
}

TEST_F(FoundationNormalizationTest, HangulComesApart) {
  EXPECT_EQ(decomposed("\uAC00\uD55C\uD7A3"), "\u1100\u1161\u1112\u1161\u11AB\u1112\u1175\u11C2");
}

TEST_F(FoundationNormalizationTest, OtherTextStaysAsItIs) {
  for (const char* const text :
       {"", "plain", "e\u0301", "\u00DF\u00F8\u0131", "\u4E00\U0001F600"}) {
    EXPECT_EQ(decomposed(text), text);
  }
}

TEST_F(FoundationNormalizationTest, ACopyIsAStringOfItsOwn) {
  const CFStringRef original = foundation_.string("\u00E9");
  const CFMutableStringRef copy = zel::CFStringCreateMutableCopy(nullptr, 0, original);
  EXPECT_TRUE(zel::isKindOf<"NSString">(copy));
  EXPECT_TRUE(zel::isKindOf<"NSMutableString">(copy));
  zel::CFStringNormalize(copy, 0);
  EXPECT_EQ(zel::CFStringGetLength(copy), 2);
  EXPECT_EQ(foundation_.utf8(original), "\u00E9");
  EXPECT_EQ(foundation_.unbalanced(), "NSMutableString \"e\u0301\": 1 reference\n");
  zel::CFRelease(copy);
}

TEST_F(FoundationNormalizationTest, CharactersAreCopiedFromARange) {
  std::array<UniChar, 3> units = {1, 2, 3};
  zel::CFStringGetCharacters(foundation_.string("a\u20ACbc"), {1, 2}, units.data());
  EXPECT_EQ(units, (std::array<UniChar, 3>{0x20AC, 'b', 3}));
  zel::CFStringGetCharacters(foundation_.string("a"), {1, 0}, units.data());
  EXPECT_EQ(units, (std::array<UniChar, 3>{0x20AC, 'b', 3}));
}

TEST_F(FoundationNormalizationTest, APretendedLengthIsFilled) {
  std::array<UniChar, 3> units = {};
  zel::CFStringGetCharacters(foundation_.stringOfLength(300), {297, 3}, units.data());
  EXPECT_EQ(units, (std::array<UniChar, 3>{'x', 'x', 'x'}));
  const CFMutableStringRef copy =
      zel::CFStringCreateMutableCopy(nullptr, 0, foundation_.stringOfLength(300));
  EXPECT_EQ(zel::CFStringGetLength(copy), 300);
  zel::CFRelease(copy);
}

TEST_F(FoundationNormalizationTest, MisuseIsReported) {
  collectFailures();
  const CFStringRef text = foundation_.string("ab");
  UniChar unit = 0;
  EXPECT_THROW(zel::CFStringGetCharacters(text, {1, 2}, &unit), std::logic_error);
  EXPECT_THROW(zel::CFStringGetCharacters(text, {-1, 1}, &unit), std::logic_error);
  EXPECT_THROW(zel::CFStringCreateMutableCopy(nullptr, 1, text), std::logic_error);
  const auto constant = const_cast<CFMutableStringRef>(text);
  EXPECT_THROW(zel::CFStringNormalize(constant, 0), std::logic_error);
  const CFMutableStringRef copy = zel::CFStringCreateMutableCopy(nullptr, 0, text);
  EXPECT_THROW(zel::CFStringNormalize(copy, 1), std::logic_error);
  zel::CFRelease(copy);
  EXPECT_EQ(failures_,
            (Lines{"characters outside of the string", "characters outside of the string",
                   "a limited string, which the double doesn't know",
                   "a string changed that can't be", "a normalisation form other than D"}));
}

TEST_F(FoundationNormalizationTest, EveryCallIsRecordedAndCanFail) {
  const CFStringRef text = foundation_.string("\u00E9");
  UniChar unit = 7;
  const Lines functions = {"CFStringCreateMutableCopy", "CFStringGetCharacters",
                           "CFStringNormalize"};
  for (const std::string& function : functions) foundation_.failCall(function);
  EXPECT_EQ(zel::CFStringCreateMutableCopy(nullptr, 0, text), nullptr);
  zel::CFStringGetCharacters(text, {0, 1}, &unit);
  zel::CFStringNormalize(const_cast<CFMutableStringRef>(text), 0);
  EXPECT_EQ(foundation_.calls(), functions);
  EXPECT_EQ(unit, 7);
  EXPECT_EQ(foundation_.utf8(text), "\u00E9");
}

}  // namespace
