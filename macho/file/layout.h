// The numbers of the Mach-O format that are in use here, under the format's own names.
#pragma once

#include <cstdint>

namespace macho {

inline constexpr std::uint32_t kPageSize = 4096;

// --- a universal file: its header, then a record per processor, high bytes first
inline constexpr std::uint32_t FAT_MAGIC = 0xCAFEBABE;
inline constexpr std::uint32_t kFatHeaderSize = 8;
inline constexpr std::uint32_t kFatRecordSize = 20;
inline constexpr std::uint32_t kFatRecordOffset = 8;  // where the processor's file begins
inline constexpr std::uint32_t kFatRecordLength = 12;

// --- the header
inline constexpr std::uint32_t MH_MAGIC = 0xFEEDFACE;
inline constexpr std::uint32_t CPU_TYPE_I386 = 7;
inline constexpr std::uint32_t MH_BUNDLE = 8;
inline constexpr std::uint32_t kHeaderSize = 28;
inline constexpr std::uint32_t kHeaderCpuType = 4;
inline constexpr std::uint32_t kHeaderFileType = 12;
inline constexpr std::uint32_t kHeaderCommandCount = 16;
inline constexpr std::uint32_t kHeaderCommandSize = 20;

// --- the load commands, each of which begins with its kind and its size
inline constexpr std::uint32_t kCommandHeadSize = 8;
inline constexpr std::uint32_t LC_REQ_DYLD = 0x80000000;  // must be understood
inline constexpr std::uint32_t LC_SEGMENT = 0x1;
inline constexpr std::uint32_t LC_DYSYMTAB = 0xB;
inline constexpr std::uint32_t LC_LOAD_DYLIB = 0xC;
inline constexpr std::uint32_t LC_LOAD_WEAK_DYLIB = 0x18 | LC_REQ_DYLD;
inline constexpr std::uint32_t LC_REEXPORT_DYLIB = 0x1F | LC_REQ_DYLD;
inline constexpr std::uint32_t LC_LAZY_LOAD_DYLIB = 0x20;
inline constexpr std::uint32_t LC_LOAD_UPWARD_DYLIB = 0x23 | LC_REQ_DYLD;
inline constexpr std::uint32_t LC_DYLD_INFO = 0x22;
inline constexpr std::uint32_t LC_DYLD_INFO_ONLY = 0x22 | LC_REQ_DYLD;

inline constexpr std::uint32_t kSegmentSize = 56;
inline constexpr std::uint32_t kSegmentName = 8;
inline constexpr std::uint32_t kNameSize = 16;
inline constexpr std::uint32_t kSegmentAddress = 24;
inline constexpr std::uint32_t kSegmentMemorySize = 28;
inline constexpr std::uint32_t kSegmentFileOffset = 32;
inline constexpr std::uint32_t kSegmentFileSize = 36;
inline constexpr std::uint32_t kSegmentProtection = 44;
inline constexpr std::uint32_t kSegmentSectionCount = 48;

inline constexpr std::uint32_t kSectionSize = 68;
inline constexpr std::uint32_t kSectionAddress = 32;
inline constexpr std::uint32_t kSectionMemorySize = 36;
inline constexpr std::uint32_t kSectionRelocationCount = 52;
inline constexpr std::uint32_t kSectionFlags = 56;
inline constexpr std::uint32_t kSectionTypeMask = 0xFF;
inline constexpr std::uint32_t S_MOD_INIT_FUNC_POINTERS = 9;

inline constexpr std::uint32_t kDysymtabSize = 80;
inline constexpr std::uint32_t kDysymtabExternalRelocations = 68;
inline constexpr std::uint32_t kDysymtabLocalRelocations = 76;

inline constexpr std::uint32_t kDylibSize = 24;
inline constexpr std::uint32_t kDylibName = 8;  // offset of the name in the command

inline constexpr std::uint32_t kDyldInfoSize = 48;
inline constexpr std::uint32_t kRebaseInfo = 8;  // offset in the file, then size; so the others
inline constexpr std::uint32_t kBindInfo = 16;
inline constexpr std::uint32_t kWeakBindInfo = 24;
inline constexpr std::uint32_t kLazyBindInfo = 32;
inline constexpr std::uint32_t kExportInfo = 40;

// --- the streams of fix-ups: an operation in the high half of a byte, a small number in the low
inline constexpr std::uint8_t kOperationMask = 0xF0;
inline constexpr std::uint8_t kImmediateMask = 0x0F;
inline constexpr std::uint8_t kPointerType = 1;

inline constexpr std::uint8_t REBASE_OPCODE_DONE = 0x00;
inline constexpr std::uint8_t REBASE_OPCODE_SET_TYPE_IMM = 0x10;
inline constexpr std::uint8_t REBASE_OPCODE_SET_SEGMENT_AND_OFFSET_ULEB = 0x20;
inline constexpr std::uint8_t REBASE_OPCODE_ADD_ADDR_ULEB = 0x30;
inline constexpr std::uint8_t REBASE_OPCODE_ADD_ADDR_IMM_SCALED = 0x40;
inline constexpr std::uint8_t REBASE_OPCODE_DO_REBASE_IMM_TIMES = 0x50;
inline constexpr std::uint8_t REBASE_OPCODE_DO_REBASE_ULEB_TIMES = 0x60;
inline constexpr std::uint8_t REBASE_OPCODE_DO_REBASE_ADD_ADDR_ULEB = 0x70;
inline constexpr std::uint8_t REBASE_OPCODE_DO_REBASE_ULEB_TIMES_SKIPPING_ULEB = 0x80;

inline constexpr std::uint8_t BIND_OPCODE_DONE = 0x00;
inline constexpr std::uint8_t BIND_OPCODE_SET_DYLIB_ORDINAL_IMM = 0x10;
inline constexpr std::uint8_t BIND_OPCODE_SET_DYLIB_ORDINAL_ULEB = 0x20;
inline constexpr std::uint8_t BIND_OPCODE_SET_DYLIB_SPECIAL_IMM = 0x30;
inline constexpr std::uint8_t BIND_OPCODE_SET_SYMBOL_TRAILING_FLAGS_IMM = 0x40;
inline constexpr std::uint8_t BIND_OPCODE_SET_TYPE_IMM = 0x50;
inline constexpr std::uint8_t BIND_OPCODE_SET_ADDEND_SLEB = 0x60;
inline constexpr std::uint8_t BIND_OPCODE_SET_SEGMENT_AND_OFFSET_ULEB = 0x70;
inline constexpr std::uint8_t BIND_OPCODE_ADD_ADDR_ULEB = 0x80;
inline constexpr std::uint8_t BIND_OPCODE_DO_BIND = 0x90;
inline constexpr std::uint8_t BIND_OPCODE_DO_BIND_ADD_ADDR_ULEB = 0xA0;
inline constexpr std::uint8_t BIND_OPCODE_DO_BIND_ADD_ADDR_IMM_SCALED = 0xB0;
inline constexpr std::uint8_t BIND_OPCODE_DO_BIND_ULEB_TIMES_SKIPPING_ULEB = 0xC0;

// --- the tree of exports
inline constexpr std::uint64_t EXPORT_SYMBOL_FLAGS_WEAK_DEFINITION = 0x4;

}  // namespace macho
