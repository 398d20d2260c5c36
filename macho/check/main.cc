// Usage: macho_check IMPORTS EXPORTS BUNDLE PROCESSORS FILE
//
// Checks the executable of a macOS bundle and says what is wrong with it, one line each; the exit
// status is 0 when nothing is.
//
//   IMPORTS      the list of what it imports, native/darwin/imports.txt
//   EXPORTS      the list of what it exports, native/darwin/exports.txt
//   BUNDLE       the name that it has in the list of imports
//   PROCESSORS   what it is for: i386, x86_64, arm64; several, with commas, for a universal one
#include <fstream>
#include <iostream>
#include <iterator>
#include <llvm/Support/MemoryBuffer.h>
#include <sstream>
#include <stdexcept>

#include "macho/check/check.h"

namespace {

std::ifstream opened(const char* path) {
  std::ifstream stream(path);
  if (!stream) throw std::runtime_error(std::string("can't read ") + path);
  return stream;
}

std::vector<macho_check::Requirements> requirements(char** arguments) {
  std::ifstream exports = opened(arguments[2]);
  const std::set<std::string> exported{std::istream_iterator<std::string>(exports), {}};
  std::vector<macho_check::Requirements> found;
  std::istringstream processors(arguments[4]);
  for (std::string processor; std::getline(processors, processor, ',');) {
    std::ifstream imports = opened(arguments[1]);
    found.push_back(
        {processor, macho_check::readImportList(imports, arguments[3], processor), exported});
  }
  return found;
}

int check(char** arguments) {
  const auto file = llvm::MemoryBuffer::getFile(arguments[5]);
  if (!file) throw std::runtime_error(std::string("can't read ") + arguments[5]);
  const auto faults = macho_check::faultsOf((*file)->getMemBufferRef(), requirements(arguments));
  for (const std::string& fault : faults) std::cout << arguments[5] << ": " << fault << '\n';
  if (faults.empty()) std::cout << arguments[5] << ": ok\n";
  return faults.empty() ? 0 : 1;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 6) {
    std::cerr << "Usage: macho_check IMPORTS EXPORTS BUNDLE PROCESSORS FILE\n";
    return 2;
  }
  try {
    return check(arguments);
  } catch (const std::exception& error) {
    std::cerr << "macho_check: " << error.what() << '\n';
    return 1;
  }
}
