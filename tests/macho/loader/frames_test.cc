// Frames, and the ways in and out, without a bundle.
#include "macho/loader/frames.h"

#include <gtest/gtest.h>
#include <stdexcept>

#include "macho/loader/passages.h"
#include "native/exceptions.h"

namespace tests {
namespace {

using macho::enterBundle;
using macho::ExceptionFrame;
using macho::outward;
using macho::outwardForStructure;

zel::id object() {
  static const zel::id object = zel::send<zel::id, "new">(zel::classNamed<"NSObject">());
  return object;
}

template <class Function>
Function* outside(Function* function) {
  return reinterpret_cast<Function*>(outward(reinterpret_cast<void*>(function)));
}

void raise() { zel::objc_exception_throw(object()); }

TEST(FramesTest, AThrowGoesToTheBorder) {
  const zel::id left =
      zel::catching([] { enterBundle([](void*) { macho::throwToFrame(object()); }, nullptr); });
  EXPECT_EQ(left, object());
}

TEST(FramesTest, TheInnermostFrameIsMeant) {
  ExceptionFrame outer;
  ExceptionFrame inner;
  macho::tryEnter(&outer);
  macho::tryEnter(&inner);
  EXPECT_EQ(inner.outer, &outer);
  macho::tryExit(&inner);
  macho::tryEnter(&inner);
  EXPECT_EQ(inner.outer, &outer);
  EXPECT_EQ(macho::extractThrown(&inner), nullptr);
  macho::tryExit(&inner);
  macho::tryExit(&outer);
}

// Stands for a function of a bundle: nothing can unwind through one, so nothing may try.
int unwound;
template <auto function>
void callFromBundle(void* /*context*/) {
  struct Counter {
    ~Counter() { ++unwound; }
  } const counter;
  function();
}

template <auto function>
void expectThrowToTheBorder() {
  unwound = 0;
  const zel::id left = zel::catching([] { enterBundle(callFromBundle<function>, nullptr); });
  EXPECT_EQ(left, object());
  EXPECT_EQ(unwound, 0);
}

struct Large {
  std::int32_t numbers[6];
};

TEST(FramesTest, AnExceptionOfThisSystemGoesToTheBorderToo) {
  expectThrowToTheBorder<[] { outside(raise)(); }>();
}

TEST(FramesTest, SoDoesOneInsteadOfAStructure) {
  expectThrowToTheBorder<[] {
    reinterpret_cast<Large (*)()>(outwardForStructure(reinterpret_cast<void*>(raise)))();
  }>();
}

TEST(FramesTest, TheBorderIsLeftHoweverItIsLeft) {
  for (int i = 0; i < 3; ++i) {
    EXPECT_THROW(enterBundle([](void*) { throw std::logic_error("of another kind"); }, nullptr),
                 std::logic_error);
  }
  ExceptionFrame frame;
  macho::tryEnter(&frame);
  EXPECT_EQ(frame.outer, nullptr);
  macho::tryExit(&frame);
}

TEST(FramesDeathTest, WhatNobodyTakesEndsTheProgram) {
  EXPECT_DEATH(macho::throwToFrame(object()),
               "nobody takes the native exception of class NSObject");
}

// --- the ways out

std::int64_t mix(std::int8_t a, double b, std::int64_t c, float d) {
  return std::int64_t{a} * 1000000 + static_cast<std::int64_t>(b) * 10000 + c * 100 +
         static_cast<int>(d);
}
double half(std::int32_t number) { return number / 2.0; }
float third(float number) { return number / 3; }

TEST(PassagesTest, ArgumentsAndResultsOfEveryKindPass) {
  EXPECT_EQ(outside(mix)(-7, 8.5, 5000000000, 4.5F), 499993080004);
  EXPECT_EQ(outside(half)(7), 3.5);
  EXPECT_EQ(outside(third)(1.5F), 0.5F);
}

TEST(PassagesTest, NothingIsLeftOnTheFloatingPointStack) {
  double sum = 0;
  for (int i = 0; i < 100; ++i) sum += outside(half)(i);
  EXPECT_EQ(sum, 2475.0);
}

void fill(Large* result, std::int32_t first) {
  for (std::int32_t& number : result->numbers) number = first++;
}

TEST(PassagesTest, StructuresComeWhereTheyAreWanted) {
  const auto make =
      reinterpret_cast<Large (*)(std::int32_t)>(outwardForStructure(reinterpret_cast<void*>(fill)));
  for (int round = 0; round < 3; ++round) {
    const Large large = make(round);
    EXPECT_EQ(large.numbers[0], round);
    EXPECT_EQ(large.numbers[5], round + 5);
  }
}

template <class Function>
Function* inside(Function* function) {
  return reinterpret_cast<Function*>(macho::inward(reinterpret_cast<void*>(function)));
}

TEST(PassagesTest, TheWayInTakesArgumentsAndResultsOfEveryKind) {
  EXPECT_EQ(inside(mix)(-7, 8.5, 5000000000, 4.5F), 499993080004);
  double sum = 0;
  for (int i = 0; i < 100; ++i) sum += inside(half)(i);
  EXPECT_EQ(sum, 2475.0);
  EXPECT_EQ(inside(third)(1.5F), 0.5F);
}

void throwToFrame() { macho::throwToFrame(object()); }

TEST(PassagesTest, AThrowInsideGoesOnAsAnExceptionOfThisSystem) {
  for (int i = 0; i < 1000; ++i) {
    EXPECT_EQ(zel::catching([] { inside(throwToFrame)(); }), object());
  }
}

std::uintptr_t stackAlignment() {
  return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)) % 16;
}

TEST(PassagesTest, TheStackStaysAligned) {
  EXPECT_EQ(stackAlignment(), 8U);
  EXPECT_EQ(outside(stackAlignment)(), 8U);
  EXPECT_EQ(inside(stackAlignment)(), 8U);
}

TEST(PassagesTest, OneFunctionHasOneWayOut) {
  EXPECT_EQ(outside(half), outside(half));
  EXPECT_NE(reinterpret_cast<void*>(outside(half)), reinterpret_cast<void*>(outside(third)));
}

}  // namespace
}  // namespace tests
