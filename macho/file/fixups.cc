#include "macho/file/fixups.h"

#include "macho/file/layout.h"

namespace macho {
namespace {

constexpr std::uint32_t kPointerSize = 4;

// Where in the image a stream stands. Offsets wrap around: streams go back by adding huge numbers.
class Place {
 public:
  Place(const Reader& stream, const Image& image) : stream_(stream), image_(image) {}

  void moveTo(std::uint8_t segment, std::uint64_t offset) {
    if (segment >= image_.segments.size()) stream_.fail("names a segment that isn't there");
    segment_ = &image_.segments[segment];
    offset_ = offset;
  }
  void skip(std::uint64_t distance) { offset_ += distance; }
  // The address of the pointer here; goes on to the next one.
  Address take() {
    if (segment_ == nullptr) stream_.fail("adjusts a pointer before it says where");
    if (offset_ > segment_->size || segment_->size - offset_ < kPointerSize)
      stream_.fail("adjusts a pointer outside its segment");
    if ((segment_->protection & kWritable) == 0)
      stream_.fail("adjusts a pointer in a segment that can't be written to");
    const Address address = segment_->address + static_cast<Address>(offset_);
    offset_ += kPointerSize;
    return address;
  }
  // How far the pointers of a series stand apart, which can't be backwards: the series would have
  // no end.
  [[nodiscard]] std::uint64_t gap(std::uint64_t distance) const {
    if (distance > image_.size) stream_.fail("skips more than there is");
    return distance;
  }

 private:
  const Reader& stream_;
  const Image& image_;
  const Segment* segment_ = nullptr;
  std::uint64_t offset_ = 0;
};

// Every pointer can be adjusted once, so there can't be more of them than fit into the image.
template <class List>
void expectRoom(const Reader& stream, const Image& image, const List& list) {
  if (list.size() >= image.size / kPointerSize) stream.fail("adjusts more pointers than there are");
}

class RebaseStream {
 public:
  RebaseStream(Bytes bytes, Image& image) : stream_(bytes, "the list of rebases"), image_(image) {}

  void read() {
    while (!stream_.atEnd()) {
      const std::uint8_t opcode = stream_.byte();
      const auto operation = static_cast<std::uint8_t>(opcode & kOperationMask);
      if (operation == REBASE_OPCODE_DONE) return;
      run(operation, opcode & kImmediateMask);
    }
  }

 private:
  void run(std::uint8_t operation, std::uint8_t immediate) {
    switch (operation) {
      case REBASE_OPCODE_SET_TYPE_IMM:
        if (immediate != kPointerType) stream_.fail("adjusts something that is no pointer");
        break;
      case REBASE_OPCODE_SET_SEGMENT_AND_OFFSET_ULEB:
        place_.moveTo(immediate, stream_.number());
        break;
      case REBASE_OPCODE_ADD_ADDR_ULEB:
        place_.skip(stream_.number());
        break;
      case REBASE_OPCODE_ADD_ADDR_IMM_SCALED:
        place_.skip(std::uint64_t{immediate} * kPointerSize);
        break;
      default:
        rebase(operation, immediate);
    }
  }

  void rebase(std::uint8_t operation, std::uint8_t immediate) {
    switch (operation) {
      case REBASE_OPCODE_DO_REBASE_IMM_TIMES:
        times(immediate, 0);
        break;
      case REBASE_OPCODE_DO_REBASE_ULEB_TIMES:
        times(stream_.number(), 0);
        break;
      case REBASE_OPCODE_DO_REBASE_ADD_ADDR_ULEB:
        times(1, 0);
        place_.skip(stream_.number());
        break;
      case REBASE_OPCODE_DO_REBASE_ULEB_TIMES_SKIPPING_ULEB: {
        const std::uint64_t count = stream_.number();
        times(count, place_.gap(stream_.number()));
        break;
      }
      default:
        stream_.fail("has an operation that doesn't exist");
    }
  }

