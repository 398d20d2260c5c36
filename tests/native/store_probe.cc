// Does to the store, in a process of its own, what its tests ask for. The values are ten texts that
// always change together: a generation. A store that has parts of two is torn.
//
//   store_probe COMMAND [ARGUMENT ...]
//     read                 prints the generation that a new process sees, "none" or "torn"
//     write N              sets a generation and synchronises; prints yes or no
//     fail KIND [on]       see failEverywhere
//     names                prints the system calls of a synchronize that writes
//     kill CALL N          sets a generation and ends at that system call of synchronize
//     forever N            sets and synchronises one generation after another, from the Nth on, and
//                          prints each that was acknowledged
//     many PREFIX COUNT    sets and synchronises so many keys, one after the other
//     count PREFIX         prints how many such keys there are
//     threads COUNT        several threads use the shared object and objects of their own
//     objects DOMAIN       two objects set a value each in that domain, which one of them searches,
//                          before either of them writes
//     fork, daemon         see forkAndGoOn and forkAndLeave
//     return, exit, thread, drop, leave
//                          sets a generation, without synchronize, and then: returns from main;
//                          calls exit; calls exit in another thread; lets go of the object and
//                          calls _exit; calls _exit
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <map>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "host/pool.h"
#include "host/store/private_store.h"
#include "native/corefoundation.h"
#include "native/geometry.h"

