#include "native/numbers.h"

#include <limits>

#include "native/methods.h"
#include "tests/native/support.h"

extern "C" {
zel::Class* objc_allocateClassPair(zel::Class* superclass, const char* name, std::size_t extra);
void objc_registerClassPair(zel::Class* made);
}

namespace native_test {
namespace {

using zel::id;
using zel::send;

class NumbersTest : public NativeTest {
 protected:
  template <zel::Name Maker, class Value>
  static std::string typeOf(Value value) {
    return zel::zelNumberType(send<id, Maker>(zel::classNamed<"NSNumber">(), value));
  }
};

TEST_F(NumbersTest, BooleansAreChars) {
  EXPECT_EQ((typeOf<"numberWithBool:">(zel::BOOL{1})), "c");
  EXPECT_EQ((typeOf<"numberWithBool:">(zel::BOOL{0})), "c");
}

const char* octetType(id, zel::SEL) { return "C"; }

TEST_F(NumbersTest, AnyOtherNumberOfTheirTypeIsNoBoolean) {
  zel::Class* const made = objc_allocateClassPair(zel::classNamed<"NSNumber">(), "OctetNumber", 0);
  zel::class_addMethod(made, zel::selector<"objCType">(), reinterpret_cast<void (*)()>(octetType),
                       "r*@:");
  objc_registerClassPair(made);
  const id octet = zel::autoreleased(send<id, "alloc">(made));
  EXPECT_STREQ(zel::zelNumberType(octet), "C");
}

TEST_F(NumbersTest, BooleansThatWereWrittenAreFoundationsOwn) {
  const id both = send<id, "dictionaryWithObjectsAndKeys:">(
      zel::classNamed<"NSDictionary">(),
      send<id, "numberWithBool:">(zel::classNamed<"NSNumber">(), zel::BOOL{1}), string("yes"),
      send<id, "numberWithBool:">(zel::classNamed<"NSNumber">(), zel::BOOL{0}), string("no"),
      id{nullptr});
  for (const int format : {100, 200, 1000}) {  // XML, binary, GNUstep's text
    SCOPED_TRACE(format);
    const id data = send<id, "dataFromPropertyList:format:errorDescription:">(
        zel::classNamed<"NSPropertyListSerialization">(), both, format, nullptr);
    const id read = send<id, "propertyListFromData:mutabilityOption:format:errorDescription:">(
        zel::classNamed<"NSPropertyListSerialization">(), data, 0, nullptr, nullptr);
    for (const char* key : {"yes", "no"})
      EXPECT_STREQ(zel::zelNumberType(send<id, "objectForKey:">(read, string(key))), "c");
  }
}

TEST_F(NumbersTest, OtherNumbersAreWhatFoundationSays) {
  EXPECT_EQ((typeOf<"numberWithInt:">(5)), "i");
  EXPECT_EQ((typeOf<"numberWithInt:">(-70'000)), "i");
  EXPECT_EQ((typeOf<"numberWithChar:">(static_cast<signed char>(-3))), "i");
  EXPECT_EQ((typeOf<"numberWithUnsignedChar:">(static_cast<unsigned char>(200))), "i");
  EXPECT_EQ((typeOf<"numberWithShort:">(short{-3})), "i");
  EXPECT_EQ((typeOf<"numberWithUnsignedInt:">(4'000'000'000U)), "q");
  EXPECT_EQ((typeOf<"numberWithLongLong:">(5'000'000'000LL)), "q");
  EXPECT_EQ((typeOf<"numberWithUnsignedLongLong:">(18'000'000'000'000'000'000ULL)), "Q");
  EXPECT_EQ((typeOf<"numberWithFloat:">(1.5F)), "f");
  EXPECT_EQ((typeOf<"numberWithDouble:">(1.5)), "d");
}

TEST_F(NumbersTest, TheOutermostOfATypeAreOfThatType) {
  constexpr int kLowest = std::numeric_limits<int>::min();
  constexpr int kHighest = std::numeric_limits<int>::max();
  constexpr auto kHighestLong = std::numeric_limits<long long>::max();
  EXPECT_EQ((typeOf<"numberWithInt:">(kHighest)), "i");
  EXPECT_EQ((typeOf<"numberWithLong:">(long{kHighest})), "i");
  EXPECT_EQ((typeOf<"numberWithLong:">(long{kLowest})), "i");
  EXPECT_EQ((typeOf<"numberWithLongLong:">(static_cast<long long>(kLowest))), "i");
  EXPECT_EQ((typeOf<"numberWithLongLong:">(kHighest + 1LL)), "q");
  EXPECT_EQ((typeOf<"numberWithLongLong:">(kLowest - 1LL)), "q");
  EXPECT_EQ((typeOf<"numberWithUnsignedInt:">(static_cast<unsigned>(kHighest))), "i");
  EXPECT_EQ((typeOf<"numberWithUnsignedLongLong:">(static_cast<unsigned long long>(kHighestLong))),
            "q");
  EXPECT_EQ((typeOf<"numberWithUnsignedLongLong:">(kHighestLong + 1ULL)), "Q");
}

TEST_F(NumbersTest, TypesInAnotherProcess) {
  const id defaults = send<id, "standardUserDefaults">(zel::classNamed<"NSUserDefaults">());
  send<void, "setBool:forKey:">(defaults, zel::BOOL{1}, string("numbers.yes"));
  send<void, "setBool:forKey:">(defaults, zel::BOOL{0}, string("numbers.no"));
  send<void, "setInteger:forKey:">(defaults, zel::NSInteger{1}, string("numbers.one"));
  send<void, "setFloat:forKey:">(defaults, 1.5F, string("numbers.single"));
  send<void, "setDouble:forKey:">(defaults, 3.0, string("numbers.double"));
  send<void, "setObject:forKey:">(defaults, string("1"), string("numbers.text"));
  ASSERT_NE((send<zel::BOOL, "synchronize">(defaults)), 0);
  EXPECT_EQ(probe({"type", "numbers.yes"}), "c");
  EXPECT_EQ(probe({"type", "numbers.no"}), "c");
  EXPECT_EQ(probe({"type", "numbers.one"}), "i");
  EXPECT_EQ(probe({"type", "numbers.single"}), "f");
  EXPECT_EQ(probe({"type", "numbers.double"}), "d");
  EXPECT_EQ(probe({"type", "numbers.text"}), "(no number)");
}

}  // namespace
}  // namespace native_test
