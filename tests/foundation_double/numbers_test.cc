// NSNumber in the double.

#include "native/numbers.h"

#include <cstdint>
#include <limits>

#include "native/geometry.h"
#include "tests/foundation_double/fixture.h"

namespace {

using zel::BOOL;
using zel::CFStringRef;
using zel::id;
using zel::send;

constexpr auto kMost64 = std::numeric_limits<std::int64_t>::max();

class FoundationNumberTest : public FoundationTest {
 protected:
  /// The type and the literal of a number that a class message makes.
  template <zel::Name Message, class Given>
  std::string made(Given given) {
    const id number = send<id, Message>(zel::lookUpClass("NSNumber"), given);
    return zel::zelNumberType(number) + (" " + foundation_.describe(number));
  }
};

TEST_F(FoundationNumberTest, ANumberKeepsTheTypeThatItWasMadeFrom) {
  EXPECT_EQ((made<"numberWithBool:">(BOOL{1})), "c true");
  EXPECT_EQ((made<"numberWithBool:">(BOOL{0})), "c false");
  EXPECT_EQ((made<"numberWithChar:">(static_cast<signed char>(-7))), "c -7");
  EXPECT_EQ((made<"numberWithUnsignedChar:">(static_cast<unsigned char>(200))), "C 200");
  EXPECT_EQ((made<"numberWithShort:">(short{-300})), "s -300");
  EXPECT_EQ((made<"numberWithUnsignedShort:">(static_cast<unsigned short>(65535))), "S 65535");
  EXPECT_EQ((made<"numberWithInt:">(-70000)), "i -70000");
  EXPECT_EQ((made<"numberWithUnsignedInt:">(4000000000U)), "I 4000000000");
  EXPECT_EQ((made<"numberWithLong:">(-5L)), "l -5");
  EXPECT_EQ((made<"numberWithUnsignedLong:">(5UL)), "L 5");
  EXPECT_EQ((made<"numberWithLongLong:">(-5000000000LL)), "q -5000000000");
  EXPECT_EQ((made<"numberWithUnsignedLongLong:">(18446744073709551615ULL)),
            "Q 18446744073709551615");
  EXPECT_EQ((made<"numberWithFloat:">(0.1F)), "f 0.1");
  EXPECT_EQ((made<"numberWithDouble:">(-2.5)), "d -2.5");
}

TEST_F(FoundationNumberTest, ATestCanMakeAnyTypeHoldAnyValue) {
  const id odd = foundation_.number("B", 7);
  EXPECT_STREQ(zel::zelNumberType(odd), "B");
  EXPECT_STREQ((send<const char*, "objCType">(odd)), "B");
  EXPECT_EQ(foundation_.describe(odd), "7");
  EXPECT_EQ((send<int, "intValue">(foundation_.number("C", -1))), -1);
  EXPECT_EQ((send<unsigned char, "unsignedCharValue">(foundation_.number("C", 200))), 200);
}

TEST_F(FoundationNumberTest, IntegersConvertAsInC) {
  const id number = foundation_.number("Q", std::uint64_t{0x1234567887654321});
  EXPECT_EQ((send<signed char, "charValue">(number)), 0x21);
  EXPECT_EQ((send<unsigned char, "unsignedCharValue">(number)), 0x21);
  EXPECT_EQ((send<short, "shortValue">(number)), 0x4321);
  EXPECT_EQ((send<unsigned short, "unsignedShortValue">(number)), 0x4321);
  EXPECT_EQ((send<int, "intValue">(number)), -2023406815);
  EXPECT_EQ((send<unsigned int, "unsignedIntValue">(number)), 0x87654321U);
  EXPECT_EQ(static_cast<std::uint32_t>(send<unsigned long, "unsignedLongValue">(number)),
            0x87654321U);
  EXPECT_EQ(static_cast<std::int32_t>(send<long, "longValue">(number)), -2023406815);
  EXPECT_EQ((send<long long, "longLongValue">(number)), 0x1234567887654321);
  EXPECT_EQ((send<unsigned long long, "unsignedLongLongValue">(number)), 0x1234567887654321U);
  EXPECT_EQ((send<double, "doubleValue">(foundation_.number("q", kMost64))), 9223372036854775807.0);
}

TEST_F(FoundationNumberTest, FractionsAreCutAndValuesOutOfRangeAreTheLimits) {
  EXPECT_EQ((send<int, "intValue">(foundation_.number("d", -2.75))), -2);
  EXPECT_EQ((send<signed char, "charValue">(foundation_.number("d", 300.0))), 127);
  EXPECT_EQ((send<signed char, "charValue">(foundation_.number("d", -300.0))), -128);
  EXPECT_EQ((send<unsigned int, "unsignedIntValue">(foundation_.number("f", -1.0F))), 0U);
  EXPECT_EQ((send<long long, "longLongValue">(foundation_.number("d", 1e30))), kMost64);
  EXPECT_EQ((send<float, "floatValue">(foundation_.number("d", 0.1))), 0.1F);
}

TEST_F(FoundationNumberTest, ABooleanGivesItsByteAndAnyOtherNumberYesOrNo) {
  EXPECT_EQ((send<BOOL, "boolValue">(foundation_.number("c", 7))), 7);
  EXPECT_EQ((send<BOOL, "boolValue">(foundation_.number("c", -1))), 255);
  EXPECT_EQ((send<BOOL, "boolValue">(foundation_.number("i", 256))), 1);
  EXPECT_EQ((send<BOOL, "boolValue">(foundation_.number("d", 0.5))), 1);
  EXPECT_EQ((send<BOOL, "boolValue">(foundation_.number("d", 0.0))), 0);
  EXPECT_EQ(foundation_.describe(foundation_.boolean(true)), "true");
}

TEST_F(FoundationNumberTest, ANumberIsAValue) {
  const id number = foundation_.number("i", 1);
  EXPECT_TRUE(zel::isKindOf<"NSNumber">(number));
  EXPECT_TRUE(zel::isKindOf<"NSValue">(number));
  EXPECT_FALSE(zel::isKindOf<"NSNumber">(foundation_.value("{?=qll}")));
}

TEST_F(FoundationNumberTest, TheTypeIsAFunctionCallThatCanFail) {
  const id number = foundation_.number("i", 1);
  foundation_.failCall("zelNumberType");
  EXPECT_STREQ(zel::zelNumberType(number), "");
  foundation_.throwAtCall("zelNumberType");
  EXPECT_EQ(raised([&] { zel::zelNumberType(number); }), "TestException: told to fail");
  EXPECT_STREQ(zel::zelNumberType(number), "i");
  EXPECT_EQ(foundation_.calls(), (Lines{"zelNumberType", "zelNumberType", "zelNumberType"}));
  collectFailures();
  EXPECT_THROW(zel::zelNumberType(object("text")), std::logic_error);
  EXPECT_EQ(failures_, Lines{"not a live number"});
}

}  // namespace
