// The reference host's classes MemoryBlock, Date and FolderItem.
#include <cstring>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <vector>

#include "native/files.h"
#include "tests/host/native_side.h"
#include "tests/host/sample_plugin.h"

namespace tests {
namespace {

using Lines = std::vector<std::string>;
using host::DateFields;
using host::ObjectRef;
using host::Raised;
using host::Value;
using zel::FSRef;
using zel::FSSpec;
using zel::HFSUniStr255;
using zel::REALboolean;
using zel::REALfolderItem;
using zel::REALmemoryBlock;
using zel::REALobject;

template <class Handle>
ObjectRef adopt(Handle handle) {
  return ObjectRef::adopt(reinterpret_cast<REALobject>(handle));
}

// --- memory blocks

ObjectRef newBlock(std::int32_t size) {
  return adopt(entryPoint<REALmemoryBlock(std::int32_t)>("newMemoryBlock")(size));
}
void* pointer(const ObjectRef& block) {
  return entryPoint<void*(REALmemoryBlock)>("memoryBlockGetPtr")(block.as<REALmemoryBlock>());
}
std::int32_t size(const ObjectRef& block) {
  return entryPoint<std::int32_t(REALmemoryBlock)>("memoryBlockGetSize")(
      block.as<REALmemoryBlock>());
}

TEST_F(HostTest, MakesMemoryBlocks) {
  const ObjectRef block = newBlock(3);
  ASSERT_TRUE(block);
  EXPECT_EQ(host->references(block.handle()), 1);
  EXPECT_EQ(size(block), 3);
  EXPECT_EQ(host->bytesOf(block), std::string(3, '\0'));
  std::memcpy(pointer(block), "abc", 3);
  EXPECT_EQ(host->bytesOf(block), "abc");
  EXPECT_EQ(host->bytesOf(host->memoryBlock("xyz")), "xyz");
  const ObjectRef empty = host->make("MemoryBlock");
  EXPECT_EQ(size(empty), 0);
  EXPECT_NE(pointer(empty), nullptr);
  EXPECT_FALSE(newBlock(-1));
}

TEST_F(HostTest, CanBeToldToSpoilMemoryBlocks) {
  const ObjectRef block = host->memoryBlock("abc");
  host->reportSize(block, -3);
  EXPECT_EQ(size(block), -3);
  host->answerNull("memoryBlockGetPtr", 1);
  EXPECT_EQ(pointer(block), nullptr);
  EXPECT_NE(pointer(block), nullptr);
  host->answerNull("newMemoryBlock", 2);
  EXPECT_TRUE(newBlock(1));
  EXPECT_FALSE(newBlock(1));
  EXPECT_THROW(host->reportSize(host->make("Date"), 1), std::invalid_argument);
  EXPECT_THROW((void)host->bytesOf(host->make("Date")), std::invalid_argument);
  EXPECT_EQ(pointer(host->make("Date")), nullptr);
  EXPECT_EQ(takeFailures(),
            Lines{"memoryBlockGetPtr was given object of Date (#5), which isn't a MemoryBlock"});
  host->removeClass("MemoryBlock");
  EXPECT_FALSE(newBlock(1));
  EXPECT_EQ(host->bytesOf(block), "abc");
}

TEST_F(HostTest, FindsWritesBehindAMemoryBlock) {
  ObjectRef block = host->memoryBlock("abc");
  static_cast<char*>(pointer(block))[3] = 'd';
  block.reset();
  EXPECT_EQ(takeFailures(), Lines{"object of MemoryBlock (#1) was written to outside of its data"});
  start({});
}

// --- dates

TEST_F(HostTest, HasDates) {
  const auto set = entryPoint<void(REALobject, const char*, std::int32_t)>("REALSetPropValueInt");
  const ObjectRef date = host->make("Date");
  const DateFields fields = {1999, 12, 31, 23, 59, 58};
  set(date.handle(), "Year", 1999);
  set(date.handle(), "Month", 12);
  set(date.handle(), "Day", 31);
  set(date.handle(), "Hour", 23);
  set(date.handle(), "Minute", 59);
  set(date.handle(), "Second", 58);
  EXPECT_EQ(host->fieldsOf(date), fields);
  EXPECT_EQ(host->fieldsOf(host->date(fields)), fields);
  EXPECT_EQ(host->property(host->date(fields), "Second"), Value(58));
  EXPECT_THROW((void)host->fieldsOf(host->memoryBlock("")), std::invalid_argument);
}

// --- files

bool reference(const ObjectRef& item, FSRef* out, HFSUniStr255* name) {
  return entryPoint<REALboolean(REALfolderItem, FSRef*, HFSUniStr255*)>("REALFSRefFromFolderItem")(
             item.as<REALfolderItem>(), out, name) != 0;
}
bool specification(const ObjectRef& item, FSSpec* out) {
  return entryPoint<REALboolean(FSSpec*, REALfolderItem)>("REALFSSpecFromFolderItem")(
             out, item.as<REALfolderItem>()) != 0;
}
ObjectRef inFolder(const FSRef& folder, const HFSUniStr255& name) {
  return adopt(entryPoint<REALfolderItem(const FSRef*, const HFSUniStr255*)>(
      "REALFolderItemFromParentFSRef")(&folder, &name));
}
ObjectRef ofSpecification(const FSSpec& wanted) {
  return adopt(entryPoint<REALfolderItem(const FSSpec*)>("FolderItemFromFSSpec")(&wanted));
}
std::string pathOf(const FSRef& ref) {
  std::uint8_t path[1024];
  EXPECT_EQ(zel::FSRefMakePath(&ref, path, sizeof path), zel::noErr);
  return reinterpret_cast<const char*>(path);
}

class HostFilesTest : public HostTest {
 protected:
  Pool pool;
  Folder folder;
};

TEST_F(HostFilesTest, GivesReferencesOfItemsThatExist) {
  folder.makeFile("here.txt");
  FSRef ref{};
  EXPECT_TRUE(reference(host->folderItem(folder.path() + "/here.txt"), &ref, nullptr));
  EXPECT_EQ(pathOf(ref), folder.path() + "/here.txt");
  FSRef untouched{};
  EXPECT_FALSE(reference(host->folderItem(folder.path() + "/gone.txt"), &untouched, nullptr));
  EXPECT_FALSE(reference(host->folderItem("/no such folder/gone.txt"), &untouched, nullptr));
  EXPECT_TRUE(reference(host->folderItem("/"), &ref, nullptr));
  EXPECT_EQ(pathOf(ref), "/");
}

TEST_F(HostFilesTest, GivesTheFolderAndTheName) {
  FSRef ref{};
  HFSUniStr255 name{};
  EXPECT_TRUE(reference(host->folderItem(folder.path() + "/\xC3\xA9.txt"), &ref, &name));
  EXPECT_EQ(pathOf(ref), folder.path());
  ASSERT_EQ(name.length, 5);
  EXPECT_EQ(std::u16string(name.unicode, name.unicode + 5), u"\u00E9.txt");
  EXPECT_FALSE(reference(host->folderItem("/no such folder/gone.txt"), &ref, &name));
  EXPECT_FALSE(reference(host->folderItem("/"), &ref, &name));
  EXPECT_TRUE(reference(host->folderItem("/gone"), &ref, &name));
  EXPECT_EQ(pathOf(ref), "/");
  EXPECT_EQ(name.length, 4);
  const std::string tooLong = folder.path() + "/" + std::string(256, 'n');
  EXPECT_FALSE(reference(host->folderItem(tooLong), &ref, &name));
}

TEST_F(HostFilesTest, MakesItemsOfAFolderAndAName) {
  FSRef ref{};
  ASSERT_TRUE(reference(host->folderItem(folder.path() + "/"), &ref, nullptr));
  HFSUniStr255 name{2, {0xE9, 'x'}};
  const ObjectRef item = inFolder(ref, name);
  EXPECT_EQ(host->references(item.handle()), 1);
  EXPECT_EQ(host->pathOf(item), folder.path() + "/\xC3\xA9x");
  EXPECT_EQ(host->describe(item), "FolderItem " + folder.path() + "/\xC3\xA9x");
  name.length = 0;
  EXPECT_FALSE(inFolder(ref, name));
  name.length = 2;
  EXPECT_FALSE(inFolder(FSRef{}, name));
  ASSERT_TRUE(reference(host->folderItem("/"), &ref, nullptr));
  EXPECT_EQ(host->pathOf(inFolder(ref, name)), "/\xC3\xA9x");
}

TEST_F(HostFilesTest, KnowsOldStyleSpecifications) {
  folder.makeFile("here.txt");
  FSSpec wanted{};
  EXPECT_TRUE(specification(host->folderItem(folder.path() + "/here.txt"), &wanted));
  EXPECT_EQ(host->pathOf(ofSpecification(wanted)), folder.path() + "/here.txt");
  EXPECT_FALSE(specification(host->folderItem(folder.path() + "/gone.txt"), &wanted));
  EXPECT_FALSE(ofSpecification(FSSpec{}));
}

TEST_F(HostFilesTest, TellsFolderItemsByTheirMethod) {
  const ObjectRef item = host->folderItem(folder.path());
  const auto load = entryPoint<void*(REALobject, const char*)>("REALLoadObjectMethod");
  constexpr char kTrueItem[] = "TrueItem(Index as integer) as Folderitem";
  EXPECT_EQ(load(host->memoryBlock("").handle(), kTrueItem), nullptr);
  void* const method = load(item.handle(), kTrueItem);
  ASSERT_NE(method, nullptr);
  EXPECT_EQ(reinterpret_cast<REALobject (*)(REALobject, std::int32_t)>(method)(item.handle(), 1),
            nullptr);
  EXPECT_EQ(host->takePending(),
            (std::vector<Raised>{{"UnsupportedOperationException", std::nullopt, 0}}));
  EXPECT_THROW(host->folderItem("relative"), std::invalid_argument);
  EXPECT_THROW((void)host->pathOf(host->memoryBlock("")), std::invalid_argument);
}

TEST_F(HostFilesTest, FindsMissingRecords) {
  EXPECT_FALSE(reference(host->folderItem("/"), nullptr, nullptr));
  EXPECT_FALSE(specification(host->folderItem("/"), nullptr));
  EXPECT_EQ(takeFailures(), (Lines{"REALFSRefFromFolderItem was given no record",
                                   "REALFSSpecFromFolderItem was given no record"}));
}

}  // namespace
}  // namespace tests
