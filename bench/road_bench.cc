// What a call through the plugin costs: the whole road (host string in, message, host value out)
// beside the same work written directly in Objective-C. The host here is as lean as a host can be,
// so that what is measured is the plugin.
#include <array>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <string>
#include <string_view>

#include "bench/direct.h"
#include "host/store/private_store.h"
#include "native/corefoundation.h"
#include "plugin/handles.h"
#include "plugin/records.h"

struct zel::REALstringStruct {
  std::string bytes;
};

namespace {

using zel::REALclassDefinition;
using zel::REALobject;
using zel::REALstring;

// --- the lean host

const REALclassDefinition* registeredClass = nullptr;

void announceVersion(std::int32_t /*version*/) {}
double hostVersion() { return 2014.0; }

void registerClass(REALclassDefinition* definition) {
  definition->base.systemUse = zel::kInstanceDataOffset;
  registeredClass = definition;
}

// Lives as long as the process.
REALobject newInstance(const char* /*className*/) {
  return static_cast<REALobject>(std::calloc(1, 64));
}

zel::CFStringRef nativeString(REALstring string, unsigned char /*flag*/) {
  return zel::CFStringCreateWithCString(zel::kDefaultAllocator, string->bytes.c_str(),
                                        zel::kCFStringEncodingUTF8);
}

REALstring buildString(const char* bytes, std::int32_t length) {
  return new zel::REALstringStruct{std::string(bytes, static_cast<std::size_t>(length))};
}

void setEncoding(REALstring /*string*/, std::uint32_t /*encoding*/) {}

template <class Function>
void* entry(Function* function) {
  return reinterpret_cast<void*>(function);
}

void* resolve(const char* name) {
  static const struct {
    std::string_view name;
    void* function;
  } kEntryPoints[] = {
      {"RegisterPluginVersion", entry(announceVersion)}, {"REALGetRBVersion", entry(hostVersion)},
      {"PluginRegisterClass", entry(registerClass)},     {"PluginNewInstance", entry(newInstance)},
      {"REALGetStringCFString", entry(nativeString)},    {"REALBuildString", entry(buildString)},
      {"REALSetStringEncoding", entry(setEncoding)},
  };
  for (const auto& row : kEntryPoints) {
    if (row.name == name) return row.function;
  }
  return nullptr;
}

// --- the plugin

template <class Function>
Function* find(const void* list, std::int32_t count, std::string_view declaration) {
  const auto* const methods = static_cast<const zel::REALmethodDefinition*>(list);
  for (std::int32_t i = 0; i < count; ++i) {
    if (methods[i].declaration == declaration)
      return reinterpret_cast<Function*>(methods[i].function);
  }
  std::fprintf(stderr, "the plugin declares no %s\n", std::string(declaration).c_str());
  std::exit(1);
}

template <class Function>
Function* method(std::string_view declaration) {
  return find<Function>(registeredClass->base.methods, registeredClass->base.methodCount,
                        declaration);
}

void load(const char* path) {
  void* const library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    std::fprintf(stderr, "the plugin can't be loaded: %s\n", dlerror());
    std::exit(1);
  }
  using Main = void (*)(void* (*)(const char*));
  reinterpret_cast<Main>(dlsym(library, "REALPluginMain"))(resolve);
}

REALobject standardDefaults() {
  const auto* const shared = registeredClass;
  static const REALobject object =
      find<REALobject()>(shared->base.sharedMethods, shared->base.sharedMethodCount,
                         "standardUserDefaults as NSUserDefaultsZEL")();
  return object;
}

// --- the roads

const char* const kNumberKey = "launchCount";
const char* const kTextKey = "lastDocument";
zel::REALstringStruct numberKey{kNumberKey};
zel::REALstringStruct textKey{kTextKey};
zel::REALstringStruct textValue{"Grüße aus der Datei, die zuletzt offen war.txt"};

// The pool is drained every so many calls, as a host does between two events.
constexpr int kCallsPerPool = 256;

template <class Call>
void measure(benchmark::State& state, Call call) {
  for (auto _ : state) {
    void* const pool = directOpenPool();
    for (int i = 0; i < kCallsPerPool; ++i) call();
    directDrainPool(pool);
  }
  state.SetItemsProcessed(state.iterations() * kCallsPerPool);
}

void readIntegerDirectly(benchmark::State& state) {
  measure(state, [] { benchmark::DoNotOptimize(directIntegerForKey(kNumberKey)); });
}

void readInteger(benchmark::State& state) {
  const REALobject object = standardDefaults();
  auto* const getter =
      method<std::int32_t(REALobject, REALstring)>("integerForKey(key as string) as integer");
  measure(state, [=] { benchmark::DoNotOptimize(getter(object, &numberKey)); });
}

void readTextDirectly(benchmark::State& state) {
  measure(state, [] {
    std::array<char, 601> buffer{};
    const std::int32_t length = directStringForKey(kTextKey, buffer.data(), 600);
    const REALstring text = buildString(buffer.data(), length);
    benchmark::DoNotOptimize(text);
    delete text;
  });
}

void readText(benchmark::State& state) {
  const REALobject object = standardDefaults();
  auto* const getter =
      method<REALstring(REALobject, REALstring)>("stringForKey(key as string) as string");
  measure(state, [=] {
    const REALstring text = getter(object, &textKey);
    benchmark::DoNotOptimize(text);
    delete text;
  });
}

void prepareStore() {
  void* const pool = directOpenPool();
  const REALobject object = standardDefaults();
  method<void(REALobject, REALstring, std::int32_t)>(
      "setIntegerValue(key as string, value as integer)")(object, &numberKey, 42);
  method<void(REALobject, REALstring, REALstring)>(
      "setStringValue(key as string, value as string)")(object, &textKey, &textValue);
  directDrainPool(pool);
}

BENCHMARK(readIntegerDirectly);
BENCHMARK(readInteger);
BENCHMARK(readTextDirectly);
BENCHMARK(readText);

int run(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: %s PLUGIN [BENCHMARK OPTION ...]\n", argv[0]);
    return 2;
  }
  load(argv[1]);
  prepareStore();
  argv[1] = argv[0];
  int remaining = argc - 1;
  benchmark::Initialize(&remaining, argv + 1);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}

}  // namespace

int main(int argc, char** argv) { return host::runInPrivateStore(argc, argv, run); }
