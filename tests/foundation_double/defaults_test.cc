// The double's NSUserDefaults.

#include <cmath>
#include <limits>

#include "tests/foundation_double/fixture.h"

namespace {

using zel::BOOL;
using zel::CFStringRef;
using zel::CFURLRef;
using zel::id;
using zel::NSInteger;
using zel::NSUserDefaults;
using zel::send;

constexpr NSInteger kMost = std::numeric_limits<NSInteger>::max();
constexpr NSInteger kLeast = std::numeric_limits<NSInteger>::min();

class FoundationDefaultsTest : public FoundationTest {
 protected:
  void SetUp() override {
    FoundationTest::SetUp();
    defaults_ = foundation_.standardDefaults();
    key_ = foundation_.string("key");
  }

  void setText(const char* text) {
    send<void, "setObject:forKey:">(defaults_, foundation_.string(text), key_);
  }
  NSInteger integer() { return send<NSInteger, "integerForKey:">(defaults_, key_); }
  float single() { return send<float, "floatForKey:">(defaults_, key_); }
  double twice() { return send<double, "doubleForKey:">(defaults_, key_); }
  int boolean() { return send<BOOL, "boolForKey:">(defaults_, key_); }
  id value() { return send<id, "objectForKey:">(defaults_, key_); }
  std::string text() {
    return foundation_.utf8(send<CFStringRef, "stringForKey:">(defaults_, key_));
  }
  NSUserDefaults* allocated() {
    return send<NSUserDefaults*, "alloc">(zel::lookUpClass("NSUserDefaults"));
  }