  void times(std::uint64_t count, std::uint64_t gap) {
    for (; count > 0; --count) {
      expectRoom(stream_, image_, image_.rebases);
      image_.rebases.push_back(place_.take());
      place_.skip(gap);
    }
  }

  Reader stream_;
  Image& image_;
  Place place_{stream_, image_};
};

class ImportStream {
 public:
  ImportStream(Bytes bytes, Binding binding, Image& image)
      : stream_(bytes, "the list of imports"), image_(image), current_{0, "", "", 0, binding} {}

  void read() {
    while (!stream_.atEnd()) {
      const std::uint8_t opcode = stream_.byte();
      const auto operation = static_cast<std::uint8_t>(opcode & kOperationMask);
      // Each lazy import ends with what ends the whole of the other lists.
      if (operation == BIND_OPCODE_DONE && current_.binding != Binding::kLazy) return;
      if (operation != BIND_OPCODE_DONE) run(operation, opcode & kImmediateMask);
    }
  }

 private:
  void run(std::uint8_t operation, std::uint8_t immediate) {
    switch (operation) {
      case BIND_OPCODE_SET_DYLIB_ORDINAL_IMM:
        setLibrary(immediate);
        break;
      case BIND_OPCODE_SET_DYLIB_ORDINAL_ULEB:
        setLibrary(stream_.number());
        break;
      case BIND_OPCODE_SET_DYLIB_SPECIAL_IMM:
        current_.library.clear();
        break;
      case BIND_OPCODE_SET_SYMBOL_TRAILING_FLAGS_IMM:
        current_.symbol = stream_.text();
        break;
      case BIND_OPCODE_SET_TYPE_IMM:
        if (immediate != kPointerType) stream_.fail("adjusts something that is no pointer");
        break;
      case BIND_OPCODE_SET_ADDEND_SLEB:
        current_.addend = static_cast<std::int32_t>(stream_.signedNumber());
        break;
      case BIND_OPCODE_SET_SEGMENT_AND_OFFSET_ULEB:
        place_.moveTo(immediate, stream_.number());
        break;
      case BIND_OPCODE_ADD_ADDR_ULEB:
        place_.skip(stream_.number());
        break;
      default:
        bind(operation, immediate);
    }
  }

  void bind(std::uint8_t operation, std::uint8_t immediate) {
    switch (operation) {
      case BIND_OPCODE_DO_BIND:
        times(1, 0);
        break;
      case BIND_OPCODE_DO_BIND_ADD_ADDR_ULEB:
        times(1, 0);
        place_.skip(stream_.number());
        break;
      case BIND_OPCODE_DO_BIND_ADD_ADDR_IMM_SCALED:
        times(1, std::uint64_t{immediate} * kPointerSize);
        break;
      case BIND_OPCODE_DO_BIND_ULEB_TIMES_SKIPPING_ULEB: {
        const std::uint64_t count = stream_.number();
        times(count, place_.gap(stream_.number()));
        break;
      }
      default:
        stream_.fail("has an operation that doesn't exist");
    }
  }

  void setLibrary(std::uint64_t ordinal) {
    if (ordinal > image_.libraries.size()) stream_.fail("names a library that isn't there");
    // 0 is the image itself.
    current_.library = ordinal == 0 ? "" : image_.libraries[static_cast<std::size_t>(ordinal - 1)];
  }

  void times(std::uint64_t count, std::uint64_t gap) {
    if (count > 0 && current_.symbol.empty()) stream_.fail("binds a pointer to no symbol");
    for (; count > 0; --count) {
      expectRoom(stream_, image_, image_.imports);
      current_.address = place_.take();
      image_.imports.push_back(current_);
      place_.skip(gap);
    }
  }

  Reader stream_;
  Image& image_;
  Place place_{stream_, image_};
  Import current_;
};

}  // namespace

void readRebases(Bytes stream, Image& image) { RebaseStream(stream, image).read(); }

void readImports(Bytes stream, Binding binding, Image& image) {
  ImportStream(stream, binding, image).read();
}

}  // namespace macho
