#include "macho/loader/bundle.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace macho {
namespace {

std::vector<std::uint8_t> contentsOf(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) throw std::runtime_error("can't be read");
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void* resolve(const Import& import) { return bindingOf(import.symbol); }

// Says of which file an error tells.
template <class Body>
auto namingErrors(const std::string& name, Body body) {
  try {
    return body();
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(name + ": " + error.what());
  }
}

}  // namespace

std::filesystem::path executableOf(const std::filesystem::path& bundle) {
  // A name that ends in a slash has an empty last part.
  const std::filesystem::path folder = bundle.has_filename() ? bundle : bundle.parent_path();
  return folder / "Contents" / "MacOS" / folder.stem();
}

Image imageOf(const std::filesystem::path& file) {
  return namingErrors(file.native(), [&] { return readImage(contentsOf(file)); });
}

Bundle::Bundle(const std::filesystem::path& folder)
    : name_(folder.native()),
      image_(imageOf(executableOf(folder))),
      mapped_(namingErrors(name_, [&] { return MappedImage(image_, resolve); })) {
  initialise();
}

void* Bundle::find(const std::string& function) const {
  const Export* const found = image_.findExport("_" + function);
  return found == nullptr ? nullptr : mapped_.at(found->address);
}

bool Bundle::mustStay() const {
  return std::any_of(image_.imports.begin(), image_.imports.end(),
                     [](const Import& import) { return import.symbol == kAddMethod; });
}

void* Bundle::get(const std::string& function) const {
  void* const found = find(function);
  if (found == nullptr) throw std::runtime_error(name_ + " has no " + function);
  return found;
}

void Bundle::initialise() const {
  for (const InitialiserList& list : image_.initialisers) {
    const auto* const functions = static_cast<void (*const*)()>(mapped_.at(list.address));
    for (std::uint32_t i = 0; i < list.size / sizeof *functions; ++i) {
      enterBundle([](void* function) { reinterpret_cast<void (*)()>(function)(); },
                  reinterpret_cast<void*>(functions[i]));
    }
  }
}

}  // namespace macho
