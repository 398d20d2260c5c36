// A tour: a small host program loads the plugin, stores a value of every simple kind through the
// methods of NSUserDefaultsZEL, and reads them back; then a second process reads the same values,
// and Foundation's own `defaults` tool shows what is on disk. All of it happens in a user-defaults
// store that is removed at the end.
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <spawn.h>
#include <sstream>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "native/objc.h"
#include "plugin/version.h"
#include "testkit/host/host.h"
#include "testkit/library/plugin_library.h"
#include "testkit/siblings/runtime.h"
#include "testkit/store/private_store.h"

namespace {

using testkit::Host;
using testkit::ObjectRef;
using testkit::Outcome;
using testkit::Value;

// What the tour stores: in the host's language, defaults.<getter>(key) = value.
struct Entry {
  const char* type;
  const char* getter;
  const char* key;
  Value value;
};

const std::vector<Entry>& entries() {
  using namespace std::string_literals;
  static const std::vector<Entry> kEntries = {
      {"integer", "integerForKey", "launchCount", std::int32_t{42}},
      {"single", "floatForKey", "zoom", 1.25F},
      {"double", "doubleForKey", "precision", 0.1},
      {"boolean", "boolForKey", "showToolbar", std::int8_t{1}},
      {"string", "stringForKey", "greeting", "Grüße, 世界"s},
      {"URL", "URLForKey", "homepage", "https://example.com/caf%C3%A9?lang=de"s},
  };
  return kEntries;
}

std::string shown(const Value& value) {
  std::ostringstream out;
  if (const auto* const integer = std::get_if<std::int32_t>(&value)) out << *integer;
  if (const auto* const single = std::get_if<float>(&value)) out << *single;
  if (const auto* const number = std::get_if<double>(&value)) out << *number;
  if (const auto* const boolean = std::get_if<std::int8_t>(&value))
    out << (*boolean == 0 ? "false" : "true");
  if (const auto* const text = std::get_if<std::string>(&value)) out << '"' << *text << '"';
  return out.str();
}

void show(const Entry& entry, const Value& value) {
  std::cout << "  " << std::left << std::setw(9) << entry.type << std::setw(14) << entry.key
            << shown(value) << '\n';
}

// The value that a call gave. A host exception ends the tour.
Value valueOf(const Outcome& outcome) {
  if (outcome.raised) {
    throw std::runtime_error(outcome.raised->className + ": " +
                             outcome.raised->message.value_or("no message"));
  }
  return outcome.value;
}

void readEverything(Host& host, const ObjectRef& defaults) {
  for (const Entry& entry : entries())
    show(entry, valueOf(host.call(defaults, entry.getter, {std::string(entry.key)})));
}

void storeEverything(Host& host, const ObjectRef& defaults) {
  for (const Entry& entry : entries()) {
    valueOf(host.assign(defaults, entry.getter, {std::string(entry.key)}, entry.value));
    show(entry, entry.value);
  }
  if (valueOf(host.call(defaults, "synchronize")) == Value(std::int8_t{0}))
    throw std::runtime_error("the store can't be written to disk");
}

// Runs a program to its end, its output where ours goes.
void runProgram(const std::string& file, std::vector<std::string> arguments) {
  std::cout.flush();
  std::vector<char*> raw;
  raw.reserve(arguments.size() + 1);
  for (std::string& argument : arguments) raw.push_back(argument.data());
  raw.push_back(nullptr);
  pid_t child = 0;
  const int error = posix_spawnp(&child, file.c_str(), nullptr, nullptr, raw.data(), environ);
  if (error != 0) throw std::runtime_error("can't start " + file + ": " + std::strerror(error));
  int status = 0;
  waitpid(child, &status, 0);
  if (status != 0) throw std::runtime_error(file + " failed");
}

void tour(const std::string& program, const std::string& plugin, bool readOnly) {
  const testkit::PluginLibrary library(plugin);
  Host host;
  testkit::Siblings family(host, testkit::addToRuntime());
  family.provideExceptions();
  host.load(library.main());
  const ObjectRef defaults =
      std::get<ObjectRef>(valueOf(host.callShared("NSUserDefaultsZEL", "standardUserDefaults")));
  if (readOnly) {
    readEverything(host, defaults);
    return;
  }
  std::cout << "NSUserDefaultsZEL " << zel::kVersion << ", in a user-defaults store of its own\n"
            << "\nThis process stores:\n";
  storeEverything(host, defaults);
  std::cout << "\nThis process reads:\n";
  readEverything(host, defaults);
  std::cout << "\nA second process reads:\n";
  runProgram("/proc/self/exe", {program, "--plugin", plugin, "--read"});
  const std::string domain = std::filesystem::path(program).filename();
  std::cout << "\n`defaults read " << domain << "` shows:\n";
  runProgram("defaults", {"defaults", "read", domain});
}

int run(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  const bool readOnly = arguments.size() == 3 && arguments[2] == "--read";
  if (arguments.size() < 2 || arguments[0] != "--plugin" || (arguments.size() > 2 && !readOnly)) {
    std::cerr << "usage: " << argv[0] << " --plugin FILE [--read]\n";
    return 2;
  }
  const zel::id pool = zel::send<zel::id, "new">(zel::classNamed<"NSAutoreleasePool">());
  int status = 0;
  try {
    tour(argv[0], arguments[1], readOnly);
  } catch (const std::exception& problem) {
    std::cerr << "tour: " << problem.what() << '\n';
    status = 1;
  }
  zel::send<void, "drain">(pool);
  return status;
}

}  // namespace

int main(int argc, char** argv) { return testkit::runInPrivateStore(argc, argv, run); }
