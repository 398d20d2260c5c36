// Files across the border.
#include "bridge/files.h"

#include <algorithm>
#include <iterator>

#include "native/exceptions.h"
#include "plugin/host.h"
#include "tests/support/intercept.h"
#include "tests/support/plugin_test.h"

namespace zel {
namespace {

using namespace tests;  // NOLINT(google-build-using-namespace): the kit of these tests

class FilesTest : public PluginTest {
 protected:
  void SetUp() override {
    PluginTest::SetUp();
    foundation.makeFile("/folder/file.txt");
  }
  ObjectRef item(const std::string& path) { return host->folderItem(path); }
  std::string toNative(const ObjectRef& file) {
    return foundation.describe(NewNSURLfile(file.as<REALfolderItem>()));
  }
  std::string toHost(CFURLRef url) {
    return host->describe(ObjectRef::adopt(reinterpret_cast<REALobject>(NSURLRBFile(url))));
  }
  long called(const std::string& function) {
    return std::count(foundation.calls().begin(), foundation.calls().end(), function);
  }
};

// --- host to native

TEST_F(FilesTest, AnExistingItemGoesDirectly) {
  const ObjectRef file = item("/folder/file.txt");
  host->clearRecords();
  EXPECT_EQ(toNative(file), "url(\"file:///folder/file.txt\")");
  EXPECT_EQ(host->sequence(), Lines{"REALFSRefFromFolderItem"});
}

TEST_F(FilesTest, NoItemGivesNil) { EXPECT_EQ(NewNSURLfile(nullptr), nullptr); }

TEST_F(FilesTest, AnItemThatDoesNotExistGoesAsItsFolderAndItsName) {
  const ObjectRef file = item("/folder/new.txt");
  host->clearRecords();
  EXPECT_EQ(toNative(file), "url(\"file:///folder/new.txt\")");
  EXPECT_EQ(host->sequence(), (Lines{"REALFSRefFromFolderItem", "REALFSRefFromFolderItem"}));
}

TEST_F(FilesTest, TheNameOfAnItemThatDoesNotExistIsDecomposed) {
  EXPECT_EQ(toNative(item("/folder/caf\xC3\xA9")), "url(\"file:///folder/cafe%CC%81\")");
}

TEST_F(FilesTest, AnItemThatDoesNotExistMayHaveANameOfOneLetter) {
  EXPECT_EQ(toNative(item("/folder/x")), "url(\"file:///folder/x\")");
  EXPECT_EQ(host->calls("REALFSSpecFromFolderItem"), 0);
}

TEST_F(FilesTest, ANameThatCannotBeCopiedIsUsedAsItIs) {
  foundation.failCall("CFStringCreateMutableCopy");
  EXPECT_EQ(toNative(item("/folder/caf\xC3\xA9")), "url(\"file:///folder/caf%C3%A9\")");
}

TEST_F(FilesTest, AUrlThatCannotBeMadeDirectlyIsMadeFromFolderAndName) {
  foundation.failCall("CFURLCreateFromFSRef");
  EXPECT_EQ(toNative(item("/folder/file.txt")), "url(\"file:///folder/file.txt\")");
  EXPECT_EQ(called("CFURLCreateFromFSRef"), 2);
}

TEST_F(FilesTest, AFailedJoinEndsTheSearch) {
  foundation.failCall("CFURLCreateCopyAppendingPathComponent");
  EXPECT_EQ(toNative(item("/folder/new.txt")), "nil");
  EXPECT_EQ(host->calls("REALFSSpecFromFolderItem"), 0);
}

TEST_F(FilesTest, ANameThatCannotBeMadeLeavesTheOldRoute) {
  foundation.failCall("CFURLCreateFromFSRef");
  foundation.failCall("CFStringCreateWithCharacters");
  EXPECT_EQ(toNative(item("/folder/file.txt")), "url(\"file:///folder/file.txt\")");
  EXPECT_EQ(host->calls("REALFSSpecFromFolderItem"), 1);
  EXPECT_EQ(called("FSpMakeFSRef"), 1);
}

TEST_F(FilesTest, HostsWithoutReferencesTakeTheOldRoute) {
  host->hide("REALFSRefFromFolderItem");
  EXPECT_EQ(toNative(item("/folder/file.txt")), "url(\"file:///folder/file.txt\")");
  EXPECT_EQ(host->sequence(), Lines{"REALFSSpecFromFolderItem"});
}

TEST_F(FilesTest, TheOldRouteMayFailAtEachStep) {
  host->hide("REALFSRefFromFolderItem");
  const ObjectRef file = item("/folder/file.txt");
  foundation.failCall("CFURLCreateFromFSRef");
  EXPECT_EQ(toNative(file), "nil");
  host->answerNull("REALFSSpecFromFolderItem", 1);
  EXPECT_EQ(toNative(file), "nil");
  foundation.removeFile("/folder/file.txt");
  EXPECT_EQ(toNative(file), "nil");
  host->hide("REALFSSpecFromFolderItem");
}

TEST_F(FilesTest, ASpecificationThatTheHostCannotFillIsNotUsed) {
  host->hide("REALFSRefFromFolderItem");
  host->answerNull("REALFSSpecFromFolderItem", 1);
  EXPECT_EQ(toNative(item("/folder/file.txt")), "nil");
  EXPECT_EQ(called("FSpMakeFSRef"), 0);
}

TEST_F(FilesTest, ASpecificationThatNamesNothingGivesNil) {
  host->hide("REALFSRefFromFolderItem");
  foundation.failCall("FSpMakeFSRef");
  EXPECT_EQ(toNative(item("/folder/file.txt")), "nil");
  EXPECT_EQ(called("FSpMakeFSRef"), 1);
  EXPECT_EQ(called("CFURLCreateFromFSRef"), 0);
}

TEST_F(FilesTest, AHostWithoutAnyRouteGivesNil) {
  host->hide("REALFSRefFromFolderItem");
  host->hide("REALFSSpecFromFolderItem");
  EXPECT_EQ(toNative(item("/folder/file.txt")), "nil");
}

TEST_F(FilesTest, AnItemMayBeKnownByFolderAndNameAlone) {
  host->answerNull("REALFSRefFromFolderItem", 1);
  EXPECT_EQ(toNative(item("/folder/file.txt")), "url(\"file:///folder/file.txt\")");
  EXPECT_EQ(host->calls("REALFSSpecFromFolderItem"), 0);
}

TEST_F(FilesTest, AFolderWithoutAUrlLeavesTheOldRoute) {
  host->answerNull("REALFSRefFromFolderItem", 1);
  foundation.failCall("CFURLCreateFromFSRef");
  EXPECT_EQ(toNative(item("/folder/file.txt")), "url(\"file:///folder/file.txt\")");
  EXPECT_EQ(host->calls("REALFSSpecFromFolderItem"), 1);
}

// What the host is asked for each time, and whether a name record came blank.
Lines asked;

bool isBlank(const HFSUniStr255& name) {
  return name.length == 0 && std::all_of(std::begin(name.unicode), std::end(name.unicode),
                                         [](UniChar unit) { return unit == 0; });
}

TEST_F(FilesTest, TheItemIsAskedForFirstAndWithoutAName) {
  asked.clear();
  intercept("REALFSRefFromFolderItem",
            [](REALfolderItem, FSRef*, HFSUniStr255* name) -> REALboolean {
              if (name == nullptr) {
                asked.emplace_back("item");
              } else {
                asked.emplace_back(isBlank(*name) ? "folder and name" : "a record in use");
              }
              return 0;
            });
  EXPECT_EQ(toNative(item("/folder/file.txt")), "url(\"file:///folder/file.txt\")");
  EXPECT_EQ(asked, (Lines{"item", "folder and name"}));
}

TEST_F(FilesTest, AnItemWithoutANameTakesTheOldRoute) {
  intercept("REALFSRefFromFolderItem",
            [](REALfolderItem file, FSRef* ref, HFSUniStr255* name) -> REALboolean {
              HFSUniStr255* const none = nullptr;
              if (name == nullptr) return 0;
              return callHost<REALboolean>("REALFSRefFromFolderItem", file, ref, none);
            });
  EXPECT_EQ(toNative(item("/folder")), "url(\"file:///folder/\")");
  EXPECT_EQ(host->calls("REALFSSpecFromFolderItem"), 1);
  EXPECT_EQ(called("CFURLCreateCopyAppendingPathComponent"), 0);
}

TEST_F(FilesTest, NothingIsLostWhenAnExceptionPasses) {
  const ObjectRef file = item("/folder/caf\xC3\xA9");
  for (const char* function :
       {"CFURLCreateFromFSRef", "CFStringCreateWithCharacters", "CFStringCreateMutableCopy",
        "CFStringNormalize", "CFURLCreateCopyAppendingPathComponent"}) {
    SCOPED_TRACE(function);
    foundation.throwAtCall(function);
    EXPECT_NE(catching([&] { NewNSURLfile(file.as<REALfolderItem>()); }), nullptr);
    EXPECT_EQ(foundation.unbalanced(), "");
  }
}

// --- native to host

TEST_F(FilesTest, TheUrlOfAnExistingItemBecomesIt) {
  EXPECT_EQ(toHost(foundation.fileUrl("/folder/file.txt")), "FolderItem /folder/file.txt");
  EXPECT_EQ(host->sequence().at(0), "REALFolderItemFromParentFSRef");
}

TEST_F(FilesTest, NoUrlGivesNothing) { EXPECT_EQ(toHost(nullptr), "nil"); }

TEST_F(FilesTest, TheUrlOfAMissingItemBecomesItsFolderAndItsName) {
  EXPECT_EQ(toHost(foundation.fileUrl("/folder/new.txt")), "FolderItem /folder/new.txt");
  EXPECT_EQ(toHost(foundation.fileUrl("/folder/caf\xC3\xA9")), "FolderItem /folder/cafe\xCC\x81");
}

TEST_F(FilesTest, AMissingItemMayHaveANameOfOneLetter) {
  EXPECT_EQ(toHost(foundation.fileUrl("/folder/x")), "FolderItem /folder/x");
}

TEST_F(FilesTest, AMissingFolderGivesNothing) {
  EXPECT_EQ(toHost(foundation.fileUrl("/nowhere/new.txt")), "nil");
  EXPECT_EQ(host->calls("REALFolderItemFromParentFSRef"), 0);
}

TEST_F(FilesTest, AWebAddressGivesNothing) {
  EXPECT_EQ(toHost(foundation.url("http://example.com/file.txt")), "nil");
}

TEST_F(FilesTest, AVolumesRootTakesTheOldRoute) {
  foundation.makeVolume("/Volumes/Other");
  host->clearRecords();
  EXPECT_EQ(toHost(foundation.fileUrl("/Volumes/Other")), "FolderItem /Volumes/Other");
  EXPECT_EQ(host->sequence().at(0), "FolderItemFromFSSpec");
  EXPECT_EQ(host->calls("REALFolderItemFromParentFSRef"), 0);
}

TEST_F(FilesTest, EveryStepThatTheFileManagerRefusesLeadsOn) {
  for (const long failing : {1L, 2L, 3L}) {  // node and folder; name; the folder's existence
    SCOPED_TRACE(failing);
    host->clearRecords();
    foundation.failCall("FSGetCatalogInfo", failing);
    EXPECT_EQ(toHost(foundation.fileUrl("/folder/file.txt")), "FolderItem /folder/file.txt");
    EXPECT_EQ(host->calls("FolderItemFromFSSpec"), 1);
  }
}

TEST_F(FilesTest, AnItemWithoutANodeIsAskedForNothingButItsSpecification) {
  foundation.failCall("FSGetCatalogInfo");
  EXPECT_EQ(toHost(foundation.fileUrl("/folder/file.txt")), "FolderItem /folder/file.txt");
  EXPECT_EQ(called("FSGetCatalogInfo"), 2);  // node and folder; specification
}

TEST_F(FilesTest, TheFolderIsCheckedEvenWithoutAName) {
  foundation.failCall("FSGetCatalogInfo", 2);
  EXPECT_EQ(toHost(foundation.fileUrl("/folder/file.txt")), "FolderItem /folder/file.txt");
  EXPECT_EQ(called("FSGetCatalogInfo"), 4);  // node and folder; name; folder; specification
}

TEST_F(FilesTest, AnItemWithoutASpecificationGivesNothing) {
  foundation.makeVolume("/Volumes/Other");
  host->clearRecords();
  foundation.failCall("FSGetCatalogInfo", 4);  // after the node, the name, and no folder
  EXPECT_EQ(toHost(foundation.fileUrl("/Volumes/Other")), "nil");
  EXPECT_EQ(host->calls("FolderItemFromFSSpec"), 0);
}

TEST_F(FilesTest, HostsThatMakeNoItemsGetNothing) {
  host->hide("REALFolderItemFromParentFSRef");
  EXPECT_EQ(toHost(foundation.fileUrl("/folder/file.txt")), "nil");
  EXPECT_EQ(toHost(foundation.fileUrl("/folder/new.txt")), "nil");
  host->hide("FolderItemFromFSSpec");
  EXPECT_EQ(toHost(foundation.fileUrl("/")), "nil");
}

TEST_F(FilesTest, ALongNameIsCutToWhatFits) {
  const std::string name(300, 'x');
  EXPECT_EQ(toHost(foundation.fileUrl("/folder/" + name)),
            "FolderItem /folder/" + std::string(255, 'x'));
}

TEST_F(FilesTest, ANameIsCutAfterItIsDecomposed) {
  std::string name;
  std::string cut;
  for (int i = 0; i < 130; ++i) name += "\xC3\xA9";
  for (int i = 0; i < 127; ++i) cut += "e\xCC\x81";
  EXPECT_EQ(toHost(foundation.fileUrl("/folder/" + name)), "FolderItem /folder/" + cut + "e");
}

TEST_F(FilesTest, ANameOfNoLengthIsHandedOnEmpty) {
  static int length = -1;
  intercept("REALFolderItemFromParentFSRef",
            [](const FSRef*, const HFSUniStr255* name) -> REALfolderItem {
              length = name->length;
              return nullptr;
            });
  foundation.failCall("CFStringGetLength");
  EXPECT_EQ(toHost(foundation.fileUrl("/folder/new.txt")), "nil");
  EXPECT_EQ(length, 0);
  EXPECT_EQ(called("CFStringGetCharacters"), 0);
}

TEST_F(FilesTest, AMissingItemIsNotLookedUpAnyFurther) {
  EXPECT_EQ(toHost(foundation.fileUrl("/folder/new.txt")), "FolderItem /folder/new.txt");
  EXPECT_EQ(called("CFURLGetFSRef"), 2);  // the item's, its folder's
  EXPECT_EQ(host->calls("FolderItemFromFSSpec"), 0);
}

TEST_F(FilesTest, AMissingItemMayFailAtEachStep) {
  const CFURLRef url = foundation.fileUrl("/folder/new.txt");
  for (const char* function :
       {"CFURLCreateCopyDeletingLastPathComponent", "CFURLCopyLastPathComponent"}) {
    SCOPED_TRACE(function);
    foundation.failCall(function);
    EXPECT_EQ(toHost(url), "nil");
  }
  foundation.failCall("CFStringCreateMutableCopy");
  EXPECT_EQ(toHost(foundation.fileUrl("/folder/caf\xC3\xA9")), "FolderItem /folder/caf\xC3\xA9");
}

TEST_F(FilesTest, NothingIsLostOnTheWayBackEither) {
  for (const char* function : {"CFURLCopyLastPathComponent", "CFStringCreateMutableCopy",
                               "CFStringNormalize", "CFStringGetCharacters"}) {
    SCOPED_TRACE(function);
    const CFURLRef url = foundation.fileUrl("/folder/new.txt");
    foundation.throwAtCall(function);
    EXPECT_NE(catching([&] { static_cast<void>(NSURLRBFile(url)); }), nullptr);
    EXPECT_EQ(foundation.unbalanced(), "");
  }
}

}  // namespace
}  // namespace zel