namespace {

using zel::BOOL;
using zel::id;
using zel::NSUInteger;
using zel::send;
using Arguments = std::vector<std::string>;

constexpr int kKeys = 10;

zel::CFStringRef string(const std::string& text) {
  return zel::autoreleased(zel::CFStringCreateWithCString(zel::kDefaultAllocator, text.c_str(),
                                                          zel::kCFStringEncodingUTF8));
}

std::string text(id native) {
  const auto* const string = reinterpret_cast<zel::CFStringRef>(native);
  std::string buffer(1000, '\0');
  const bool done = string != nullptr && zel::CFStringGetCString(string, buffer.data(), 1000,
                                                                 zel::kCFStringEncodingUTF8) != 0;
  return done ? buffer.c_str() : "none";
}

zel::Class* userDefaults() { return zel::classNamed<"NSUserDefaults">(); }
id standard() { return send<id, "standardUserDefaults">(userDefaults()); }
id newObject() { return send<id, "init">(send<id, "alloc">(userDefaults())); }
bool synchronize(id defaults) { return send<BOOL, "synchronize">(defaults) != 0; }
const char* yesOrNo(bool answer) { return answer ? "yes" : "no"; }

void set(id defaults, const std::string& key, const std::string& value) {
  send<void, "setObject:forKey:">(defaults, string(value), string(key));
}

void setGeneration(id defaults, const std::string& generation) {
  for (int i = 0; i < kKeys; ++i) set(defaults, "key" + std::to_string(i), generation);
}

/// Of anything that has objects for keys.
std::string generationIn(id values) {
  const host::Pool pool;
  const auto value = [&](int i) {
    return text(send<id, "objectForKey:">(values, string("key" + std::to_string(i))));
  };
  const std::string first = value(0);
  for (int i = 1; i < kKeys; ++i) {
    if (value(i) != first) return "torn";
  }
  return first;
}

std::string generationOnDisk() {
  const host::Pool pool;
  const auto name = std::filesystem::path(program_invocation_name).filename();
  id data = send<id, "dataWithContentsOfFile:">(zel::classNamed<"NSData">(),
                                                string(host::storedDomain(name.native()).native()));
  if (data == nullptr) return "none";
  return generationIn(send<id, "propertyListWithData:options:format:error:">(
      zel::classNamed<"NSPropertyListSerialization">(), data, NSUInteger{0},
      static_cast<NSUInteger*>(nullptr), static_cast<id*>(nullptr)));
}

void read(const Arguments&) { std::puts(generationIn(standard()).c_str()); }

void write(const Arguments& arguments) {
  setGeneration(standard(), arguments.at(0));
  std::puts(yesOrNo(synchronize(standard())));
}

/// The preloaded faults.
template <class Function>
Function* faults(const char* name) {
  auto* const found = reinterpret_cast<Function*>(dlsym(RTLD_DEFAULT, name));
  if (found == nullptr) std::abort();
  return found;
}

int kindNamed(const std::string& name) {
  static const std::map<std::string, int> kinds = {
      {"ENOSPC", ENOSPC}, {"EIO", EIO},       {"EACCES", EACCES}, {"EROFS", EROFS},
      {"EINTR", EINTR},   {"ENOLCK", ENOLCK}, {"short", -1},      {"kill", -2}};
  return kinds.at(name);
}

/// Synchronises with a fault. @return whether it was reached, and the answer.
std::pair<bool, bool> synchronizeWith(const std::string& kind, int call, bool goes_on) {
  faults<void(int, int, bool)>("zelFaultsBegin")(kindNamed(kind), call, goes_on);
  const bool answer = synchronize(standard());
  return {faults<int()>("zelFaultsEnd")() >= call, answer};
}

/// Lets the first system call of a synchronize fail, then the second of another one, and so on
/// until there are no more. For each a line: its number, the answer, the generation on disk, the
/// one in memory, and, without the fault, the answer of another synchronize and the generation on
/// disk. The last line has the longest time that one took, in milliseconds.
void failEverywhere(const Arguments& arguments) {
  using Clock = std::chrono::steady_clock;
  const bool goes_on = arguments.size() > 1;
  Clock::duration longest{};
  bool was_reached = true;
  for (int call = 1; was_reached; ++call) {
    const host::Pool pool;
    setGeneration(standard(), std::to_string(call));
    const auto begin = Clock::now();
    const auto [reached, answer] = synchronizeWith(arguments.at(0), call, goes_on);
    longest = std::max(longest, Clock::now() - begin);
    was_reached = reached;
    const std::string on_disk = generationOnDisk();
    const std::string held = generationIn(standard());
    const bool again = synchronize(standard());
    std::printf("%d %s %s %s %s %s\n", call, yesOrNo(answer), on_disk.c_str(), held.c_str(),
                yesOrNo(again), generationOnDisk().c_str());
  }
  std::printf("%d\n", static_cast<int>(
                          std::chrono::duration_cast<std::chrono::milliseconds>(longest).count()));
}

void killAt(const Arguments& arguments) {
  setGeneration(standard(), arguments.at(1));
  synchronizeWith("kill", std::stoi(arguments.at(0)), false);
  std::puts("not reached");
}

void nameCalls(const Arguments&) {
  setGeneration(standard(), "1");
  synchronizeWith("EIO", 10000, false);
  std::puts(faults<const char*()>("zelFaultsNames")());
}

void writeForever(const Arguments& arguments) {
  for (int generation = std::stoi(arguments.at(0));; ++generation) {
    const host::Pool pool;
    setGeneration(standard(), std::to_string(generation));
    if (!synchronize(standard())) std::abort();
    std::printf("%d\n", generation);
    std::fflush(stdout);
  }
}

void setMany(const Arguments& arguments) {
  for (int i = 0; i < std::stoi(arguments.at(1)); ++i) {
    const host::Pool pool;
    set(standard(), arguments.at(0) + std::to_string(i), "set");
    if (!synchronize(standard())) std::puts("not synchronised");
  }
}

void countKeys(const Arguments& arguments) {
  id keys = send<id, "allKeys">(send<id, "dictionaryRepresentation">(standard()));
  int count = 0;
  for (NSUInteger i = 0; i < send<NSUInteger, "count">(keys); ++i) {
    const std::string key = text(send<id, "objectAtIndex:">(keys, i));
    if (key.starts_with(arguments.at(0))) ++count;
  }
  std::printf("%d\n", count);
}

void useFromThread(const std::string& name, int count) {
  const BOOL stranger = faults<BOOL()>("GSRegisterCurrentThread")();
  for (int i = 0; i < count; ++i) {
    const host::Pool pool;
    id defaults = i % 2 == 0 ? zel::retained(standard()) : newObject();
    set(defaults, name + std::to_string(i), "set");
    send<id, "stringForKey:">(standard(), string("thread"));
    if (i % 3 == 0 && !synchronize(defaults)) std::puts("not synchronised");
    zel::release(defaults);
  }
  if (stranger != 0) faults<void()>("GSUnregisterCurrentThread")();
}

void useFromThreads(const Arguments& arguments) {
  constexpr int kThreads = 4;
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back(useFromThread, "thread" + std::to_string(i) + ".",
                         std::stoi(arguments.at(0)));
  }
  for (std::thread& thread : threads) thread.join();
  std::puts(yesOrNo(synchronize(standard())));
}

