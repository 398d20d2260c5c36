// What is remembered of classes, and of which ones.
#include "bridge/class_memory.h"

#include <algorithm>
#include <vector>

#include "bridge/native_to_variant.h"
#include "tests/support/plugin_test.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests
using namespace std::string_literals;

class ClassMemoryTest : public PluginTest {
 protected:
  Class* newClass(const std::string& name, const std::string& superName = "NSObject") {
    foundation.addClass(name, superName);
    return lookUpClass(name.c_str());
  }

  static constexpr int kRows[] = {10, 20};
  ClassMemory<int> memory;
};

TEST_F(ClassMemoryTest, KnowsNothingAtFirst) {
  EXPECT_EQ(memory.rowOf(lookUpClass("NSObject")), nullptr);
  EXPECT_EQ(memory.rowOf(lookUpClass("NSArray")), nullptr);
}

TEST_F(ClassMemoryTest, RemembersEachClassByItself) {
  Class* const one = newClass("One");
  Class* const derived = newClass("Derived", "One");
  memory.remember(one, kRows[0]);
  EXPECT_EQ(memory.rowOf(one), &kRows[0]);
  EXPECT_EQ(memory.rowOf(derived), nullptr);
  memory.remember(derived, kRows[1]);
  EXPECT_EQ(memory.rowOf(derived), &kRows[1]);
}

// Places are the upper six bits of a product of 32 bits: of one, two and three times 0x9E3779B9,
// and of it 26 bits to the left, where its lowest bits decide.
TEST_F(ClassMemoryTest, TheWholeAddressDecidesThePlace) {
  const auto placeOf = [](std::uintptr_t address) {
    return ClassMemory<NativeKind>::placeOf(reinterpret_cast<const Class*>(address));
  };
  EXPECT_EQ(placeOf(0x10), 39U);
  EXPECT_EQ(placeOf(0x20), 15U);
  EXPECT_EQ(placeOf(0x30), 54U);
  EXPECT_EQ(placeOf(0x40000000), 57U);
}

TEST_F(ClassMemoryTest, AClassMayBeRememberedAnew) {
  Class* const one = newClass("One");
  memory.remember(one, kRows[0]);
  memory.remember(one, kRows[1]);
  EXPECT_EQ(memory.rowOf(one), &kRows[1]);
}

TEST_F(ClassMemoryTest, ObjectsThatAnswerForThemselvesAreAskedEachTime) {
  Class* const proxy = newClass("Proxy");
  Class* const derived = newClass("DerivedProxy", "Proxy");
  foundation.addMethod("Proxy", "isKindOfClass:", [](id, SEL, Class*) -> BOOL { return 1; });
  memory.remember(proxy, kRows[0]);
  memory.remember(derived, kRows[0]);
  EXPECT_EQ(memory.rowOf(proxy), nullptr);
  EXPECT_EQ(memory.rowOf(derived), nullptr);
}

TEST_F(ClassMemoryTest, ObjectsThatCannotAnswerAreAskedEachTime) {
  Class* const mute = newClass("Mute");
  foundation.hideSelector("Mute", "isKindOfClass:");
  memory.remember(mute, kRows[0]);
  EXPECT_EQ(memory.rowOf(mute), nullptr);
}

TEST_F(ClassMemoryTest, TheLaterOfTwoInOnePlaceIsRemembered) {
  // One class more than there are places.
  std::vector<Class*> first(64, nullptr);
  Class* earlier = nullptr;
  Class* later = nullptr;
  for (int i = 0; later == nullptr; ++i) {
    Class* const made = newClass("Class" + std::to_string(i));
    Class*& here = first.at(ClassMemory<int>::placeOf(made));
    if (here != nullptr) {
      earlier = here;
      later = made;
    }
    here = made;
  }
  memory.remember(earlier, kRows[0]);
  EXPECT_EQ(memory.rowOf(later), nullptr);
  memory.remember(later, kRows[1]);
  EXPECT_EQ(memory.rowOf(later), &kRows[1]);
  EXPECT_EQ(memory.rowOf(earlier), nullptr);
}

TEST_F(ClassMemoryTest, ClassesOfOneProgramSpread) {
  // The classes that property lists are made of, as many runtimes lay them out: side by side.
  constexpr std::uintptr_t kFirst = 0x7F0012345600;
  constexpr std::uintptr_t kSize = 0x90;
  std::vector<int> used(64, 0);
  for (std::uintptr_t i = 0; i < 16; ++i) {
    const auto address = static_cast<std::uintptr_t>(kFirst + i * kSize);
    ++used.at(ClassMemory<int>::placeOf(reinterpret_cast<const Class*>(address)));
  }
  EXPECT_GE(std::count_if(used.begin(), used.end(), [](int count) { return count > 0; }), 13);
}

}  // namespace
}  // namespace zel
