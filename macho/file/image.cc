#include "macho/file/image.h"

#include <algorithm>
#include <optional>

#include "macho/file/exports.h"
#include "macho/file/fixups.h"
#include "macho/file/layout.h"

namespace macho {
namespace {

constexpr std::uint32_t kLargestImage = 256 << 20;  // bytes

[[noreturn]] void refuse(const std::string& why) { throw MalformedFile(why); }

// The part of a universal file that is for this processor; any other file whole.
Bytes ownPartOf(Bytes file) {
  if (bigEndianWordAt(file, 0) != FAT_MAGIC) return file;
  const std::uint32_t count = bigEndianWordAt(file, 4);
  // Each record is read, and with that checked, before the next.
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::size_t record = kFatHeaderSize + std::size_t{i} * kFatRecordSize;
    const std::uint32_t offset = bigEndianWordAt(file, record + kFatRecordOffset);
    const std::uint32_t length = bigEndianWordAt(file, record + kFatRecordLength);
    if (bigEndianWordAt(file, record) == CPU_TYPE_I386)
      return partOf(file, offset, length, "the part for 32-bit x86");
  }
  refuse("the universal file has no part for 32-bit x86");
}

struct Command {
  std::uint32_t kind;
  Bytes bytes;

  [[nodiscard]] std::uint32_t word(std::uint32_t offset) const { return wordAt(bytes, offset); }
  void expectSize(std::uint32_t size) const {
    if (bytes.size() < size) refuse("a load command is too short");
  }
};

std::vector<Command> commandsOf(Bytes file) {
  Bytes rest =
      partOf(file, kHeaderSize, wordAt(file, kHeaderCommandSize), "the list of load commands");
  std::vector<Command> commands;
  for (std::uint32_t count = wordAt(file, kHeaderCommandCount); count > 0; --count) {
    const std::uint32_t size = rest.size() < kCommandHeadSize ? 0 : wordAt(rest, 4);
    if (size < kCommandHeadSize || size > rest.size())
      refuse("a load command has an impossible size");
    commands.push_back({wordAt(rest, 0), rest.first(size)});
    rest = rest.subspan(size);
  }
  return commands;
}

void checkHeader(Bytes file) {
  if (wordAt(file, 0) != MH_MAGIC || wordAt(file, kHeaderCpuType) != CPU_TYPE_I386)
    refuse("this is no Mach-O file for 32-bit x86");
  if (wordAt(file, kHeaderFileType) != MH_BUNDLE) refuse("the file is no bundle");
}

class ImageReader {
 public:
  explicit ImageReader(Bytes file) : file_(file) {}

  Image read() {
    checkHeader(file_);
    for (const Command& command : commandsOf(file_)) readCommand(command);
    if (!dyldInfo_) refuse("the file doesn't say how it is to be adjusted");
    readRebases(listOf(kRebaseInfo, "the list of rebases"), image_);
    readImports(listOf(kBindInfo, "the list of imports"), Binding::kAtLoad, image_);
    readImports(listOf(kWeakBindInfo, "the list of weak imports"), Binding::kWeak, image_);
    readImports(listOf(kLazyBindInfo, "the list of lazy imports"), Binding::kLazy, image_);
    readExports(listOf(kExportInfo, "the tree of exports"), image_);
    return std::move(image_);
  }

 private:
  void readCommand(const Command& command) {
    switch (command.kind) {
      case LC_SEGMENT:
        return readSegment(command);
      case LC_DYSYMTAB:
        return checkRelocations(command);
      case LC_LOAD_DYLIB:
      case LC_LOAD_WEAK_DYLIB:
      case LC_REEXPORT_DYLIB:
      case LC_LAZY_LOAD_DYLIB:
      case LC_LOAD_UPWARD_DYLIB:
        return readLibrary(command);
      case LC_DYLD_INFO:
      case LC_DYLD_INFO_ONLY:
        command.expectSize(kDyldInfoSize);
        dyldInfo_ = command;
        return;
      default:
        if ((command.kind & LC_REQ_DYLD) != 0)
          refuse("a load command is of a kind that can't be left out");
    }
  }

