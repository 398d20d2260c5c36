#include "macho/file/fixups.h"

#include <gtest/gtest.h>

#include "tests/macho/file/refusal.h"

namespace tests {
namespace {

using macho::Address;
using macho::Binding;
using macho::Image;
using macho::Import;
using macho::readImage;

using Addresses = std::vector<Address>;

Image imageWith(const SampleLists& lists) { return readImage(sampleFile(lists)); }

Addresses rebasesOf(const ByteList& stream) { return imageWith({.rebases = stream}).rebases; }

std::string rebaseRefusal(const ByteList& stream) {
  return refusalOf(SampleLists{.rebases = stream});
}

// "_a" set at the beginning, then the stream.
SampleLists importing(const ByteList& stream) {
  SampleLists lists{.imports = {0x40, '_', 'a', 0}, .weakImports = {}, .lazyImports = {}};
  lists.imports.insert(lists.imports.end(), stream.begin(), stream.end());
  return lists;
}

Addresses importedAt(const ByteList& stream) {
  Addresses addresses;
  for (const Import& import : imageWith(importing(stream)).imports)
    addresses.push_back(import.address);
  return addresses;
}

TEST(RebasesTest, EveryOperationIsFollowed) {
  EXPECT_EQ(rebasesOf({0x21, 0x00, 0x52}), (Addresses{0x1000, 0x1004}));
  EXPECT_EQ(rebasesOf({0x21, 0x04, 0x60, 0x03}), (Addresses{0x1004, 0x1008, 0x100C}));
  EXPECT_EQ(rebasesOf({0x21, 0x00, 0x30, 0x88, 0x01, 0x51}), (Addresses{0x1088}));
  EXPECT_EQ(rebasesOf({0x21, 0x00, 0x43, 0x51}), (Addresses{0x100C}));
  EXPECT_EQ(rebasesOf({0x21, 0x00, 0x70, 0x10, 0x51}), (Addresses{0x1000, 0x1014}));
  EXPECT_EQ(rebasesOf({0x21, 0x00, 0x80, 0x03, 0x04}), (Addresses{0x1000, 0x1008, 0x1010}));
  EXPECT_EQ(rebasesOf({0x11, 0x21, 0x00, 0x51, 0x00, 0xFF}), (Addresses{0x1000}));
  EXPECT_EQ(rebasesOf({0x21, 0xFC, 0x3F, 0x51}), (Addresses{0x2FFC}));
}

TEST(RebasesTest, AHugeDistanceLeadsBack) {
  EXPECT_EQ(rebasesOf({0x21, 0x08, 0x51, 0x30, 0xF4, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                       0x01, 0x51}),
            (Addresses{0x1008, 0x1000}));
}

TEST(RebasesTest, RefusalsAreTold) {
  EXPECT_EQ(rebaseRefusal({0x12}), "the list of rebases adjusts something that is no pointer");
  EXPECT_EQ(rebaseRefusal({0x23, 0x00}), "the list of rebases names a segment that isn't there");
  EXPECT_EQ(rebaseRefusal({0x51}), "the list of rebases adjusts a pointer before it says where");
  EXPECT_EQ(rebaseRefusal({0x21, 0xFD, 0x3F, 0x51}),
            "the list of rebases adjusts a pointer outside its segment");
  EXPECT_EQ(rebaseRefusal({0x21, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x01, 0x51}),
            "the list of rebases adjusts a pointer outside its segment");
  EXPECT_EQ(rebaseRefusal({0x20, 0x00, 0x51}),
            "the list of rebases adjusts a pointer in a segment that can't be written to");
  EXPECT_EQ(rebaseRefusal({0x21, 0x00, 0x80, 0x03, 0xFF, 0xFF, 0x7F}),
            "the list of rebases skips more than there is");
  EXPECT_EQ(rebaseRefusal({0x90}), "the list of rebases has an operation that doesn't exist");
  EXPECT_EQ(rebaseRefusal({0x21}), "the list of rebases ends too early");
  EXPECT_EQ(rebaseRefusal({0x21, 0x80, 0x80}), "the list of rebases ends too early");
  EXPECT_EQ(rebaseRefusal({0x21, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x02}),
            "the list of rebases has a number of more than 64 bits");
}

TEST(RebasesTest, NoPointerIsAdjustedOverAndOver) {
  ByteList stream;
  for (int i = 0; i < 0x13000 / 4 + 1; ++i) stream.insert(stream.end(), {0x21, 0x00, 0x51});
  EXPECT_EQ(rebaseRefusal(stream), "the list of rebases adjusts more pointers than there are");
}

TEST(ImportsTest, TheThreeListsAreRead) {
  const std::vector<Import> imports = readImage(sampleFile()).imports;
  ASSERT_EQ(imports.size(), 3U);
  EXPECT_EQ(imports[0].symbol, "_objc_msgSend");
  EXPECT_EQ(imports[0].address, 0x1010U);
  EXPECT_EQ(imports[0].library, "/usr/lib/libobjc.A.dylib");
  EXPECT_EQ(imports[0].binding, Binding::kAtLoad);
  EXPECT_EQ(imports[1].symbol, "_weak");
  EXPECT_EQ(imports[1].address, 0x1014U);
  EXPECT_EQ(imports[1].library, "");
  EXPECT_EQ(imports[1].binding, Binding::kWeak);
  EXPECT_EQ(imports[2].symbol, "_free");
  EXPECT_EQ(imports[2].address, 0x1018U);
  EXPECT_EQ(imports[2].library, "/usr/lib/libSystem.B.dylib");
  EXPECT_EQ(imports[2].binding, Binding::kLazy);
}

TEST(ImportsTest, EveryOperationIsFollowed) {
  EXPECT_EQ(importedAt({0x71, 0x00, 0x90, 0x90}), (Addresses{0x1000, 0x1004}));
  EXPECT_EQ(importedAt({0x71, 0x00, 0x80, 0x10, 0x90}), (Addresses{0x1010}));
  EXPECT_EQ(importedAt({0x71, 0x00, 0xA0, 0x10, 0x90}), (Addresses{0x1000, 0x1014}));
  EXPECT_EQ(importedAt({0x71, 0x00, 0xB2, 0x90}), (Addresses{0x1000, 0x100C}));
  EXPECT_EQ(importedAt({0x71, 0x00, 0xC0, 0x02, 0x08}), (Addresses{0x1000, 0x100C}));
  EXPECT_EQ(importedAt({0x71, 0x00, 0x90, 0x00, 0x90}), (Addresses{0x1000}));
}

TEST(ImportsTest, LibrariesAreCountedFromOne) {
  const auto libraryOf = [](const ByteList& stream) {
    return imageWith(importing(stream)).imports.at(0).library;
  };
  EXPECT_EQ(libraryOf({0x12, 0x71, 0x00, 0x90}), "/usr/lib/libSystem.B.dylib");
  EXPECT_EQ(libraryOf({0x20, 0x01, 0x71, 0x00, 0x90}), "/usr/lib/libobjc.A.dylib");
  EXPECT_EQ(libraryOf({0x10, 0x71, 0x00, 0x90}), "");
  EXPECT_EQ(libraryOf({0x11, 0x3E, 0x71, 0x00, 0x90}), "");
}

TEST(ImportsTest, TheAddendHasASign) {
  const auto addendOf = [](const ByteList& stream) {
    return imageWith(importing(stream)).imports.at(0).addend;
  };
  EXPECT_EQ(addendOf({0x71, 0x00, 0x90}), 0);
  EXPECT_EQ(addendOf({0x60, 0x08, 0x71, 0x00, 0x90}), 8);
  EXPECT_EQ(addendOf({0x60, 0x78, 0x71, 0x00, 0x90}), -8);
  EXPECT_EQ(addendOf({0x60, 0x80, 0x7F, 0x71, 0x00, 0x90}), -128);
}

TEST(ImportsTest, RefusalsAreTold) {
  const auto refusal = [](const ByteList& stream) { return refusalOf(importing(stream)); };
  EXPECT_EQ(refusal({0x13}), "the list of imports names a library that isn't there");
  EXPECT_EQ(refusal({0x20, 0x03}), "the list of imports names a library that isn't there");
  EXPECT_EQ(refusal({0x52}), "the list of imports adjusts something that is no pointer");
  EXPECT_EQ(refusal({0x73, 0x00}), "the list of imports names a segment that isn't there");
  EXPECT_EQ(refusal({0x90}), "the list of imports adjusts a pointer before it says where");
  EXPECT_EQ(refusal({0x70, 0x00, 0x90}),
            "the list of imports adjusts a pointer in a segment that can't be written to");
  EXPECT_EQ(refusal({0x71, 0xFD, 0x3F, 0x90}),
            "the list of imports adjusts a pointer outside its segment");
  EXPECT_EQ(refusal({0x71, 0x00, 0xC0, 0x02, 0xFF, 0xFF, 0x7F}),
            "the list of imports skips more than there is");
  EXPECT_EQ(refusal({0xD0}), "the list of imports has an operation that doesn't exist");
  EXPECT_EQ(refusal({0x40, '_', 'b'}), "the list of imports ends too early");
  EXPECT_EQ(refusal({0x40, 0x00, 0x71, 0x00, 0x90}),
            "the list of imports binds a pointer to no symbol");
}

TEST(ImportsTest, NoPointerIsAdjustedOverAndOver) {
  ByteList stream;
  for (int i = 0; i < 0x13000 / 4 + 1; ++i) stream.insert(stream.end(), {0x71, 0x00, 0x90});
  EXPECT_EQ(refusalOf(importing(stream)),
            "the list of imports adjusts more pointers than there are");
}

}  // namespace
}  // namespace tests
