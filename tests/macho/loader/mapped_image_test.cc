#include "macho/loader/mapped_image.h"

#include <cstring>
#include <gtest/gtest.h>
#include <stdexcept>

#include "tests/macho/file/sample_file.h"

namespace tests {
namespace {

using macho::Address;
using macho::Import;
using macho::MappedImage;
using macho::readImage;

char imported[16];

void* resolve(const Import& /*import*/) { return imported; }

void* pointerAt(const MappedImage& mapped, Address address) {
  void* pointer = nullptr;
  std::memcpy(&pointer, mapped.at(address), sizeof pointer);
  return pointer;
}

TEST(MappedImageTest, PointersIntoTheImageAreAdjusted) {
  const MappedImage mapped(readImage(sampleFile()), resolve);
  EXPECT_EQ(pointerAt(mapped, 0x1000), mapped.at(0x10));
  EXPECT_EQ(pointerAt(mapped, 0x1004), mapped.at(0x1020));
}

TEST(MappedImageTest, ImportsAreBound) {
  const MappedImage mapped(readImage(sampleFile()), resolve);
  EXPECT_EQ(pointerAt(mapped, 0x1010), imported);
  EXPECT_EQ(pointerAt(mapped, 0x1014), imported);
  EXPECT_EQ(pointerAt(mapped, 0x1018), imported);
  EXPECT_EQ(pointerAt(mapped, 0x101C), nullptr);
}

TEST(MappedImageTest, TheAddendIsAdded) {
  const ByteList file = sampleFile({.imports = {0x40, '_', 'a', 0, 0x60, 0x05, 0x71, 0x08, 0x90}});
  const MappedImage mapped(readImage(file), resolve);
  EXPECT_EQ(pointerAt(mapped, 0x1008), imported + 5);
}

TEST(MappedImageTest, AWeakSymbolIsTheImagesOwn) {
  const ByteList file =
      sampleFile({.weakImports = {0x40, '_', 'm', 'a', 'i', 'n', 0, 0x71, 0x08, 0x90}});
  const MappedImage mapped(readImage(file), resolve);
  EXPECT_EQ(pointerAt(mapped, 0x1008), mapped.at(0x10));
}

TEST(MappedImageTest, WhatTheFileDoesNotHoldIsZero) {
  const MappedImage mapped(readImage(sampleFile()), resolve);
  EXPECT_EQ(pointerAt(mapped, 0x2000), nullptr);
  EXPECT_EQ(pointerAt(mapped, 0x2FFC), nullptr);
}

TEST(MappedImageTest, EverythingThatComesToNothingIsTold) {
  try {
    const MappedImage mapped(readImage(sampleFile()), [](const Import& import) -> void* {
      return import.symbol == "_weak" ? imported : nullptr;
    });
    FAIL() << "it was bound";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "can't be bound: _free, _objc_msgSend");
  }
}

TEST(MappedImageTest, TheDataCanBeWrittenTo) {
  const MappedImage mapped(readImage(sampleFile()), resolve);
  std::memset(mapped.at(0x1000), 'x', 0x2000);
  EXPECT_EQ(*static_cast<char*>(mapped.at(0x2FFF)), 'x');
}

TEST(MappedImageDeathTest, TheCodeCannotBeWrittenTo) {
  const MappedImage mapped(readImage(sampleFile()), resolve);
  EXPECT_DEATH(std::memset(mapped.at(0), 'x', 1), "");
}

TEST(MappedImageDeathTest, WhatIsGoneIsUnmapped) {
  char* place = nullptr;
  {
    const MappedImage mapped(readImage(sampleFile()), resolve);
    place = static_cast<char*>(mapped.at(0x1000));
  }
  EXPECT_DEATH(*place = 'x', "");
}

}  // namespace
}  // namespace tests
