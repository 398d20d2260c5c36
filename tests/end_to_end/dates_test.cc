// Host dates, which are times on a wall, in the zones of the world: what is stored for them, and
// what comes back.
#include <filesystem>
#include <random>
#include <set>

#include "host/store/private_store.h"
#include "tests/end_to_end/default_zone.h"
#include "tests/end_to_end/end_to_end_test.h"
#include "tests/end_to_end/host_lines.h"
#include "tests/end_to_end/property_lists.h"

namespace tests {
namespace {

using namespace std::string_literals;
using host::DateFields;
using zel::id;
using zel::send;

id standardDefaults() {
  return send<id, "standardUserDefaults">(zel::classNamed<"NSUserDefaults">());
}

class DatesTest : public FamilyTest {
 protected:
  void SetUp() override {
    startHost({.version = 2014.0, .keepSequence = false});
    defaults_ = standard();
  }
  void TearDown() override {
    for (const std::string& key : stored_) ask(defaults_, "removeObjectForKey", {key});
    ask(defaults_, "synchronize");
    defaults_.reset();
    FamilyTest::TearDown();
  }
  void store(const std::string& key, const DateFields& fields) {
    stored_.insert(key);
    EXPECT_EQ(ask(defaults_, "setVariantValue", {key, host->date(fields)}), Value());
  }
  DateFields read(const std::string& key) {
    return host->fieldsOf(std::get<ObjectRef>(ask(defaults_, "variantForKey", {key})));
  }
  void storeDomain(const std::string& name, const ObjectRef& domain) {
    EXPECT_EQ(ask(defaults_, "setPersistentDomain", {domain, name}), Value());
  }
  Lines readDomain(const std::string& name) {
    return linesOf(*host, ask(defaults_, "persistentDomainForName", {name}));
  }
  // Everything stored is written, and a new standard object reads it.
  void throughTheDisk() {
    EXPECT_EQ(ask(defaults_, "synchronize"), Value(std::int8_t{1}));
    defaults_.reset();
    readDefaultsAnew();
    defaults_ = standard();
  }
  // What is stored, in seconds since the beginning of 2001 in UTC.
  static double seconds(const std::string& key) {
    const id stored = send<id, "objectForKey:">(standardDefaults(), nativeText(key));
    EXPECT_TRUE(zel::isKindOf<"NSDate">(stored));
    return send<double, "timeIntervalSinceReferenceDate">(stored);
  }

