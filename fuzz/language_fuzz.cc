// Any bytes as a program: it is checked, or what is wrong with it is said; it doesn't run.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <sstream>
#include <string>

#include "runner/command/session.h"
#include "runner/syntax/parser.h"

namespace {

// A session, which is made anew before what programs declare fills it up.
runner::Session& session() {
  constexpr int kPrograms = 1000;
  static host::Host host;
  static std::ostringstream out;
  static std::istringstream in;
  static std::unique_ptr<runner::Session> current;
  static int programs = 0;
  if (programs++ % kPrograms == 0) current = std::make_unique<runner::Session>(host, out, in);
  return *current;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const runner::Source source("input", std::string(reinterpret_cast<const char*>(data), size));
  format(session().check(source));
  isUnfinished(source, 2014);
  return 0;
}
