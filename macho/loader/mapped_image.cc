#include "macho/loader/mapped_image.h"

#include <algorithm>
#include <set>
#include <stdexcept>
#include <sys/mman.h>

namespace macho {
namespace {

// The pointers of an image are as wide as this process's.
static_assert(sizeof(void*) == sizeof(Address));

std::uint8_t* reserve(std::uint32_t size) {
  void* const memory =
      mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) throw std::runtime_error("there is no memory for the bundle");
  return static_cast<std::uint8_t*>(memory);
}

std::uint32_t toWord(const void* pointer) { return reinterpret_cast<std::uint32_t>(pointer); }

int systemProtection(std::uint32_t protection) {
  return ((protection & kReadable) != 0 ? PROT_READ : 0) |
         ((protection & kWritable) != 0 ? PROT_WRITE : 0) |
         ((protection & kExecutable) != 0 ? PROT_EXEC : 0);
}

// A weak symbol is the image's own when it has one of the name.
void* targetOf(const MappedImage& mapped, const Image& image, const Import& import,
               const ImportResolver& resolve) {
  const Export* const own =
      import.binding == Binding::kWeak ? image.findExport(import.symbol) : nullptr;
  return own != nullptr ? mapped.at(own->address) : resolve(import);
}

}  // namespace

MappedImage::MappedImage(const Image& image, const ImportResolver& resolve)
    : size_(image.size), memory_(reserve(image.size)) {
  try {
    place(image);
    bind(image, resolve);
    protect(image);
  } catch (...) {
    munmap(memory_, size_);
    throw;
  }
}

MappedImage::~MappedImage() { munmap(memory_, size_); }

void MappedImage::place(const Image& image) {
  for (const Segment& segment : image.segments)
    std::copy(segment.contents.begin(), segment.contents.end(), memory_ + segment.address);
  for (const Address address : image.rebases) pointerAt(address) += toWord(memory_);
}

void MappedImage::bind(const Image& image, const ImportResolver& resolve) {
  std::set<std::string> unbound;
  for (const Import& import : image.imports) {
    const void* const target = targetOf(*this, image, import, resolve);
    if (target == nullptr) unbound.insert(import.symbol);
    pointerAt(import.address) = toWord(target) + static_cast<std::uint32_t>(import.addend);
  }
  if (unbound.empty()) return;
  std::string names;
  for (const std::string& name : unbound) names += (names.empty() ? "" : ", ") + name;
  throw std::runtime_error("can't be bound: " + names);
}

void MappedImage::protect(const Image& image) const {
  for (const Segment& segment : image.segments) {
    if (mprotect(at(segment.address), segment.size, systemProtection(segment.protection)) != 0)
      throw std::runtime_error("segment " + segment.name + " can't be protected");
  }
}

std::uint32_t& MappedImage::pointerAt(Address address) const {
  return *reinterpret_cast<std::uint32_t*>(memory_ + address);
}

}  // namespace macho
