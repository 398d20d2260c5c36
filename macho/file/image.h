// A 32-bit x86 Mach-O bundle as its file describes it. Nothing here runs or maps anything, so it
// works in every process.
#pragma once

#include <string>
#include <vector>

#include "macho/file/bytes.h"

namespace macho {

/// Where the linker thought the image would stand is address 0; every address counts from there.
using Address = std::uint32_t;

/// What a segment's memory may be used for, as bits.
inline constexpr std::uint32_t kReadable = 1;
inline constexpr std::uint32_t kWritable = 2;
inline constexpr std::uint32_t kExecutable = 4;

/// A stretch of memory, in whole pages.
struct Segment {
  std::string name;
  Address address;
  std::uint32_t size;                  // in memory
  std::uint32_t protection;            // once everything is in place
  std::vector<std::uint8_t> contents;  // what it begins with; the rest is zeros

  /// Whether `count` bytes from that address on are all in it.
  [[nodiscard]] bool contains(Address at, std::uint32_t count) const {
    return at >= address && at - address <= size && size - (at - address) >= count;
  }
};

/// When the system's own loader looks the symbol up. Weak ones may be defined by the image itself.
enum class Binding { kAtLoad, kWeak, kLazy };

/// A pointer in the image that is to hold the address of something outside it.
struct Import {
  Address address;      // of the pointer
  std::string symbol;   // with its leading underscore
  std::string library;  // install name; "" when the symbol is to be looked for everywhere
  std::int32_t addend;
  Binding binding;
};

struct Export {
  std::string symbol;  // with its leading underscore
  Address address;
};

/// Functions to be called at load time: a list of pointers.
struct InitialiserList {
  Address address;
  std::uint32_t size;  // in bytes, a multiple of four
};

struct Image {
  std::vector<Segment> segments;
  std::vector<std::string> libraries;  // install names, in the order that imports count them
  std::vector<Address> rebases;        // pointers into the image itself
  std::vector<Import> imports;
  std::vector<Export> exports;
  std::vector<InitialiserList> initialisers;
  std::uint32_t size = 0;  // of the memory that all segments take

  /// The segment that all of these bytes are in, or null.
  [[nodiscard]] const Segment* segmentOf(Address at, std::uint32_t count) const;
  /// Null when the image doesn't export it.
  [[nodiscard]] const Export* findExport(std::string_view symbol) const;
};

/// Reads a bundle from the bytes of its file, a universal one too. Throws MalformedFile when
/// anything in it isn't in order, or isn't of a kind that can be loaded here.
Image readImage(Bytes file);

}  // namespace macho
