// What the loader has made of the image, and what the C library does.
#include "tests/macho/loader/sample/sample.h"

namespace sample {
namespace {

// Run at load time, because the compiler can't see through it.
constinit int initialisers = 0;
struct Initialiser {
  Initialiser() {
    asm volatile("" : "+m"(initialisers));
    ++initialisers;
  }
};
const Initialiser first;
const Initialiser second;

int one() { return 1; }
int two() { return 2; }
// Pointers into the image: they have to be adjusted.
constinit int (*table[])() = {one, two};

constinit volatile int zeros[5000] = {};
constinit int counter = 40;

void reportInitialisers() { reportNumber("%lld initialisers", initialisers); }

void reportTable() {
  for (int (*const entry)() : table) reportNumber("entry %lld", entry());
}

void reportVariables() {
  long long sum = 0;
  for (const volatile int& zero : zeros) sum += zero;
  reportNumber("zeros %lld", sum);
  reportNumber("counter %lld", ++counter);
}

// The compiler takes the stack to be aligned to 16 bytes at every call, and would fold the answer.
void reportAlignment() {
  alignas(16) char local[16];
  char* address = local;
  asm volatile("" : "+r"(address));
  reportNumber("%lld bytes off", reinterpret_cast<std::uintptr_t>(address) % 16);
}

void callLibrary() {
  char line[60];
  std::snprintf(line, sizeof line, "%lld %.3f %s", 5000000000LL, 1.25, "text");
  report(line);
  char* const block = static_cast<char*>(std::calloc(8, 4));
  reportNumber("calloc %lld", block[31]);
  std::memset(block, 'x', 31);
  reportNumber("strlen %lld", static_cast<long long>(std::strlen(block)));
  std::memcpy(block, "copied", 7);
  report(block);
  std::free(block);
}

}  // namespace

const Case kMemoryCases[] = {
    {"initialisers", reportInitialisers}, {"table", reportTable},   {"variables", reportVariables},
    {"alignment", reportAlignment},       {"library", callLibrary}, {nullptr, nullptr}};

}  // namespace sample
