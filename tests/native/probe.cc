// Says what a process of its own sees in the user defaults, or changes something there. It runs in
// the private store of the program that starts it, or else in a new one.
//
//   probe [-argument value ...] COMMAND KEY [VALUE]
//     string KEY      the standard object's text
//     type KEY        the type code of the standard object's number
//     url KEY         the absolute text of the standard object's URL
//     private KEY     a private object's text
//     set KEY VALUE   through the standard object, and synchronised
//     keep KEY VALUE  through the standard object, and not synchronised
//     both KEY VALUE  the key through the standard object and the key with a 2 behind it through a
//                     private one that is made then; synchronised in the opposite order
//     crash           ends by a signal
//     store           the folder that the domains are in
#include <csignal>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>

#include "host/pool.h"
#include "host/store/private_store.h"
#include "native/corefoundation.h"
#include "native/numbers.h"

namespace {

using zel::id;
using zel::send;

zel::CFStringRef string(const char* text) {
  return zel::autoreleased(
      zel::CFStringCreateWithCString(zel::kDefaultAllocator, text, zel::kCFStringEncodingUTF8));
}

void print(id text) {
  const auto* const native = reinterpret_cast<zel::CFStringRef>(text);
  std::string buffer(1000, '\0');
  const bool done = native != nullptr && zel::CFStringGetCString(native, buffer.data(), 1000,
                                                                 zel::kCFStringEncodingUTF8) != 0;
  std::fputs(done ? buffer.c_str() : "(null)", stdout);
}

id standard() { return send<id, "standardUserDefaults">(zel::classNamed<"NSUserDefaults">()); }

void printString(const char* key, const char*) {
  print(send<id, "stringForKey:">(standard(), string(key)));
}

void printType(const char* key, const char*) {
  id value = send<id, "objectForKey:">(standard(), string(key));
  const bool isNumber = zel::isKindOf<"NSNumber">(value);
  std::fputs(isNumber ? zel::zelNumberType(value) : "(no number)", stdout);
}

void printUrl(const char* key, const char*) {
  print(send<id, "absoluteString">(send<id, "URLForKey:">(standard(), string(key))));
}

id newPrivate() { return send<id, "init">(send<id, "alloc">(zel::classNamed<"NSUserDefaults">())); }

void printPrivate(const char* key, const char*) {
  id defaults = newPrivate();
  print(send<id, "stringForKey:">(defaults, string(key)));
  zel::release(defaults);
}

void keep(const char* key, const char* value) {
  send<void, "setObject:forKey:">(standard(), string(value), string(key));
}

void set(const char* key, const char* value) {
  keep(key, value);
  if (send<zel::BOOL, "synchronize">(standard()) == 0) std::fputs("not synchronised", stdout);
}

void both(const char* key, const char* value) {
  keep(key, value);
  id defaults = newPrivate();
  const std::string second = std::string(key) + "2";
  send<void, "setObject:forKey:">(defaults, string(value), string(second.c_str()));
  send<zel::BOOL, "synchronize">(defaults);
  send<zel::BOOL, "synchronize">(standard());
  zel::release(defaults);
}

void crash(const char*, const char*) { std::raise(SIGKILL); }

void printStore(const char*, const char*) {
  std::fputs(host::storedDomain("any").parent_path().c_str(), stdout);
}

int run(int argc, char** argv) {
  static const std::map<std::string, void (*)(const char*, const char*)> commands = {
      {"string", printString},   {"type", printType}, {"url", printUrl},
      {"private", printPrivate}, {"set", set},        {"keep", keep},
      {"crash", crash},          {"both", both},      {"store", printStore}};
  int next = 1;
  while (next < argc && argv[next][0] == '-') next += 2;  // the argument domain's
  const auto command = next < argc ? commands.find(argv[next]) : commands.end();
  if (command == commands.end()) return 2;
  const host::Pool pool;
  command->second(next + 1 < argc ? argv[next + 1] : "", next + 2 < argc ? argv[next + 2] : "");
  return 0;
}

}  // namespace

int main(int argc, char** argv) { return host::runInPrivateStore(argc, argv, run); }
