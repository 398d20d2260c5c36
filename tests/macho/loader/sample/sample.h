// A bundle that does what it is told by the test that has loaded it.
//
// The test gives it a resolver of these names: "case", a function that gives the name of the case
// to run; "report", which takes a line of text; "call", which calls back (see exception_cases.cc).
#pragma once

#include "native/exceptions.h"
#include "native/libc.h"

namespace sample {

struct Case {
  const char* name;
  void (*run)();
};

// The cases of each unit; the last one has no name.
extern const Case kConstantsCases[];
extern const Case kExceptionCases[];
extern const Case kMemoryCases[];
extern const Case kMessageCases[];
extern const Case kMethodCases[];

/// Tells the test a line.
void report(const char* line);
/// Tells the test a line with a number in it. @param format for one long long.
__attribute__((format(printf, 1, 0))) void reportNumber(const char* format, long long number);

using Callback = void (*)(void* context);
/// Has the test call back, with a clean-up of this system's around it.
void callThroughTest(Callback callback, void* context);

}  // namespace sample
