// Data, dates, structures and NSNull of the double, and what the runtime tells of classes.

#include <array>
#include <cstring>
#include <limits>

#include "native/geometry.h"
#include "tests/foundation_double/fixture.h"

namespace {

using zel::id;
using zel::NSInteger;
using zel::NSUInteger;
using zel::send;

// --- data

TEST_F(FoundationTest, DataCopiesItsBytes) {
  char bytes[] = {'a', '\0', 'b'};
  const id data = send<id, "dataWithBytes:length:">(zel::lookUpClass("NSData"),
                                                    static_cast<const void*>(bytes), NSUInteger{3});
  bytes[0] = 'x';
  EXPECT_EQ((send<NSUInteger, "length">(data)), 3U);
  EXPECT_EQ(std::memcmp(send<const void*, "bytes">(data), "a\0b", 3), 0);
  EXPECT_EQ(foundation_.describe(data), "<610062>");
}

TEST_F(FoundationTest, EmptyDataHasAnAddress) {
  const id data = foundation_.data("");
  EXPECT_EQ((send<NSUInteger, "length">(data)), 0U);
  EXPECT_NE((send<const void*, "bytes">(data)), nullptr);
}

TEST_F(FoundationTest, DataCanPretend) {
  const id huge = foundation_.dataOfLength(0x7FFFFFFF);
  EXPECT_EQ((send<NSUInteger, "length">(huge)), 0x7FFFFFFFU);
  EXPECT_EQ(*static_cast<const char*>(send<const void*, "bytes">(huge)), '\0');
  const id nowhere = foundation_.dataWithoutBytes(5);
  EXPECT_EQ((send<NSUInteger, "length">(nowhere)), 5U);
  EXPECT_EQ((send<const void*, "bytes">(nowhere)), nullptr);
}

TEST_F(FoundationTest, DataOfMissingBytesIsMisuse) {
  collectFailures();
  zel::Class* const isa = zel::lookUpClass("NSData");
  const void* const nowhere = nullptr;
  EXPECT_THROW((send<id, "dataWithBytes:length:">(isa, nowhere, NSUInteger{1})), std::logic_error);
  EXPECT_EQ(failures_, Lines{"data of bytes that are nowhere"});
}

// --- dates

class FoundationDateTest : public FoundationTest {
 protected:
  using Fields = std::array<NSInteger, 6>;

  id calendarDate(double seconds) {
    const id blank = send<id, "alloc">(zel::lookUpClass("NSCalendarDate"));
    return zel::autoreleased(send<id, "initWithTimeIntervalSinceReferenceDate:">(blank, seconds));
  }

  Fields fields(id date) {
    return {send<NSInteger, "yearOfCommonEra">(date), send<NSInteger, "monthOfYear">(date),
            send<NSInteger, "dayOfMonth">(date),      send<NSInteger, "hourOfDay">(date),
            send<NSInteger, "minuteOfHour">(date),    send<NSInteger, "secondOfMinute">(date)};
  }

