// A small bundle, made byte by byte, that is in order until a test spoils it.
//
//   __TEXT      0x0000  one page
//   __DATA      0x1000  two pages, the second of zeros; two initialisers at 0x1FF8
//   __LINKEDIT  0x3000  the lists below
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tests {

using ByteList = std::vector<std::uint8_t>;

/// The lists of a bundle. As they stand: two rebases, one import of each kind, two exports.
struct SampleLists {
  // two pointers at the beginning of __DATA
  ByteList rebases{0x11, 0x21, 0x00, 0x52, 0x00};
  // _objc_msgSend of the first library, at 0x1010
  ByteList imports{0x11, 0x40, '_', 'o', 'b', 'j',  'c',  '_',  'm',  's', 'g',
                   'S',  'e',  'n', 'd', 0,   0x51, 0x71, 0x10, 0x90, 0x00};
  // _weak, at 0x1014
  ByteList weakImports{0x40, '_', 'w', 'e', 'a', 'k', 0, 0x51, 0x71, 0x14, 0x90, 0x00};
  // _free of the second library, at 0x1018
  ByteList lazyImports{0x71, 0x18, 0x12, 0x40, '_', 'f', 'r', 'e', 'e', 0, 0x90, 0x00};
  // _main at 0x10, _mine at 0x1020
  ByteList exports{0,   1,   '_',  'm',  0,   6,  // the root: "_m" to 6
                   0,   2,   'a',  'i',  'n', 0, 18,   'i',
                   'n', 'e', 0,    22,   2,   0, 0x10, 0,  // "_main", no branches
                   3,   0,   0xA0, 0x20, 0};               // "_mine"
};

/// The whole file.
ByteList sampleFile(const SampleLists& lists = {});
/// The file inside a universal one, as the last of two parts.
ByteList universalFile(const ByteList& part);

void putWord(ByteList& bytes, std::size_t offset, std::uint32_t value);
void putBigEndianWord(ByteList& bytes, std::size_t offset, std::uint32_t value);

// Where the load commands begin.
inline constexpr std::size_t kText = 28;
inline constexpr std::size_t kData = 84;
inline constexpr std::size_t kDataSections = 140;
inline constexpr std::size_t kInitialisers = 208;
inline constexpr std::size_t kLinkEdit = 276;
inline constexpr std::size_t kDyldInfo = 332;
inline constexpr std::size_t kDysymtab = 380;
inline constexpr std::size_t kFirstLibrary = 460;
inline constexpr std::size_t kUuid = 564;

}  // namespace tests
