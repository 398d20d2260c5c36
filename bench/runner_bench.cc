// What running a program costs beside what it calls: turns of an empty loop, and calls of methods
// that do next to nothing, all of them in the runner's language.
#include <benchmark/benchmark.h>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>

#include "host/host.h"
#include "runner/command/session.h"
#include "runner/text/source.h"

namespace {

using host::Host;

constexpr int kTurns = 100'000;
constexpr char kClass[] = "SampleZEL";

// --- the methods of the sample class

std::int32_t number(zel::REALobject /*instance*/) { return 7; }
zel::REALboolean isEmpty(zel::REALobject /*instance*/, zel::REALstring text) {
  return text == nullptr ? 1 : 0;
}

template <class Function>
host::PluginFunction asPluginFunction(Function* function) {
  return reinterpret_cast<host::PluginFunction>(function);
}

// Runs a loop with this in it once for every iteration of the benchmark.
void runLoop(benchmark::State& state, const std::string& body) {
  Host host({.keepSequence = false});
  host.addClass(kClass, "");
  host.addMethod(kClass, "number as integer", asPluginFunction(number));
  host.addMethod(kClass, "isEmpty(text as string) as boolean", asPluginFunction(isEmpty));
  const runner::Source program("loop",
                               "Dim s As New SampleZEL\nDim n As Integer\nDim b As Boolean\n"
                               "For i As Integer = 1 To " +
                                   std::to_string(kTurns) + "\n" + body + "\nNext\n");
  std::ostringstream out;
  std::istringstream in;
  while (state.KeepRunning()) {
    runner::Session session(host, out, in);
    const runner::Ending ending = session.run(program);
    if (ending.diagnostics.empty() && !ending.unhandled) continue;
    std::fprintf(stderr, "the loop doesn't run:\n%s", format(ending.diagnostics).c_str());
    std::exit(1);
  }
  state.SetItemsProcessed(state.iterations() * kTurns);
}

void emptyTurn(benchmark::State& state) { runLoop(state, ""); }
void callWithoutArgument(benchmark::State& state) { runLoop(state, "n = s.number"); }
void callWithText(benchmark::State& state) { runLoop(state, "b = s.isEmpty(\"text\")"); }

BENCHMARK(emptyTurn);
BENCHMARK(callWithoutArgument);
BENCHMARK(callWithText);

}  // namespace

BENCHMARK_MAIN();