  double seconds(NSInteger year, NSUInteger month, NSUInteger day, NSUInteger hour,
                 NSUInteger minute, NSUInteger second) {
    const id zone = send<id, "localTimeZone">(zel::lookUpClass("NSTimeZone"));
    const id date = send<id, "dateWithYear:month:day:hour:minute:second:timeZone:">(
        zel::lookUpClass("NSCalendarDate"), year, month, day, hour, minute, second, zone);
    return send<double, "timeIntervalSinceReferenceDate">(date);
  }
};

TEST_F(FoundationDateTest, SecondsBecomeFields) {
  EXPECT_EQ(fields(calendarDate(0)), (Fields{2001, 1, 1, 0, 0, 0}));
  EXPECT_EQ(fields(calendarDate(-0.25)), (Fields{2000, 12, 31, 23, 59, 59}));
  EXPECT_EQ(fields(calendarDate(-978307200)), (Fields{1970, 1, 1, 0, 0, 0}));
  EXPECT_EQ(fields(calendarDate(730857599.9)), (Fields{2024, 2, 28, 23, 59, 59}));
  EXPECT_EQ(fields(calendarDate(730857600)), (Fields{2024, 2, 29, 0, 0, 0}));
  EXPECT_EQ(fields(calendarDate(-3187296000)), (Fields{1900, 1, 1, 0, 0, 0}));
}

TEST_F(FoundationDateTest, FieldsBecomeSeconds) {
  EXPECT_EQ(seconds(2001, 1, 1, 0, 0, 0), 0.0);
  EXPECT_EQ(seconds(2024, 2, 29, 12, 30, 15), 730902615.0);
  EXPECT_EQ(seconds(1900, 3, 1, 0, 0, 0), -3182198400.0);
  EXPECT_EQ(seconds(2001, 13, 32, 24, 60, 60), 34304460.0);
  EXPECT_EQ(seconds(2001, static_cast<NSUInteger>(-1), 1, 0, 0, 0), -5270400.0);
}

TEST_F(FoundationDateTest, FieldsAreInTheLocalTimeZone) {
  foundation_.setTimeZone(3600);
  EXPECT_EQ(seconds(2001, 1, 1, 0, 0, 0), -3600.0);
  const id early = calendarDate(-3600);
  EXPECT_EQ(fields(early), (Fields{2001, 1, 1, 0, 0, 0}));
  foundation_.setTimeZone(-16200);
  EXPECT_EQ(fields(early), (Fields{2001, 1, 1, 0, 0, 0}));
  EXPECT_EQ(fields(calendarDate(0)), (Fields{2000, 12, 31, 19, 30, 0}));
  foundation_.reset();
  EXPECT_EQ(fields(calendarDate(0)), (Fields{2001, 1, 1, 0, 0, 0}));
}

TEST_F(FoundationDateTest, DatesBeyondAllCalendarsStillHaveFields) {
  const Fields last = fields(calendarDate(1e300));
  EXPECT_EQ(last, fields(calendarDate(1e15)));
  EXPECT_EQ(fields(calendarDate(std::numeric_limits<double>::quiet_NaN())),
            (Fields{2001, 1, 1, 0, 0, 0}));
}

TEST_F(FoundationDateTest, ADateHasSecondsButNoFields) {
  const id date = foundation_.date(12.5);
  EXPECT_EQ((send<double, "timeIntervalSinceReferenceDate">(date)), 12.5);
  EXPECT_FALSE(zel::respondsTo<"hourOfDay">(date));
  EXPECT_TRUE(zel::isKindOf<"NSDate">(calendarDate(0)));
  EXPECT_EQ(foundation_.describe(send<id, "dateWithTimeIntervalSinceReferenceDate:">(
                zel::lookUpClass("NSDate"), -1.0)),
            "date(-1)");
}

// --- structures

TEST_F(FoundationTest, AValueGivesBackItsStructure) {
  zel::Class* const isa = zel::lookUpClass("NSValue");
  const id point = send<id, "valueWithPoint:">(isa, zel::NSPoint{1, 2.5});
  const id size = send<id, "valueWithSize:">(isa, zel::NSSize{3, 4});
  const id rect = send<id, "valueWithRect:">(isa, zel::NSRect{{1, 2}, {3, 4}});
  const id range = send<id, "valueWithRange:">(isa, zel::NSRange{5, 6});
  EXPECT_STREQ((send<const char*, "objCType">(point)), zel::kPointEncoding);
  EXPECT_STREQ((send<const char*, "objCType">(size)), zel::kSizeEncoding);
  EXPECT_STREQ((send<const char*, "objCType">(rect)), zel::kRectEncoding);
  EXPECT_STREQ((send<const char*, "objCType">(range)), zel::kRangeEncoding);
  EXPECT_EQ((send<zel::NSPoint, "pointValue">(point)).y, 2.5);
  EXPECT_EQ((send<zel::NSSize, "sizeValue">(size)).height, 4);
  EXPECT_EQ((send<zel::NSRect, "rectValue">(rect)).size.width, 3);
  EXPECT_EQ((send<zel::NSRange, "rangeValue">(range)).length, 6U);
  EXPECT_EQ(foundation_.describe(foundation_.array({point, size, rect, range})),
            "(point(1, 2.5), size(3, 4), rect(1, 2, 3, 4), range(5, 6))");
}

TEST_F(FoundationTest, AValueCanBeNothingButAType) {
  const id value = foundation_.value("{?=qll}");
  EXPECT_STREQ((send<const char*, "objCType">(value)), "{?=qll}");
  EXPECT_EQ(foundation_.describe(value), "value({?=qll})");
  EXPECT_EQ(foundation_.describe(foundation_.value(zel::NSSize{1, 2})), "size(1, 2)");
}

TEST_F(FoundationTest, AStructureOfAnotherTypeIsMisuse) {
  collectFailures();
  const id value = foundation_.value("{?=qll}");
  EXPECT_THROW((send<zel::NSRange, "rangeValue">(value)), std::logic_error);
  EXPECT_EQ(failures_,
            Lines{std::string(zel::kRangeEncoding) + " read from a value of type {?=qll}"});
}

// --- NSNull and classes

TEST_F(FoundationTest, ThereIsOneNullForEver) {
  const id null = send<id, "null">(zel::lookUpClass("NSNull"));
  EXPECT_EQ(foundation_.null(), null);
  EXPECT_TRUE(zel::isKindOf<"NSNull">(null));
  foundation_.reset();
  EXPECT_EQ((send<id, "null">(zel::lookUpClass("NSNull"))), null);
}

TEST_F(FoundationTest, ClassesCanBeWalked) {
  const std::string longName(200, 'L');
  zel::Class* const added = foundation_.addClass(longName, "NSMutableArray");
  const id made = foundation_.object(longName);
  EXPECT_EQ(zel::object_getClassName(made), longName);
  EXPECT_EQ((send<zel::Class*, "class">(made)), added);
  Lines names;
  for (zel::Class* level = added; level != nullptr; level = zel::class_getSuperclass(level)) {
    names.emplace_back(zel::object_getClassName(level));
  }
  EXPECT_EQ(names, (Lines{longName, "NSMutableArray", "NSArray", "NSObject"}));
}

TEST_F(FoundationTest, ADeadObjectHasNoClassName) {
  collectFailures();
  const id text = object("a");
  foundation_.drainPool();
  EXPECT_THROW(zel::object_getClassName(text), std::logic_error);
  EXPECT_EQ(failures_, Lines{"the class name of what is no live object"});
}

}  // namespace