  NSUserDefaults* defaults_ = nullptr;
  CFStringRef key_ = nullptr;
};

TEST_F(FoundationDefaultsTest, AnAbsentKeyGivesZeros) {
  EXPECT_EQ(integer(), 0);
  EXPECT_EQ(single(), 0.0F);
  EXPECT_EQ(twice(), 0.0);
  EXPECT_EQ(boolean(), 0);
  EXPECT_EQ(text(), "(null)");
  EXPECT_EQ(value(), nullptr);
  EXPECT_EQ((send<CFURLRef, "URLForKey:">(defaults_, key_)), nullptr);
}

TEST_F(FoundationDefaultsTest, IntegersComeBack) {
  for (const NSInteger stored : {NSInteger{0}, NSInteger{-5}, kMost, kLeast}) {
    send<void, "setInteger:forKey:">(defaults_, stored, key_);
    EXPECT_EQ(integer(), stored);
  }
  send<void, "setInteger:forKey:">(defaults_, NSInteger{-5}, key_);
  EXPECT_EQ(twice(), -5.0);
  EXPECT_EQ(boolean(), 1);
  EXPECT_EQ(text(), "-5");
}

TEST_F(FoundationDefaultsTest, SinglesComeBack) {
  send<void, "setFloat:forKey:">(defaults_, 0.1F, key_);
  EXPECT_EQ(single(), 0.1F);
  EXPECT_EQ(twice(), 0.100000001490116119384765625);
  EXPECT_EQ(text(), "0.1");
}

TEST_F(FoundationDefaultsTest, DoublesComeBack) {
  send<void, "setDouble:forKey:">(defaults_, 0.1, key_);
  EXPECT_EQ(twice(), 0.1);
  EXPECT_EQ(single(), 0.1F);
  EXPECT_EQ(integer(), 0);
  EXPECT_EQ(boolean(), 1);
}

TEST_F(FoundationDefaultsTest, DoublesBeyondAllIntegersAreCut) {
  send<void, "setDouble:forKey:">(defaults_, 1e300, key_);
  EXPECT_EQ(integer(), kMost);
  send<void, "setDouble:forKey:">(defaults_, -1e300, key_);
  EXPECT_EQ(integer(), kLeast);
  send<void, "setDouble:forKey:">(defaults_, std::nan(""), key_);
  EXPECT_EQ(integer(), 0);
}

TEST_F(FoundationDefaultsTest, BooleanBytesComeBackUnchanged) {
  for (const int byte : {0, 1, 2, 0x80, 0xFF}) {
    send<void, "setBool:forKey:">(defaults_, static_cast<BOOL>(byte), key_);
    EXPECT_EQ(boolean(), byte);
  }
}

TEST_F(FoundationDefaultsTest, TextsComeBackAndConvert) {
  setText("12.5 m");
  EXPECT_EQ(text(), "12.5 m");
  EXPECT_EQ(integer(), 12);
  EXPECT_EQ(single(), 12.5F);
  EXPECT_EQ(twice(), 12.5);
  EXPECT_EQ(boolean(), 1);
  for (const char* const yes : {"YES", "true", "1", "007"}) {
    setText(yes);
    EXPECT_EQ(boolean(), 1) << yes;
  }
  for (const char* const no : {"", "NO", "false", "0"}) {
    setText(no);
    EXPECT_EQ(boolean(), 0) << no;
  }
}

TEST_F(FoundationDefaultsTest, TheStoreHoldsOnToItsValues) {
  setText("value");
  const id stored = value();
  EXPECT_EQ(foundation_.references(stored), 2);
  foundation_.drainPool();
  key_ = foundation_.string("key");
  EXPECT_EQ(foundation_.references(stored), 1);
  EXPECT_EQ(text(), "value");
  send<void, "removeObjectForKey:">(defaults_, key_);
  EXPECT_EQ(foundation_.references(stored), 0);
}

TEST_F(FoundationDefaultsTest, UrlsComeBack) {
  const CFURLRef url =
      zel::CFURLCreateWithString(nullptr, foundation_.string("http://example.com/"), nullptr);
  send<void, "setURL:forKey:">(defaults_, zel::autoreleased(url), key_);
  EXPECT_EQ((send<CFURLRef, "URLForKey:">(defaults_, key_)), url);
  EXPECT_EQ(text(), "(null)");
  EXPECT_EQ(integer(), 0);
  setText("http://example.com/");
  EXPECT_EQ((send<CFURLRef, "URLForKey:">(defaults_, key_)), nullptr);
}

TEST_F(FoundationDefaultsTest, NilRemovesTheKey) {
  setText("value");
  send<void, "setObject:forKey:">(defaults_, id{nullptr}, key_);
  EXPECT_EQ(value(), nullptr);
  setText("value");
  send<void, "setURL:forKey:">(defaults_, CFURLRef{nullptr}, key_);
  EXPECT_EQ(value(), nullptr);
}

TEST_F(FoundationDefaultsTest, NilAndEmptyKeysRaise) {
  for (const CFStringRef bad : {CFStringRef{nullptr}, foundation_.string("")}) {
    const std::string expected = "NSInvalidArgumentException: the key is nil or empty";
    EXPECT_EQ(raised([&] { send<NSInteger, "integerForKey:">(defaults_, bad); }), expected);
    EXPECT_EQ(raised([&] { send<id, "objectForKey:">(defaults_, bad); }), expected);
    EXPECT_EQ(raised([&] { send<void, "setFloat:forKey:">(defaults_, 1.0F, bad); }), expected);
    EXPECT_EQ(raised([&] { send<void, "setObject:forKey:">(defaults_, key_, bad); }), expected);
    EXPECT_EQ(raised([&] { send<void, "setURL:forKey:">(defaults_, id{nullptr}, bad); }), expected);
    EXPECT_EQ(raised([&] { send<void, "removeObjectForKey:">(defaults_, bad); }), expected);
  }
}

TEST_F(FoundationDefaultsTest, UnusableValuesRaise) {
  const id plain = foundation_.object("NSObject");
  EXPECT_EQ(raised([&] { send<void, "setObject:forKey:">(defaults_, plain, key_); }),
            "NSInvalidArgumentException: the value for the key NSString \"key\" is no property "
            "list: NSObject");
  EXPECT_EQ(raised([&] { send<void, "setURL:forKey:">(defaults_, key_, key_); }),
            "NSInvalidArgumentException: the value for the key NSString \"key\" is no property "
            "list: NSString \"key\"");
  EXPECT_EQ(value(), nullptr);
}

TEST_F(FoundationDefaultsTest, SynchronizeAnswersYes) {
  EXPECT_EQ((send<BOOL, "synchronize">(defaults_)), 1);
}

// --- the objects themselves

TEST_F(FoundationDefaultsTest, TheStandardObjectIsOneUntilItIsReset) {
  zel::Class* const isa = zel::lookUpClass("NSUserDefaults");
  EXPECT_EQ((send<NSUserDefaults*, "standardUserDefaults">(isa)), defaults_);
  EXPECT_EQ(foundation_.references(defaults_), 1);
  (void)zel::retained(defaults_);
  EXPECT_EQ(foundation_.unbalanced(), "NSUserDefaults: 1 reference\n");
  send<void, "resetStandardUserDefaults">(isa);
  EXPECT_NE((send<NSUserDefaults*, "standardUserDefaults">(isa)), defaults_);
  EXPECT_EQ(foundation_.references(defaults_), 1);
  zel::release(defaults_);
  EXPECT_EQ(foundation_.references(defaults_), 0);
}

TEST_F(FoundationDefaultsTest, TheStandardObjectIsNotTheCallersToRelease) {
  collectFailures();
  zel::release(defaults_);
  EXPECT_EQ(failures_, Lines{"release without a reference: NSUserDefaults"});
}

TEST_F(FoundationDefaultsTest, ObjectsOfOneUserShareTheirValues) {
  setText("value");
  NSUserDefaults* const own = send<NSUserDefaults*, "init">(allocated());
  NSUserDefaults* const other =
      send<NSUserDefaults*, "initWithUser:">(allocated(), foundation_.string("other"));
  EXPECT_EQ(foundation_.utf8(send<CFStringRef, "stringForKey:">(own, key_)), "value");
  EXPECT_EQ((send<CFStringRef, "stringForKey:">(other, key_)), nullptr);
  zel::release(own);
  zel::release(other);
}

TEST_F(FoundationDefaultsTest, TheUserNameIsRecorded) {
  EXPECT_FALSE(foundation_.lastUserName().has_value());
  zel::release(send<id, "initWithUser:">(allocated(), foundation_.string("m\u00FCller")));
  EXPECT_EQ(foundation_.lastUserName(), "m\u00FCller");
  zel::release(send<id, "initWithUser:">(allocated(), CFStringRef{nullptr}));
  ASSERT_TRUE(foundation_.lastUserName().has_value());
  EXPECT_EQ(*foundation_.lastUserName(), std::nullopt);
  foundation_.reset();
  EXPECT_FALSE(foundation_.lastUserName().has_value());
}

TEST_F(FoundationDefaultsTest, FoundationCanAnswerNil) {
  foundation_.standardDefaultsGivesNil(true);
  foundation_.initGivesNil(true);
  foundation_.initWithUserGivesNil(true);
  zel::Class* const isa = zel::lookUpClass("NSUserDefaults");
  EXPECT_EQ((send<id, "standardUserDefaults">(isa)), nullptr);
  NSUserDefaults* const first = allocated();
  EXPECT_EQ((send<id, "init">(first)), nullptr);
  EXPECT_EQ(foundation_.references(first), 0);
  EXPECT_EQ((send<id, "initWithUser:">(allocated(), key_)), nullptr);
  EXPECT_EQ(foundation_.lastUserName(), "key");

  foundation_.reset();
  EXPECT_NE((send<id, "standardUserDefaults">(isa)), nullptr);
}

TEST_F(FoundationDefaultsTest, ResetEmptiesTheStore) {
  setText("value");
  foundation_.reset();
  EXPECT_EQ((send<id, "objectForKey:">(foundation_.standardDefaults(), foundation_.string("key"))),
            nullptr);
}

}  // namespace
