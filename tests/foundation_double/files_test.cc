// The double's file system, through the File Manager and Core Foundation.

#include "native/files.h"

#include <cstring>
#include <string_view>

#include "tests/foundation_double/fixture.h"

namespace {

using zel::CFStringRef;
using zel::CFURLRef;
using zel::FSCatalogInfo;
using zel::FSRef;
using zel::FSSpec;
using zel::HFSUniStr255;

constexpr zel::OSStatus kNoError = 0;
constexpr zel::OSStatus kNoVolume = -35;
constexpr zel::OSStatus kIoError = -36;
constexpr zel::OSStatus kBadName = -37;
constexpr zel::OSStatus kNoItem = -43;
constexpr zel::OSStatus kPathTooLong = -2110;

class FoundationFileTest : public FoundationTest {
 protected:
  zel::OSStatus makeRef(std::string_view path, FSRef& ref, zel::Boolean* isFolder = nullptr) {
    const std::string text(path);
    return zel::FSPathMakeRef(reinterpret_cast<const std::uint8_t*>(text.c_str()), &ref, isFolder);
  }

  FSRef refTo(std::string_view path) {
    FSRef ref{};
    EXPECT_EQ(makeRef(path, ref), kNoError) << path;
    return ref;
  }

  std::string pathOf(const FSRef& ref) {
    std::uint8_t path[1024] = {};
    const zel::OSStatus status = zel::FSRefMakePath(&ref, path, sizeof path);
    return status == kNoError ? reinterpret_cast<const char*>(path) : std::to_string(status);
  }

  std::uint32_t nodeId(const FSRef& ref) {
    FSCatalogInfo info{};
    EXPECT_EQ(zel::FSGetCatalogInfo(&ref, zel::kFSCatInfoNodeID, &info, nullptr, nullptr, nullptr),
              kNoError);
    return info.nodeID;
  }

  FSSpec specificationOf(const FSRef& ref) {
    FSSpec spec{};
    EXPECT_EQ(zel::FSGetCatalogInfo(&ref, 0, nullptr, nullptr, &spec, nullptr), kNoError);
    return spec;
  }

  std::string nameOf(const FSRef& ref) {
    HFSUniStr255 name{};
    EXPECT_EQ(zel::FSGetCatalogInfo(&ref, 0, nullptr, &name, nullptr, nullptr), kNoError);
    return foundation_.utf8(
        foundation_.string16(std::u16string(name.unicode, name.unicode + name.length)));
  }

  std::string parentOf(const FSRef& ref) {
    FSRef parent{};
    EXPECT_EQ(zel::FSGetCatalogInfo(&ref, 0, nullptr, nullptr, nullptr, &parent), kNoError);
    return pathOf(parent);
  }

  zel::OSErr exists(const FSRef& ref) {
    return zel::FSGetCatalogInfo(&ref, 0, nullptr, nullptr, nullptr, nullptr);
  }

