// The dates of property lists, in a zone that isn't UTC.
#include <string_view>

#include "native/geometry.h"
#include "tests/native/support.h"

namespace native_test {
namespace {

using zel::classNamed;
using zel::id;
using zel::NSUInteger;
using zel::send;

constexpr NSUInteger kXmlFormat = 100;

class DatesTest : public NativeTest {
 protected:
  DatesTest() {
    setZone(send<id, "timeZoneWithName:">(zones(), string("Asia/Kathmandu")));  // 5:45 before UTC
  }
  ~DatesTest() override { setZone(nullptr); }

  static zel::Class* zones() { return classNamed<"NSTimeZone">(); }
  static void setZone(id zone) { send<void, "setDefaultTimeZone:">(zones(), zone); }
  static id parsed(id data) {
    return send<id, "propertyListWithData:options:format:error:">(
        classNamed<"NSPropertyListSerialization">(), data, NSUInteger{0},
        static_cast<NSUInteger*>(nullptr), static_cast<id*>(nullptr));
  }
  static id xmlDate(const std::string& text) {
    const std::string list =
        "<?xml version=\"1.0\"?><plist version=\"1.0\"><date>" + text + "</date></plist>";
    return parsed(send<id, "dataWithBytes:length:">(
        classNamed<"NSData">(), static_cast<const void*>(list.data()), NSUInteger{list.size()}));
  }
  static id written(id date) {
    return send<id, "dataWithPropertyList:format:options:error:">(
        classNamed<"NSPropertyListSerialization">(), date, kXmlFormat, NSUInteger{0},
        static_cast<id*>(nullptr));
  }
  /// A date from text in another format.
  static id dateOf(const char* text, const char* format) {
    return send<id, "dateWithString:calendarFormat:">(classNamed<"NSCalendarDate">(), string(text),
                                                      string(format));
  }
  /// Since the beginning of 2001 in UTC.
  static double seconds(id date) { return send<double, "timeIntervalSinceReferenceDate">(date); }
};

TEST_F(DatesTest, AreReadInUtc) {
  EXPECT_EQ(seconds(xmlDate("2001-01-01T00:00:00Z")), 0);
  EXPECT_EQ(seconds(xmlDate("2013-09-03T12:34:56Z")), 399904496);
  EXPECT_EQ(seconds(xmlDate("1969-12-31T23:59:59Z")), -978307201);
}

TEST_F(DatesTest, AreReadOfEveryYear) {
  EXPECT_EQ(seconds(xmlDate("0001-01-01T00:00:00Z")), -63113904000);
  EXPECT_EQ(seconds(xmlDate("9999-12-31T23:59:59Z")), 252423993599);
  EXPECT_EQ(seconds(xmlDate("12345-06-07T08:09:10Z")), 326438669350);
  EXPECT_EQ(seconds(xmlDate("0000-12-31T23:59:59Z")), -63113904001);
  EXPECT_EQ(seconds(xmlDate("-0043-03-15T12:30:00Z")), -64496086200);
  for (const double age : {-1e11, -63113904001.0, 252423993600.0, 1e12}) {
    const id date =
        send<id, "dateWithTimeIntervalSinceReferenceDate:">(classNamed<"NSDate">(), age);
    EXPECT_EQ(seconds(parsed(written(date))), age);
  }
}

TEST_F(DatesTest, StayWhatTheyAreOverManyReadings) {
  id date = send<id, "dateWithTimeIntervalSinceReferenceDate:">(classNamed<"NSDate">(), 1000000.0);
  for (int i = 0; i < 5; ++i) date = parsed(written(date));
  EXPECT_EQ(seconds(date), 1000000);
}

TEST_F(DatesTest, AreDescribedAsTheyAreWritten) {
  EXPECT_EQ(text(send<id, "description">(xmlDate("2013-09-03T12:34:56Z"))), "2013-09-03T12:34:56Z");
}

TEST_F(DatesTest, OtherTextsAreReadAsEver) {
  EXPECT_EQ(seconds(dateOf("2001-01-01 05:45", "%Y-%m-%d %H:%M")), 0);
  EXPECT_EQ(seconds(dateOf("2001-01-01 00:00:00 +0000", "%Y-%m-%d %H:%M:%S %z")), 0);
  EXPECT_EQ(seconds(xmlDate("2001-01-01 02:00:00 +0200")), 0);
  EXPECT_EQ(dateOf("no date", "%Y-%m-%dT%H:%M:%SZ"), nullptr);
}

}  // namespace
}  // namespace native_test