 private:
  ObjectRef defaults_;
  std::set<std::string> stored_;  // keys
};

struct Row {
  const char* zone;
  DateFields stored;
  double seconds;
  DateFields read;
};

constexpr Row kRows[] = {
    // An hour is skipped: a time in it becomes the one an hour later, east of Greenwich.
    {"Europe/Berlin", {2013, 3, 31, 1, 59, 59}, 386384399, {2013, 3, 31, 1, 59, 59}},
    {"Europe/Berlin", {2013, 3, 31, 2, 0, 0}, 386384400, {2013, 3, 31, 3, 0, 0}},
    {"Europe/Berlin", {2013, 3, 31, 2, 30, 0}, 386386200, {2013, 3, 31, 3, 30, 0}},
    {"Europe/Berlin", {2013, 3, 31, 3, 0, 0}, 386384400, {2013, 3, 31, 3, 0, 0}},
    // An hour comes twice: there the second one is meant.
    {"Europe/Berlin", {2013, 10, 27, 1, 59, 59}, 404524799, {2013, 10, 27, 1, 59, 59}},
    {"Europe/Berlin", {2013, 10, 27, 2, 30, 0}, 404530200, {2013, 10, 27, 2, 30, 0}},
    {"Europe/Berlin", {2013, 10, 27, 3, 0, 0}, 404532000, {2013, 10, 27, 3, 0, 0}},
    // West of it GNUstep makes it the one an hour earlier, and means the first of two.
    {"America/Los_Angeles", {2013, 3, 10, 2, 30, 0}, 384600600, {2013, 3, 10, 1, 30, 0}},
    {"America/Los_Angeles", {2013, 11, 3, 1, 30, 0}, 405160200, {2013, 11, 3, 1, 30, 0}},
    // At one minute past midnight, half an hour off the full hour.
    {"America/St_Johns", {2010, 3, 14, 0, 0, 59}, 290230259, {2010, 3, 14, 0, 0, 59}},
    {"America/St_Johns", {2010, 3, 14, 0, 30, 0}, 290228400, {2010, 3, 13, 23, 30, 0}},
    {"America/St_Johns", {2010, 11, 6, 23, 30, 0}, 310788000, {2010, 11, 6, 23, 30, 0}},
    // By half an hour only.
    {"Australia/Lord_Howe", {2013, 10, 6, 1, 59, 59}, 402679799, {2013, 10, 6, 1, 59, 59}},
    {"Australia/Lord_Howe", {2013, 10, 6, 2, 15, 0}, 402680700, {2013, 10, 6, 2, 45, 0}},
    {"Australia/Lord_Howe", {2013, 4, 7, 1, 45, 0}, 386954100, {2013, 4, 7, 1, 45, 0}},
    // A whole day is skipped.
    {"Pacific/Apia", {2011, 12, 29, 23, 59, 59}, 346931999, {2011, 12, 29, 23, 59, 59}},
    {"Pacific/Apia", {2011, 12, 30, 12, 0, 0}, 346975200, {2011, 12, 31, 12, 0, 0}},
    // A quarter of an hour is skipped, once and for all.
    {"Asia/Kathmandu", {1985, 12, 31, 23, 59, 59}, -473405401, {1985, 12, 31, 23, 59, 59}},
    {"Asia/Kathmandu", {1986, 1, 1, 0, 5, 0}, -473405100, {1986, 1, 1, 0, 20, 0}},
    // 44 minutes and 30 seconds after UTC.
    {"Africa/Monrovia", {1970, 6, 15, 12, 0, 0}, -964005330, {1970, 6, 15, 12, 0, 0}},
};

TEST_F(DatesTest, AroundTheChangesOfTheClocks) {
  for (const Row& row : kRows) {
    SCOPED_TRACE(testing::Message() << row.zone << ' ' << row.stored);
    const DefaultZone zone(row.zone);
    ASSERT_TRUE(zone.isKnown());
    store("date", row.stored);
    EXPECT_EQ(seconds("date"), row.seconds);
    EXPECT_EQ(read("date"), row.read);
    throughTheDisk();
    EXPECT_EQ(seconds("date"), row.seconds);
    EXPECT_EQ(read("date"), row.read);
  }
}

TEST_F(DatesTest, ADateIsATimeThatEveryZoneReadsByItsOwnClock) {
  {
    const DefaultZone zone("Europe/Berlin");
    store("meeting", {2013, 9, 3, 14, 30, 0});
  }
  throughTheDisk();
  const DefaultZone zone("Asia/Kathmandu");
  EXPECT_EQ(read("meeting"), (DateFields{2013, 9, 3, 18, 15, 0}));
}

TEST_F(DatesTest, AnyYear) {
  const DefaultZone zone("UTC");
  for (const std::int32_t year : {-200'000'000, -12345, -44, -1, 0, 1, 9999, 12345, 200'000'000}) {
    SCOPED_TRACE(year);
    const DateFields fields = {year, 3, 15, 12, 30, 0};
    store("any", fields);
    EXPECT_EQ(read("any"), fields);
    throughTheDisk();
    EXPECT_EQ(read("any"), fields);
  }
}

// In UTC it is the day before.
TEST_F(DatesTest, TheFirstMomentOfTheYear1) {
  const std::string name = "com.example.ancient";
  const DefaultZone zone("Asia/Kathmandu");
  storeDomain(name, host->dictionary(
                        {{"a"s, "text"s}, {"date"s, ObjectRef(host->date({1, 1, 1, 0, 0, 0}))}}));
  throughTheDisk();
  EXPECT_EQ(readDomain(name),
            (Lines{{"", "dictionary 2"}, {"a", "\"text\""}, {"date", "Date 0001-01-01 00:00:00"}}));
  std::filesystem::remove(host::storedDomain(name));
}

// As no host makes them, but a file can hold them.
TEST_F(DatesTest, AbsurdDatesAreRead) {
  const std::string name = "com.example.absurd";
  const DefaultZone zone("UTC");
  for (const auto& [seconds, seen] :
       {std::pair{1e300, "2123147480-12-15 23:06:40"}, std::pair{-1e11, "-1168-02-16 14:13:20"}}) {
    const id date =
        send<id, "dateWithTimeIntervalSinceReferenceDate:">(zel::classNamed<"NSDate">(), seconds);
    writeBinary(send<id, "dictionaryWithObject:forKey:">(zel::classNamed<"NSDictionary">(), date,
                                                         nativeText("date")),
                host::storedDomain(name));
    throughTheDisk();
    EXPECT_EQ(readDomain(name).at("date"), "Date "s + seen);
  }
  std::filesystem::remove(host::storedDomain(name));
}

constexpr const char* kZones[] = {"UTC",
                                  "Europe/Berlin",
                                  "America/St_Johns",
                                  "America/Los_Angeles",
                                  "Asia/Kathmandu",
                                  "Australia/Lord_Howe",
                                  "Pacific/Apia",
                                  "Africa/Monrovia",
                                  "Pacific/Kiritimati"};

class ZonesTest : public DatesTest, public testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(Zones, ZonesTest, testing::ValuesIn(kZones));

TEST_P(ZonesTest, DaysOfEveryAgeThroughTheDisk) {
  const DefaultZone zone(GetParam());
  ASSERT_TRUE(zone.isKnown());
  constexpr DateFields kDays[] = {{1, 1, 1, 0, 0, 0},         {999, 2, 28, 12, 0, 0},
                                  {1600, 2, 29, 0, 0, 0},     {1900, 2, 28, 23, 59, 59},
                                  {1969, 12, 31, 23, 59, 59}, {1970, 1, 1, 0, 0, 0},
                                  {2000, 2, 29, 12, 0, 0},    {2038, 1, 19, 3, 14, 8},
                                  {2100, 3, 1, 0, 0, 0},      {kLastYear, 12, 30, 23, 59, 59}};
  for (const DateFields& fields : kDays) {
    SCOPED_TRACE(testing::Message() << fields);
    store("day", fields);
    EXPECT_EQ(read("day"), fields);
    throughTheDisk();
    EXPECT_EQ(read("day"), fields);
  }
}

TEST_P(ZonesTest, AnyDateOfTheCalendar) {
  constexpr int kDates = 300;
  const DefaultZone zone(GetParam());
  ASSERT_TRUE(zone.isKnown());
  std::mt19937 random{20130903};
  const auto between = [&random](std::int32_t low, std::int32_t high) {
    return std::uniform_int_distribution<std::int32_t>(low, high)(random);
  };
  for (int i = 0; i < kDates; ++i) {
    const DateFields fields = {between(kFirstYear, kLastYear),
                               between(1, 12),
                               between(1, 28),
                               between(0, 23),
                               between(0, 59),
                               between(0, 59)};
    SCOPED_TRACE(testing::Message() << fields);
    store("any", fields);
    EXPECT_EQ(read("any"), fields);
  }
}

}  // namespace
}  // namespace tests
