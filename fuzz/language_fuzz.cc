// Any bytes as a program: it is checked, or what is wrong with it is said; it doesn't run.
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "runner/parser.h"
#include "runner/session.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static testkit::Host host;
  const runner::Source source("input", std::string(reinterpret_cast<const char*>(data), size));
  std::ostringstream out;
  std::istringstream in;
  runner::Session session(host, out, in);
  format(session.check(source));
  isUnfinished(source);
  return 0;
}
