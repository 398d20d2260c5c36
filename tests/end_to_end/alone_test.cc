// The built plugin where no other plugin of the family is loaded.
#include "native/exceptions.h"
#include "tests/end_to_end/end_to_end_test.h"

namespace tests {
namespace {

using namespace std::string_literals;

class AloneTest : public EndToEndTest, public testing::WithParamInterface<double> {
 protected:
  void SetUp() override { startHost({.version = GetParam()}); }
};

INSTANTIATE_TEST_SUITE_P(Hosts, AloneTest, testing::ValuesIn(kHostVersions));

TEST_P(AloneTest, EveryStandardObjectIsANewOne) {
  const ObjectRef first = standard();
  const ObjectRef second = standard();
  EXPECT_NE(first, second);
  EXPECT_EQ(ask(first, "setIntegerValue", {"shared"s, std::int32_t{9}}), Value());
  EXPECT_EQ(ask(second, "integerForKey", {"shared"s}), Value(std::int32_t{9}));
}

TEST_P(AloneTest, ObjectsAreConstructedAndDestroyed) {
  const ObjectRef object = host->construct(kClass);
  EXPECT_EQ(ask(object, "setStringValue", {"alone"s, "text"s}), Value());
  EXPECT_EQ(ask(object, "stringForKey", {"alone"s}), Value("text"s));
}

TEST_P(AloneTest, AFoundationExceptionRaisesANativeOneInTurn) {
  const ObjectRef defaults = standard();
  testing::internal::CaptureStderr();
  const zel::id left = zel::catching([&] {
    host->call(defaults, "setIntegerValue", {""s, std::int32_t{1}});
  });
  const std::string log = testing::internal::GetCapturedStderr();
  ASSERT_NE(left, nullptr);
  EXPECT_TRUE(zel::isKindOf<"NSException">(left));
  EXPECT_NE(log.find("A NSInvalidArgumentException: "), std::string::npos) << log;
}

TEST_P(AloneTest, AnObjectThatNobodyKnowsIsNothing) {
  host->addClass("Window", "");
  const ObjectRef defaults = standard();
  ask(defaults, "setVolatileDomain",
      {host->dictionary({{"window"s, host->make("Window")}}), "windows"s});
  EXPECT_EQ(host->describe(ask(defaults, "volatileDomainForName", {"windows"s})),
            R"({"window": nil})");
  ask(defaults, "removeVolatileDomainForName", {"windows"s});
  ask(defaults, "setStringValue", {"window"s, "before"s});
  ask(defaults, "setVariantValue", {"window"s, host->make("Window")});
  EXPECT_EQ(host->describe(ask(defaults, "variantForKey", {"window"s})), "nil");
}

}  // namespace
}  // namespace tests
