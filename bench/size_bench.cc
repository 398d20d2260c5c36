// How the cost of a large value grows with its size: a dictionary and two lists go into the store
// and out again through the plugin, at sizes from a thousand entries to a million. The host is the
// tests' reference host, whose accounts are part of what is measured.
#include <benchmark/benchmark.h>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <variant>
#include <vector>

#include "host/family/runtime.h"
#include "host/host.h"
#include "host/loading/plugin_library.h"
#include "host/pool.h"
#include "host/store/private_store.h"
#include "native/objc.h"

namespace {

using host::Host;
using host::ObjectRef;
using host::Value;
using Values = std::vector<Value>;
using namespace std::string_literals;

constexpr std::int64_t kSmallest = 1'000;
constexpr std::int64_t kLargest = 1'000'000;

// Stands as long as the benchmarks run.
Host* host = nullptr;
ObjectRef defaults;

Value call(const char* method, const Values& arguments) {
  const host::Outcome outcome = host->call(defaults, method, arguments);
  if (!outcome.raised) return outcome.value;
  std::fprintf(stderr, "%s raised %s: %s\n", method, outcome.raised->className.c_str(),
               outcome.raised->message.value_or("").c_str());
  std::exit(1);
}

ObjectRef dictionaryOf(std::int64_t size) {
  host::Entries entries;
  for (std::int64_t i = 0; i < size; ++i)
    entries.emplace_back("key " + std::to_string(i), static_cast<std::int32_t>(i));
  return host->dictionary(entries);
}

ObjectRef listOf(std::int32_t elementType, std::int64_t size) {
  Values elements;
  for (std::int64_t i = 0; i < size; ++i) elements.emplace_back("text " + std::to_string(i));
  return host->array(elementType, elements);
}

template <class ThereAndBack>
void measure(benchmark::State& state, const Value& value, ThereAndBack thereAndBack) {
  for (auto _ : state) {
    const host::Pool pool;
    thereAndBack(value);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.SetComplexityN(state.range(0));
}

// A domain in memory: a value of the standard defaults would be written to disk as well.
void dictionary(benchmark::State& state) {
  measure(state, dictionaryOf(state.range(0)), [](const Value& value) {
    call("setVolatileDomain", {value, "large"s});
    call("volatileDomainForName", {"large"s});
    call("removeVolatileDomainForName", {"large"s});
  });
}

void listOfVariants(benchmark::State& state) {
  const ObjectRef list = listOf(Host::kObjectElements, state.range(0));
  measure(state, host->dictionary({{"list"s, list}}), [](const Value& value) {
    call("setVolatileDomain", {value, "large"s});
    call("volatileDomainForName", {"large"s});
    call("removeVolatileDomainForName", {"large"s});
  });
}

void listOfStrings(benchmark::State& state) {
  measure(state, listOf(Host::kStringElements, state.range(0)), [](const Value& value) {
    call("setStringArrayValue", {"large"s, value});
    call("stringArrayForKey", {"large"s});
    call("removeObjectForKey", {"large"s});
  });
}

void sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->RangeMultiplier(10)->Range(kSmallest, kLargest)->Complexity(benchmark::oN);
  benchmark->Unit(benchmark::kMillisecond);
}

BENCHMARK(dictionary)->Apply(sizes);
BENCHMARK(listOfVariants)->Apply(sizes);
BENCHMARK(listOfStrings)->Apply(sizes);

int run(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: %s PLUGIN [BENCHMARK OPTION ...]\n", argv[0]);
    return 2;
  }
  const host::PluginLibrary library(argv[1]);
  Host theHost({.keepSequence = false});
  host = &theHost;
  host::Family family(theHost, host::addToRuntime());
  family.provideExceptions();
  theHost.load(library.main());
  defaults =
      std::get<ObjectRef>(host->callShared("NSUserDefaultsZEL", "standardUserDefaults").value);
  argv[1] = argv[0];
  int remaining = argc - 1;
  benchmark::Initialize(&remaining, argv + 1);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  defaults.reset();
  return 0;
}

}  // namespace

int main(int argc, char** argv) { return host::runInPrivateStore(argc, argv, run); }
