// What the reader says of a file that it refuses.
#pragma once

#include <string>

#include "macho/file/image.h"
#include "tests/macho/file/sample_file.h"

namespace tests {

/// The reason; "" when the file is taken.
inline std::string refusalOf(const ByteList& file) {
  try {
    macho::readImage(file);
  } catch (const macho::MalformedFile& error) {
    return error.what();
  }
  return "";
}

inline std::string refusalOf(const SampleLists& lists) { return refusalOf(sampleFile(lists)); }

}  // namespace tests
