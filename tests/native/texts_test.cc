#include <string_view>

#include "native/corefoundation.h"
#include "tests/native/support.h"

namespace native_test {
namespace {

using zel::CFMutableStringRef;
using zel::CFStringRef;
using zel::UniChar;

constexpr zel::CFIndex kFormD = 0;
constexpr zel::CFIndex kFormKD = 1;
constexpr zel::CFIndex kFormC = 2;
constexpr zel::CFIndex kFormKC = 3;

class TextsTest : public NativeTest {};

CFStringRef fromUnits(std::u16string_view units) {
  const auto* const data = reinterpret_cast<const UniChar*>(units.data());
  return zel::autoreleased(zel::CFStringCreateWithCharacters(
      zel::kDefaultAllocator, data, static_cast<zel::CFIndex>(units.size())));
}

std::u16string unitsOf(CFStringRef string, zel::CFRange range) {
  std::u16string units(static_cast<std::size_t>(range.length) + 1, u'#');
  zel::CFStringGetCharacters(string, range, reinterpret_cast<UniChar*>(units.data()));
  EXPECT_EQ(units.back(), u'#') << "written past the end";
  units.pop_back();
  return units;
}

std::u16string unitsOf(CFStringRef string) {
  return unitsOf(string, {0, zel::CFStringGetLength(string)});
}

CFMutableStringRef mutableCopy(CFStringRef string, zel::CFIndex limit = 0) {
  return zel::autoreleased(zel::CFStringCreateMutableCopy(zel::kDefaultAllocator, limit, string));
}

std::u16string normalised(std::u16string_view units, zel::CFIndex form) {
  CFMutableStringRef const copy = mutableCopy(fromUnits(units));
  zel::CFStringNormalize(copy, form);
  return unitsOf(copy);
}

TEST_F(TextsTest, TakesOutAPart) {
  EXPECT_EQ(unitsOf(string("abcdef"), {2, 3}), u"cde");
  EXPECT_EQ(unitsOf(string("abcdef"), {0, 6}), u"abcdef");
  EXPECT_EQ(unitsOf(string("abcdef"), {6, 0}), u"");
  EXPECT_EQ(unitsOf(fromUnits(u"a\U0001F600z"), {1, 2}), u"\U0001F600");
}

TEST_F(TextsTest, MutableCopyIsTheCallersOwn) {
  const CFStringRef original = string("text");
  const CFMutableStringRef copy =
      zel::CFStringCreateMutableCopy(zel::kDefaultAllocator, 0, original);
  EXPECT_EQ(referencesOf(copy), 1);
  zel::send<void, "appendString:">(copy, string("s"));
  EXPECT_EQ(text(copy), "texts");
  EXPECT_EQ(text(original), "text");
  zel::CFRelease(copy);
}

TEST_F(TextsTest, CopyHoldsItsLimit) {
  EXPECT_EQ(text(mutableCopy(string("text"), 4)), "text");
  EXPECT_EQ(mutableCopy(string("texts"), 4), nullptr);
  EXPECT_EQ(mutableCopy(nullptr), nullptr);
}

TEST_F(TextsTest, FormD) {
  EXPECT_EQ(normalised(u"\u00E9", kFormD), u"e\u0301");
  EXPECT_EQ(normalised(u"e\u0301", kFormD), u"e\u0301");
  EXPECT_EQ(normalised(u"\u1E69", kFormD), u"s\u0323\u0307");
  EXPECT_EQ(normalised(u"s\u0307\u0323", kFormD), u"s\u0323\u0307");
  EXPECT_EQ(normalised(u"\uAC01", kFormD), u"\u1100\u1161\u11A8");
  EXPECT_EQ(normalised(u"\u212B", kFormD), u"A\u030A");
  EXPECT_EQ(normalised(u"\uFB01", kFormD), u"\uFB01");
  EXPECT_EQ(normalised(u"\U0001D15E", kFormD), u"\U0001D157\U0001D165");
  EXPECT_EQ(normalised(u"\U0001F600", kFormD), u"\U0001F600");
  EXPECT_EQ(normalised(u"plain", kFormD), u"plain");
  EXPECT_EQ(normalised(u"", kFormD), u"");
}

TEST_F(TextsTest, OtherForms) {
  EXPECT_EQ(normalised(u"\u00E9\uFB01", kFormKD), u"e\u0301fi");
  EXPECT_EQ(normalised(u"e\u0301\uFB01", kFormC), u"\u00E9\uFB01");
  EXPECT_EQ(normalised(u"e\u0301\uFB01", kFormKC), u"\u00E9fi");
  EXPECT_EQ(normalised(u"\u1100\u1161\u11A8", kFormC), u"\uAC01");
}

TEST_F(TextsTest, UnknownFormChangesNothing) {
  EXPECT_EQ(normalised(u"\u00E9", 4), u"\u00E9");
  EXPECT_EQ(normalised(u"\u00E9", -1), u"\u00E9");
}

TEST_F(TextsTest, TextWithHalfOfAPairStaysAsItIs) {
  EXPECT_EQ(normalised(u"a\xD83Dz", kFormD), u"a\xD83Dz");
  EXPECT_EQ(normalised(u"\u00E9\xDE00", kFormD), u"\u00E9\xDE00");
}

}  // namespace
}  // namespace native_test
