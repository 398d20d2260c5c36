// Bytes across the border.
#include "bridge/data.h"

#include "native/exceptions.h"
#include "plugin/host.h"
#include "tests/support/intercept.h"
#include "tests/support/plugin_test.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests
using namespace std::string_literals;

class DataTest : public PluginTest {
 protected:
  std::string toNative(const ObjectRef& block) {
    return foundation.describe(NewNSData(block.as<REALmemoryBlock>()));
  }
  std::string toHost(id data) {
    const auto block = ObjectRef::adopt(reinterpret_cast<REALobject>(NSDataRB(data)));
    return host->describe(block);
  }
};

TEST_F(DataTest, ABlockBecomesACopyOfItsBytes) {
  const ObjectRef block = host->memoryBlock("\x01\x02");
  EXPECT_EQ(toNative(block), "<0102>");
  EXPECT_EQ(toNative(host->memoryBlock("a\0b"s)), "<610062>");
  EXPECT_EQ(host->references(block.handle()), 1);
}

TEST_F(DataTest, TheBlockIsHeldForTheTimeOfTheCopy) {
  const ObjectRef block = host->memoryBlock("x");
  host->clearRecords();
  EXPECT_EQ(toNative(block), "<78>");
  EXPECT_EQ(host->sequence(), (Lines{"REALLockObject", "memoryBlockGetSize", "memoryBlockGetPtr",
                                     "REALUnlockObject"}));
}

TEST_F(DataTest, NothingBecomesNil) {
  EXPECT_EQ(NewNSData(nullptr), nullptr);
  EXPECT_EQ(toNative(host->memoryBlock("")), "nil");
}

TEST_F(DataTest, ANegativeSizeBecomesNil) {
  const ObjectRef block = host->memoryBlock("abc");
  host->reportSize(block, -1);
  EXPECT_EQ(toNative(block), "nil");
}

TEST_F(DataTest, ABlockWhoseBytesCannotBeReachedBecomesNil) {
  const ObjectRef block = host->memoryBlock("abc");
  host->answerNull("memoryBlockGetPtr");
  EXPECT_EQ(toNative(block), "nil");
}

TEST_F(DataTest, AHostWithoutBytesGivesNil) {
  host->hide("memoryBlockGetPtr");
  EXPECT_EQ(toNative(host->memoryBlock("abc")), "nil");
}

TEST_F(DataTest, AHostWithoutSizesGivesNil) {
  host->hide("memoryBlockGetSize");
  EXPECT_EQ(toNative(host->memoryBlock("abc")), "nil");
}

TEST_F(DataTest, TheBlockIsGivenBackWhenAnExceptionPasses) {
  const ObjectRef block = host->memoryBlock("abc");
  foundation.throwAtMessage(1);
  EXPECT_NE(catching([&] { NewNSData(block.as<REALmemoryBlock>()); }), nullptr);
  EXPECT_EQ(host->references(block.handle()), 1);
}

TEST_F(DataTest, ABlockWithoutBytesSendsNoMessage) {
  const ObjectRef block = host->memoryBlock("");
  foundation.clearRecords();
  EXPECT_EQ(NewNSData(block.as<REALmemoryBlock>()), nullptr);
  EXPECT_EQ(foundation.messages(), Lines{});
}

TEST_F(DataTest, TheCopyIsTheDatasOwn) {
  const ObjectRef block = host->memoryBlock("ab");
  const id data = NewNSData(block.as<REALmemoryBlock>());
  *static_cast<char*>(REALMemoryBlockGetPtr(block.as<REALmemoryBlock>())) = 'z';
  EXPECT_EQ(foundation.describe(data), "<6162>");
}

TEST_F(DataTest, AHostThatCannotLockIsStillAskedToUnlock) {
  host->hide("REALLockObject");
  const REALobject block = host->memoryBlock("x").release();
  host->clearRecords();
  EXPECT_EQ(foundation.describe(NewNSData(reinterpret_cast<REALmemoryBlock>(block))), "<78>");
  EXPECT_EQ(host->sequence(),
            (Lines{"memoryBlockGetSize", "memoryBlockGetPtr", "REALUnlockObject"}));
  EXPECT_EQ(host->references(block), 0);
}

