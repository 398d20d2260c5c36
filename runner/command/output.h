// Where programs print to, and where messages go.
#pragma once

#include <ostream>
#include <streambuf>
#include <string>
#include <system_error>

namespace runner {

/// What was printed couldn't be written: a full disk, or a pipe that nobody reads any more.
class OutputLost : public std::system_error {
 public:
  using std::system_error::system_error;
};

/// Text on its way to a file descriptor, line by line on a terminal. What isn't UTF-8 arrives as
/// U+FFFD, so that no bytes reach a terminal that it would take for commands.
class Output : public std::ostream {
 public:
  /// What to do when the text can't be written.
  enum class Loss { isThrown, isIgnored };

  /// @param descriptor stays open.
  Output(int descriptor, Loss loss);
  ~Output() override;
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

 private:
  class Buffer : public std::streambuf {
   public:
    explicit Buffer(int descriptor);

   protected:
    int_type overflow(int_type character) override;
    std::streamsize xsputn(const char* text, std::streamsize size) override;
    int sync() override;

   private:
    void added();
    void write(std::size_t size);

    int descriptor_;
    bool isTerminal_;
    std::string waiting_;
  };

  Buffer buffer_;
};

/// Opens the standard streams that are closed, in a way that can't be read or written: otherwise
/// the next file that anybody opens would stand for them. A pipe that nobody reads becomes an
/// error.
void prepareStandardStreams();

}  // namespace runner
