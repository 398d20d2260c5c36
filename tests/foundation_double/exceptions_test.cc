// How the double's native exceptions travel, through product code too.

#include <stdexcept>
#include <string>

#include "tests/foundation_double/fixture.h"
#include "tests/foundation_double/passage.h"

namespace {

using FoundationExceptionsTest = FoundationTest;
using zel::CFStringRef;
using zel::id;

TEST_F(FoundationExceptionsTest, AThrownObjectIsCaught) {
  const id thrown = foundation_.object("NSObject");
  EXPECT_EQ(zel::catchFrom([](void* object) { zel::throwNative(static_cast<id>(object)); }, thrown),
            thrown);
  EXPECT_EQ(zel::catchFrom([](void*) {}, nullptr), nullptr);
}

TEST_F(FoundationExceptionsTest, ACaughtExceptionCanBeThrownOn) {
  const id thrown = foundation_.object("NSObject");
  const id caught = zel::catching([=] {
    const id inner = zel::catching([=] { zel::throwNative(thrown); });
    zel::throwNative(inner);
  });
  EXPECT_EQ(caught, thrown);
}

TEST_F(FoundationExceptionsTest, OtherExceptionsPassTheCatch) {
  EXPECT_THROW(zel::catchFrom([](void*) { throw std::runtime_error("other"); }, nullptr),
               std::runtime_error);
}

TEST_F(FoundationExceptionsTest, ATestCanActBeforeEveryCatch) {
  std::string order;
  foundation_.beforeCatching([&] { order += "action "; });
  EXPECT_EQ(zel::catching([&] { order += "body "; }), nullptr);
  EXPECT_EQ(zel::catching([&] { order += "body "; }), nullptr);
  foundation_.beforeCatching(nullptr);
  EXPECT_EQ(zel::catching([&] { order += "body"; }), nullptr);
  EXPECT_EQ(order, "action body action body body");
}

TEST_F(FoundationExceptionsTest, AResetTakesTheActionBack) {
  int actions = 0;
  foundation_.beforeCatching([&] { ++actions; });
  foundation_.reset();
  EXPECT_EQ(zel::catching([] {}), nullptr);
  EXPECT_EQ(actions, 0);
}

TEST_F(FoundationExceptionsTest, TheCleanupRunsOnceAfterACompletedBody) {
  zel::Passage passage;
  zel::lengthWithCleanup(object("abc"), &passage);
  EXPECT_EQ(passage.reply, 3);
  EXPECT_EQ(passage.cleanups, 1);
  EXPECT_TRUE(passage.finished);
}

TEST_F(FoundationExceptionsTest, TheCleanupRunsOnceWhenAnExceptionPasses) {
  zel::Passage passage;
  const id string = object("abc");
  foundation_.throwAtMessage(1);
  EXPECT_EQ(raised([&] { zel::lengthWithCleanup(string, &passage); }),
            "TestException: told to fail");
  EXPECT_EQ(passage.cleanups, 1);
  EXPECT_FALSE(passage.finished);
}

TEST_F(FoundationExceptionsTest, TheCleanupRunsOnceForOtherExceptions) {
  int cleanups = 0;
  const auto fail = []() -> int { throw std::runtime_error("other"); };
  EXPECT_THROW(zel::withCleanup(fail, [&] { cleanups++; }), std::runtime_error);
  EXPECT_EQ(cleanups, 1);
}

TEST_F(FoundationExceptionsTest, AnExceptionOfTheCleanupReplacesTheFirst) {
  const id first = foundation_.object("NSObject");
  const id second = foundation_.object("NSObject");
  int cleanups = 0;
  const id caught = zel::catching([&] {
    zel::withCleanup([&]() -> int { zel::throwNative(first); },
                     [&] {
                       cleanups++;
                       zel::throwNative(second);
                     });
  });
  EXPECT_EQ(caught, second);
  EXPECT_EQ(cleanups, 1);
}

TEST_F(FoundationExceptionsTest, ProductFramesRunNoDestructors) {
  zel::Passage passage;
  const id string = object("abc");
  zel::lengthWithDestructor(string, &passage);
  EXPECT_EQ(passage.destructors, 1);
  foundation_.throwAtMessage(1);
  EXPECT_EQ(raised([&] { zel::lengthWithDestructor(string, &passage); }),
            "TestException: told to fail");
  EXPECT_EQ(passage.destructors, 1);
}

TEST_F(FoundationExceptionsTest, ThrowingNilIsAFailure) {
  collectFailures();
  EXPECT_THROW(zel::objc_exception_throw(nullptr), std::logic_error);
  EXPECT_EQ(failures_, Lines{"nil thrown as an exception"});
}

TEST_F(FoundationExceptionsTest, AnExceptionKeepsItsParts) {
  zel::Class* const exceptions = zel::lookUpClass("NSException");
  const CFStringRef name = foundation_.string("Name");
  const CFStringRef reason = foundation_.string("why");
  const id userInfo = foundation_.object("NSObject");
  const id exception =
      zel::send<id, "exceptionWithName:reason:userInfo:">(exceptions, name, reason, userInfo);
  EXPECT_EQ((zel::send<CFStringRef, "name">(exception)), name);
  EXPECT_EQ((zel::send<CFStringRef, "reason">(exception)), reason);
  EXPECT_EQ((zel::send<id, "userInfo">(exception)), userInfo);
  EXPECT_EQ(raised([=] { zel::send<void, "raise">(exception); }), "Name: why");
}

TEST_F(FoundationExceptionsTest, AnExceptionMayLackEveryPart) {
  const id exception = foundation_.exception(std::nullopt, std::nullopt);
  EXPECT_EQ((zel::send<CFStringRef, "name">(exception)), nullptr);
  EXPECT_EQ((zel::send<CFStringRef, "reason">(exception)), nullptr);
  EXPECT_EQ((zel::send<id, "userInfo">(exception)), nullptr);
}

}  // namespace
