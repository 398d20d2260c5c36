#include <algorithm>
#include <array>
#include <cstring>
#include <fstream>
#include <iterator>
#include <unistd.h>

#include "tests/native/folder.h"

namespace native_test {
namespace {

namespace fs = std::filesystem;
using zel::FSCatalogInfo;
using zel::FSRef;
using zel::OSStatus;

constexpr OSStatus kBadName = -37;
constexpr OSStatus kNotFound = -43;
constexpr OSStatus kBadParameter = -50;
constexpr OSStatus kBadReference = -1401;
constexpr OSStatus kBadInfoBitmap = -1405;
constexpr OSStatus kPathTooLong = -2110;

class FileManagerTest : public FolderTest {
 protected:
  static OSStatus make(const std::string& path, zel::Boolean* isFolder = nullptr) {
    FSRef ref{};
    return zel::FSPathMakeRef(reinterpret_cast<const std::uint8_t*>(path.c_str()), &ref, isFolder);
  }
  static OSStatus check(const FSRef& ref) {
    return zel::FSGetCatalogInfo(&ref, zel::kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr);
  }
  static std::uint32_t nodeOf(const std::string& path) {
    const FSRef ref = refOf(path);
    FSCatalogInfo info{};
    EXPECT_EQ(zel::FSGetCatalogInfo(&ref, zel::kFSCatInfoNodeID, &info, nullptr, nullptr, nullptr),
              zel::noErr);
    return info.nodeID;
  }
};

TEST_F(FileManagerTest, NamesFilesAndFoldersThatExist) {
  const std::string path = file("file");
  const FSRef ref = refOf(path);
  EXPECT_EQ(pathOf(ref), path);
  EXPECT_EQ(nameOf(ref), u"file");
  EXPECT_EQ(pathOf(folderOf(ref)), folder());
  EXPECT_EQ(check(ref), zel::noErr);
  EXPECT_FALSE(isNothing(ref));
}

TEST_F(FileManagerTest, SaysWhatIsAFolder) {
  zel::Boolean isFolder = 7;
  EXPECT_EQ(make(file("file"), &isFolder), zel::noErr);
  EXPECT_EQ(isFolder, 0);
  EXPECT_EQ(make(folder(), &isFolder), zel::noErr);
  EXPECT_EQ(isFolder, 1);
}

TEST_F(FileManagerTest, WhatDoesNotExistHasNoReference) {
  EXPECT_EQ(make(at("missing")), kNotFound);
  EXPECT_EQ(make(at("missing/file")), kNotFound);
  EXPECT_EQ(make(file("file") + "/below"), kNotFound);
  EXPECT_EQ(make(at(std::string(256, 'x'))), kBadName);
  EXPECT_EQ(make("relative"), kBadName);
  EXPECT_EQ(make(""), kBadName);
  EXPECT_EQ(zel::FSPathMakeRef(nullptr, nullptr, nullptr), kBadParameter);
}

TEST_F(FileManagerTest, FailedRequestsFillNothing) {
  FSRef ref{};
  const std::string path = at("missing");
  EXPECT_EQ(zel::FSPathMakeRef(reinterpret_cast<const std::uint8_t*>(path.c_str()), &ref, nullptr),
            kNotFound);
  EXPECT_TRUE(isNothing(ref));
}

TEST_F(FileManagerTest, ZerosNameNothing) {
  EXPECT_EQ(check(FSRef{}), kBadReference);
  EXPECT_EQ(pathOf(FSRef{}), "error -1401");
  EXPECT_EQ(zel::CFURLCreateFromFSRef(zel::kDefaultAllocator, &static_cast<const FSRef&>(FSRef{})),
            nullptr);
}

TEST_F(FileManagerTest, ReferencesFromElsewhereNameNothing) {
  FSRef ref = refOf(file("file"));
  ref.hidden[0] ^= 1;
  EXPECT_EQ(check(ref), kBadReference);
}

// Leaves bytes where the functions that are called next have their variables.
[[gnu::noinline]] void leaveOnTheStack(std::uint8_t what) {
  std::array<volatile std::uint8_t, 8192> bytes;
  for (volatile std::uint8_t& byte : bytes) byte = what;
}

TEST_F(FileManagerTest, ReferencesToOneItemAreTheSameToTheLastByte) {
  const std::string path = file("file");
  leaveOnTheStack(0x55);
  const FSRef first = refOf(path);
  leaveOnTheStack(0xAA);
  const FSRef second = refOf(path);
  EXPECT_EQ(std::memcmp(&first, &second, sizeof first), 0);
  // A mark of eight bytes, a number of four, and nothing that was there before.
  EXPECT_EQ(std::count(std::begin(first.hidden) + 12, std::end(first.hidden), 0), 68);
}

TEST_F(FileManagerTest, PathsNeedTheirRoom) {
  const std::string path = file("file");
  const FSRef ref = refOf(path);
  std::string room(path.size() + 1, '#');
  auto* const bytes = reinterpret_cast<std::uint8_t*>(room.data());
  const auto size = static_cast<std::uint32_t>(path.size());
  EXPECT_EQ(zel::FSRefMakePath(&ref, bytes, size), kPathTooLong);
  EXPECT_EQ(room[0], '#');
  EXPECT_EQ(zel::FSRefMakePath(&ref, bytes, size + 1), zel::noErr);
  EXPECT_STREQ(room.c_str(), path.c_str());
}

TEST_F(FileManagerTest, PathsAreStraightened) {
  const std::string path = file("file");
  const std::string inner = subfolder("inner");
  EXPECT_EQ(pathOf(refOf(inner + "/../file")), path);
  EXPECT_EQ(pathOf(refOf(folder() + "//./file")), path);
  EXPECT_EQ(pathOf(refOf(inner + "/..")), folder());
  EXPECT_EQ(pathOf(refOf(inner + "/.")), inner);
  EXPECT_EQ(pathOf(refOf(inner + "//")), inner);
  EXPECT_EQ(pathOf(refOf("/")), "/");
  EXPECT_EQ(pathOf(refOf("///")), "/");
}

TEST_F(FileManagerTest, LinksOnTheWayAreFollowedAndOnesAtTheEndAreNamed) {
  const std::string target = subfolder("target");
  const std::string inside = file("target/inside");
  fs::create_symlink("target", at("link"));
  fs::create_symlink("missing", at("broken"));
  EXPECT_EQ(pathOf(refOf(at("link/inside"))), inside);
  EXPECT_EQ(pathOf(refOf(at("link"))), at("link"));
  EXPECT_EQ(pathOf(refOf(at("broken"))), at("broken"));
  EXPECT_EQ(nameOf(refOf(at("link"))), u"link");
  zel::Boolean isFolder = 7;
  EXPECT_EQ(make(at("link"), &isFolder), zel::noErr);
  EXPECT_EQ(isFolder, 0);
}

// --- volumes

TEST_F(FileManagerTest, RootsOfVolumesHaveTheirNumberAndNoFolder) {
  for (const char* const root : {"/", "/proc"}) {
    EXPECT_EQ(nodeOf(root), 2U) << root;
    EXPECT_TRUE(isNothing(folderOf(refOf(root)))) << root;
  }
  EXPECT_EQ(nameOf(refOf("/")), u"/");
  EXPECT_EQ(nameOf(refOf("/proc")), u"proc");
}

TEST_F(FileManagerTest, NothingElseHasThatNumber) {
  const std::uint32_t one = nodeOf(file("one"));
  const std::uint32_t other = nodeOf(file("other"));
  EXPECT_GE(one, 16U);
  EXPECT_GE(other, 16U);
  EXPECT_NE(one, other);
  EXPECT_EQ(nodeOf(at("one")), one);
  EXPECT_GE(nodeOf("/proc/self"), 16U);
  EXPECT_EQ(pathOf(folderOf(refOf("/proc/self"))), "/proc");
}

TEST_F(FileManagerTest, FillsTheInfoThatIsAskedForAlone) {
  const FSRef ref = refOf(subfolder("inner"));
  FSCatalogInfo info{};
  info.nodeFlags = 7;
  info.volume = 7;
  info.parentDirID = 7;
  info.nodeID = 7;
  const auto ask = [&](std::uint32_t which) {
    return zel::FSGetCatalogInfo(&ref, which, &info, nullptr, nullptr, nullptr);
  };
  EXPECT_EQ(ask(zel::kFSCatInfoNone), zel::noErr);
  EXPECT_EQ(std::uint32_t{info.nodeID}, 7U);
  EXPECT_EQ(ask(zel::kFSCatInfoNodeID), zel::noErr);
  EXPECT_EQ(std::uint32_t{info.nodeID}, nodeOf(at("inner")));
  EXPECT_EQ(info.nodeFlags, 7);
  EXPECT_EQ(ask(0x2 | 0x4 | 0x8), zel::noErr);
  EXPECT_EQ(info.nodeFlags, 0x10);
  EXPECT_LT(info.volume, 0);
  EXPECT_EQ(std::uint32_t{info.parentDirID}, nodeOf(folder()));
  EXPECT_EQ(ask(0x20), kBadInfoBitmap);
}

// --- what happens to items later

TEST_F(FileManagerTest, DeletedItemIsGone) {
  const FSRef ref = refOf(file("file"));
  fs::remove(at("file"));
  EXPECT_EQ(check(ref), kNotFound);
  EXPECT_EQ(pathOf(ref), "error -43");
}

TEST_F(FileManagerTest, ItemThatTakesTheNameIsAnotherOne) {
  for (int i = 0; i < 20; ++i) {  // the file system uses node numbers again, at once
    const FSRef old = refOf(file("file"));
    fs::remove(at("file"));
    const FSRef made = refOf(file("file"));
    EXPECT_EQ(check(old), kNotFound) << i;
    EXPECT_EQ(pathOf(made), at("file")) << i;
    fs::remove(at("file"));
  }
}

TEST_F(FileManagerTest, RenamedItemIsFound) {
  const FSRef ref = refOf(file("before"));
  fs::rename(at("before"), at("after"));
  EXPECT_EQ(pathOf(ref), at("after"));
  EXPECT_EQ(nameOf(ref), u"after");
  EXPECT_EQ(nodeOf(at("after")), nodeOf(at("after")));
}

TEST_F(FileManagerTest, RenamedItemHasItsNewNameWhateverElseIsAsked) {
  const FSRef ref = refOf(file("old"));
  fs::rename(at("old"), at("new"));
  EXPECT_EQ(nameOf(ref), u"new");
  fs::rename(at("new"), at("newer"));
  EXPECT_EQ(check(ref), zel::noErr);
  EXPECT_EQ(nameOf(ref), u"newer");
  fs::remove(at("newer"));
  EXPECT_EQ(check(ref), kNotFound);
}

TEST_F(FileManagerTest, RenamedItemIsNotTakenForItsSuccessor) {
  const FSRef ref = refOf(file("name"));
  fs::rename(at("name"), at("moved"));
  const FSRef successor = refOf(file("name"));
  EXPECT_EQ(pathOf(ref), at("moved"));
  EXPECT_EQ(pathOf(successor), at("name"));
}

TEST_F(FileManagerTest, ItemsBelowARenamedFolderAreFound) {
  const FSRef inner = refOf(subfolder("one"));
  const FSRef ref = refOf((fs::create_directory(at("one/two")), file("one/two/file")));
  fs::rename(at("one"), at("uno"));
  EXPECT_EQ(pathOf(ref), at("uno/two/file"));
  EXPECT_EQ(pathOf(inner), at("uno"));
  EXPECT_EQ(pathOf(folderOf(ref)), at("uno/two"));
}

TEST_F(FileManagerTest, ItemMovedToAKnownFolderIsFound) {
  const FSRef ref = refOf((fs::create_directory(at("from")), file("from/file")));
  const FSRef destination = refOf(subfolder("to"));
  fs::rename(at("from/file"), at("to/other"));
  EXPECT_EQ(pathOf(ref), at("to/other"));
  EXPECT_EQ(pathOf(folderOf(ref)), pathOf(destination));
}

TEST_F(FileManagerTest, ItemMovedToAnUnknownFolderIsFoundOnceThatIsKnown) {
  const FSRef ref = refOf(file("file"));
  fs::rename(at("file"), subfolder("unknown") + "/file");
  EXPECT_EQ(pathOf(ref), "error -43");
  const FSRef again = refOf(at("unknown/file"));
  EXPECT_EQ(pathOf(ref), at("unknown/file"));
  EXPECT_EQ(std::memcmp(&ref, &again, sizeof ref), 0);
}

TEST_F(FileManagerTest, ItemIsInTheFolderThatHasTookTheNameOfItsOldOne) {
  const FSRef ref = refOf((fs::create_directory(at("a")), file("a/file")));
  const FSRef old = folderOf(ref);
  fs::rename(at("a"), at("b"));
  fs::create_directory(at("a"));
  fs::rename(at("b/file"), at("a/file"));
  EXPECT_EQ(pathOf(ref), at("a/file"));
  EXPECT_EQ(pathOf(folderOf(ref)), at("a"));
  EXPECT_EQ(pathOf(old), at("b"));
}

TEST_F(FileManagerTest, EveryNameOfANodeIsAnItem) {
  const FSRef one = refOf(file("one"));
  fs::create_hard_link(at("one"), at("two"));
  const FSRef two = refOf(at("two"));
  EXPECT_EQ(pathOf(one), at("one"));
  EXPECT_EQ(pathOf(two), at("two"));
  fs::remove(at("one"));
  EXPECT_EQ(pathOf(one), "error -43");
  EXPECT_EQ(pathOf(two), at("two"));
}

TEST_F(FileManagerTest, KnowsManyItems) {
  std::vector<FSRef> refs;
  for (int i = 0; i < 300; ++i) refs.push_back(refOf(file(std::to_string(i))));
  for (int i = 0; i < 300; ++i)
    EXPECT_EQ(pathOf(refs[static_cast<std::size_t>(i)]), at(std::to_string(i)));
}

// --- names

TEST_F(FileManagerTest, NamesAreTheFileSystemsOwn) {
  EXPECT_EQ(nameOf(refOf(file("\xC3\xA9"))), u"\u00E9");    // composed
  EXPECT_EQ(nameOf(refOf(file("e\xCC\x81"))), u"e\u0301");  // decomposed
  EXPECT_EQ(nameOf(refOf(file("\xF0\x9F\x98\x80"))), u"\U0001F600");
  EXPECT_EQ(nameOf(refOf(file("a:b"))), u"a:b");
  EXPECT_EQ(nameOf(refOf(file("line\nfeed"))), u"line\nfeed");
  EXPECT_EQ(nameOf(refOf(file(std::string(255, 'n')))), std::u16string(255, u'n'));
}

TEST_F(FileManagerTest, NameThatIsNotUtf8HasNoUnicodeName) {
  const FSRef ref = refOf(file("caf\xE9"));
  zel::HFSUniStr255 name{};
  EXPECT_EQ(zel::FSGetCatalogInfo(&ref, zel::kFSCatInfoNone, nullptr, &name, nullptr, nullptr),
            kBadName);
  EXPECT_EQ(pathOf(ref), at("caf\xE9"));
}

TEST_F(FileManagerTest, ByteOrderMarkInFrontIsNotLost) {
  const FSRef ref = refOf(file("\xEF\xBB\xBFname"));
  EXPECT_EQ(nameOf(ref), u"");
  EXPECT_EQ(pathOf(ref), at("\xEF\xBB\xBFname"));
}

}  // namespace
}  // namespace native_test
