#include <cstring>

#include "tests/native/folder.h"

namespace native_test {
namespace {

namespace fs = std::filesystem;
using zel::FSRef;
using zel::FSSpec;

constexpr zel::OSErr kBadName = -37;
constexpr zel::OSErr kNotFound = -43;

class SpecificationsTest : public FolderTest {
 protected:
  static FSSpec specOf(const FSRef& ref) {
    FSSpec spec{};
    EXPECT_EQ(zel::FSGetCatalogInfo(&ref, zel::kFSCatInfoNone, nullptr, nullptr, &spec, nullptr),
              zel::noErr);
    return spec;
  }
  static std::string nameIn(const FSSpec& spec) {
    return {reinterpret_cast<const char*>(spec.name) + 1, spec.name[0]};
  }
  /// A file specification of a name in the folder of another one.
  static FSSpec sibling(FSSpec spec, std::string_view name) {
    spec.name[0] = static_cast<std::uint8_t>(name.size());
    std::memcpy(spec.name + 1, name.data(), name.size());
    return spec;
  }
  /// The path of what a specification names, or "error " and the code.
  static std::string resolved(const FSSpec& spec) {
    FSRef ref{};
    const zel::OSErr error = zel::FSpMakeFSRef(&spec, &ref);
    if (error != zel::noErr) return "error " + std::to_string(error);
    return pathOf(ref);
  }
  static std::string aroundTheCircle(const std::string& path) {
    return resolved(specOf(refOf(path)));
  }
};

TEST_F(SpecificationsTest, ShortNamesStandAsTheyAre) {
  const FSSpec spec = specOf(refOf(file("name.txt")));
  EXPECT_EQ(nameIn(spec), "name.txt");
  EXPECT_LT(spec.vRefNum, 0);
  EXPECT_GE(std::int32_t{spec.parID}, 16);
  EXPECT_EQ(resolved(spec), at("name.txt"));
  EXPECT_EQ(nameIn(specOf(refOf(file(std::string(63, 'n'))))), std::string(63, 'n'));
  EXPECT_EQ(nameIn(specOf(refOf(file("\xC3\xA9")))), "\x8E");  // in Mac Roman
  EXPECT_EQ(aroundTheCircle(at("\xC3\xA9")), at("\xC3\xA9"));
}

TEST_F(SpecificationsTest, FolderOfAVolumeRootHasItsNumber) {
  const FSSpec spec = specOf(refOf("/proc/self"));
  EXPECT_EQ(std::int32_t{spec.parID}, 2);
  EXPECT_EQ(nameIn(spec), "self");
  EXPECT_EQ(resolved(spec), "/proc/self");
}

TEST_F(SpecificationsTest, VolumeRootsHaveTheNumberOneAsTheirFolder) {
  const FSSpec root = specOf(refOf("/"));
  EXPECT_EQ(std::int32_t{root.parID}, 1);
  EXPECT_EQ(nameIn(root), "/");
  EXPECT_EQ(resolved(root), "/");
  const FSSpec proc = specOf(refOf("/proc"));
  EXPECT_EQ(std::int32_t{proc.parID}, 1);
  EXPECT_EQ(nameIn(proc), "proc");
  EXPECT_NE(proc.vRefNum, root.vRefNum);
  EXPECT_EQ(resolved(proc), "/proc");
  EXPECT_EQ(resolved(sibling(proc, "other")), "error -43");
}

TEST_F(SpecificationsTest, LongNamesAreCutAndMarked) {
  const FSSpec spec = specOf(refOf(file(std::string(64, 'n'))));
  const std::string name = nameIn(spec);
  EXPECT_EQ(name.size(), 63U);
  const std::size_t mark = name.find('#');
  ASSERT_NE(mark, std::string::npos);
  EXPECT_EQ(name.substr(0, mark), std::string(mark, 'n'));
  EXPECT_EQ(resolved(spec), at(std::string(64, 'n')));
}

TEST_F(SpecificationsTest, NamesOutsideMacRomanAreMarked) {
  for (const char* const name : {"e\xCC\x81", "\xF0\x9F\x98\x80", "\xE6\x97\xA5\xE6\x9C\xAC",
                                 "caf\xE9", "\xEF\xBB\xBFmark"}) {
    const FSSpec spec = specOf(refOf(file(name)));
    EXPECT_NE(nameIn(spec).find('#'), std::string::npos) << name;
    EXPECT_EQ(resolved(spec), at(name));
  }
  EXPECT_EQ(nameIn(specOf(refOf(at("\xE6\x97\xA5\xE6\x9C\xAC")))).substr(0, 3), "??#");
}

TEST_F(SpecificationsTest, NameThatLooksMarkedIsNotTakenForAnother) {
  const FSSpec first = specOf(refOf(file(std::string(100, 'n'))));
  const std::string lookAlike = nameIn(first);
  const FSSpec second = specOf(refOf(file(lookAlike)));
  EXPECT_EQ(resolved(first), at(std::string(100, 'n')));
  EXPECT_EQ(resolved(second), at(lookAlike));
  EXPECT_EQ(aroundTheCircle(file("#1")), at("#1"));
  EXPECT_EQ(aroundTheCircle(file("a#")), at("a#"));
}

TEST_F(SpecificationsTest, MarkIsGoodInItsOwnFolderAlone) {
  const FSSpec spec = specOf(refOf(file(std::string(100, 'n'))));
  const FSSpec elsewhere = specOf(refOf((fs::create_directory(at("inner")), file("inner/x"))));
  EXPECT_EQ(resolved(sibling(elsewhere, nameIn(spec))), "error -43");
}

TEST_F(SpecificationsTest, SiblingsAreReachedByTheirNames) {
  const FSSpec spec = specOf(refOf(file("one")));
  const std::string other = file("other");
  EXPECT_EQ(resolved(sibling(spec, "other")), other);
  EXPECT_EQ(resolved(sibling(spec, "missing")), "error -43");
}

TEST_F(SpecificationsTest, NamesLeaveTheirFolderNowhere) {
  const FSSpec spec = specOf(refOf(file("one")));
  subfolder("inner");
  for (const char* const name : {"", ".", "..", "inner/..", "/"}) {
    FSRef ref{};
    const FSSpec wrong = sibling(spec, name);
    EXPECT_EQ(zel::FSpMakeFSRef(&wrong, &ref), kBadName) << name;
    EXPECT_TRUE(isNothing(ref)) << name;
  }
}

TEST_F(SpecificationsTest, SpecificationsThatNameNothingAreRefused) {
  FSSpec spec = specOf(refOf(file("one")));
  FSRef ref{};
  spec.parID = 0;
  EXPECT_EQ(zel::FSpMakeFSRef(&spec, &ref), kNotFound);
  spec.parID = 1'000'000;
  EXPECT_EQ(zel::FSpMakeFSRef(&spec, &ref), kNotFound);
  spec.parID = -1;
  EXPECT_EQ(zel::FSpMakeFSRef(&spec, &ref), kNotFound);
  spec = specOf(refOf(at("one")));
  spec.vRefNum = 0;
  EXPECT_EQ(zel::FSpMakeFSRef(&spec, &ref), kNotFound);
  spec = specOf(refOf(at("one")));
  spec.name[0] = 64;
  EXPECT_EQ(zel::FSpMakeFSRef(&spec, &ref), kBadName);
  const FSSpec zeros{};
  EXPECT_EQ(zel::FSpMakeFSRef(&zeros, &ref), kNotFound);
  EXPECT_TRUE(isNothing(ref));
}

TEST_F(SpecificationsTest, ItemIsReachedInItsRenamedFolder) {
  const FSSpec spec = specOf(refOf((fs::create_directory(at("old")), file("old/file"))));
  fs::rename(at("old"), at("new"));
  EXPECT_EQ(resolved(spec), at("new/file"));
}

}  // namespace
}  // namespace native_test
