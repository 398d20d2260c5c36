// Native exceptions: raised by the test's class, caught here, and passing through both sides.
#include "tests/macho/loader/sample/sample.h"

namespace sample {
namespace {

void raise() { zel::send<void, "raise">(zel::classNamed<"LoaderSample">()); }

void catchOne() {
  bool went = false;
  const zel::id caught = zel::catching([&] {
    raise();
    went = true;
  });
  report(caught == nullptr ? "nothing" : zel::object_getClassName(caught));
  report(went ? "went on" : "left");
  report(zel::catching([] {}) == nullptr ? "nothing" : "something");
}

void catchInside() {
  const zel::id outer = zel::catching([] {
    const zel::id inner = zel::catching([] { raise(); });
    report(inner == nullptr ? "inside: nothing" : "inside: caught");
  });
  report(outer == nullptr ? "outside: nothing" : "outside: caught");
}

void throwOn() {
  const zel::id outer = zel::catching([] {
    zel::withCleanup([] { raise(); }, [] { report("cleaned up"); });
    report("went on");
  });
  report(outer == nullptr ? "nothing" : "caught");
}

// Out of here into the test, and back again, twice.
void catchBeyondTheTest() {
  const zel::id caught = zel::catching([] {
    callThroughTest(
        [](void*) {
          callThroughTest([](void*) { raise(); }, nullptr);
          report("went on");
        },
        nullptr);
  });
  report(caught == nullptr ? "nothing" : "caught");
}

void catchBeforeTheTest() {
  const zel::id caught = zel::catching([] {
    callThroughTest(
        [](void*) {
          report(zel::catching([] { raise(); }) == nullptr ? "nothing" : "caught inside");
        },
        nullptr);
  });
  report(caught == nullptr ? "nothing" : "caught");
}

void catchOften() {
  int caught = 0;
  for (int i = 0; i < 20000; ++i) {
    if (zel::catching([] { raise(); }) != nullptr) ++caught;
  }
  reportNumber("caught %lld", caught);
}

void throwOut() {
  report("throwing");
  raise();
  report("went on");
}

}  // namespace

const Case kExceptionCases[] = {{"catch one", catchOne},
                                {"catch inside", catchInside},
                                {"throw on", throwOn},
                                {"catch beyond the test", catchBeyondTheTest},
                                {"catch before the test", catchBeforeTheTest},
                                {"catch often", catchOften},
                                {"throw out", throwOut},
                                {nullptr, nullptr}};

}  // namespace sample
