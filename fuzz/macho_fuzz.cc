// Whatever the bytes are, they are a bundle or they are refused.
#include <cstdlib>

#include "macho/file/image.h"

static void expect(bool holds) {
  if (!holds) std::abort();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using macho::Image;
  try {
    const Image image = macho::readImage({data, size});
    // What was taken can be mapped: everything is where it says.
    for (const macho::Address rebase : image.rebases) expect(image.segmentOf(rebase, 4) != nullptr);
    for (const macho::Import& import : image.imports)
      expect(image.segmentOf(import.address, 4) != nullptr);
    for (const macho::Export& each : image.exports)
      expect(image.segmentOf(each.address, 1) != nullptr);
    for (const macho::Segment& segment : image.segments) {
      expect(segment.contents.size() <= segment.size);
      expect(segment.address + segment.size <= image.size);
    }
  } catch (const macho::MalformedFile&) {
  }
  return 0;
}
