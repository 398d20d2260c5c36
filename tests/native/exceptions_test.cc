#include "native/exceptions.h"

#include <pthread.h>
#include <stdexcept>

#include "tests/native/support.h"

namespace native_test {
namespace {

using zel::catching;
using zel::id;
using zel::send;

class ExceptionsTest : public NativeTest {
 protected:
  /// A plain native object, which is no NSException.
  id object_ = zel::autoreleased(send<id, "new">(zel::classNamed<"NSObject">()));
};

/// Counts how often it is destroyed.
struct Witness {
  explicit Witness(int* deaths) : deaths_(deaths) {}
  Witness(const Witness&) = delete;
  Witness& operator=(const Witness&) = delete;
  ~Witness() { ++*deaths_; }
  int* deaths_;
};

TEST_F(ExceptionsTest, BodyThatCompletesGivesNull) {
  int runs = 0;
  EXPECT_EQ(catching([&] { ++runs; }), nullptr);
  EXPECT_EQ(runs, 1);
}

TEST_F(ExceptionsTest, GivesBackWhatFoundationRaised) {
  const id array = send<id, "array">(zel::classNamed<"NSArray">());
  const id caught = catching([&] { send<id, "objectAtIndex:">(array, zel::NSInteger{5}); });
  EXPECT_TRUE(zel::isKindOf<"NSException">(caught));
  EXPECT_EQ(text(send<id, "name">(caught)), "NSRangeException");
}

TEST_F(ExceptionsTest, GivesBackObjectsOfAnyClass) {
  EXPECT_EQ(catching([&] { zel::objc_exception_throw(object_); }), object_);
}

TEST_F(ExceptionsTest, DestroysWhatLivesBetweenThrowAndCatch) {
  int deaths = 0;
  const id caught = catching([&] {
    const Witness witness(&deaths);
    zel::objc_exception_throw(object_);
  });
  EXPECT_EQ(caught, object_);
  EXPECT_EQ(deaths, 1);
}

TEST_F(ExceptionsTest, LetsCxxExceptionsPass) {
  int deaths = 0;
  bool went_on = false;
  try {
    const id caught = catching([&] {
      const Witness witness(&deaths);
      throw std::runtime_error("mine");
    });
    went_on = caught == nullptr || caught != nullptr;
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "mine");
  }
  EXPECT_FALSE(went_on);
  EXPECT_EQ(deaths, 1);
}

TEST_F(ExceptionsTest, LetsForcedUnwindingPass) {
  pthread_t thread = {};
  int result = 0;
  ASSERT_EQ(pthread_create(
                &thread, nullptr,
                [](void* raw) -> void* {
                  zel::zelCatch([](void* inner) { pthread_exit(inner); }, raw);
                  return nullptr;
                },
                &result),
            0);
  void* ended_with = nullptr;
  ASSERT_EQ(pthread_join(thread, &ended_with), 0);
  EXPECT_EQ(ended_with, &result);
}

TEST_F(ExceptionsTest, InnerFrameTakesTheExceptionFirst) {
  id inner = nullptr;
  const id outer = catching([&] {
    inner = catching([&] { zel::objc_exception_throw(object_); });
    zel::objc_exception_throw(inner);
  });
  EXPECT_EQ(inner, object_);
  EXPECT_EQ(outer, object_);
}

TEST_F(ExceptionsTest, CleansUpOnceAfterABodyThatCompletes) {
  std::string order;
  const int result = zel::withCleanup(
      [&] {
        order += "body ";
        return 7;
      },
      [&] { order += "clean-up"; });
  EXPECT_EQ(result, 7);
  EXPECT_EQ(order, "body clean-up");
}

TEST_F(ExceptionsTest, CleansUpOnceWhenANativeExceptionPasses) {
  int cleanups = 0;
  const id caught = catching([&] {
    zel::withCleanup([&]() -> int { zel::objc_exception_throw(object_); }, [&] { ++cleanups; });
  });
  EXPECT_EQ(caught, object_);
  EXPECT_EQ(cleanups, 1);
}

TEST_F(ExceptionsTest, CleansUpOnceWhenACxxExceptionPasses) {
  int cleanups = 0;
  int arrived = 0;
  try {
    zel::withCleanup([]() -> int { throw 42; }, [&] { ++cleanups; });
  } catch (int value) {
    arrived = value;
  }
  EXPECT_EQ(arrived, 42);
  EXPECT_EQ(cleanups, 1);
}

TEST_F(ExceptionsTest, CleansUpFromTheInsideOut) {
  std::string order;
  const id caught = catching([&] {
    zel::withCleanup(
        [&] {
          return zel::withCleanup([&]() -> int { zel::objc_exception_throw(object_); },
                                  [&] { order += "inner "; });
        },
        [&] { order += "outer"; });
  });
  EXPECT_EQ(caught, object_);
  EXPECT_EQ(order, "inner outer");
}

TEST_F(ExceptionsTest, CleanupMayCatchWhatItRaisesItself) {
  id inside = nullptr;
  const id second = zel::autoreleased(send<id, "new">(zel::classNamed<"NSObject">()));
  const id caught = catching([&] {
    zel::withCleanup([&]() -> int { zel::objc_exception_throw(object_); },
                     [&] { inside = catching([&] { zel::objc_exception_throw(second); }); });
  });
  EXPECT_EQ(inside, second);
  EXPECT_EQ(caught, object_);
}

}  // namespace
}  // namespace native_test
