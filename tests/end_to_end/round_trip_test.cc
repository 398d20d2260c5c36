// Generated values of every kind go into the store and come back equal, or differ exactly as they
// are known to: whole seconds, the low 32 bits of unsigned 64-bit numbers, empty texts and empty
// data.
#include <ctime>
#include <limits>
#include <random>

#include "tests/end_to_end/end_to_end_test.h"

namespace tests {
namespace {

using namespace std::string_literals;

constexpr int kRounds = 200;
constexpr int kDepth = 6;

class RoundTripTest : public FamilyTest, public testing::WithParamInterface<double> {
 protected:
  void SetUp() override {
    startHost({.version = GetParam(), .keepSequence = false});
    defaults = standard();
  }
  void TearDown() override {
    defaults.reset();
    FamilyTest::TearDown();
  }
  // The value as it comes back through a variant.
  std::string roundTrip(const Value& value) {
    EXPECT_EQ(ask(defaults, "setVariantValue", {"trip"s, value}), Value());
    return host->describe(ask(defaults, "variantForKey", {"trip"s}));
  }
  template <class T>
  T between(T low, T high) {
    return std::uniform_int_distribution<T>(low, high)(random);
  }

  // Any text without U+0000, never empty.
  std::string text() {
    std::string made;
    const int length = between(1, 40);
    for (int i = 0; i < length; ++i) appendCharacter(made);
    return made;
  }
  void appendCharacter(std::string& out) {
    std::uint32_t c = 0;
    do {
      static constexpr std::uint32_t kTops[] = {0x7F, 0x7FF, 0xFFFF, 0x10FFFF};
      c = between<std::uint32_t>(1, kTops[between(0, 3)]);
    } while (c >= 0xD800 && c <= 0xDFFF);
    if (c < 0x80) {
      out += static_cast<char>(c);
    } else if (c < 0x800) {
      out += {static_cast<char>(0xC0 | c >> 6), continuation(c)};
    } else if (c < 0x10000) {
      out += {static_cast<char>(0xE0 | c >> 12), continuation(c >> 6), continuation(c)};
    } else {
      out += {static_cast<char>(0xF0 | c >> 18), continuation(c >> 12), continuation(c >> 6),
              continuation(c)};
    }
  }
  static char continuation(std::uint32_t bits) { return static_cast<char>(0x80 | (bits & 0x3F)); }

  std::string bytes(std::size_t length) {
    std::string made(length, '\0');
    for (char& byte : made) byte = static_cast<char>(between(0, 255));
    return made;
  }

  // A value of any kind that comes back as it went in.
  Value anything(int depth) {
    switch (between(0, depth > 0 ? 8 : 6)) {
      case 0:
        return host->variant(between(-2147483647, 2147483646));
      case 1:
        return host->variant(static_cast<std::int8_t>(between(0, 1)));
      case 2:
        return host->variant(std::uniform_real_distribution<double>(-1e9, 1e9)(random));
      case 3:
        return host->variant(std::uniform_real_distribution<float>(-1e9F, 1e9F)(random));
      case 4:
        return host->variant(text());
      case 5:
        return host->memoryBlock(bytes(between<std::size_t>(1, 50)));
      case 6:
        return host->variant((std::int64_t{1} << 33) + between(0, 1000));
      case 7:
        return list(depth);
      default:
        return dictionary(depth);
    }
  }
  ObjectRef list(int depth) {
    Values elements;
    for (int i = between(0, 4); i > 0; --i) elements.push_back(anything(depth - 1));
    return host->array(Host::kObjectElements, elements);
  }
  // One entry, because the order of several isn't kept.
  ObjectRef dictionary(int depth) { return host->dictionary({{text(), anything(depth - 1)}}); }

  ObjectRef defaults;
  std::mt19937 random{20130903};
};

INSTANTIATE_TEST_SUITE_P(Hosts, RoundTripTest, testing::Values(2011.04, 2013.9, 2014.0));

TEST_P(RoundTripTest, Texts) {
  for (int round = 0; round < kRounds; ++round) {
    const std::string value = text();
    EXPECT_EQ(ask(defaults, "setStringValue", {"trip"s, value}), Value());
    EXPECT_EQ(ask(defaults, "stringForKey", {"trip"s}), Value(value));
  }
}

TEST_P(RoundTripTest, NumbersAtTheirLimits) {
  // GNUstep takes the two outermost of the 32-bit numbers for 64-bit ones.
  EXPECT_EQ(roundTrip(host->variant(std::numeric_limits<std::int32_t>::min())),
            "Int64 -2147483648");
  EXPECT_EQ(roundTrip(host->variant(std::numeric_limits<std::int32_t>::max())), "Int64 2147483647");
  for (const std::int32_t value :
       {-2147483647, -1, 0, 1, 127, 128, 32767, 32768, 65535, 2147483646}) {
    EXPECT_EQ(roundTrip(host->variant(value)), "Int32 " + std::to_string(value));
  }
  for (const std::int64_t value :
       {std::numeric_limits<std::int64_t>::min(), std::int64_t{-2147483649},
        std::int64_t{2147483648}, std::numeric_limits<std::int64_t>::max()}) {
    EXPECT_EQ(roundTrip(host->variant(value)), "Int64 " + std::to_string(value));
  }
  for (const double value :
       {0.1, -0.5, 1e300, -1e-300, std::numeric_limits<double>::max(),
        std::numeric_limits<double>::min(), std::numeric_limits<double>::denorm_min()}) {
    const ObjectRef variant = host->variant(value);
    EXPECT_EQ(roundTrip(variant), host->describe(variant));
  }
}

TEST_P(RoundTripTest, DataOfEverySize) {
  for (const std::size_t size : {std::size_t{1}, std::size_t{63}, std::size_t{4096},
                                 std::size_t{65537}, std::size_t{1} << 20}) {
    const std::string value = bytes(size);
    EXPECT_EQ(ask(defaults, "setDataValue", {"trip"s, host->memoryBlock(value)}), Value());
    const auto back = std::get<ObjectRef>(ask(defaults, "dataForKey", {"trip"s}));
    EXPECT_EQ(host->bytesOf(back), value);
  }
}

TEST_P(RoundTripTest, EmptyTextsAndDataBecomeNothing) {
  EXPECT_EQ(ask(defaults, "setDataValue", {"trip"s, host->memoryBlock("")}), Value());
  EXPECT_EQ(host->describe(ask(defaults, "dataForKey", {"trip"s})), "nil");
  EXPECT_EQ(ask(defaults, "setStringValue", {"trip"s, ""s}), Value());
  EXPECT_EQ(ask(defaults, "stringForKey", {"trip"s}), Value(""s));
}

TEST_P(RoundTripTest, AnythingWithinAnything) {
  for (int round = 0; round < kRounds; ++round) {
    const Value value = anything(kDepth);
    const std::string expected = host->describe(value);
    EXPECT_EQ(roundTrip(value), expected);
    if (round % 20 == 0) drainPool();
  }
}

}  // namespace
}  // namespace tests