TEST_F(DataTest, DataBecomesABlock) {
  EXPECT_EQ(toHost(foundation.data("\x01\x02\xFF"s)), "MemoryBlock 0102ff");
  EXPECT_EQ(toHost(foundation.data("a\0b"s)), "MemoryBlock 610062");
  EXPECT_EQ(toHost(foundation.data("a")), "MemoryBlock 61");
}

TEST_F(DataTest, NothingBecomesNoBlock) {
  EXPECT_EQ(toHost(nullptr), "nil");
  EXPECT_EQ(toHost(foundation.data("")), "nil");
  EXPECT_EQ(toHost(foundation.dataWithoutBytes(5)), "nil");
  EXPECT_EQ(host->calls("newMemoryBlock"), 0);
}

TEST_F(DataTest, BytesAreAskedForBeforeTheirNumber) {
  const id data = foundation.data("ab");
  foundation.clearRecords();
  EXPECT_EQ(toHost(data), "MemoryBlock 6162");
  EXPECT_EQ(foundation.messages(), (Lines{"-[NSData bytes]", "-[NSData length]"}));
}

TEST_F(DataTest, TheHostIsAskedForABlockOfThatSizeAndThenForItsBytes) {
  static std::int32_t asked = 0;
  intercept("newMemoryBlock", [](std::int32_t size) {
    asked = size;
    return callHost<REALmemoryBlock>("newMemoryBlock", size);
  });
  EXPECT_EQ(toHost(foundation.data("abc")), "MemoryBlock 616263");
  EXPECT_EQ(asked, 3);
  EXPECT_EQ(host->sequence().at(0), "newMemoryBlock");
  EXPECT_EQ(host->sequence().at(1), "memoryBlockGetPtr");
}

TEST_F(DataTest, ManyBytesThatAreNowhereAreNoException) {
  EXPECT_EQ(toHost(foundation.dataWithoutBytes(0x7FFFFFFF)), "nil");
  EXPECT_EQ(host->takePending(), std::vector<Raised>{});
}

TEST_F(DataTest, TheLargestCountIsRefusedWithAnException) {
  EXPECT_EQ(toHost(foundation.dataOfLength(0x7FFFFFFF)), "nil");
  EXPECT_EQ(host->calls("newMemoryBlock"), 0);
  EXPECT_EQ(host->takePending(),
            (std::vector<Raised>{{"OutOfMemoryException",
                                  "Failed to allocate a memoryblock with 2147483647 bytes in size.",
                                  0}}));
}

TEST_F(DataTest, LargerCountsGiveNothing) {
  EXPECT_EQ(toHost(foundation.dataOfLength(0x80000000)), "nil");
  EXPECT_EQ(toHost(foundation.dataOfLength(0xFFFFFFFF)), "nil");
  EXPECT_EQ(host->takePending(), std::vector<Raised>{});
}

TEST_F(DataTest, ABlockThatTheHostCannotMakeIsAnException) {
  const Raised expected{"OutOfMemoryException",
                        "Failed to allocate a memoryblock with 3 bytes in size.", 0};
  host->answerNull("newMemoryBlock");
  EXPECT_EQ(toHost(foundation.data("abc")), "nil");
  EXPECT_EQ(host->takePending(), std::vector<Raised>{expected});
}

TEST_F(DataTest, AHostThatMakesNoBlocksIsAnExceptionToo) {
  host->hide("newMemoryBlock");
  EXPECT_EQ(toHost(foundation.data("abc")), "nil");
  EXPECT_EQ(host->takePending().size(), 1U);
}

TEST_F(DataTest, ABlockWhoseBytesCannotBeFilledIsLeftAsItIs) {
  host->answerNull("memoryBlockGetPtr");
  EXPECT_EQ(NSDataRB(foundation.data("abc")), nullptr);
  EXPECT_EQ(host->calls("REALUnlockObject"), 0);
  EXPECT_NE(host->unbalanced(), "");
  EXPECT_EQ(host->takePending(), std::vector<Raised>{});
  abandonHost();
}

TEST_F(DataTest, ABlockInAHostThatNamesNoBytesIsLeftAsItIs) {
  host->hide("memoryBlockGetPtr");
  EXPECT_EQ(NSDataRB(foundation.data("abc")), nullptr);
  EXPECT_EQ(host->calls("newMemoryBlock"), 1);
  EXPECT_EQ(host->unbalanced(), "object of MemoryBlock (#1): 1 reference\n");
  EXPECT_EQ(host->takePending(), std::vector<Raised>{});
  abandonHost();
}

}  // namespace
}  // namespace zel
