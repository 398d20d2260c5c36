#include "macho/check/check.h"

#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>

#include "tests/macho/check/bundle_file.h"
#include "tests/support/folder.h"
#include "tests/support/process.h"

namespace tests {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::UnorderedElementsAre;

// Kinds of load commands.
constexpr std::uint32_t kDynamicSymbols = 0xB;
constexpr std::uint32_t kLoadLibrary = 0xC;
constexpr std::uint32_t kSymbolTable = 0x2;
constexpr std::uint32_t kFixupTables = 0x80000022;
constexpr std::uint32_t kMinimumSystem = 0x24;
constexpr std::uint32_t kSourceVersion = 0x2A;

// --- what is accepted

TEST(MachoCheckTest, AcceptsTheBundleForI386) {
  EXPECT_THAT(faults(executable("i386"), {requirements("i386")}), IsEmpty());
}

TEST(MachoCheckTest, AcceptsTheBundleForX86With64Bits) {
  EXPECT_THAT(faults(executable("x86_64"), {requirements("x86_64")}), IsEmpty());
}

TEST(MachoCheckTest, AcceptsTheBundleForArm) {
  EXPECT_THAT(faults(executable("arm64"), {requirements("arm64")}), IsEmpty());
}

TEST(MachoCheckTest, AcceptsTheCompanionsBundles) {
  const std::string companion = "NSExceptionZEL";
  for (const char* const processor : {"i386", "x86_64", "arm64"}) {
    EXPECT_THAT(faults(executable(processor, companion), {requirements(processor, companion)}),
                IsEmpty())
        << processor;
  }
}

TEST(MachoCheckTest, RefusesABundleForAnother) {
  EXPECT_THAT(faults(executable("i386", "NSExceptionZEL"), {requirements("i386")}),
              IsSupersetOf({"i386: it imports _class_addMethod, which the list doesn't have",
                            "i386: it doesn't import _malloc, which the list has"}));
}

// The universal file of these processors' bundles.
std::string universal(const std::vector<std::string>& processors) {
  const TemporaryFolder temporary;
  const std::filesystem::path& folder = temporary.path();
  std::string command = ZEL_LIPO " -create -output '" + (folder / "all").string() + "'";
  for (const std::string& processor : processors) {
    std::ofstream(folder / processor, std::ios::binary) << executable(processor);
    command += " '" + (folder / processor).string() + "'";
  }
  const Ending outcome = run(command);
  EXPECT_EQ(outcome.status, 0) << outcome.output;
  std::ifstream file(folder / "all", std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(MachoCheckTest, AcceptsAUniversalFile) {
  EXPECT_THAT(faults(universal({"i386", "x86_64", "arm64"}),
                     {requirements("i386"), requirements("x86_64"), requirements("arm64")}),
              IsEmpty());
}

TEST(MachoCheckTest, RefusesAUniversalFileWithoutAProcessor) {
  EXPECT_THAT(faults(universal({"i386", "arm64"}),
                     {requirements("i386"), requirements("x86_64"), requirements("arm64")}),
              ElementsAre("it holds 2 processors' images instead of 3",
                          HasSubstr("x86_64: fat file does not contain")));
}

TEST(MachoCheckTest, RefusesAFaultyImageInAUniversalFile) {
  macho_check::Requirements wanted = requirements("x86_64");
  wanted.exports.insert("_more");
  EXPECT_THAT(faults(universal({"i386", "x86_64"}), {requirements("i386"), wanted}),
              ElementsAre("x86_64: it doesn't export _more"));
}

// --- the file

TEST(MachoCheckTest, RefusesOtherFiles) {
  EXPECT_THAT(faults("#!/bin/sh\n", {requirements("i386")}),
              ElementsAre("The file was not recognized as a valid object file"));
}

TEST(MachoCheckTest, RefusesExecutablesOfOtherSystems) {
  std::ifstream self("/proc/self/exe", std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(self), {}};
  EXPECT_THAT(faults(bytes, {requirements("i386")}), ElementsAre("it is no Mach-O file"));
}

TEST(MachoCheckTest, RefusesAFileThatEndsEarly) {
  BundleFile file;
  file.resize(5000);
  EXPECT_THAT(file.faults(), ElementsAre(HasSubstr("truncated or malformed object")));
}

TEST(MachoCheckTest, RefusesASingleImageForAUniversalOne) {
  EXPECT_THAT(faults(executable("i386"), {requirements("i386"), requirements("x86_64")}),
              ElementsAre("it is no universal file"));
}

TEST(MachoCheckTest, RefusesAnUnknownProcessor) {
  EXPECT_THAT(faults(executable("i386"), {requirements("ppc")}),
              ElementsAre("there are no rules for the processor ppc"));
}

// --- the header

TEST(MachoCheckTest, RefusesAnotherProcessor) {
  BundleFile file;
  file.setWord(4, 18);
  EXPECT_THAT(file.faults(), Contains("i386: it is for another processor"));
}

TEST(MachoCheckTest, RefusesAnotherFileType) {
  BundleFile file;
  file.setWord(12, 2);
  EXPECT_THAT(file.faults(), ElementsAre("i386: its file type is not a bundle's"));
}

TEST(MachoCheckTest, RefusesAFlatNamespace) {
  BundleFile file;
  file.setWord(24, 0x5);
  EXPECT_THAT(file.faults(), ElementsAre("i386: its header has the flags 5 instead of 85"));
}

TEST(MachoCheckTest, RefusesANewerSystem) {
  BundleFile file;
  file.setWord(file.command(kMinimumSystem) + 8, 0x000A0700);
  EXPECT_THAT(file.faults(), ElementsAre("i386: it is for macOS 10.7 and later instead of 10.6"));
}

TEST(MachoCheckTest, RefusesAnUntoldSystem) {
  BundleFile file;
  file.setWord(file.command(kMinimumSystem), 0x7E);
  EXPECT_THAT(file.faults(), Contains("i386: it is for macOS  and later instead of 10.6"));
}

TEST(MachoCheckTest, RefusesOtherLoadCommands) {
  BundleFile file;
  file.setWord(file.command(kSourceVersion), 0x7E);
  EXPECT_THAT(file.faults(), ElementsAre("i386: it has a load command 7E"));
}

// --- memory

// Where nothing is: between the load commands and the code.
constexpr std::uint32_t kGap = 1600;

TEST(MachoCheckTest, RefusesAFileWithoutSegments) {
  BundleFile file;
  file.setWord(16, 0);
  file.setWord(20, 0);
  EXPECT_THAT(file.faults(), Contains("i386: it has no segments"));
}

TEST(MachoCheckTest, RefusesOtherSegments) {
  BundleFile file;
  file.replace(file.segment("__LINKEDIT"), "__LINKEDIT", "__IMPORTED");
  EXPECT_THAT(file.faults(), ElementsAre("i386: it has a segment __IMPORTED"));
}

TEST(MachoCheckTest, RefusesWritableText) {
  BundleFile file;
  file.setWord(file.segment("__TEXT") + 44, 7);
  EXPECT_THAT(file.faults(), ElementsAre("i386: the segment __TEXT has the wrong protection"));
}

TEST(MachoCheckTest, RefusesASegmentThatBeginsWithinAPage) {
  BundleFile file;
  const std::size_t address = file.segment("__LINKEDIT") + 24;
  file.setWord(address, file.word(address) + 16);
  EXPECT_THAT(file.faults(), ElementsAre("i386: the segment __LINKEDIT doesn't begin with a page"));
}

TEST(MachoCheckTest, RefusesASegmentThatBeginsWithinAPageOfTheFile) {
  BundleFile file;
  const std::size_t command = file.segment("__LINKEDIT");
  file.setWord(command + 32, file.word(command + 32) + 16);
  file.setWord(command + 36, file.word(command + 36) - 16);
  EXPECT_THAT(file.faults(), ElementsAre("i386: the segment __LINKEDIT doesn't begin with a page"));
}

TEST(MachoCheckTest, RefusesASegmentThatEndsWithinAPage) {
  BundleFile file;
  const std::size_t size = file.segment("__DATA") + 28;
  file.setWord(size, file.word(size) + 16);
  EXPECT_THAT(file.faults(), ElementsAre("i386: the segment __DATA doesn't end with a page"));
}

TEST(MachoCheckTest, RefusesAFileThatGoesOnBehindItsSegments) {
  BundleFile file;
  file.resize(file.size() + 16);
  EXPECT_THAT(file.faults(),
              ElementsAre("i386: the segment __LINKEDIT doesn't end with the file, which can't be "
                          "signed so"));
}

TEST(MachoCheckTest, RefusesLinkerStubs) {
  BundleFile file;
  file.setWord(file.section("__TEXT", "__const") + 56, 0x8);
  EXPECT_THAT(file.faults(),
              ElementsAre("i386: the section __TEXT,__const holds linker stubs or their pointers"));
}

TEST(MachoCheckTest, RefusesThePointersOfLinkerStubs) {
  BundleFile file;
  file.setWord(file.section("__DATA", "__pointers") + 56, 0x7);
  EXPECT_THAT(
      file.faults(),
      ElementsAre("i386: the section __DATA,__pointers holds linker stubs or their pointers"));
}

TEST(MachoCheckTest, RefusesPointersThatTheLinkerFills) {
  BundleFile file;
  file.setWord(file.section("__DATA", "__pointers") + 56, 0x6);
  EXPECT_THAT(
      file.faults(),
      ElementsAre("i386: the section __DATA,__pointers holds linker stubs or their pointers"));
}

TEST(MachoCheckTest, RefusesInitialisers) {
  BundleFile file;
  file.setWord(file.section("__DATA", "__pointers") + 56, 0x9);
  EXPECT_THAT(
      file.faults(),
      ElementsAre("i386: the section __DATA,__pointers is of a kind that a plugin can't have"));
}

TEST(MachoCheckTest, RefusesASectionWithRelocations) {
  BundleFile file;
  const std::size_t section = file.section("__DATA", "__data");
  file.setWord(section + 48, kGap);
  file.setWord(section + 52, 1);
  EXPECT_THAT(file.faults(),
              Contains("i386: the section __DATA,__data has relocations of its own"));
}

TEST(MachoCheckTest, RefusesRelocationsOfTheWhole) {
  BundleFile file;
  const std::size_t command = file.command(kDynamicSymbols);
  file.setWord(command + 72, kGap);
  file.setWord(command + 76, 1);
  EXPECT_THAT(file.faults(), Contains("i386: it has relocations outside of its fixups"));
}

// --- fixups

// The places of the tables' offsets in their load command; the sizes follow them.
constexpr std::size_t kRebases = 8;
constexpr std::size_t kBinds = 16;
constexpr std::size_t kWeakBinds = 24;
constexpr std::size_t kLazyBinds = 32;

TEST(MachoCheckTest, RefusesTextRelocations) {
  BundleFile file;
  file.write(file.word(file.command(kFixupTables) + kRebases), {0x12});
  EXPECT_THAT(file.faults(),
              Contains("i386: a fixup for an address is a text relocation: text abs32"));
}

TEST(MachoCheckTest, RefusesBindsThatAreTextRelocations) {
  BundleFile file;
  const std::size_t table = file.word(file.command(kFixupTables) + kBinds);
  std::size_t place = table;
  while ((file.word(place) & 0xFF) != 0x51) ++place;
  file.write(place, {0x53});
  EXPECT_THAT(file.faults(), Contains(HasSubstr("is a text relocation: text rel32")));
}

TEST(MachoCheckTest, RefusesFixupsOutsideOfData) {
  BundleFile file;
  const std::size_t table = file.word(file.command(kFixupTables) + kRebases);
  file.write(table,
             {0x11, 0x20, 0x80, 0x20, 0x51});  // a pointer, 4096 bytes into the first segment
  EXPECT_THAT(file.faults(), Contains("i386: a fixup for an address is in __TEXT"));
}

TEST(MachoCheckTest, RefusesUnreadableFixups) {
  BundleFile file;
  file.write(file.word(file.command(kFixupTables) + kRebases), {0xF0});
  EXPECT_THAT(file.faults(), Contains(HasSubstr("bad rebase info")));
}

TEST(MachoCheckTest, RefusesPointersThatAreBoundLate) {
  BundleFile file;
  const std::size_t command = file.command(kFixupTables);
  file.setWord(command + kLazyBinds, file.word(command + kBinds));
  file.setWord(command + kLazyBinds + 4, file.word(command + kBinds + 4));
  file.setWord(command + kBinds + 4, 0);
  EXPECT_THAT(file.faults(),
              Contains("i386: it has lazily bound pointers, which only linker stubs use"));
}

TEST(MachoCheckTest, RefusesNamesThatOthersMayReplace) {
  BundleFile file;
  // The name, a pointer, its place in the second segment.
  file.write(kGap, {0x40, '_', 'a', 0, 0x51, 0x71, 0x04, 0x90, 0});
  file.setWord(file.command(kFixupTables) + kWeakBinds, kGap);
  file.setWord(file.command(kFixupTables) + kWeakBinds + 4, 9);
  EXPECT_THAT(file.faults(), Contains("i386: it lets other images replace its _a"));
}

// --- names

TEST(MachoCheckTest, RefusesAnotherLibrary) {
  BundleFile file;
  file.replace(0, "/usr/lib/libobjc.A.dylib", "/usr/lib/libobjc.B.dylib");
  EXPECT_THAT(file.faults(),
              testing::AllOf(
                  Contains("i386: it needs the library /usr/lib/libobjc.B.dylib"),
                  Contains("i386: it doesn't need the library /usr/lib/libobjc.A.dylib"),
                  Contains("i386: it imports _objc_msgSend from /usr/lib/libobjc.B.dylib instead "
                           "of /usr/lib/libobjc.A.dylib")));
}

TEST(MachoCheckTest, RefusesANewerLibrary) {
  BundleFile file;
  const std::size_t version = file.command(kLoadLibrary) + 20;
  ASSERT_EQ(file.word(version), 300U << 16);
  file.setWord(version, 301U << 16);
  EXPECT_THAT(file.faults(),
              ElementsAre("i386: it needs version 301.0 of "
                          "/System/Library/Frameworks/Foundation.framework/Versions/C/Foundation "
                          "instead of 300.0"));
}

// A name as a table of names has it, so that no longer one is meant.
std::string whole(const std::string& name) { return '\0' + name + '\0'; }

TEST(MachoCheckTest, RefusesAnUnlistedImport) {
  BundleFile file;
  file.replace(file.word(file.command(kSymbolTable) + 16), whole("_strcmp"), whole("_strcpy"));
  EXPECT_THAT(file.faults(),
              UnorderedElementsAre("i386: it imports _strcpy, which the list doesn't have",
                                   "i386: it doesn't import _strcmp, which the list has"));
}

TEST(MachoCheckTest, RefusesAnUnlistedBoundImport) {
  BundleFile file;
  file.replace(file.word(file.command(kFixupTables) + kBinds), "_strcmp", "_strcpy");
  EXPECT_THAT(file.faults(), Contains("i386: it imports _strcpy, which the list doesn't have"));
}

TEST(MachoCheckTest, RefusesAListedNameThatIsNotImported) {
  macho_check::Requirements wanted = requirements("i386");
  wanted.imports.symbols["_strcpy"] = "/usr/lib/libSystem.B.dylib";
  EXPECT_THAT(faults(executable("i386"), {wanted}),
              ElementsAre("i386: it doesn't import _strcpy, which the list has"));
}

TEST(MachoCheckTest, RefusesAMissingExport) {
  BundleFile file;
  const std::size_t exports = file.word(file.command(kFixupTables) + 40);
  file.replace(exports, "_REALPluginMain", "_REALPluginMaim");
  EXPECT_THAT(file.faults(), UnorderedElementsAre("i386: it exports _REALPluginMaim",
                                                  "i386: it doesn't export _REALPluginMain"));
}

TEST(MachoCheckTest, RefusesAnotherVisibleSymbol) {
  BundleFile file;
  file.replace(file.word(file.command(kSymbolTable) + 16), whole("_REALPluginMain"),
               whole("_REALPluginMaim"));
  EXPECT_THAT(file.faults(), ElementsAre("i386: its symbols show _REALPluginMaim"));
}

}  // namespace
}  // namespace tests
