#include "runner/text/targets.h"

#include <bit>

namespace runner {
namespace {

constexpr bool k64Bit = sizeof(void*) == 8;
constexpr bool kLittle = std::endian::native == std::endian::little;

}  // namespace

std::vector<PlatformConstant> platformConstants(double hostVersion) {
  return {
      {"TargetLinux", true},         {"TargetMacOS", false},   {"TargetMachO", false},
      {"TargetCocoa", false},        {"TargetCarbon", false},  {"TargetWindows", false},
      {"TargetWin32", false},        {"TargetiOS", false},     {"TargetConsole", true},
      {"TargetDesktop", false},      {"TargetHasGUI", false},  {"TargetWeb", false},
      {"Target32Bit", !k64Bit},      {"Target64Bit", k64Bit},  {"TargetX86", true},
      {"TargetARM", false},          {"TargetPowerPC", false}, {"TargetLittleEndian", kLittle},
      {"TargetBigEndian", !kLittle}, {"DebugBuild", false},    {"XojoVersion", hostVersion},
      {"RBVersion", hostVersion},
  };
}

}  // namespace runner
