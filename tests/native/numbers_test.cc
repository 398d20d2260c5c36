#include "native/numbers.h"

#include "tests/native/support.h"

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
  EXPECT_EQ(probe({"type", "numbers.single"}), "d");  // the store has one kind of fractions
  EXPECT_EQ(probe({"type", "numbers.double"}), "d");
  EXPECT_EQ(probe({"type", "numbers.text"}), "(no number)");
}

}  // namespace
}  // namespace native_test
