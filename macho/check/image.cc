#include "macho/check/image.h"

#include <llvm/BinaryFormat/MachO.h>

namespace macho_check {
namespace {

using llvm::object::MachOObjectFile;

std::string fixedText(const char* text, std::size_t size) {
  return std::string(text, strnlen(text, size));
}

// Of a version as load commands have it: two bytes, one, one.
std::string version(std::uint32_t packed) {
  return std::to_string(packed >> 16) + "." + std::to_string((packed >> 8) & 0xFF);
}

template <class Command>
Segment segment(const Command& command) {
  return {fixedText(command.segname, sizeof command.segname),
          command.vmaddr,
          command.vmsize,
          command.fileoff,
          command.filesize,
          command.initprot};
}

template <class Header>
Section section(const Header& header) {
  return {fixedText(header.segname, sizeof header.segname) + "," +
              fixedText(header.sectname, sizeof header.sectname),
          header.flags & llvm::MachO::SECTION_TYPE, header.nreloc};
}

Library library(const MachOObjectFile& file, const MachOObjectFile::LoadCommandInfo& command) {
  const auto dylib = file.getDylibIDLoadCommand(command).dylib;
  return {command.Ptr + dylib.name, version(dylib.compatibility_version)};
}

void readCommands(const MachOObjectFile& file, Image& image) {
  for (const auto& command : file.load_commands()) {
    image.commands.push_back(command.C.cmd);
    switch (command.C.cmd) {
      case llvm::MachO::LC_SEGMENT:
        image.segments.push_back(segment(file.getSegmentLoadCommand(command)));
        break;
      case llvm::MachO::LC_SEGMENT_64:
        image.segments.push_back(segment(file.getSegment64LoadCommand(command)));
        break;
      case llvm::MachO::LC_LOAD_DYLIB:
      case llvm::MachO::LC_LOAD_WEAK_DYLIB:
      case llvm::MachO::LC_REEXPORT_DYLIB:
      case llvm::MachO::LC_LOAD_UPWARD_DYLIB:
        image.libraries.push_back(library(file, command));
        break;
      case llvm::MachO::LC_VERSION_MIN_MACOSX:
        image.minimum_system = version(file.getVersionMinLoadCommand(command).version);
        break;
      case llvm::MachO::LC_BUILD_VERSION:
        image.minimum_system = version(file.getBuildVersionLoadCommand(command).minos);
        break;
      default:
        break;
    }
  }
  const auto dynamic = file.getDysymtabLoadCommand();
  image.relocations = dynamic.nextrel + dynamic.nlocrel;
}

void readSections(const MachOObjectFile& file, Image& image) {
  for (const auto& part : file.sections()) {
    const auto place = part.getRawDataRefImpl();
    image.sections.push_back(file.is64Bit() ? section(file.getSection64(place))
                                            : section(file.getSection(place)));
  }
}

void note(llvm::Error error, Image& image) {
  if (error) image.faults.push_back(llvm::toString(std::move(error)));
}

void readRebases(const MachOObjectFile& file, Image& image) {
  llvm::Error error = llvm::Error::success();
  for (const auto& entry : const_cast<MachOObjectFile&>(file).rebaseTable(error)) {
    image.rebases.push_back({entry.segmentName().str(), entry.typeName().str(), "", 0});
  }
  note(std::move(error), image);
}

template <class Table>
std::vector<Fixup> readBinds(Table table) {
  std::vector<Fixup> binds;
  for (const auto& entry : table) {
    binds.push_back({entry.segmentName().str(), entry.typeName().str(), entry.symbolName().str(),
                     entry.ordinal()});
  }
  return binds;
}

void readFixups(const MachOObjectFile& file, Image& image) {
  // Reading the tables changes nothing, though their functions don't promise it.
  auto& tables = const_cast<MachOObjectFile&>(file);
  readRebases(file, image);
  llvm::Error error = llvm::Error::success();
  image.binds = readBinds(tables.bindTable(error));
  note(std::move(error), image);
  error = llvm::Error::success();
  image.lazy_binds = readBinds(tables.lazyBindTable(error));
  for (Fixup& bind : image.lazy_binds) bind.type = "pointer";  // by definition, and so not told
  note(std::move(error), image);
  error = llvm::Error::success();
  image.weak_binds = readBinds(tables.weakBindTable(error));
  note(std::move(error), image);
}

void readSymbols(const MachOObjectFile& file, Image& image) {
  for (const auto& symbol : file.symbols()) {
    const auto place = symbol.getRawDataRefImpl();
    const std::uint8_t type = file.is64Bit() ? file.getSymbol64TableEntry(place).n_type
                                             : file.getSymbolTableEntry(place).n_type;
    const auto description =
        static_cast<std::uint16_t>(file.is64Bit() ? file.getSymbol64TableEntry(place).n_desc
                                                  : file.getSymbolTableEntry(place).n_desc);
    auto name = symbol.getName();
    if (!name) {
      note(name.takeError(), image);
    } else if ((type & llvm::MachO::N_STAB) == 0 && (type & llvm::MachO::N_EXT) != 0) {
      const bool defined = (type & llvm::MachO::N_TYPE) != llvm::MachO::N_UNDF;
      image.symbols.push_back({name->str(), defined, static_cast<std::int8_t>(description >> 8)});
    }
  }
}

void readExports(const MachOObjectFile& file, Image& image) {
  llvm::Error error = llvm::Error::success();
  for (const auto& entry : file.exports(error)) image.exports.push_back(entry.name().str());
  note(std::move(error), image);
}

}  // namespace

Image readImage(const MachOObjectFile& file) {
  Image image;
  image.cpu = file.getHeader().cputype;
  image.size = file.getData().size();
  image.file_type = file.getHeader().filetype;
  image.flags = file.getHeader().flags;
  readCommands(file, image);
  readSections(file, image);
  readFixups(file, image);
  readSymbols(file, image);
  readExports(file, image);
  return image;
}

}  // namespace macho_check
