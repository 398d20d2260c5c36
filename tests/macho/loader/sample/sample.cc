#include "tests/macho/loader/sample/sample.h"

namespace sample {
namespace {

using Resolver = void* (*)(const char* name);
constinit Resolver resolver = nullptr;

template <class Function>
Function given(const char* name) {
  return reinterpret_cast<Function>(resolver(name));
}

bool runNamed(const Case* cases, const char* name) {
  for (; cases->name != nullptr; ++cases) {
    if (std::strcmp(cases->name, name) != 0) continue;
    cases->run();
    return true;
  }
  return false;
}

}  // namespace

void report(const char* line) { given<void (*)(const char*)>("report")(line); }

void reportNumber(const char* format, long long number) {
  char line[100];
  std::snprintf(line, sizeof line, format, number);
  report(line);
}

void callThroughTest(Callback callback, void* context) {
  given<void (*)(Callback, void*)>("call")(callback, context);
}

}  // namespace sample

extern "C" void REALPluginMain(sample::Resolver given) {
  sample::resolver = given;
  const char* const name = sample::given<const char* (*)()>("case")();
  const sample::Case* const units[] = {sample::kConstantsCases, sample::kExceptionCases,
                                       sample::kMemoryCases, sample::kMessageCases,
                                       sample::kMethodCases};
  for (const sample::Case* const cases : units) {
    if (sample::runNamed(cases, name)) return;
  }
  sample::report("there is no such case");
}