  void readSegment(const Command& command) {
    command.expectSize(kSegmentSize);
    Segment segment{paddedTextIn(command.bytes.subspan(kSegmentName, kNameSize)),
                    command.word(kSegmentAddress),
                    command.word(kSegmentMemorySize),
                    command.word(kSegmentProtection),
                    {}};
    const Bytes contents = partOf(file_, command.word(kSegmentFileOffset),
                                  command.word(kSegmentFileSize), "segment " + segment.name);
    checkPlace(segment);
    if (contents.size() > segment.size)
      refuse("segment " + segment.name + " is longer in the file");
    segment.contents.assign(contents.begin(), contents.end());
    image_.size = std::max(image_.size, segment.address + segment.size);
    readSections(command, segment);
    image_.segments.push_back(std::move(segment));
  }

  void checkPlace(const Segment& segment) const {
    if (segment.address % kPageSize != 0)
      refuse("segment " + segment.name + " doesn't begin with a page");
    if (segment.address > kLargestImage || segment.size > kLargestImage - segment.address)
      refuse("segment " + segment.name + " is too large");
    for (const Segment& other : image_.segments) {
      if (segment.address < other.address + other.size &&
          other.address < segment.address + segment.size)
        refuse("segment " + segment.name + " overlaps another one");
    }
  }

  void readSections(const Command& command, const Segment& segment) {
    const std::uint32_t count = command.word(kSegmentSectionCount);
    if (count > (command.bytes.size() - kSegmentSize) / kSectionSize)
      refuse("segment " + segment.name + " has more sections than it has room for");
    for (std::uint32_t i = 0; i < count; ++i) {
      const Bytes section =
          command.bytes.subspan(kSegmentSize + std::size_t{i} * kSectionSize, kSectionSize);
      if (wordAt(section, kSectionRelocationCount) != 0)
        refuse("a section has relocations of its own");
      if ((wordAt(section, kSectionFlags) & kSectionTypeMask) == S_MOD_INIT_FUNC_POINTERS)
        addInitialisers(section, segment);
    }
  }

  void addInitialisers(Bytes section, const Segment& segment) {
    const InitialiserList list{wordAt(section, kSectionAddress),
                               wordAt(section, kSectionMemorySize)};
    if (!segment.contains(list.address, list.size))
      refuse("the list of initialisers lies outside its segment");
    if (list.size % 4 != 0) refuse("the list of initialisers has half an entry");
    image_.initialisers.push_back(list);
  }

  static void checkRelocations(const Command& command) {
    command.expectSize(kDysymtabSize);
    if (command.word(kDysymtabExternalRelocations) != 0 ||
        command.word(kDysymtabLocalRelocations) != 0)
      refuse("the file has relocations of the old kind");
  }

  void readLibrary(const Command& command) {
    command.expectSize(kDylibSize);
    const std::uint32_t name = command.word(kDylibName);
    if (name < kDylibSize || name >= command.bytes.size())
      refuse("the name of a library lies outside its load command");
    image_.libraries.push_back(paddedTextIn(command.bytes.subspan(name)));
  }

  [[nodiscard]] Bytes listOf(std::uint32_t field, std::string_view what) const {
    return partOf(file_, dyldInfo_->word(field), dyldInfo_->word(field + 4), what);
  }

  Bytes file_;
  Image image_;
  std::optional<Command> dyldInfo_;
};

}  // namespace

const Segment* Image::segmentOf(Address at, std::uint32_t count) const {
  const auto found = std::find_if(segments.begin(), segments.end(), [&](const Segment& segment) {
    return segment.contains(at, count);
  });
  return found == segments.end() ? nullptr : &*found;
}

const Export* Image::findExport(std::string_view symbol) const {
  const auto found =
      std::find_if(exports.begin(), exports.end(),
                   [symbol](const Export& candidate) { return candidate.symbol == symbol; });
  return found == exports.end() ? nullptr : &*found;
}

Image readImage(Bytes file) { return ImageReader(ownPartOf(file)).read(); }

}  // namespace macho
