#include "tests/native/support.h"

#include <array>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace native_test {

using zel::autoreleased;
using zel::send;

NativeTest::NativeTest() : pool_(send<zel::id, "new">(zel::classNamed<"NSAutoreleasePool">())) {}

NativeTest::~NativeTest() { zel::release(pool_); }

zel::CFStringRef string(const char* text) {
  return autoreleased(
      zel::CFStringCreateWithCString(zel::kDefaultAllocator, text, zel::kCFStringEncodingUTF8));
}

std::string text(const void* string) {
  if (string == nullptr) return "(null)";
  const auto* const native = static_cast<zel::CFStringRef>(string);
  std::string buffer(static_cast<std::size_t>(zel::CFStringGetLength(native)) * 3 + 1, '\0');
  if (zel::CFStringGetCString(native, buffer.data(), static_cast<zel::CFIndex>(buffer.size()),
                              zel::kCFStringEncodingUTF8) == 0) {
    return "(not convertible)";
  }
  return buffer.c_str();
}

zel::NSInteger referencesOf(const void* object) {
  return send<zel::NSInteger, "retainCount">(object);
}

std::string outputOf(const std::string& program, std::vector<std::string> arguments) {
  std::vector<char*> argv;
  argv.reserve(arguments.size() + 1);
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  std::array<int, 2> ends = {};
  EXPECT_EQ(pipe(ends.data()), 0);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  posix_spawn_file_actions_addclose(&actions, ends[0]);
  pid_t child = 0;
  EXPECT_EQ(posix_spawn(&child, program.c_str(), &actions, nullptr, argv.data(), environ), 0)
      << program;
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  std::string output;
  std::array<char, 4096> block = {};
  for (ssize_t got = 0; (got = read(ends[0], block.data(), block.size())) > 0;) {
    output.append(block.data(), static_cast<std::size_t>(got));
  }
  close(ends[0]);
  int status = -1;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0) << program;
  return output;
}

std::string probe(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), ownDomain());
  return outputOf(ZEL_PROBE, std::move(arguments));
}

std::string ownDomain() {
  const auto info = send<zel::id, "processInfo">(zel::classNamed<"NSProcessInfo">());
  return text(send<zel::id, "processName">(info));
}

}  // namespace native_test
