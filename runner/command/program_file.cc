#include "runner/command/program_file.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace runner {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// Errors leave their number in errno.
bool readAll(int descriptor, std::string* text) {
  std::array<char, 65536> block;
  for (;;) {
    const ssize_t count = read(descriptor, block.data(), block.size());
    if (count == 0) return true;
    if (count < 0 && errno != EINTR) return false;
    if (count > 0) text->append(block.data(), static_cast<std::size_t>(count));
  }
}

}  // namespace

Source readProgram(const std::string& file) {
  const bool isStandardInput = file == "-";
  const std::string name = isStandardInput ? "standard input" : file;
  const int descriptor = isStandardInput ? STDIN_FILENO : open(file.c_str(), O_RDONLY | O_CLOEXEC);
  std::string text;
  const bool whole = descriptor >= 0 && readAll(descriptor, &text);
  const int error = errno;
  if (descriptor > STDERR_FILENO) close(descriptor);
  if (!whole) throw std::system_error(error, std::generic_category(), "can't read " + name);
  if (text.starts_with(kByteOrderMark)) text.erase(0, kByteOrderMark.size());
  return {name, std::move(text)};
}

}  // namespace runner
