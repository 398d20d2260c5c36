#include "macho/file/image.h"

#include <gtest/gtest.h>

#include "tests/macho/file/refusal.h"

namespace tests {
namespace {

using macho::Image;
using macho::readImage;
using macho::Segment;

TEST(ImageTest, SegmentsAreRead) {
  const Image image = readImage(sampleFile());
  ASSERT_EQ(image.segments.size(), 3U);
  const Segment& data = image.segments[1];
  EXPECT_EQ(data.name, "__DATA");
  EXPECT_EQ(data.address, 0x1000U);
  EXPECT_EQ(data.size, 0x2000U);
  EXPECT_EQ(data.protection, 3U);
  ASSERT_EQ(data.contents.size(), 0x1000U);
  EXPECT_EQ(data.contents[0], 0x10);
  EXPECT_EQ(image.segments[0].protection, 5U);
  EXPECT_EQ(image.size, 0x13000U);
}

TEST(ImageTest, LibrariesAndInitialisersAreRead) {
  const Image image = readImage(sampleFile());
  EXPECT_EQ(image.libraries,
            (std::vector<std::string>{"/usr/lib/libobjc.A.dylib", "/usr/lib/libSystem.B.dylib"}));
  ASSERT_EQ(image.initialisers.size(), 1U);
  EXPECT_EQ(image.initialisers[0].address, 0x1FF8U);
  EXPECT_EQ(image.initialisers[0].size, 8U);
}

TEST(ImageTest, AUniversalFileIsReadToo) {
  const Image image = readImage(universalFile(sampleFile()));
  EXPECT_EQ(image.segments.size(), 3U);
  EXPECT_EQ(image.exports.size(), 2U);
}

TEST(ImageTest, ASegmentKnowsWhatIsInIt) {
  const Image image = readImage(sampleFile());
  EXPECT_EQ(image.segmentOf(0x1000, 4), &image.segments[1]);
  EXPECT_EQ(image.segmentOf(0x2FFC, 4), &image.segments[1]);
  EXPECT_EQ(image.segmentOf(0x2FFD, 4), nullptr);
  EXPECT_EQ(image.segmentOf(0xFFFFFFFF, 4), nullptr);
}

// A word of the file, by its offset, and what is said when it has that value.
struct Patch {
  const char* name;
  std::size_t offset;
  std::uint32_t value;
  const char* refusal;
};

void PrintTo(const Patch& patch, std::ostream* out) { *out << patch.name; }

class ImageRefusalTest : public testing::TestWithParam<Patch> {};

TEST_P(ImageRefusalTest, IsTold) {
  ByteList file = sampleFile();
  putWord(file, GetParam().offset, GetParam().value);
  EXPECT_EQ(refusalOf(file), GetParam().refusal);
}

constexpr Patch kPatches[] = {
    {"Magic", 0, 0xFEEDFACF, "this is no Mach-O file for 32-bit x86"},
    {"Processor", 4, 12, "this is no Mach-O file for 32-bit x86"},
    {"FileType", 12, 6, "the file is no bundle"},
    {"CommandsOutsideTheFile", 20, 0x10000, "the list of load commands lies outside the file"},
    {"MoreCommandsThanRoom", 16, 9, "a load command has an impossible size"},
    {"CommandOfNoSize", kText + 4, 4, "a load command has an impossible size"},
    {"CommandTooLong", kUuid + 4, 28, "a load command has an impossible size"},
    {"CommandOfUnknownKind", kUuid, 0x80000099,
     "a load command is of a kind that can't be left out"},
    {"SegmentCommandTooShort", kUuid, 1, "a load command is too short"},
    {"SegmentOutsideTheFile", kData + 32, 0x10000, "segment __DATA lies outside the file"},
    {"SegmentLongerThanTheFile", kData + 36, 0x10000, "segment __DATA lies outside the file"},
    {"SegmentOffAPage", kData + 24, 0x1004, "segment __DATA doesn't begin with a page"},
    {"SegmentFarAway", kData + 24, 0xFFFFF000, "segment __DATA is too large"},
    {"SegmentTooLarge", kData + 28, 0x10000000, "segment __DATA is too large"},
    {"SegmentsOverlap", kLinkEdit + 24, 0x2000, "segment __LINKEDIT overlaps another one"},
    {"SegmentLongerInTheFile", kText + 28, 0x800, "segment __TEXT is longer in the file"},
    {"MoreSectionsThanRoom", kData + 48, 3,
     "segment __DATA has more sections than it has room for"},
    {"SectionRelocations", kDataSections + 52, 1, "a section has relocations of its own"},
    {"InitialisersOutside", kInitialisers + 32, 0x2FFC,
     "the list of initialisers lies outside its segment"},
    {"HalfAnInitialiser", kInitialisers + 36, 6, "the list of initialisers has half an entry"},
    {"ExternalRelocations", kDysymtab + 68, 1, "the file has relocations of the old kind"},
    {"LocalRelocations", kDysymtab + 76, 1, "the file has relocations of the old kind"},
    {"RelocationCommandTooShort", kUuid, 0xB, "a load command is too short"},
    {"LibraryNameOutside", kFirstLibrary + 8, 52,
     "the name of a library lies outside its load command"},
    {"LibraryNameInTheCommand", kFirstLibrary + 8, 20,
     "the name of a library lies outside its load command"},
    {"DyldInfoTooShort", kUuid, 0x22, "a load command is too short"},
    {"NoDyldInfo", kDyldInfo, 0x7F, "the file doesn't say how it is to be adjusted"},
    {"RebasesOutsideTheFile", kDyldInfo + 8, 0x10000, "the list of rebases lies outside the file"},
    {"ImportsOutsideTheFile", kDyldInfo + 20, 0x10000, "the list of imports lies outside the file"},
    {"WeakImportsOutsideTheFile", kDyldInfo + 28, 0xFFFFFFFF,
     "the list of weak imports lies outside the file"},
    {"LazyImportsOutsideTheFile", kDyldInfo + 36, 0xFFFFFFFF,
     "the list of lazy imports lies outside the file"},
    {"ExportsOutsideTheFile", kDyldInfo + 44, 0xFFFFFFFF,
     "the tree of exports lies outside the file"},
};

INSTANTIATE_TEST_SUITE_P(Patches, ImageRefusalTest, testing::ValuesIn(kPatches),
                         [](const auto& test) { return test.param.name; });

TEST(ImageTest, AFileThatEndsEarlyIsRefused) {
  const ByteList whole = sampleFile();
  for (std::size_t size = 0; size < whole.size(); ++size) {
    const ByteList cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_NE(refusalOf(cut), "") << size;
  }
}

TEST(ImageTest, AUniversalFileWithoutThePartIsRefused) {
  ByteList file = universalFile(sampleFile());
  putBigEndianWord(file, 28, 12);
  EXPECT_EQ(refusalOf(file), "the universal file has no part for 32-bit x86");
}

TEST(ImageTest, AUniversalFileWhosePartLiesOutsideIsRefused) {
  ByteList file = universalFile(sampleFile());
  putBigEndianWord(file, 36, 0x100000);
  EXPECT_EQ(refusalOf(file), "the part for 32-bit x86 lies outside the file");
}

TEST(ImageTest, AUniversalFileOfTooManyPartsIsRefused) {
  ByteList file = universalFile(sampleFile());
  putBigEndianWord(file, 4, 0xFFFFFFFF);
  putBigEndianWord(file, 28, 12);
  EXPECT_NE(refusalOf(file), "");
}

}  // namespace
}  // namespace tests
