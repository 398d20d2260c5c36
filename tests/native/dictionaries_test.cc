#include <array>
#include <thread>

#include "native/corefoundation.h"
#include "tests/native/support.h"

namespace native_test {
namespace {

using zel::CFMutableDictionaryRef;

class DictionariesTest : public NativeTest {
 protected:
  CFMutableDictionaryRef table_ = zel::autoreleased(
      zel::CFDictionaryCreateMutable(zel::kDefaultAllocator, 0, nullptr, nullptr));
};

TEST_F(DictionariesTest, KeepsPlainPointers) {
  std::array<int, 3> places = {};
  EXPECT_EQ(zel::CFDictionaryGetValue(table_, &places[0]), nullptr);
  zel::CFDictionarySetValue(table_, &places[0], &places[1]);
  EXPECT_EQ(zel::CFDictionaryGetValue(table_, &places[0]), &places[1]);
  zel::CFDictionarySetValue(table_, &places[0], &places[2]);
  EXPECT_EQ(zel::CFDictionaryGetValue(table_, &places[0]), &places[2]);
  EXPECT_EQ(zel::CFDictionaryGetValue(table_, &places[1]), nullptr);
  zel::CFDictionaryRemoveValue(table_, &places[0]);
  EXPECT_EQ(zel::CFDictionaryGetValue(table_, &places[0]), nullptr);
  zel::CFDictionaryRemoveValue(table_, &places[0]);
}

TEST_F(DictionariesTest, ComparesByIdentityAndRetainsNothing) {
  const zel::CFStringRef one = zel::CFStringCreateWithCString(zel::kDefaultAllocator, "equal", 0);
  const zel::CFStringRef two = zel::CFStringCreateWithCString(zel::kDefaultAllocator, "equal", 0);
  zel::CFDictionarySetValue(table_, one, two);
  EXPECT_EQ(zel::CFDictionaryGetValue(table_, one), two);
  EXPECT_EQ(zel::CFDictionaryGetValue(table_, two), nullptr);
  EXPECT_EQ(referencesOf(one), 1);
  EXPECT_EQ(referencesOf(two), 1);
  zel::CFRelease(one);
  zel::CFRelease(two);
  // The entry is still there, of objects that are gone; nothing may touch them.
  EXPECT_EQ(zel::CFDictionaryGetValue(table_, one), two);
  zel::CFDictionaryRemoveValue(table_, one);
}

TEST_F(DictionariesTest, HoldsMany) {
  std::array<char, 10'000> places = {};
  for (char& place : places) zel::CFDictionarySetValue(table_, &place, &place + 1);
  for (char& place : places) ASSERT_EQ(zel::CFDictionaryGetValue(table_, &place), &place + 1);
}

TEST_F(DictionariesTest, NewDictionaryBelongsToTheCaller) {
  const CFMutableDictionaryRef made =
      zel::CFDictionaryCreateMutable(zel::kDefaultAllocator, 100, nullptr, nullptr);
  EXPECT_EQ(referencesOf(made), 1);
  zel::CFRelease(made);
}

TEST_F(DictionariesTest, OtherCallBacksAndNegativeCapacityAreRefused) {
  const int callBacks = 0;
  EXPECT_EQ(zel::CFDictionaryCreateMutable(zel::kDefaultAllocator, 0, &callBacks, nullptr),
            nullptr);
  EXPECT_EQ(zel::CFDictionaryCreateMutable(zel::kDefaultAllocator, 0, nullptr, &callBacks),
            nullptr);
  EXPECT_EQ(zel::CFDictionaryCreateMutable(zel::kDefaultAllocator, -1, nullptr, nullptr), nullptr);
}

TEST_F(DictionariesTest, FoundationsOwnDictionariesWorkToo) {
  const auto dictionary = reinterpret_cast<CFMutableDictionaryRef>(
      zel::send<zel::id, "dictionary">(zel::classNamed<"NSMutableDictionary">()));
  zel::CFDictionarySetValue(dictionary, string("key"), string("value"));
  EXPECT_EQ(text(zel::CFDictionaryGetValue(dictionary, string("key"))), "value");
  zel::CFDictionaryRemoveValue(dictionary, string("key"));
  EXPECT_EQ(zel::CFDictionaryGetValue(dictionary, string("key")), nullptr);
}

// The map that the companion plugin gives to all plugins of a family.
TEST_F(DictionariesTest, ThreadsShareATable) {
  constexpr int kThreads = 4;
  constexpr int kEntries = 100000;
  static char keys[kThreads][kEntries];
  int missing[kThreads] = {};
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      for (char& key : keys[thread]) zel::CFDictionarySetValue(table_, &key, &key);
      for (char& key : keys[thread]) {
        if (zel::CFDictionaryGetValue(table_, &key) != &key) ++missing[thread];
        zel::CFDictionaryRemoveValue(table_, &key);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const int count : missing) EXPECT_EQ(count, 0);
}

}  // namespace
}  // namespace native_test
