// Whatever the bytes are, they are a bundle or they are refused.
#include <cstdlib>

#include "testkit/macho/image.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using testkit::macho::Image;
  try {
    const Image image = testkit::macho::readImage({data, size});
    // What was taken can be mapped: everything is where it says.
    for (const testkit::macho::Address rebase : image.rebases)
      if (image.segmentOf(rebase, 4) == nullptr) std::abort();
    for (const testkit::macho::Import& import : image.imports)
      if (image.segmentOf(import.address, 4) == nullptr) std::abort();
    for (const testkit::macho::Export& each : image.exports)
      if (image.segmentOf(each.address, 1) == nullptr) std::abort();
    for (const testkit::macho::Segment& segment : image.segments)
      if (segment.contents.size() > segment.size || segment.address + segment.size > image.size)
        std::abort();
  } catch (const testkit::macho::MalformedFile&) {
  }
  return 0;
}
