// The bytes of a good bundle, to be spoilt.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <set>
#include <string>
#include <vector>

#include "macho/check/check.h"

namespace tests {

/// The executable of a bundle that the build has made for the processor.
std::string executable(const std::string& processor,
                       const std::string& bundle = "NSUserDefaultsZEL");
/// What the project wants of it.
macho_check::Requirements requirements(const std::string& processor,
                                       const std::string& bundle = "NSUserDefaultsZEL");

/// What is wrong with a file of these bytes.
std::vector<std::string> faults(const std::string& bytes,
                                const std::vector<macho_check::Requirements>& wanted);

/// A 32-bit bundle whose bytes can be changed. Places are offsets in the file.
class BundleFile {
 public:
  BundleFile();

  /// The n-th load command of that kind; a test failure, and 0, when there is none.
  [[nodiscard]] std::size_t command(std::uint32_t kind, int n = 0) const;
  /// The load command of the segment.
  [[nodiscard]] std::size_t segment(const std::string& name) const;
  /// The header of the section, by its own name, in the segment.
  [[nodiscard]] std::size_t section(const std::string& segment, const std::string& name) const;

  [[nodiscard]] std::uint32_t word(std::size_t place) const;
  void setWord(std::size_t place, std::uint32_t value);
  void write(std::size_t place, std::initializer_list<std::uint8_t> bytes);
  /// Writes the text over another one of the same length, from the place on; a test failure when
  /// that doesn't follow.
  void replace(std::size_t place, const std::string& text, const std::string& by);
  /// Makes it that long; new bytes are zeros.
  void resize(std::size_t size);
  [[nodiscard]] std::size_t size() const;

  /// What is wrong with it.
  [[nodiscard]] std::vector<std::string> faults() const;

 private:
  std::string bytes_;
};

}  // namespace tests
