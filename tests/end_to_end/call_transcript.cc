// Writes down what a plugin makes of calls that are made up from a seed, line by line: the call and
// its result, the exception that it raised, what the host was asked for, and, between them, what
// was logged. In a private store.
//
//   call_transcript PLUGIN SEED CALLS HOST-VERSION
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

#include "host/family/family.h"
#include "host/family/runtime.h"
#include "host/loading/plugin_library.h"
#include "host/pool.h"
#include "host/store/private_store.h"
#include "tests/end_to_end/call_generator.h"

namespace {

using host::Host;
using host::ObjectRef;
using host::Outcome;
using host::Value;
using tests::CallGenerator;
using tests::GeneratedCall;
using Kind = GeneratedCall::Kind;

constexpr const char* kClass = "NSUserDefaultsZEL";
constexpr int kCallsPerPool = 50;

Outcome make(Host& host, const ObjectRef& object, const GeneratedCall& call) {
  if (call.kind == Kind::kShared) return host.callShared(kClass, call.method, call.arguments);
  if (call.kind == Kind::kMethod) return host.call(object, call.method, call.arguments);
  std::vector<Value> arguments = call.arguments;
  const Value value = arguments.back();
  arguments.pop_back();
  return host.assign(object, call.method, arguments, value);
}

void write(const std::string& line) { std::printf("%s\n", line.c_str()); }

std::string describeCall(const Host& host, const GeneratedCall& call) {
  std::string line = call.kind == Kind::kAssignment ? "assign " + call.method : call.method;
  const char* separator = "(";
  for (const Value& argument : call.arguments) {
    line += separator + host.describe(argument);
    separator = ", ";
  }
  return line + (call.arguments.empty() ? "()" : ")");
}

void writeOutcome(const Host& host, const Outcome& outcome) {
  write("  = " + host.describe(outcome.value));
  if (outcome.raised) {
    write("  raised " + std::to_string(outcome.raisedCount) + " " + outcome.raised->className +
          ": " + outcome.raised->message.value_or("no message"));
  }
  std::string asked = "  asked";
  for (const std::string& name : host.sequence()) asked += " " + name;
  write(asked);
}

// The standard object, a private one, or one that wraps nothing.
std::vector<ObjectRef> objectsOf(Host& host) {
  const Value standard = host.callShared(kClass, "standardUserDefaults").value;
  return {std::get<ObjectRef>(standard), host.construct(kClass), host.make(kClass)};
}

void run(Host& host, unsigned seed, int calls) {
  CallGenerator generator(host, kClass, seed);
  const std::vector<ObjectRef> objects = objectsOf(host);
  for (int done = 0; done < calls;) {
    const host::Pool pool;
    for (int i = 0; i < kCallsPerPool && done < calls; ++i, ++done) {
      const GeneratedCall call = generator.next();
      const ObjectRef& object = objects[generator.below(objects.size())];
      write(describeCall(host, call));
      host.clearRecords();
      writeOutcome(host, make(host, object, call));
    }
  }
}

int writeTranscript(int argc, char** argv) {
  if (argc != 5) return 2;
  std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
  dup2(STDOUT_FILENO, STDERR_FILENO);
  const host::Pool pool;
  const host::PluginLibrary library(argv[1]);
  Host host({.version = std::strtod(argv[4], nullptr), .border = library.border()});
  host.onFailure([](const std::string& failure) { write("FAILURE " + failure); });
  host.load(library.main());
  host::Family family(host, host::addToRuntime());
  family.provideInstances(
      zel::CFDictionaryCreateMutable(zel::kDefaultAllocator, 0, nullptr, nullptr));
  family.providePreparation();
  family.provideExceptions();
  run(host, static_cast<unsigned>(std::atoi(argv[2])), std::atoi(argv[3]));
  write("left over: " + host.unbalanced());
  return 0;
}

}  // namespace

int main(int argc, char** argv) { return host::runInPrivateStore(argc, argv, writeTranscript); }
