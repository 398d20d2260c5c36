// The language's functions that talk to the world around the program.
#include <chrono>
#include <cstdint>
#include <iostream>
#include <string>

#include "runner/library/natives.h"
#include "runner/run/values.h"

namespace runner {
namespace {

Value print(Machine& machine, const Value&, const Value* a) {
  machine.out() << textOf(a[0]) << '\n';
  return {};
}
Value printNothing(Machine& machine, const Value&, const Value*) {
  machine.out() << '\n';
  return {};
}

Value readLine(Machine& machine) {
  std::string line;
  machine.out().flush();
  std::getline(machine.in(), line);
  machine.pauseIfDue();  // an interruption ends the wait, too
  return line;
}
Value input(Machine& machine, const Value&, const Value*) { return readLine(machine); }
Value inputAfter(Machine& machine, const Value&, const Value* a) {
  machine.out() << textOf(a[0]);
  return readLine(machine);
}

Value endOfLine(Machine&, const Value&, const Value*) { return std::string("\n"); }

// Time since a moment that doesn't matter.
template <class Unit>
double elapsed() {
  return std::chrono::duration<double, Unit>(std::chrono::steady_clock::now().time_since_epoch())
      .count();
}
Value microseconds(Machine&, const Value&, const Value*) { return elapsed<std::micro>(); }
Value ticks(Machine&, const Value&, const Value*) {
  return static_cast<std::int32_t>(static_cast<std::int64_t>(elapsed<std::ratio<1, 60>>()));
}

Value varType(Machine& machine, const Value&, const Value* a) {
  return machine.host().typeOf(a[0]);
}

Value debugLog(Machine&, const Value&, const Value* a) {
  std::clog << textOf(a[0]) << '\n';
  return {};
}

constexpr NativeRow kFunctions[] = {
    {"Print(text As String)", print},
    {"Print", printNothing},
    {"MsgBox(text As String)", print},
    {"Input As String", input},
    {"Input(prompt As String) As String", inputAfter},
    {"EndOfLine As String", endOfLine},
    {"Microseconds As Double", microseconds},
    {"Ticks As Integer", ticks},
    {"VarType(value As Variant) As Integer", varType},
};

constexpr NativeRow kSystem[] = {
    {"DebugLog(text As String)", debugLog},
    {"Microseconds As Double", microseconds},
    {"Ticks As Integer", ticks},
};

}  // namespace

std::span<const NativeRow> hostFunctions() { return kFunctions; }

std::span<const NativeRow> systemMembers() { return kSystem; }

}  // namespace runner
