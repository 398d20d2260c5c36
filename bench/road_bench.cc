// What a call through the plugin costs beside the same work written directly in Objective-C. It
// prints lines of cells that are divided by tabs, one for each thing measured; tools/bench makes
// tables and pictures of them.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <malloc.h>
#include <string>
#include <string_view>
#include <vector>

#include "bench/counting.h"
#include "bench/direct.h"
#include "bench/plugin_side.h"
#include "bench/roads.h"
#include "host/store/private_store.h"

namespace {

using bench::Bound;
using bench::Road;
using Arguments = std::vector<std::string>;
using Body = void (*)();

// The exit status where nothing was counted: without valgrind that is no failure, with it it is.
int notCounted() {
  constexpr int kSkipped = 77;
  return bench::hasValgrind() ? EXIT_FAILURE : kSkipped;
}

constexpr struct {
  const char* name;
  Body Road::*body;
} kSides[] = {{"direct", &Road::direct}, {"plugin", &Road::plugin}};

// --- a number of calls, in a pool of their own

// Runs one more body before the pool drains.
void call(
    Body body, int times, const std::function<void()>& beforeDraining = [] {}) {
  void* const pool = directOpenPool();
  const std::size_t mark = leanMark();
  for (int i = 0; i < times; ++i) body();
  beforeDraining();
  leanForgetSince(mark);
  directDrainPool(pool);
}

void prepare(const Road& road, std::int32_t entries) {
  void* const pool = directOpenPool();
  if (road.prepare != nullptr) road.prepare(entries);
  directDrainPool(pool);
}

void begin(const std::string& plugin) {
  bench::loadPlugin(plugin.c_str());
  bench::prepareStore();
}

bool isLarge(const Road& road) { return road.entries > 1; }

// A single call is small beside the pool around it, so there are several in one.
int callsOf(const Road& road) { return isLarge(road) ? 2 : 32; }

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// --- instructions

// Now and then a call finds the memory in a state that has to be tidied up, or Foundation does what
// it puts off. That belongs to neither side, and the median of several turns leaves it out.
constexpr int kCountedTurns = 5;

// Single values are counted in every round of tests. What goes through files takes longer, and is
// not the same on every machine.
bool isChecked(const Road& road) {
  return road.bound.kind == Bound::Kind::added && std::string_view(road.family) != "data and files";
}

bool isChosen(const Road& road, const std::string& choice) {
  return choice == "all" || choice == road.name || (choice == "checked" && isChecked(road));
}

std::string nameOf(const Road& road, const char* side) {
  return std::string(road.name) + " " + side;
}

// Under valgrind: PLUGIN CHOICE.
int countInside(const Arguments& arguments) {
  begin(arguments.at(0));
  for (const Road& road : bench::roads()) {
    if (!isChosen(road, arguments.at(1))) continue;
    prepare(road, road.entries);
    constexpr int kFirstCalls = 4;  // what is looked up once has been
    for (const auto& side : kSides) call(road.*side.body, kFirstCalls);
    for (int turn = 0; turn < kCountedTurns; ++turn) {
      for (const auto& side : kSides) {
        bench::counted(nameOf(road, side.name), [&] { call(road.*side.body, callsOf(road)); });
      }
    }
  }
  return 0;
}

bool holds(const Bound& bound, double direct, double plugin) {
  switch (bound.kind) {
    case Bound::Kind::added:
      return std::round(plugin - direct) <= bound.most;  // the pool's share isn't whole
    case Bound::Kind::ratio:
      return plugin <= bound.most * direct;
    default:
      return true;
  }
}

std::string format(const Bound& bound) {
  if (bound.kind == Bound::Kind::none) return "-";
  char text[32];
  const bool adds = bound.kind == Bound::Kind::added;
  std::snprintf(text, sizeof text, adds ? "%+.0f" : "%.2fx", bound.most);
  return text;
}

// Family, road, entries, instructions for each entry of a call directly and through the plugin, the
// bound, and whether that is held.
int count(const std::string& plugin, const std::string& choice) {
  const bench::Counts counts = bench::countUnderValgrind({"--count-inside", plugin, choice});
  if (counts.empty()) return notCounted();
  int missed = 0;
  for (const Road& road : bench::roads()) {
    if (!isChosen(road, choice)) continue;
    const double calls = static_cast<double>(callsOf(road)) * road.entries;
    const double direct = median(counts.at(nameOf(road, "direct"))) / calls;
    const double through = median(counts.at(nameOf(road, "plugin"))) / calls;
    const bool held = holds(road.bound, direct, through);
    if (!held) ++missed;
    std::printf("%s\t%s\t%d\t%.1f\t%.1f\t%s\t%s\n", road.family, road.name, road.entries, direct,
                through, format(road.bound).c_str(), held ? "held" : "missed");
  }
  return choice == "checked" && missed > 0 ? 1 : 0;
}

// --- start-up

// Under valgrind: PLUGIN SIDE. From nothing to the first value.
int startInside(const Arguments& arguments) {
  const auto first = [&] {
    if (arguments.at(1) == "plugin") {
      bench::loadPlugin(arguments.at(0).c_str());
      bench::standardDefaults();
    } else {
      directPrepare();
    }
    bench::readFirst(arguments.at(1) == "plugin");
  };
  void* const pool = directOpenPool();
  bench::counted("start", first);
  directDrainPool(pool);
  return 0;
}

// Instructions directly and through the plugin.
int start(const Arguments& arguments) {
  double results[2] = {};
  for (std::size_t i = 0; i < 2; ++i) {
    const bench::Counts counts =
        bench::countUnderValgrind({"--start-inside", arguments.at(0), kSides[i].name});
    if (counts.empty()) return notCounted();
    results[i] = median(counts.at("start"));
  }
  std::printf("%.0f\t%.0f\n", results[0], results[1]);
  return 0;
}

// --- time

double processorSeconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

// Family, road, entries, nanoseconds of processor time for each entry, directly and through the
// plugin: medians of turns that alternate, so that a machine whose speed drifts is fair to both.
void timeRoad(const Road& road, std::int32_t entries, int turns) {
  const int calls = isLarge(road) ? 1 : 256;
  std::vector<double> seconds[2];
  prepare(road, entries);
  for (int turn = 0; turn < turns; ++turn) {
    for (std::size_t i = 0; i < 2; ++i) {
      const double before = processorSeconds();
      call(road.*kSides[i].body, calls);
      seconds[i].push_back(processorSeconds() - before);
    }
  }
  const double scale = 1e9 / (static_cast<double>(calls) * entries);
  std::printf("%s\t%s\t%d\t%.1f\t%.1f\n", road.family, road.name, entries,
              median(seconds[0]) * scale, median(seconds[1]) * scale);
  std::fflush(stdout);
}

int time(const Arguments& arguments) {
  constexpr int kTurns = 15;
  begin(arguments.at(0));
  for (const Road& road : bench::roads()) timeRoad(road, road.entries, kTurns);
  return 0;
}

// The same for the large values, from a thousand entries on: PLUGIN MOST.
int grow(const Arguments& arguments) {
  constexpr std::int32_t kFewest = 1000;
  constexpr std::int32_t kManyEntries = 300'000;  // for so many, turns are long enough
  constexpr int kFewestTurns = 3;
  constexpr int kMostTurns = 31;
  const std::int32_t most = std::atoi(arguments.at(1).c_str());
  begin(arguments.at(0));
  for (const Road& road : bench::roads()) {
    if (std::string_view(road.family) != "large values" || road.entries != kFewest) continue;
    for (std::int32_t entries = kFewest; entries <= most; entries *= 10) {
      timeRoad(road, entries, std::clamp(kManyEntries / entries, kFewestTurns, kMostTurns));
    }
  }
  return 0;
}

// --- memory

double allocated() {
  const struct mallinfo2 info = mallinfo2();
  return static_cast<double>(info.uordblks) + static_cast<double>(info.hblkhd);
}

// Family, road, entries, and for each side the bytes for each entry that a call has taken before
// the pool drains, and afterwards.
void weighRoad(const Road& road) {
  const int calls = isLarge(road) ? 1 : 100;
  prepare(road, road.entries);
  std::printf("%s\t%s\t%d", road.family, road.name, road.entries);
  for (const auto& side : kSides) {
    constexpr int kFirstTurns = 3;
    for (int i = 0; i < kFirstTurns; ++i) call(road.*side.body, calls);
    const double before = allocated();
    double filled = 0;
    call(road.*side.body, calls, [&] { filled = allocated(); });
    const double scale = 1.0 / (static_cast<double>(calls) * road.entries);
    std::printf("\t%.1f\t%.1f", (filled - before) * scale, (allocated() - before) * scale);
  }
  std::printf("\n");
}

int weigh(const Arguments& arguments) {
  begin(arguments.at(0));
  for (const Road& road : bench::roads()) weighRoad(road);
  return 0;
}

// --- the command

constexpr struct {
  std::string_view name;
  std::size_t arguments;
  int (*run)(const Arguments&);
} kModes[] = {
    {"--count", 1, [](const Arguments& arguments) { return count(arguments[0], "all"); }},
    {"--check", 1, [](const Arguments& arguments) { return count(arguments[0], "checked"); }},
    {"--count-inside", 2, countInside},
    {"--start", 1, start},
    {"--start-inside", 2, startInside},
    {"--time", 1, time},
    {"--grow", 2, grow},
    {"--memory", 1, weigh},
};

int run(int argc, char** argv) {
  const Arguments words(argv + 1, argv + argc);
  for (const auto& mode : kModes) {
    if (words.size() != mode.arguments + 1 || words[0] != mode.name) continue;
    return mode.run(Arguments(words.begin() + 1, words.end()));
  }
  std::fprintf(stderr,
               "usage: %s --count|--check|--start|--time|--memory PLUGIN\n"
               "       %s --grow PLUGIN ENTRIES\n",
               argv[0], argv[0]);
  return 2;
}

}  // namespace

int main(int argc, char** argv) { return host::runInPrivateStore(argc, argv, run); }
