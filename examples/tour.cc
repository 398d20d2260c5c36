// A tour: a small host program loads the plugin, stores a value of every kind through the methods
// of NSUserDefaultsZEL, reads them back, and uses the store as a whole: defaults of the program's
// own, a suite, domains on disk and in memory, and a mistake that Foundation rejects. Then a second
// process reads the same values, and Foundation's own `defaults` tool shows what is on disk. All of
// it happens in a user-defaults store that is removed at the end.
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

#include "host/family/runtime.h"
#include "host/host.h"
#include "host/loading/plugin_library.h"
#include "host/pool.h"
#include "host/store/private_store.h"
#include "native/objc.h"
#include "plugin/version.h"

namespace {

using host::Host;
using host::ObjectRef;
using host::Outcome;
using host::Value;

using namespace std::string_literals;

// What the tour stores: in the host's language, defaults.<getter>(key) = value, or, for lists,
// defaults.<setter>(key, value).
struct Entry {
  const char* getter;
  const char* setter;  // null: assigned through the getter
  const char* key;
  Value value;
};

std::vector<Entry> entries(Host& host) {
  const ObjectRef recent = host.array(Host::kStringElements, {"letter.txt"s, "世界.txt"s});
  const ObjectRef mixed = host.array(
      Host::kObjectElements, {std::int32_t{1}, "two"s, 3.5, host.date({2024, 2, 29, 23, 59, 58})});
  const ObjectRef window = host.dictionary(
      {{"title"s, "Untitled"s}, {"frame"s, host.dictionary({{"width"s, std::int32_t{640}}})}});
  return {
      {"integerForKey", nullptr, "launchCount", std::int32_t{42}},
      {"floatForKey", nullptr, "zoom", 1.25F},
      {"doubleForKey", nullptr, "precision", 0.1},
      {"boolForKey", nullptr, "showToolbar", std::int8_t{1}},
      {"stringForKey", nullptr, "greeting", "Grüße, 世界"s},
      {"URLForKey", nullptr, "homepage", "https://example.com/caf%C3%A9?lang=de"s},
      {"dataForKey", nullptr, "icon", host.memoryBlock("\x89PNG")},
      {"fileForKey", nullptr, "folder", host.folderItem("/tmp")},
      {"variantForKey", nullptr, "lastOpened", host.date({2024, 2, 29, 23, 59, 58})},
      {"variantForKey", nullptr, "bytesRead", host.variant(std::int64_t{1} << 40)},
      {"dictionaryForKey", nullptr, "window", window},
      {"stringArrayForKey", "setStringArrayValue", "recent", recent},
      {"arrayForKey", "setArrayValue", "mixed", mixed},
  };
}

void show(const std::string& what, const std::string& value) {
  std::cout << "  " << std::left << std::setw(37) << what << "  " << value << '\n';
}

// name("a", "b"), as a program has it.
std::string called(const std::string& name, const std::vector<Value>& arguments, const Host& host) {
  std::string text = name + "(";
  for (const Value& argument : arguments)
    text += (text.back() == '(' ? "" : ", ") + host.describe(argument);
  return text + ")";
}

// The value that a call gave. A host exception ends the tour.
Value valueOf(const Outcome& outcome) {
  if (outcome.raised) {
    throw std::runtime_error(outcome.raised->className + ": " +
                             outcome.raised->message.value_or("no message"));
  }
  return outcome.value;
}

// Calls a method and shows the call and what it gave.
void showCall(Host& host, const ObjectRef& defaults, const std::string& method,
              const std::vector<Value>& arguments) {
  const Value value = valueOf(host.call(defaults, method, arguments));
  show(called(method, arguments, host), value == Value() ? "done" : host.describe(value));
}

void readEverything(Host& host, const ObjectRef& defaults) {
  for (const Entry& entry : entries(host))
    showCall(host, defaults, entry.getter, {std::string(entry.key)});
}

void storeEverything(Host& host, const ObjectRef& defaults) {
  for (const Entry& entry : entries(host)) {
    const std::string key = entry.key;
    valueOf(entry.setter == nullptr ? host.assign(defaults, entry.getter, {key}, entry.value)
                                    : host.call(defaults, entry.setter, {key, entry.value}));
    show(called(entry.setter == nullptr ? entry.getter : entry.setter, {key}, host),
         host.describe(entry.value));
  }
  if (valueOf(host.call(defaults, "synchronize")) == Value(std::int8_t{0}))
    throw std::runtime_error("the store can't be written to disk");
}

void useTheWholeStore(Host& host, const ObjectRef& defaults) {
  const auto call = [&](const char* method, const std::vector<Value>& arguments) {
    showCall(host, defaults, method, arguments);
  };
  std::cout << "\nA default of the program's own, for a key that nobody has set:\n";
  call("registerDefaults", {host.dictionary({{"tabWidth"s, std::int32_t{4}}})});
  call("integerForKey", {"tabWidth"s});
  std::cout << "\nA domain on disk, read as a whole, and through the search list as a suite:\n";
  call("setPersistentDomain", {host.dictionary({{"accent"s, "blue"s}}), "TourSuite"s});
  call("persistentDomainForName", {"TourSuite"s});
  call("stringForKey", {"accent"s});
  call("addSuiteNamed", {"TourSuite"s});
  call("stringForKey", {"accent"s});
  std::cout << "\nA domain in memory:\n";
  call("setVolatileDomain", {host.dictionary({{"draft"s, std::int8_t{1}}}), "TourSession"s});
  call("volatileDomainForName", {"TourSession"s});
}

// What Foundation rejects arrives as a host exception, and the program goes on.
void makeAMistake(Host& host, const ObjectRef& defaults) {
  const std::vector<Value> again = {host.dictionary(), "TourSession"s};
  const Outcome outcome = host.call(defaults, "setVolatileDomain", again);
  if (!outcome.raised) throw std::runtime_error("Foundation accepted the same domain twice");
  std::cout << "\nThe same domain again is a mistake, and the program gets a host exception:\n";
  show(called("setVolatileDomain", again, host),
       outcome.raised->className + ": " + outcome.raised->message.value_or("no message"));
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
  const host::PluginLibrary library(plugin);
  Host host;
  host::Family family(host, host::addToRuntime());
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
  useTheWholeStore(host, defaults);
  makeAMistake(host, defaults);
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
  const host::Pool pool;
  try {
    tour(argv[0], arguments[1], readOnly);
  } catch (const std::exception& problem) {
    std::cerr << "tour: " << problem.what() << '\n';
    return 1;
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) { return host::runInPrivateStore(argc, argv, run); }