id domainWith(const char* key) {
  return send<id, "dictionaryWithObject:forKey:">(zel::classNamed<"NSDictionary">(), string("set"),
                                                  string(key));
}

void twoObjects(const Arguments& arguments) {
  const zel::CFStringRef suite = string(arguments.at(0));
  id other = newObject();
  send<void, "addSuiteNamed:">(standard(), suite);
  send<void, "setPersistentDomain:forName:">(standard(), domainWith("pair1"), suite);
  send<void, "setPersistentDomain:forName:">(other, domainWith("pair2"), suite);
  std::printf("%s ", yesOrNo(synchronize(other)));
  std::puts(yesOrNo(synchronize(standard())));
  zel::release(other);
}

void returnFromMain(const Arguments& arguments) { setGeneration(standard(), arguments.at(0)); }

[[noreturn]] void exitAtOnce(const Arguments& arguments) {
  setGeneration(standard(), arguments.at(0));
  std::exit(0);
}

void exitInThread(const Arguments& arguments) {
  setGeneration(standard(), arguments.at(0));
  std::thread([] { std::exit(0); }).join();
}

[[noreturn]] void dropAndLeave(const Arguments& arguments) {
  id defaults = newObject();
  setGeneration(defaults, arguments.at(0));
  zel::release(defaults);
  _exit(0);
}

[[noreturn]] void leave(const Arguments& arguments) {
  setGeneration(standard(), arguments.at(0));
  _exit(0);
}

/// The child has what the parent had set, and ends after the parent has written something else.
void forkAndGoOn(const Arguments& arguments) {
  setGeneration(standard(), "of both");
  std::array<int, 2> ends = {};
  if (pipe(ends.data()) != 0) std::abort();
  const pid_t child = fork();
  close(ends[child == 0 ? 1 : 0]);
  if (child == 0) {
    char byte = 0;
    std::exit(static_cast<int>(::read(ends[0], &byte, 1)));
  }
  setGeneration(standard(), arguments.at(0));
  std::puts(yesOrNo(synchronize(standard())));
  close(ends[1]);
  waitpid(child, nullptr, 0);
}

/// As a program becomes a daemon: it goes on as its child.
void forkAndLeave(const Arguments& arguments) {
  setGeneration(standard(), "of both");
  const pid_t child = fork();
  if (child != 0) {
    waitpid(child, nullptr, 0);
    _exit(0);
  }
  setGeneration(standard(), arguments.at(0));
}

int run(int argc, char** argv) {
  static const std::map<std::string, void (*)(const Arguments&)> commands = {
      {"read", read},
      {"write", write},
      {"fail", failEverywhere},
      {"kill", killAt},
      {"names", nameCalls},
      {"forever", writeForever},
      {"many", setMany},
      {"count", countKeys},
      {"threads", useFromThreads},
      {"objects", twoObjects},
      {"fork", forkAndGoOn},
      {"daemon", forkAndLeave},
      {"return", returnFromMain},
      {"exit", exitAtOnce},
      {"thread", exitInThread},
      {"drop", dropAndLeave},
      {"leave", leave}};
  const auto command = argc > 1 ? commands.find(argv[1]) : commands.end();
  if (command == commands.end()) return 2;
  const host::Pool pool;
  command->second({argv + 2, argv + argc});
  return 0;
}

}  // namespace

int main(int argc, char** argv) { return host::runInPrivateStore(argc, argv, run); }
