#include "runner/command/output.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

#include "runner/text/text.h"

namespace runner {

Output::Output(int descriptor, Loss loss) : std::ostream(nullptr), buffer_(descriptor) {
  rdbuf(&buffer_);
  if (loss == Loss::isThrown) exceptions(std::ios::badbit);
}

Output::~Output() {
  exceptions(std::ios::goodbit);
  flush();
}

Output::Buffer::Buffer(int descriptor)
    : descriptor_(descriptor), isTerminal_(isatty(descriptor) != 0) {}

Output::Buffer::int_type Output::Buffer::overflow(int_type character) {
  if (traits_type::eq_int_type(character, traits_type::eof()))
    return traits_type::not_eof(character);
  waiting_ += traits_type::to_char_type(character);
  added();
  return character;
}

std::streamsize Output::Buffer::xsputn(const char* text, std::streamsize size) {
  waiting_.append(text, static_cast<std::size_t>(size));
  added();
  return size;
}

int Output::Buffer::sync() {
  write(waiting_.size());
  return 0;
}

// Whole lines only: no character goes over the end of one.
void Output::Buffer::added() {
  constexpr std::size_t kEnough = 16384;
  if (!isTerminal_ && waiting_.size() < kEnough) return;
  const std::size_t end = waiting_.rfind('\n');
  if (end != std::string::npos) write(end + 1);
}

void Output::Buffer::write(std::size_t size) {
  const std::string text = wellFormed(std::string_view(waiting_).substr(0, size));
  waiting_.erase(0, size);  // written or lost
  for (std::size_t done = 0; done < text.size();) {
    const ssize_t count = ::write(descriptor_, text.data() + done, text.size() - done);
    if (count < 0 && errno != EINTR)
      throw OutputLost(errno, std::generic_category(), "can't write the output");
    if (count > 0) done += static_cast<std::size_t>(count);
  }
}

void prepareStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) >= 0) continue;
    // The lowest number that is free is this one.
    open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
  }
  std::signal(SIGPIPE, SIG_IGN);
}

}  // namespace runner
