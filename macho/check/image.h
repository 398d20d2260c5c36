// One processor's part of a Mach-O file, in the terms in which it is checked.
#pragma once

#include <cstdint>
#include <llvm/Object/MachO.h>
#include <string>
#include <vector>

namespace macho_check {

struct Segment {
  std::string name;
  std::uint64_t address;
  std::uint64_t size;
  std::uint64_t offset;     // in the file
  std::uint64_t file_size;  // how much of the file
  std::uint32_t protection;
};

struct Section {
  std::string name;  // "__TEXT,__text"
  std::uint32_t type;
  std::uint32_t relocations;  // how many
};

struct Library {
  std::string install_name;
  std::string version;  // "300.0"
};

/// An address in the image that the loader has to fill in.
struct Fixup {
  std::string segment;
  std::string type;    // "pointer", or a kind of text relocation
  std::string symbol;  // empty: the image's own address is all that is needed
  int library = 0;     // from 1; 0 and below: not bound to a library
};

struct Symbol {
  std::string name;
  bool defined;
  int library;  // from 1, of an undefined symbol
};

/// An image. Reading one collects what can't be read as faults.
struct Image {
  std::uint32_t cpu = 0;
  std::uint64_t size = 0;  // of the file
  std::uint32_t file_type = 0;
  std::uint32_t flags = 0;
  std::vector<std::uint32_t> commands;
  std::string minimum_system;  // "10.6"; empty: not told
  std::vector<Segment> segments;
  std::vector<Section> sections;
  std::vector<Library> libraries;
  std::uint32_t relocations = 0;  // of the image as a whole
  std::vector<Fixup> rebases;
  std::vector<Fixup> binds;
  std::vector<Fixup> lazy_binds;
  std::vector<Fixup> weak_binds;
  std::vector<Symbol> symbols;
  std::vector<std::string> exports;
  std::vector<std::string> faults;
};

Image readImage(const llvm::object::MachOObjectFile& file);

}  // namespace macho_check
