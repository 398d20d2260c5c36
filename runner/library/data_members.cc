// Members of the host's classes Date and MemoryBlock.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <optional>
#include <span>
#include <string>

#include "runner/library/natives.h"
#include "runner/run/values.h"

namespace runner {
namespace {

using host::DateFields;

const ObjectRef& objectIn(const Value& self) { return std::get<ObjectRef>(self); }

// --- Date: a time as a clock on the wall shows it, without a zone

using Seconds = std::chrono::sys_seconds;

// The moment that fields stand for, those that are too large or small carried over.
Seconds moment(const DateFields& fields) {
  using namespace std::chrono;
  const std::int32_t months = fields.month - 1;
  const std::int32_t carried = months >= 0 ? months / 12 : -((11 - months) / 12);
  const year_month_day first{year{fields.year + carried},
                             month{static_cast<unsigned>(months - carried * 12 + 1)},
                             std::chrono::day{1}};
  return sys_days{first} + days{fields.day - 1} + hours{fields.hour} + minutes{fields.minute} +
         seconds{fields.second};
}

DateFields fieldsAt(Seconds time) {
  const auto days = std::chrono::floor<std::chrono::days>(time);
  const std::chrono::year_month_day date{days};
  const std::chrono::hh_mm_ss clock{time - days};
  return {static_cast<std::int32_t>(date.year()),
          static_cast<std::int32_t>(static_cast<unsigned>(date.month())),
          static_cast<std::int32_t>(static_cast<unsigned>(date.day())),
          static_cast<std::int32_t>(clock.hours().count()),
          static_cast<std::int32_t>(clock.minutes().count()),
          static_cast<std::int32_t>(clock.seconds().count())};
}

DateFields fieldsOf(Machine& machine, const Value& date) {
  return machine.host().fieldsOf(objectIn(date));
}

// Sets a Date; raises for years that no calendar here has.
Value setFields(Machine& machine, const Value& self, const DateFields& fields) {
  constexpr std::int32_t kMost = 9999;
  constexpr std::int32_t kMostMonths = 100000;
  constexpr std::int32_t kMostDays = 4000000;
  const auto within = [](std::int32_t value, std::int32_t most) {
    return value >= -most && value <= most;
  };
  const bool sensible = within(fields.year, kMost) && within(fields.month, kMostMonths) &&
                        within(fields.day, kMostDays);
  const DateFields exact = sensible ? fieldsAt(moment(fields)) : DateFields{0};
  if (exact.year < 1 || exact.year > kMost)
    machine.raise("OutOfBoundsException", "A Date's year is between 1 and 9999.");
  struct Property {
    const char* name;
    std::int32_t DateFields::*field;
  };
  constexpr Property kProperties[] = {
      {"Year", &DateFields::year},     {"Month", &DateFields::month},
      {"Day", &DateFields::day},       {"Hour", &DateFields::hour},
      {"Minute", &DateFields::minute}, {"Second", &DateFields::second}};
  for (const Property& property : kProperties)
    machine.host().setProperty(objectIn(self), property.name, exact.*property.field);
  return {};
}

Value now(Machine& machine, const Value& self, const Value*) {
  const std::time_t time = std::time(nullptr);
  std::tm local{};
  localtime_r(&time, &local);
  return setFields(machine, self,
                   {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                    local.tm_min, local.tm_sec});
}
Value copyOf(Machine& machine, const Value& self, const Value* a) {
  if (isNil(a[0])) machine.raise("NilObjectException", "The Date to copy is Nil.");
  return setFields(machine, self, fieldsOf(machine, a[0]));
}
template <int count>
Value fromFields(Machine& machine, const Value& self, const Value* a) {
  std::array<std::int32_t, 6> given{};
  for (std::size_t i = 0; i < count; ++i) given[i] = integerOf(a[i]);
  return setFields(machine, self, {given[0], given[1], given[2], given[3], given[4], given[5]});
}

template <auto field>
Value get(Machine& machine, const Value& self, const Value*) {
  return fieldsOf(machine, self).*field;
}
template <auto field>
Value set(Machine& machine, const Value& self, const Value* a) {
  DateFields fields = fieldsOf(machine, self);
  fields.*field = integerOf(a[0]);
  return setFields(machine, self, fields);
}

std::string sqlDateText(const DateFields& f) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02d-%02d", f.year, f.month, f.day);
  return text.data();
}
Value sqlDate(Machine& machine, const Value& self, const Value*) {
  return sqlDateText(fieldsOf(machine, self));
}
Value sqlDateTime(Machine& machine, const Value& self, const Value*) {
  const DateFields f = fieldsOf(machine, self);
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), " %02d:%02d:%02d", f.hour, f.minute, f.second);
  return sqlDateText(f) + text.data();
}
Value setSqlDateTime(Machine& machine, const Value& self, const Value* a) {
  DateFields f{0, 0, 0};
  const int read = std::sscanf(textOf(a[0]).c_str(), "%4d-%2d-%2d %2d:%2d:%2d", &f.year, &f.month,
                               &f.day, &f.hour, &f.minute, &f.second);
  if (read != 3 && read != 6)
    machine.raise("InvalidArgumentException", "\"" + textOf(a[0]) + "\" is no date.");
  return setFields(machine, self, f);
}

