#include "tests/macho/check/bundle_file.h"

#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <llvm/Support/MemoryBufferRef.h>

namespace tests {
namespace {

// The layout of 32-bit files.
constexpr std::size_t kHeaderSize = 28;
constexpr std::size_t kCommandCount = 16;
constexpr std::uint32_t kSegmentCommand = 1;
constexpr std::size_t kSegmentCommandSize = 56;
constexpr std::size_t kSectionCount = 48;
constexpr std::size_t kSectionHeaderSize = 68;
constexpr std::size_t kNameSize = 16;

}  // namespace

std::string executable(const std::string& processor, const std::string& bundle) {
  std::ifstream file(std::string(ZEL_PROJECT "/build/macos-") + processor + "/product/" + bundle +
                         ".bundle/Contents/MacOS/" + bundle,
                     std::ios::binary);
  EXPECT_TRUE(file) << processor;
  return {std::istreambuf_iterator<char>(file), {}};
}

macho_check::Requirements requirements(const std::string& processor, const std::string& bundle) {
  std::ifstream imports(ZEL_PROJECT "/native/darwin/imports.txt");
  return {processor, macho_check::readImportList(imports, bundle, processor), {"_REALPluginMain"}};
}

std::vector<std::string> faults(const std::string& bytes,
                                const std::vector<macho_check::Requirements>& wanted) {
  return macho_check::faultsOf({bytes, "bundle"}, wanted);
}

BundleFile::BundleFile() : bytes_(executable("i386")) {}

std::size_t BundleFile::command(std::uint32_t kind, int n) const {
  std::size_t place = kHeaderSize;
  for (std::uint32_t left = word(kCommandCount); left > 0; --left) {
    if (word(place) == kind && n-- == 0) return place;
    place += word(place + 4);
  }
  ADD_FAILURE() << "no load command " << kind;
  return 0;
}

std::size_t BundleFile::segment(const std::string& name) const {
  std::size_t place = kHeaderSize;
  for (std::uint32_t left = word(kCommandCount); left > 0; --left) {
    if (word(place) == kSegmentCommand && name == bytes_.data() + place + 8) return place;
    place += word(place + 4);
  }
  ADD_FAILURE() << "no segment " << name;
  return 0;
}

std::size_t BundleFile::section(const std::string& segment, const std::string& name) const {
  const std::size_t command = this->segment(segment);
  std::size_t place = command + kSegmentCommandSize;
  for (std::uint32_t left = word(command + kSectionCount); left > 0; --left) {
    if (bytes_.compare(place, strnlen(bytes_.data() + place, kNameSize), name) == 0) return place;
    place += kSectionHeaderSize;
  }
  ADD_FAILURE() << "no section " << name;
  return 0;
}

std::uint32_t BundleFile::word(std::size_t place) const {
  std::uint32_t value = 0;
  std::memcpy(&value, bytes_.substr(place, sizeof value).data(), sizeof value);
  return value;
}

void BundleFile::setWord(std::size_t place, std::uint32_t value) {
  std::memcpy(&bytes_.at(place), &value, sizeof value);
}

void BundleFile::write(std::size_t place, std::initializer_list<std::uint8_t> bytes) {
  for (const std::uint8_t byte : bytes) bytes_.at(place++) = static_cast<char>(byte);
}

void BundleFile::replace(std::size_t place, const std::string& text, const std::string& by) {
  ASSERT_EQ(text.size(), by.size());
  const std::size_t found = bytes_.find(text, place);
  ASSERT_NE(found, std::string::npos) << text;
  bytes_.replace(found, text.size(), by);
}

void BundleFile::resize(std::size_t size) { bytes_.resize(size); }

std::size_t BundleFile::size() const { return bytes_.size(); }

std::vector<std::string> BundleFile::faults() const {
  return tests::faults(bytes_, {requirements("i386")});
}

}  // namespace tests