  /// Takes the caller's reference to a new URL or string.
  template <class Native>
  std::string taken(Native* object) {
    return foundation_.describe(zel::autoreleased(object));
  }
};

bool isZero(const FSRef& ref) {
  const FSRef zero{};
  return std::memcmp(&ref, &zero, sizeof zero) == 0;
}

// --- the tree and references

TEST_F(FoundationFileTest, PathsAndReferencesNameItems) {
  foundation_.makeFile("/Users/me/a.txt");
  zel::Boolean isFolder = 9;
  FSRef ref{};
  EXPECT_EQ(makeRef("/Users/me/a.txt", ref, &isFolder), kNoError);
  EXPECT_EQ(isFolder, 0);
  EXPECT_EQ(pathOf(ref), "/Users/me/a.txt");
  EXPECT_EQ(makeRef("/Users//me/", ref, &isFolder), kNoError);
  EXPECT_EQ(isFolder, 1);
  EXPECT_EQ(pathOf(ref), "/Users/me");
  EXPECT_EQ(pathOf(refTo("/")), "/");
}

TEST_F(FoundationFileTest, MissingItemsHaveNoReference) {
  foundation_.makeFile("/a");
  FSRef ref{};
  for (const char* const path : {"/b", "/a/b", "/A", "a", "", "/\xFF"}) {
    EXPECT_EQ(makeRef(path, ref), kNoItem) << path;
  }
  EXPECT_TRUE(isZero(ref));
  EXPECT_EQ(exists(ref), kNoItem);
  EXPECT_EQ(pathOf(ref), "-43");
}

TEST_F(FoundationFileTest, ARemovedItemIsGoneWithWhatIsInIt) {
  foundation_.makeFile("/a/b/c");
  const FSRef file = refTo("/a/b/c");
  foundation_.removeFile("/a/b");
  EXPECT_EQ(exists(file), kNoItem);
  EXPECT_FALSE(foundation_.fileExists("/a/b/c"));
  EXPECT_TRUE(foundation_.fileExists("/a"));
  foundation_.makeFile("/a/b/c");
  EXPECT_EQ(exists(file), kNoItem);
  foundation_.reset();
  EXPECT_FALSE(foundation_.fileExists("/a"));
  EXPECT_TRUE(foundation_.fileExists("/"));
}

TEST_F(FoundationFileTest, APathMustFitIntoItsBuffer) {
  foundation_.makeFile("/abc");
  const FSRef ref = refTo("/abc");
  std::uint8_t path[5] = {};
  EXPECT_EQ(zel::FSRefMakePath(&ref, path, 4), kPathTooLong);
  EXPECT_EQ(path[0], 0);
  EXPECT_EQ(zel::FSRefMakePath(&ref, path, 5), kNoError);
  EXPECT_STREQ(reinterpret_cast<const char*>(path), "/abc");
}

TEST_F(FoundationFileTest, NamesAreKeptDecomposed) {
  foundation_.makeFile("/\u00E9");
  EXPECT_EQ(nameOf(refTo("/\u00E9")), "e\u0301");
  EXPECT_EQ(pathOf(refTo("/e\u0301")), "/e\u0301");
}

TEST_F(FoundationFileTest, AKindOfItemStaysWhatItIs) {
  foundation_.makeFile("/a");
  foundation_.makeFile("/a");
  foundation_.makeFolder("/b");
  foundation_.makeFile("/b/c");
  foundation_.makeFolder("/b");
  EXPECT_TRUE(foundation_.fileExists("/b/c"));
  collectFailures();
  EXPECT_THROW(foundation_.makeFolder("/a"), std::logic_error);
  EXPECT_THROW(foundation_.makeFile("/a/x"), std::logic_error);
  EXPECT_THROW(foundation_.makeFile("x"), std::logic_error);
  EXPECT_THROW(foundation_.removeFile("/x"), std::logic_error);
  EXPECT_THROW(foundation_.removeFile("/"), std::logic_error);
  EXPECT_EQ(failures_, (Lines{"an item of another kind is there: /a",
                              "an item in what is no folder", "a path that is not absolute",
                              "no item to remove: /x", "no item to remove: /"}));
}

// --- the catalog

TEST_F(FoundationFileTest, TheCatalogKnowsNameFolderAndNumber) {
  foundation_.makeFile("/a/b.txt");
  const FSRef ref = refTo("/a/b.txt");
  EXPECT_EQ(nameOf(ref), "b.txt");
  EXPECT_EQ(parentOf(ref), "/a");
  EXPECT_GT(nodeId(ref), 2U);
  EXPECT_NE(nodeId(ref), nodeId(refTo("/a")));
}

TEST_F(FoundationFileTest, AVolumesRootHasNumberTwo) {
  foundation_.makeVolume("/Volumes/Stick");
  for (const char* const path : {"/", "/Volumes/Stick"}) {
    const FSRef root = refTo(path);
    EXPECT_EQ(nodeId(root), 2U) << path;
  }
  EXPECT_EQ(nameOf(refTo("/")), "Disk");
  EXPECT_EQ(nameOf(refTo("/Volumes/Stick")), "Stick");
}

TEST_F(FoundationFileTest, TheFolderOfAVolumesRootIsNothingToRelyOn) {
  foundation_.makeVolume("/Volumes/Stick");
  const FSRef root = refTo("/");
  FSRef parent = root;
  EXPECT_EQ(zel::FSGetCatalogInfo(&root, 0, nullptr, nullptr, nullptr, &parent), kNoError);
  EXPECT_TRUE(isZero(parent));
  EXPECT_EQ(parentOf(refTo("/Volumes/Stick")), "/Volumes");
}

TEST_F(FoundationFileTest, TheCatalogFillsOnlyWhatIsAsked) {
  FSCatalogInfo info{};
  info.nodeID = 77;
  const FSRef root = refTo("/");
  EXPECT_EQ(zel::FSGetCatalogInfo(&root, zel::kFSCatInfoNone, &info, nullptr, nullptr, nullptr),
            kNoError);
  EXPECT_EQ(std::uint32_t{info.nodeID}, 77U);
  collectFailures();
  EXPECT_THROW(zel::FSGetCatalogInfo(&root, 0x40, &info, nullptr, nullptr, nullptr),
               std::logic_error);
  EXPECT_EQ(failures_, Lines{"a field of the catalog that the double doesn't know"});
}

// --- old-style specifications

TEST_F(FoundationFileTest, ASpecificationNamesAnItemInItsFolder) {
  foundation_.makeFile("/a/\u00DF.txt");
  const FSSpec spec = specificationOf(refTo("/a/\u00DF.txt"));
  EXPECT_EQ(spec.vRefNum, -100);
  EXPECT_EQ(static_cast<std::uint32_t>(spec.parID), nodeId(refTo("/a")));
  EXPECT_EQ(std::memcmp(spec.name, "\x05\xA7.txt", 6), 0);
  FSRef ref{};
  EXPECT_EQ(zel::FSpMakeFSRef(&spec, &ref), kNoError);
  EXPECT_EQ(pathOf(ref), "/a/\u00DF.txt");
}

TEST_F(FoundationFileTest, ASpecificationNamesAVolume) {
  foundation_.makeVolume("/Volumes/Stick");
  foundation_.makeFile("/Volumes/Stick/x");
  const FSSpec root = specificationOf(refTo("/Volumes/Stick"));
  EXPECT_EQ(root.vRefNum, -101);
  EXPECT_EQ(std::int32_t{root.parID}, 1);
  EXPECT_EQ(std::memcmp(root.name, "\x05Stick", 6), 0);
  FSRef ref{};
  EXPECT_EQ(zel::FSpMakeFSRef(&root, &ref), kNoError);
  EXPECT_EQ(pathOf(ref), "/Volumes/Stick");
  const FSSpec file = specificationOf(refTo("/Volumes/Stick/x"));
  EXPECT_EQ(file.vRefNum, -101);
  EXPECT_EQ(std::int32_t{file.parID}, 2);
  EXPECT_EQ(zel::FSpMakeFSRef(&file, &ref), kNoError);
  EXPECT_EQ(pathOf(ref), "/Volumes/Stick/x");
}

TEST_F(FoundationFileTest, ASpecificationOfNothingGivesNoReference) {
  foundation_.makeFile("/a/b");
  FSSpec spec = specificationOf(refTo("/a/b"));
  foundation_.removeFile("/a/b");
  FSRef ref{};
  EXPECT_EQ(zel::FSpMakeFSRef(&spec, &ref), kNoItem);
  foundation_.removeFile("/a");
  EXPECT_EQ(zel::FSpMakeFSRef(&spec, &ref), kNoItem);
  spec.vRefNum = -101;
  EXPECT_EQ(zel::FSpMakeFSRef(&spec, &ref), kNoVolume);
  EXPECT_TRUE(isZero(ref));
}

TEST_F(FoundationFileTest, SomeNamesHaveNoSpecification) {
  const std::string longest = "/" + std::string(63, 'x');
  foundation_.makeFile(longest);
  foundation_.makeFile(longest + "x");
  foundation_.makeFile("/\u4E00");
  EXPECT_EQ(specificationOf(refTo(longest)).name[0], 63);
  for (const std::string& path : {longest + "x", std::string("/\u4E00")}) {
    const FSRef ref = refTo(path);
    FSSpec spec{};
    EXPECT_EQ(zel::FSGetCatalogInfo(&ref, 0, nullptr, nullptr, &spec, nullptr), kBadName) << path;
  }
}

// --- URLs

TEST_F(FoundationFileTest, AnItemHasAFileUrl) {
  foundation_.makeFile("/a b/\u00E9%?.txt");
  const FSRef file = refTo("/a b/\u00E9%?.txt");
  const FSRef folder = refTo("/a b");
  const FSRef root = refTo("/");
  const FSRef nothing{};
  EXPECT_EQ(taken(zel::CFURLCreateFromFSRef(nullptr, &file)),
            "url(\"file:///a%20b/e%CC%81%25%3F.txt\")");
  EXPECT_EQ(taken(zel::CFURLCreateFromFSRef(nullptr, &folder)), "url(\"file:///a%20b/\")");
  EXPECT_EQ(taken(zel::CFURLCreateFromFSRef(nullptr, &root)), "url(\"file:///\")");
  EXPECT_EQ(zel::CFURLCreateFromFSRef(nullptr, &nothing), nullptr);
}

TEST_F(FoundationFileTest, AFileUrlNamesAnItem) {
  foundation_.makeFile("/a b/\u00E9.txt");
  for (const char* const text : {"file:///a%20b/%C3%A9.txt", "file://localhost/a%20b/e%CC%81.txt",
                                 "file:/a%20b/%C3%A9.txt"}) {
    FSRef ref{};
    EXPECT_EQ(zel::CFURLGetFSRef(foundation_.url(text), &ref), 1) << text;
    EXPECT_EQ(pathOf(ref), "/a b/e\u0301.txt") << text;
  }
  for (const char* const text : {"file:///a%20b/x", "http://localhost/a%20b/", "mailto:a@b",
                                 "file://host/a%20b/", "file:///%FF"}) {
    FSRef ref{};
    EXPECT_EQ(zel::CFURLGetFSRef(foundation_.url(text), &ref), 0) << text;
    EXPECT_TRUE(isZero(ref)) << text;
  }
}

TEST_F(FoundationFileTest, AFileUrlNeedsNoItem) {
  EXPECT_EQ(foundation_.describe(foundation_.fileUrl("/no/such#item")),
            "url(\"file:///no/such%23item\")");
  EXPECT_TRUE(zel::isKindOf<"NSURL">(foundation_.asObject(foundation_.fileUrl("/x"))));
}

TEST_F(FoundationFileTest, AComponentIsAddedEscaped) {
  const auto appended = [&](const char* url, const char* component, zel::Boolean isFolder) {
    return taken(zel::CFURLCreateCopyAppendingPathComponent(
        nullptr, foundation_.url(url), foundation_.string(component), isFolder));
  };
  EXPECT_EQ(appended("file:///a", "b c", 0), "url(\"file:///a/b%20c\")");
  EXPECT_EQ(appended("file:///a/", "b/c", 0), "url(\"file:///a/b%2Fc\")");
  EXPECT_EQ(appended("file:///", "e\u0301", 1), "url(\"file:///e%CC%81/\")");
  EXPECT_EQ(appended("http://h/a?q#f", "b", 0), "url(\"http://h/a/b?q#f\")");
  EXPECT_EQ(appended("mailto:a@b", "b", 0), "nil");
}

TEST_F(FoundationFileTest, TheLastComponentCanBeTakenAway) {
  const auto shortened = [&](const char* url) {
    return taken(zel::CFURLCreateCopyDeletingLastPathComponent(nullptr, foundation_.url(url)));
  };
  EXPECT_EQ(shortened("file:///a/b%20c"), "url(\"file:///a/\")");
  EXPECT_EQ(shortened("file:///a/b/"), "url(\"file:///a/\")");
  EXPECT_EQ(shortened("file:///a"), "url(\"file:///\")");
  EXPECT_EQ(shortened("http://h/a/b?q"), "url(\"http://h/a/?q\")");
  EXPECT_EQ(shortened("file:///"), "nil");
  EXPECT_EQ(shortened("http://h"), "nil");
  EXPECT_EQ(shortened("mailto:a@b"), "nil");
}

TEST_F(FoundationFileTest, TheLastComponentIsUnescaped) {
  const auto last = [&](const char* url) {
    return taken(zel::CFURLCopyLastPathComponent(foundation_.url(url)));
  };
  EXPECT_EQ(last("file:///a/b%20%c3%A9"), "\"b \u00E9\"");
  EXPECT_EQ(last("file:///a/b/"), "\"b\"");
  EXPECT_EQ(last("file:///"), "\"/\"");
  EXPECT_EQ(last("http://h/x?a/b"), "\"x\"");
  EXPECT_EQ(last("file:///%FF"), "nil");
  EXPECT_EQ(last("http://h"), "nil");
  EXPECT_EQ(last("mailto:a@b"), "nil");
}

// --- faults

TEST_F(FoundationFileTest, EveryCallIsRecordedAndCanFail) {
  foundation_.makeFile("/a");
  const FSRef file = refTo("/a");
  const FSSpec spec = specificationOf(file);
  const CFURLRef url = foundation_.fileUrl("/a");
  const CFStringRef name = foundation_.string("b");
  FSRef out{};
  std::uint8_t path[8] = {};
  foundation_.clearRecords();
  const Lines functions = {"FSGetCatalogInfo",
                           "FSpMakeFSRef",
                           "FSPathMakeRef",
                           "FSRefMakePath",
                           "CFURLCreateFromFSRef",
                           "CFURLGetFSRef",
                           "CFURLCreateCopyAppendingPathComponent",
                           "CFURLCreateCopyDeletingLastPathComponent",
                           "CFURLCopyLastPathComponent"};
  for (const std::string& function : functions) foundation_.failCall(function);
  EXPECT_EQ(exists(file), kIoError);
  EXPECT_EQ(zel::FSpMakeFSRef(&spec, &out), kIoError);
  EXPECT_EQ(makeRef("/a", out), kIoError);
  EXPECT_EQ(zel::FSRefMakePath(&file, path, sizeof path), kIoError);
  EXPECT_EQ(zel::CFURLCreateFromFSRef(nullptr, &file), nullptr);
  EXPECT_EQ(zel::CFURLGetFSRef(url, &out), 0);
  EXPECT_EQ(zel::CFURLCreateCopyAppendingPathComponent(nullptr, url, name, 0), nullptr);
  EXPECT_EQ(zel::CFURLCreateCopyDeletingLastPathComponent(nullptr, url), nullptr);
  EXPECT_EQ(zel::CFURLCopyLastPathComponent(url), nullptr);
  EXPECT_EQ(foundation_.calls(), functions);
  EXPECT_FALSE(foundation_.faultsPending());
  EXPECT_TRUE(isZero(out));
  EXPECT_EQ(path[0], 0);
}

}  // namespace