// Since 1904 began.
constexpr DateFields kEpoch = {1904, 1, 1, 0, 0, 0};
Value totalSeconds(Machine& machine, const Value& self, const Value*) {
  const auto seconds = moment(fieldsOf(machine, self)) - moment(kEpoch);
  return static_cast<double>(seconds.count());
}
Value setTotalSeconds(Machine& machine, const Value& self, const Value* a) {
  constexpr double kMost = 1e12;
  const double seconds = numberOf<double>(a[0]);
  if (!(seconds > -kMost && seconds < kMost)) return setFields(machine, self, {0, 1, 1});
  const auto whole = std::chrono::seconds(static_cast<std::int64_t>(seconds));
  return setFields(machine, self, fieldsAt(moment(kEpoch) + whole));
}
Value dayOfWeek(Machine& machine, const Value& self, const Value*) {
  const auto days = std::chrono::floor<std::chrono::days>(moment(fieldsOf(machine, self)));
  return static_cast<std::int32_t>(std::chrono::weekday{days}.c_encoding()) + 1;
}

constexpr NativeRow kDateMembers[] = {
    {"Constructor", now},
    {"Constructor(other As Date)", copyOf},
    {"Constructor(year As Integer, month As Integer, day As Integer)", fromFields<3>},
    {"Constructor(year As Integer, month As Integer, day As Integer, hour As Integer, "
     "minute As Integer, second As Integer)",
     fromFields<6>},
    {"Year As Integer", get<&DateFields::year>, set<&DateFields::year>},
    {"Month As Integer", get<&DateFields::month>, set<&DateFields::month>},
    {"Day As Integer", get<&DateFields::day>, set<&DateFields::day>},
    {"Hour As Integer", get<&DateFields::hour>, set<&DateFields::hour>},
    {"Minute As Integer", get<&DateFields::minute>, set<&DateFields::minute>},
    {"Second As Integer", get<&DateFields::second>, set<&DateFields::second>},
    {"SQLDate As String", sqlDate, setSqlDateTime},
    {"SQLDateTime As String", sqlDateTime, setSqlDateTime},
    {"TotalSeconds As Double", totalSeconds, setTotalSeconds},
    {"DayOfWeek As Integer", dayOfWeek},
};

// --- MemoryBlock

// So many bytes from an offset on; raises OutOfBoundsException.
char* bytesAt(Machine& machine, const Value& self, const Value& offset, std::size_t count) {
  const std::span<std::byte> block = machine.host().storageOf(objectIn(self));
  const auto from = numberOf<std::int64_t>(offset);
  if (from < 0 || static_cast<std::uint64_t>(from) + count > block.size()) {
    machine.raise("OutOfBoundsException", std::to_string(count) + " bytes from " +
                                              std::to_string(from) +
                                              " on are outside of the MemoryBlock, which has " +
                                              std::to_string(block.size()) + ".");
  }
  return reinterpret_cast<char*>(block.data()) + from;
}

Value newBlock(Machine& machine, const Value&, const Value* a) {
  constexpr std::int32_t kMost = 1 << 30;
  const std::int32_t size = integerOf(a[0]);
  if (size < 0 || size > kMost)
    machine.raise("OutOfBoundsException", "No MemoryBlock has " + std::to_string(size) + " bytes.");
  return machine.host().memoryBlock(std::string(static_cast<std::size_t>(size), '\0'));
}
Value size(Machine& machine, const Value& self, const Value*) {
  return static_cast<std::int32_t>(machine.host().storageOf(objectIn(self)).size());
}
template <class Stored, class Given>
Value number(Machine& machine, const Value& self, const Value* a) {
  Stored stored{};
  std::memcpy(&stored, bytesAt(machine, self, a[0], sizeof stored), sizeof stored);
  return static_cast<Given>(stored);
}
template <class Stored>
Value setNumber(Machine& machine, const Value& self, const Value* a) {
  const auto stored = numberOf<Stored>(a[1]);
  std::memcpy(bytesAt(machine, self, a[0], sizeof stored), &stored, sizeof stored);
  return {};
}
std::size_t countOf(const Value& value) {
  const std::int32_t count = integerOf(value);
  return static_cast<std::size_t>(count < 0 ? 0 : count);
}
Value part(Machine& machine, const Value& self, const Value* a) {
  const std::size_t count = countOf(a[1]);
  return std::string(bytesAt(machine, self, a[0], count), count);
}
Value setPart(Machine& machine, const Value& self, const Value* a) {
  const std::size_t count = countOf(a[1]);
  char* const bytes = bytesAt(machine, self, a[0], count);
  const std::string& text = textOf(a[2]);
  std::memset(bytes, 0, count);
  std::copy_n(text.data(), std::min(count, text.size()), bytes);
  return {};
}

constexpr NativeRow kMemoryBlockMembers[] = {
    {"Constructor(size As Integer) As MemoryBlock", newBlock},
    {"Size As Integer", size},
    {"Byte(offset As Integer) As Integer", number<std::uint8_t, std::int32_t>,
     setNumber<std::uint8_t>},
    {"UInt8Value(offset As Integer) As Integer", number<std::uint8_t, std::int32_t>,
     setNumber<std::uint8_t>},
    {"Int16Value(offset As Integer) As Integer", number<std::int16_t, std::int32_t>,
     setNumber<std::int16_t>},
    {"Int32Value(offset As Integer) As Integer", number<std::int32_t, std::int32_t>,
     setNumber<std::int32_t>},
    {"Int64Value(offset As Integer) As Int64", number<std::int64_t, std::int64_t>,
     setNumber<std::int64_t>},
    {"SingleValue(offset As Integer) As Single", number<float, float>, setNumber<float>},
    {"DoubleValue(offset As Integer) As Double", number<double, double>, setNumber<double>},
    {"StringValue(offset As Integer, count As Integer) As String", part, setPart},
};

}  // namespace

std::span<const NativeRow> dateMembers() { return kDateMembers; }
std::span<const NativeRow> memoryBlockMembers() { return kMemoryBlockMembers; }

}  // namespace runner
