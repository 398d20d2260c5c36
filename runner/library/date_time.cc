// The class DateTime: a moment, as a clock of this place shows it.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <string>
#include <sys/time.h>

#include "runner/library/natives.h"
#include "runner/run/values.h"

namespace runner {
namespace {

constexpr double kNanoseconds = 1e9;
constexpr int kFirstYear = 1900;  // as the C library counts

// The one field: seconds since 1970 began in Greenwich.
double secondsIn(const Value& self) { return numberOf<double>(fieldOf(self, 0)); }

std::tm clockAt(double seconds) {
  const auto whole = static_cast<std::time_t>(std::floor(seconds));
  std::tm clock{};
  localtime_r(&whole, &clock);
  return clock;
}

// Fields that are too large or small are carried over.
double secondsAt(std::tm clock) {
  clock.tm_isdst = -1;
  return static_cast<double>(std::mktime(&clock));
}

Value momentAt(Machine& machine, double seconds) {
  Value made = newInstance(machine, *machine.types().find("datetime").value()->own);
  fieldOf(made, 0) = seconds;
  return made;
}

double now() {
  timeval time{};
  gettimeofday(&time, nullptr);
  constexpr double kMicroseconds = 1e6;
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / kMicroseconds;
}

// --- constructors

Value fromSeconds(Machine&, const Value& self, const Value* a) {
  fieldOf(self, 0) = numberOf<double>(a[0]);
  return {};
}
Value copyOf(Machine& machine, const Value& self, const Value* a) {
  if (isNil(a[0])) machine.raise("NilObjectException", "The DateTime to copy is Nil.");
  fieldOf(self, 0) = fieldOf(a[0], 0);
  return {};
}
Value fromFields(Machine&, const Value& self, const Value* a) {
  std::tm clock{};
  clock.tm_year = integerOf(a[0]) - kFirstYear;
  clock.tm_mon = integerOf(a[1]) - 1;
  clock.tm_mday = integerOf(a[2]);
  clock.tm_hour = integerOf(a[3]);
  clock.tm_min = integerOf(a[4]);
  clock.tm_sec = integerOf(a[5]);
  fieldOf(self, 0) = secondsAt(clock) + integerOf(a[6]) / kNanoseconds;
  return {};
}

// --- properties

template <int std::tm::*field, int offset>
Value part(Machine&, const Value& self, const Value*) {
  return std::int32_t{clockAt(secondsIn(self)).*field + offset};
}
Value nanosecond(Machine&, const Value& self, const Value*) {
  const double seconds = secondsIn(self);
  return static_cast<std::int32_t>(std::lround((seconds - std::floor(seconds)) * kNanoseconds));
}
Value secondsFrom1970(Machine&, const Value& self, const Value*) { return fieldOf(self, 0); }

std::string formattedAs(const Value& self, const char* pattern) {
  const std::tm clock = clockAt(secondsIn(self));
  char text[64];
  return {text, std::strftime(text, sizeof text, pattern, &clock)};
}
Value sqlDate(Machine&, const Value& self, const Value*) { return formattedAs(self, "%Y-%m-%d"); }
Value sqlDateTime(Machine&, const Value& self, const Value*) {
  return formattedAs(self, "%Y-%m-%d %H:%M:%S");
}

// --- methods

Value addInterval(Machine& machine, const Value& self, const Value* a) {
  std::tm clock = clockAt(secondsIn(self));
  clock.tm_year += integerOf(a[0]);
  clock.tm_mon += integerOf(a[1]);
  clock.tm_mday += integerOf(a[2]);
  clock.tm_hour += integerOf(a[3]);
  clock.tm_min += integerOf(a[4]);
  clock.tm_sec += integerOf(a[5]);
  const double fraction = secondsIn(self) - std::floor(secondsIn(self));
  return momentAt(machine, secondsAt(clock) + fraction);
}
Value subtractInterval(Machine& machine, const Value& self, const Value* a) {
  Value negative[6];
  for (int i = 0; i < 6; ++i) negative[i] = -integerOf(a[i]);
  return addInterval(machine, self, negative);
}

Value nowShared(Machine& machine, const Value&, const Value*) { return momentAt(machine, now()); }
Value fromString(Machine& machine, const Value&, const Value* a) {
  std::tm clock{};
  const std::string& text = textOf(a[0]);
  const int read =
      std::sscanf(text.c_str(), "%4d-%2d-%2d %2d:%2d:%2d", &clock.tm_year, &clock.tm_mon,
                  &clock.tm_mday, &clock.tm_hour, &clock.tm_min, &clock.tm_sec);
  if (read != 3 && read != 6)
    machine.raise("InvalidArgumentException", "\"" + text + "\" is no date.");
  clock.tm_year -= kFirstYear;
  --clock.tm_mon;
  return momentAt(machine, secondsAt(clock));
}

constexpr NativeRow kMembers[] = {
    {"Constructor(secondsFrom1970 As Double)", fromSeconds},
    {"Constructor(other As DateTime)", copyOf},
    {"Constructor(year As Integer, month As Integer, day As Integer, Optional hour As Integer, "
     "Optional minute As Integer, Optional second As Integer, Optional nanosecond As Integer)",
     fromFields},
    {"Year As Integer", part<&std::tm::tm_year, kFirstYear>},
    {"Month As Integer", part<&std::tm::tm_mon, 1>},
    {"Day As Integer", part<&std::tm::tm_mday, 0>},
    {"Hour As Integer", part<&std::tm::tm_hour, 0>},
    {"Minute As Integer", part<&std::tm::tm_min, 0>},
    {"Second As Integer", part<&std::tm::tm_sec, 0>},
    {"Nanosecond As Integer", nanosecond},
    {"DayOfWeek As Integer", part<&std::tm::tm_wday, 1>},
    {"DayOfYear As Integer", part<&std::tm::tm_yday, 1>},
    {"SecondsFrom1970 As Double", secondsFrom1970},
    {"SQLDate As String", sqlDate},
    {"SQLDateTime As String", sqlDateTime},
    {"AddInterval(years As Integer, Optional months As Integer, Optional days As Integer, "
     "Optional hours As Integer, Optional minutes As Integer, "
     "Optional seconds As Integer) As DateTime",
     addInterval},
    {"SubtractInterval(years As Integer, Optional months As Integer, Optional days As Integer, "
     "Optional hours As Integer, Optional minutes As Integer, "
     "Optional seconds As Integer) As DateTime",
     subtractInterval},
};

constexpr NativeRow kShared[] = {
    {"Now As DateTime", nowShared},
    {"FromString(text As String) As DateTime", fromString},
};

}  // namespace

std::span<const NativeRow> dateTimeMembers() { return kMembers; }
std::span<const NativeRow> dateTimeShared() { return kShared; }

}  // namespace runner
