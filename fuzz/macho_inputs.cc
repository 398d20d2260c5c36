// Bundles that are in order, for macho_fuzz to begin with.
#include <filesystem>
#include <fstream>

#include "tests/macho/file/sample_file.h"

namespace {

void write(const std::filesystem::path& file, const tests::ByteList& bytes) {
  std::ofstream(file, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const std::filesystem::path folder = argv[1];
  std::filesystem::create_directories(folder);
  write(folder / "bundle", tests::sampleFile());
  write(folder / "universal", tests::universalFile(tests::sampleFile()));
}
