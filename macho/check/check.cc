#include "macho/check/check.h"

#include <algorithm>
#include <llvm/BinaryFormat/MachO.h>
#include <llvm/Object/MachOUniversal.h>

#include "macho/check/image.h"

namespace macho_check {
namespace {

namespace MachO = llvm::MachO;

// What is right for a processor.
struct Processor {
  const char* name;
  std::uint32_t cpu;
  const char* minimum_system;
  std::uint64_t page;  // bytes
  // Whether the linker's stubs for imported functions work, and so do lazily bound pointers.
  bool linker_stubs;
};

constexpr Processor kProcessors[] = {
    {"i386", MachO::CPU_TYPE_I386, "10.6", 0x1000, false},
    {"x86_64", MachO::CPU_TYPE_X86_64, "10.6", 0x1000, true},
    {"arm64", MachO::CPU_TYPE_ARM64, "11.0", 0x4000, true},
};

/// One part of the check.
struct Check {
  const Image& image;
  const Requirements& wanted;
  const Processor& processor;
  std::vector<std::string>& faults;

  void fault(const std::string& text) const { faults.push_back(wanted.processor + ": " + text); }
  void require(bool holds, const std::string& otherwise) const {
    if (!holds) fault(otherwise);
  }
  /// The install name of a library by its number in the image.
  [[nodiscard]] std::string libraryNumber(int number) const {
    const bool known = number > 0 && static_cast<std::size_t>(number) <= image.libraries.size();
    return known ? image.libraries[static_cast<std::size_t>(number) - 1].install_name
                 : "no library (" + std::to_string(number) + ")";
  }
};

template <std::size_t Count>
bool contains(const std::uint32_t (&values)[Count], std::uint32_t value) {
  return std::find(std::begin(values), std::end(values), value) != std::end(values);
}

std::string hexadecimal(std::uint64_t value) { return llvm::utohexstr(value); }

// --- the head of the image

constexpr std::uint32_t kFlags = MachO::MH_NOUNDEFS | MachO::MH_DYLDLINK | MachO::MH_TWOLEVEL;

void checkHeader(const Check& check) {
  const Image& image = check.image;
  check.require(image.cpu == check.processor.cpu, "it is for another processor");
  check.require(image.file_type == MachO::MH_BUNDLE, "its file type is not a bundle's");
  check.require(image.flags == kFlags, "its header has the flags " + hexadecimal(image.flags) +
                                           " instead of " + hexadecimal(kFlags));
  check.require(image.minimum_system == check.processor.minimum_system,
                "it is for macOS " + image.minimum_system + " and later instead of " +
                    check.processor.minimum_system);
}

// What a bundle consists of. Anything else, such as a search path or a name of its own, is a
// mistake.
constexpr std::uint32_t kCommands[] = {
    MachO::LC_SEGMENT,        MachO::LC_SEGMENT_64,      MachO::LC_DYLD_INFO_ONLY,
    MachO::LC_SYMTAB,         MachO::LC_DYSYMTAB,        MachO::LC_UUID,
    MachO::LC_SOURCE_VERSION, MachO::LC_LOAD_DYLIB,      MachO::LC_VERSION_MIN_MACOSX,
    MachO::LC_BUILD_VERSION,  MachO::LC_FUNCTION_STARTS, MachO::LC_DATA_IN_CODE,
    MachO::LC_CODE_SIGNATURE,
};

void checkCommands(const Check& check) {
  for (const std::uint32_t command : check.image.commands) {
    check.require(contains(kCommands, command), "it has a load command " + hexadecimal(command));
  }
}

// --- memory

constexpr struct {
  const char* name;
  std::uint32_t protection;
} kSegments[] = {
    {"__TEXT", MachO::VM_PROT_READ | MachO::VM_PROT_EXECUTE},
    {"__DATA_CONST", MachO::VM_PROT_READ | MachO::VM_PROT_WRITE},
    {"__DATA", MachO::VM_PROT_READ | MachO::VM_PROT_WRITE},
    {"__LINKEDIT", MachO::VM_PROT_READ},
};

void checkSegments(const Check& check) {
  for (const Segment& segment : check.image.segments) {
    const auto* const known =
        std::find_if(std::begin(kSegments), std::end(kSegments),
                     [&](const auto& row) { return segment.name == row.name; });
    if (known == std::end(kSegments)) {
      check.fault("it has a segment " + segment.name);
      continue;
    }
    check.require(segment.protection == known->protection,
                  "the segment " + segment.name + " has the wrong protection");
    const std::uint64_t page = check.processor.page;
    check.require(segment.address % page == 0 && segment.offset % page == 0,
                  "the segment " + segment.name + " doesn't begin with a page");
    // The last one may end where the file does.
    check.require(segment.size % page == 0 || segment.name == "__LINKEDIT",
                  "the segment " + segment.name + " doesn't end with a page");
  }
  if (check.image.segments.empty()) {
    check.fault("it has no segments");
    return;
  }
  const Segment& last = check.image.segments.back();
  check.require(
      last.offset + last.file_size == check.image.size,
      "the segment " + last.name + " doesn't end with the file, which can't be signed so");
}

// Kinds of sections. Others run code when the bundle is loaded, or need what a plugin can't have.
constexpr std::uint32_t kSections[] = {
    MachO::S_REGULAR,        MachO::S_ZEROFILL,       MachO::S_CSTRING_LITERALS,
    MachO::S_8BYTE_LITERALS, MachO::S_4BYTE_LITERALS, MachO::S_16BYTE_LITERALS,
    MachO::S_COALESCED,
};

// Sections that the linker for i386 fills wrongly.
constexpr std::uint32_t kLinkerSections[] = {
    MachO::S_SYMBOL_STUBS,
    MachO::S_LAZY_SYMBOL_POINTERS,
    MachO::S_NON_LAZY_SYMBOL_POINTERS,
};

void checkSections(const Check& check) {
  for (const Section& section : check.image.sections) {
    const bool linkers = contains(kLinkerSections, section.type);
    check.require(linkers || contains(kSections, section.type),
                  "the section " + section.name + " is of a kind that a plugin can't have");
    check.require(!linkers || check.processor.linker_stubs,
                  "the section " + section.name + " holds linker stubs or their pointers");
    check.require(section.relocations == 0,
                  "the section " + section.name + " has relocations of its own");
  }
  check.require(check.image.relocations == 0, "it has relocations outside of its fixups");
}

void checkFixups(const Check& check, const std::vector<Fixup>& fixups) {
  for (const Fixup& fixup : fixups) {
    const std::string what = fixup.symbol.empty() ? "an address" : fixup.symbol;
    check.require(fixup.segment == "__DATA" || fixup.segment == "__DATA_CONST",
                  "a fixup for " + what + " is in " + fixup.segment);
    check.require(fixup.type == "pointer",
                  "a fixup for " + what + " is a text relocation: " + fixup.type);
  }
}

void checkAllFixups(const Check& check) {
  const Image& image = check.image;
  checkFixups(check, image.rebases);
  checkFixups(check, image.binds);
  checkFixups(check, image.lazy_binds);
  check.require(check.processor.linker_stubs || image.lazy_binds.empty(),
                "it has lazily bound pointers, which only linker stubs use");
  for (const Fixup& fixup : image.weak_binds) {
    check.fault("it lets other images replace its " + fixup.symbol);
  }
}

// --- names

void checkLibraries(const Check& check) {
  std::map<std::string, std::string> wanted = check.wanted.imports.libraries;
  for (const Library& library : check.image.libraries) {
    const auto known = wanted.extract(library.install_name);
    if (known.empty()) {
      check.fault("it needs the library " + library.install_name);
    } else {
      check.require(library.version == known.mapped(), "it needs version " + library.version +
                                                           " of " + library.install_name +
                                                           " instead of " + known.mapped());
    }
  }
  for (const auto& missing : wanted) check.fault("it doesn't need the library " + missing.first);
}

void checkImport(const Check& check, const std::string& symbol, int library) {
  const auto& listed = check.wanted.imports.symbols;
  const auto row = listed.find(symbol);
  if (row == listed.end()) {
    check.fault("it imports " + symbol + ", which the list doesn't have");
  } else {
    const std::string found = check.libraryNumber(library);
    check.require(found == row->second,
                  "it imports " + symbol + " from " + found + " instead of " + row->second);
  }
}

void checkImports(const Check& check) {
  std::set<std::string> unused;
  for (const auto& row : check.wanted.imports.symbols) unused.insert(row.first);
  for (const Symbol& symbol : check.image.symbols) {
    if (symbol.defined) continue;
    unused.erase(symbol.name);
    checkImport(check, symbol.name, symbol.library);
  }
  for (const auto* binds : {&check.image.binds, &check.image.lazy_binds}) {
    for (const Fixup& bind : *binds) checkImport(check, bind.symbol, bind.library);
  }
  for (const std::string& symbol : unused) {
    check.fault("it doesn't import " + symbol + ", which the list has");
  }
}

void checkExports(const Check& check) {
  std::set<std::string> missing = check.wanted.exports;
  for (const std::string& symbol : check.image.exports) {
    check.require(check.wanted.exports.count(symbol) != 0, "it exports " + symbol);
    missing.erase(symbol);
  }
  for (const std::string& symbol : missing) check.fault("it doesn't export " + symbol);
  for (const Symbol& symbol : check.image.symbols) {
    check.require(!symbol.defined || check.wanted.exports.count(symbol.name) != 0,
                  "its symbols show " + symbol.name);
  }
}

// --- the whole

constexpr void (*kChecks[])(const Check&) = {
    checkHeader,    checkCommands,  checkSegments, checkSections,
    checkAllFixups, checkLibraries, checkImports,  checkExports,
};

void checkImage(const llvm::object::MachOObjectFile& file, const Requirements& wanted,
                std::vector<std::string>& faults) {
  const auto* const processor =
      std::find_if(std::begin(kProcessors), std::end(kProcessors),
                   [&](const Processor& row) { return wanted.processor == row.name; });
  if (processor == std::end(kProcessors)) {
    faults.push_back("there are no rules for the processor " + wanted.processor);
    return;
  }
  const Image image = readImage(file);
  const Check check{image, wanted, *processor, faults};
  for (const std::string& fault : image.faults) check.fault(fault);
  for (auto* const part : kChecks) part(check);
}

void checkUniversal(const llvm::object::MachOUniversalBinary& file,
                    const std::vector<Requirements>& processors, std::vector<std::string>& faults) {
  if (file.getNumberOfObjects() != processors.size()) {
    faults.push_back("it holds " + std::to_string(file.getNumberOfObjects()) +
                     " processors' images instead of " + std::to_string(processors.size()));
  }
  for (const Requirements& wanted : processors) {
    auto slice = file.getMachOObjectForArch(wanted.processor);
    if (slice) {
      checkImage(**slice, wanted, faults);
    } else {
      faults.push_back(wanted.processor + ": " + llvm::toString(slice.takeError()));
    }
  }
}

}  // namespace

std::vector<std::string> faultsOf(llvm::MemoryBufferRef file,
                                  const std::vector<Requirements>& processors) {
  std::vector<std::string> faults;
  auto binary = llvm::object::createBinary(file);
  if (!binary) return {llvm::toString(binary.takeError())};
  if (const auto* universal = llvm::dyn_cast<llvm::object::MachOUniversalBinary>(binary->get())) {
    checkUniversal(*universal, processors, faults);
  } else if (const auto* image = llvm::dyn_cast<llvm::object::MachOObjectFile>(binary->get());
             image != nullptr && processors.size() == 1) {
    checkImage(*image, processors[0], faults);
  } else {
    faults.emplace_back(image == nullptr ? "it is no Mach-O file" : "it is no universal file");
  }
  return faults;
}

}  // namespace macho_check
