#include "tests/macho/file/sample_file.h"

#include <algorithm>
#include <string_view>

namespace tests {
namespace {

constexpr std::size_t kLinkEditOffset = 0x2000;

void putText(ByteList& bytes, std::size_t offset, std::string_view text) {
  std::copy(text.begin(), text.end(), bytes.begin() + static_cast<std::ptrdiff_t>(offset));
}

void putWords(ByteList& bytes, std::size_t offset, const std::vector<std::uint32_t>& words) {
  for (const std::uint32_t word : words) {
    putWord(bytes, offset, word);
    offset += 4;
  }
}

void putSegment(ByteList& bytes, std::size_t at, std::string_view name,
                const std::vector<std::uint32_t>& fields) {
  const std::uint32_t sections = fields[6];
  putWords(bytes, at, {1, 56 + 68 * sections});
  putText(bytes, at + 8, name);
  putWords(bytes, at + 24, fields);
}

void putSection(ByteList& bytes, std::size_t at, std::string_view name,
                const std::vector<std::uint32_t>& place, std::uint32_t flags) {
  putText(bytes, at, name);
  putText(bytes, at + 16, "__DATA");
  putWords(bytes, at + 32, place);
  putWord(bytes, at + 56, flags);
}

void putLibrary(ByteList& bytes, std::size_t at, std::string_view name) {
  putWords(bytes, at, {0xC, 52, 24, 2, 0x10000, 0x10000});
  putText(bytes, at + 24, name);
}

}  // namespace

void putWord(ByteList& bytes, std::size_t offset, std::uint32_t value) {
  for (std::size_t i = 0; i < 4; ++i)
    bytes.at(offset + i) = static_cast<std::uint8_t>(value >> (8 * i));
}

void putBigEndianWord(ByteList& bytes, std::size_t offset, std::uint32_t value) {
  putWord(bytes, offset, __builtin_bswap32(value));
}

ByteList sampleFile(const SampleLists& lists) {
  ByteList bytes(kLinkEditOffset);
  putWords(bytes, 0, {0xFEEDFACE, 7, 3, 8, 8, 560, 0x85});
  // Address, size, offset and size in the file, highest and first protection, sections, flags.
  putSegment(bytes, kText, "__TEXT", {0, 0x1000, 0, 0x1000, 7, 5, 0, 0});
  putSegment(bytes, kData, "__DATA", {0x1000, 0x2000, 0x1000, 0x1000, 7, 3, 2, 0});
  putSection(bytes, kDataSections, "__data", {0x1000, 0x30, 0x1000}, 0);
  putSection(bytes, kInitialisers, "__mod_init_func", {0x1FF8, 8, 0x1FF8}, 9);
  putWords(bytes, kDyldInfo, {0x80000022, 48});
  putWords(bytes, kDysymtab, {0xB, 80});
  putLibrary(bytes, kFirstLibrary, "/usr/lib/libobjc.A.dylib");
  putLibrary(bytes, kFirstLibrary + 52, "/usr/lib/libSystem.B.dylib");
  putWords(bytes, kUuid, {0x1B, 24});
  putWords(bytes, 0x1000, {0x10, 0x1020});  // the rebased pointers
  putWords(bytes, 0x1FF8, {0x10, 0x14});    // the initialisers
  std::size_t field = kDyldInfo + 8;
  for (const ByteList* const list :
       {&lists.rebases, &lists.imports, &lists.weakImports, &lists.lazyImports, &lists.exports}) {
    putWords(bytes, field,
             {static_cast<std::uint32_t>(bytes.size()), static_cast<std::uint32_t>(list->size())});
    bytes.insert(bytes.end(), list->begin(), list->end());
    field += 8;
  }
  const auto length = static_cast<std::uint32_t>(bytes.size() - kLinkEditOffset);
  putSegment(bytes, kLinkEdit, "__LINKEDIT",
             {0x3000, 0x10000, kLinkEditOffset, length, 7, 1, 0, 0});
  return bytes;
}

ByteList universalFile(const ByteList& part) {
  constexpr std::uint32_t kOffset = 0x1000;
  ByteList bytes(kOffset);
  const auto length = static_cast<std::uint32_t>(part.size());
  const std::uint32_t words[] = {0xCAFEBABE, 2, 0x1000007, 3, 64, 16, 0, 7, 3, kOffset, length, 12};
  for (std::size_t i = 0; i < std::size(words); ++i) putBigEndianWord(bytes, 4 * i, words[i]);
  bytes.insert(bytes.end(), part.begin(), part.end());
  return bytes;
}

}  // namespace tests
