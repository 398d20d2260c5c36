#include "runner/command/log.h"

#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>

#include "native/objc.h"
#include "runner/text/text.h"

// Foundation's: what writes a line of the log. It is given the text with everything before it.
// NOLINTNEXTLINE(readability-identifier-naming)
extern "C" void (*_NSLog_printf_handler)(zel::id text);

namespace runner {
namespace {

constexpr std::string_view kLead = "log: ";

std::ostream* log = nullptr;

std::size_t columnsOfTerminal() {
  winsize size{};
  return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

// What stands behind "2024-02-29 23:59:58.123 hostrun[1:1] ".
std::string_view withoutLead(std::string_view line) {
  const std::size_t end = line.find("] ");
  return end == std::string_view::npos ? line : line.substr(end + 2);
}

void write(zel::id text) {
  const char* const line = zel::send<const char*, "UTF8String">(text);
  if (line == nullptr) return;
  const std::size_t columns = columnsOfTerminal();
  *log << kLead << oneLine(withoutLead(line), columns > kLead.size() ? columns - kLead.size() : 0)
       << std::endl;
}

}  // namespace

void logTo(std::ostream& messages) {
  log = &messages;
  _NSLog_printf_handler = write;
}

}  // namespace runner
