// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/datetime.h>

#include "support/expect_status.h"

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <optional>
#include <random>
#include <utility>

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

/// A time zone for the length of a test.
class TZone {
 public:
  explicit TZone(const char* name) {
    ::setenv("TZ", name, 1);
    ::tzset();
  }
  ~TZone() {
    ::unsetenv("TZ");
    ::tzset();
  }
  TZone(const TZone&) = delete;
  TZone& operator=(const TZone&) = delete;
};

TCIMDateTime Parse(const std::string& text) { return TCIMDateTime(text); }

TCIMDateTime PointOf(const std::tm& fields, int offset) {
  return TCIMDateTime(
      static_cast<std::uint16_t>(fields.tm_year + 1900),
      static_cast<std::uint16_t>(fields.tm_mon + 1), static_cast<std::uint32_t>(fields.tm_mday),
      static_cast<std::uint16_t>(fields.tm_hour), static_cast<std::uint16_t>(fields.tm_min),
      static_cast<std::uint16_t>(fields.tm_sec), 0, static_cast<std::int16_t>(offset));
}

TEST(CIMDateTime, IsNullUntilSet) {
  TCIMDateTime value;
  EXPECT_TRUE(value.IsNull());
  EXPECT_QDX_STATUS(value.ToString(), kQDXStatusInvalidDateTime);
  EXPECT_QDX_STATUS(value.ToUIString(), kQDXStatusInvalidDateTime);
  value.Set("20040315143000.000000+060");
  EXPECT_FALSE(value.IsNull());
  value.Clear();
  EXPECT_EQ(value.GetYear(), 2004);
  EXPECT_QDX_STATUS(value.ToString(), kQDXStatusInvalidDateTime);
  EXPECT_QDX_STATUS(value == value, kQDXStatusInvalidDateTime);
  EXPECT_QDX_STATUS(value - Parse("00000001000000.000000:000"), kQDXStatusInvalidDateTime);
}

TEST(CIMDateTime, CopiesAllButThePrecisionFlag) {
  TCIMDateTime value(2004, 3, 15, 14, 30, 15, 7, -90);
  value.SetPrecision(true);
  const TCIMDateTime copy(value);
  TCIMDateTime assigned;
  const boost::shared_ptr<TCIMDateTimeImpl> before = assigned.GetBody();
  assigned = value;
  for (const TCIMDateTime& other : {copy, assigned}) {
    EXPECT_EQ(other.ToString(), value.ToString());
    EXPECT_FALSE(other.GetPrecision());
    EXPECT_NE(other.GetBody(), value.GetBody());
  }
  EXPECT_TRUE(before->IsNull());
  EXPECT_TRUE(value.GetPrecision());
  value.GetBody()->Clear();
  EXPECT_TRUE(value.IsNull());
}

TEST(CIMDateTime, KeepsThePointsFieldsBehindAnInterval) {
  TCIMDateTime value(2004, 3, 15, 14, 30, 15, 7, -90);
  value.Set(8, 7, 6, 5, 4);
  EXPECT_TRUE(value.IsInterval());
  EXPECT_EQ(value.GetYear(), 2004);
  EXPECT_EQ(value.GetMonth(), 3);
  EXPECT_EQ(value.GetUTCOffset(), -90);
  EXPECT_EQ(value.GetDay(), 8U);
}

TEST(CIMDateTimeText, SurvivesARoundTrip) {
  for (const char* text :
       {"20040315143000.000000+060", "20040229000000.000000+000", "20040230000000.000000-300",
        "00000001020304.000005:000", "00065535235959.065535:000", "99999999999999.000000+999"}) {
    EXPECT_EQ(Parse(text).ToString(), text);
  }
  EXPECT_EQ(Parse("20040315143000.000000-000").ToString(), "20040315143000.000000+000");
}

TEST(CIMDateTimeText, NarrowsMicrosecondsAndDays) {
  EXPECT_EQ(Parse("20040315143000.123456+060").GetMicroSeconds(), 57920U);
  EXPECT_EQ(Parse("00000000235959.999999:000").GetMicroSeconds(), 16959U);
  EXPECT_EQ(Parse("00070000000000.000000:000").GetDay(), 4464U);
}

TEST(CIMDateTimeText, KeepsFieldsThatCarryOver) {
  EXPECT_EQ(Parse("20041399999999.000000+000").ToString(), "20041399999999.000000+000");
  EXPECT_EQ(Parse("00000001000000.000000+000").GetYear(), 0);
}

TEST(CIMDateTimeText, WritesTooLargeFieldsWhole) {
  EXPECT_EQ(TCIMDateTime(65535, 3, 100, 4, 5, 6, 12345678, -1000).ToString(),
            "6553503100040506.12345678-1000");
  EXPECT_EQ(TCIMDateTime(4294967295U, 1, 2, 3, 4).ToString(), "4294967295010203.000004:000");
}

TEST(CIMDateTimeText, ThatIsBadIsRefusedAndChangesNothing) {
  for (const std::string bad :
       {"", "20040315143000.00000+060", "20040315143000.0000000+060", "20040315143000,000000+060",
        " 0040315143000.000000+060", "20040315143000.00000*+060", "20040315143000.000000*060",
        "20040315143000.000000+06a", "00000001020304.000005:001", "00000000240000.000000:000",
        "00000000006000.000000:000", "00000000000060.000000:000"}) {
    TCIMDateTime value(1, 2, 3, 4, 5);
    EXPECT_QDX_STATUS(value.Set(bad), kQDXStatusInvalidDateTime) << bad;
    EXPECT_QDX_STATUS(TCIMDateTime{bad}, kQDXStatusInvalidDateTime) << bad;
    EXPECT_EQ(value.ToString(), "00000001020304.000005:000") << bad;
  }
}

TEST(CIMDateTime, RefusesIntervalsOutOfRange) {
  EXPECT_QDX_STATUS(TCIMDateTime(0, 0, 0, 0, 1000000), kQDXStatusInvalidDateTime);
  EXPECT_TRUE(TCIMDateTimeImpl::IsValid(4294967295U, 23, 59, 59, 999999));
  TCIMDateTime value(1, 2, 3, 4, 5);
  EXPECT_QDX_STATUS(value.Set(1, 24, 0, 0, 0), kQDXStatusInvalidDateTime);
  EXPECT_EQ(value.ToString(), "00000001020304.000005:000");
}

/// The shortcuts around mktime() must never show: points around moves of a zone's offset, or far
/// from any, against mktime() itself.
TEST(CIMDateTime, IsTakenAndOrderedAsMktimeHasIt) {
  if (!std::filesystem::exists("/usr/share/zoneinfo/right")) GTEST_SKIP() << "needs tzdata";
  const struct {
    const char* fZone;
    std::time_t fCentre;
    int fSecondsAround;
    bool fRefusesSome;
  } rows[] = {{"UTC", -1, 30, true},
              {"ABC-14", -1, 30, true},
              {"ABC+24:59:59", -1, 30, true},
              {"America/Caracas", 1462086000, 10000, true},  // standard time skips half an hour
              {"Asia/Pyongyang", 1525446000, 1000000, true},
              {"Pacific/Kwajalein", 745934400, 1000000, true},  // and a day
              {"America/New_York", 1331449200, 1000000, false},
              {"right/UTC", 1483228826, 100, false},
              {"Asia/Kolkata", 0, 2000000000, false}};
  std::mt19937 random(1);
  const auto number = [&random](int from, int to) {
    return std::uniform_int_distribution<int>(from, to)(random);
  };
  for (const auto& row : rows) {
    const TZone set(row.fZone);
    std::tm fields{};
    ::localtime_r(&row.fCentre, &fields);
    const std::time_t centre = row.fCentre + fields.tm_gmtoff;
    bool refused = false;
    std::optional<std::pair<TCIMDateTime, std::time_t>> before;
    for (int i = 0; i < 3000; ++i) {
      const int offset = number(-2, 2) * 30;
      const std::time_t shown =
          centre + number(-row.fSecondsAround, row.fSecondsAround) + offset * 60;
      ::gmtime_r(&shown, &fields);
      if (i % 3 == 0 && fields.tm_min > 0) {  // a minute's worth of seconds that carry over
        --fields.tm_min;
        fields.tm_sec += 60;
      }
      std::tm converted = fields;
      converted.tm_min -= offset;
      const std::time_t instant = std::mktime(&converted);
      const auto make = [&] { return PointOf(fields, offset); };
      ASSERT_EQ(StatusThrownBy(make), instant == -1 ? "kQDXStatusInvalidDateTime" : "nothing")
          << row.fZone << " " << shown << " " << offset;
      refused = refused || instant == -1;
      if (instant == -1) continue;
      if (before) {
        ASSERT_EQ(before->first == make(), before->second == instant) << row.fZone << " " << shown;
        ASSERT_EQ(before->first < make(), before->second < instant) << row.fZone << " " << shown;
      }
      before.emplace(make(), instant);
    }
    EXPECT_EQ(refused, row.fRefusesSome) << row.fZone;
  }
}

TEST(CIMDateTimeComparison, HonoursOffsetsAndFractions) {
  // Each is less than the next.
  const TCIMDateTime points[] = {
      Parse("20040315132959.000000+000"), Parse("20040315143000.000000+060"),
      Parse("20040315133000.000001+000"), Parse("20040315133001.000000+000"),
      Parse("20040315133000.000000-001")};
  for (std::size_t i = 0; i + 1 < std::size(points); ++i) {
    EXPECT_TRUE(points[i] < points[i + 1]) << i;
    EXPECT_FALSE(points[i + 1] < points[i]) << i;
    EXPECT_FALSE(points[i] == points[i + 1]) << i;
  }
  EXPECT_TRUE(Parse("20040315143000.000000+060") == Parse("20040315133000.000000+000"));
  EXPECT_TRUE(TCIMDateTime(1, 0, 0, 0, 0) ==
              TCIMDateTime(0, 23, 59, 59, 0) + TCIMDateTime(0, 0, 0, 1, 0));
  EXPECT_TRUE(TCIMDateTime(0, 0, 0, 1, 5) < TCIMDateTime(0, 0, 0, 1, 6));
  EXPECT_QDX_STATUS(points[0] == TCIMDateTime(1, 0, 0, 0, 0), kQDXStatusInvalidDateTime);
  EXPECT_QDX_STATUS(TCIMDateTime(1, 0, 0, 0, 0) < points[0], kQDXStatusInvalidDateTime);
}

TEST(CIMDateTimeArithmetic, AddsAndSubtracts) {
  const TZone utc("UTC");
  const TCIMDateTime noon = Parse("20040228120000.000500+060");
  const TCIMDateTime day(1, 0, 0, 0, 600);
  EXPECT_EQ((noon + day).ToString(), "20040229120000.001100+060");
  EXPECT_EQ((day + noon).ToString(), "20040229120000.001100+060");
  EXPECT_EQ((noon - TCIMDateTime(1, 0, 0, 0, 100)).ToString(), "20040227120000.000400+060");
  EXPECT_EQ((TCIMDateTime(0, 23, 59, 59, 500000) + TCIMDateTime(0, 0, 0, 0, 600000)).ToString(),
            "00000001000000.100000:000");
  const TCIMDateTime later = Parse("20040301130001.000000-060");
  for (const TCIMDateTime& distance : {later - noon, noon - later}) {
    EXPECT_EQ(distance.ToString(), "00000002030000.999500:000");
  }
  EXPECT_EQ((day - TCIMDateTime(0, 1, 0, 0, 0)).ToString(), "00000000230000.000600:000");
  EXPECT_EQ((TCIMDateTime(0, 1, 0, 0, 0) - day).ToString(), "00000000230000.000600:000");
  EXPECT_QDX_STATUS(noon + later, kQDXStatusInvalidDateTime);
  TCIMDateTime first, second;
  EXPECT_QDX_STATUS(noon.GetDifference(first, second), kQDXStatusNotImplemented);
}

TEST(CIMDateTimeArithmetic, RefusesTheInstantThatMktimeDoes) {
  const TZone utc("UTC");
  const TCIMDateTime point = Parse("19691231235959.000000+001");  // taken: its offset moves it
  const TCIMDateTime second(0, 0, 0, 1, 0);
  EXPECT_QDX_STATUS(point + second, kQDXStatusInvalidDateTime);
  EXPECT_QDX_STATUS(second - point, kQDXStatusInvalidDateTime);
  EXPECT_QDX_STATUS(point - point, kQDXStatusInvalidDateTime);
}

TEST(CIMDateTimeComparison, NoticesThatTheZoneHasChanged) {
  std::optional<TZone> zone("ABC-1");
  const TCIMDateTime point = Parse("19691231235959.000000+000");
  EXPECT_TRUE(point == point);
  zone.emplace("UTC");
  EXPECT_QDX_STATUS(point == point, kQDXStatusInvalidDateTime);
  EXPECT_QDX_STATUS(point < Parse("20000101000000.000000+000"), kQDXStatusInvalidDateTime);
}

TEST(CIMDateTimeArithmetic, ExchangesTheFractionsOfIntervalMinusPoint) {
  const TZone utc("UTC");
  const TCIMDateTime point = Parse("20040229120000.000500+060");
  EXPECT_EQ((TCIMDateTime(1, 0, 0, 0, 600) - point).ToString(), "20040228120000.000100+060");
  EXPECT_EQ((point - TCIMDateTime(1, 0, 0, 0, 400)).ToString(), "20040228120000.000100+060");
}

TEST(CIMDateTimeArithmetic, KeepsTheOddResultsBefore1970) {
  const TZone utc("UTC");
  const TCIMDateTime sum = Parse("19691231235000.000001+000") + TCIMDateTime(0, 0, 0, 1, 0);
  EXPECT_EQ(sum.ToString(), "19700101000958.4293967297+000");
  const TCIMDateTime less = Parse("19691231235000.000001+000") - TCIMDateTime(0, 0, 0, 1, 0);
  EXPECT_EQ(less.ToString(), "19700101001000.999999+000");
}

TEST(CIMDateTimeArithmetic, WrapsTheSecondsOfIntervals) {
  // 49711 days are 2^32 seconds and 63104 more.
  EXPECT_EQ((TCIMDateTime(49711, 0, 0, 0, 0) + TCIMDateTime(0, 0, 0, 0, 0)).ToString(),
            "00000000173144.000000:000");
  EXPECT_TRUE(TCIMDateTime(49711, 0, 0, 0, 0) == TCIMDateTime(0, 17, 31, 44, 0));
}

TEST(CIMDateTimeArithmetic, RunsOnTheWallClockWithoutDaylightSaving) {
  const TZone zone("EST5EDT,M3.2.0,M11.1.0");
  EXPECT_EQ((Parse("20040715120000.000000-300") + TCIMDateTime(1, 0, 0, 0, 0)).ToString(),
            "20040716120000.000000-300");
  EXPECT_EQ((Parse("20041030120000.000000-300") + TCIMDateTime(2, 0, 0, 0, 0)).ToString(),
            "20041101120000.000000-300");
}

TEST(CIMDateTimeArithmetic, HoldsTheFarthestYears) {
  const TZone utc("UTC");
  const TCIMDateTime far(65000, 1, 1, 0, 0, 0, 0, 0);
  EXPECT_EQ((far + TCIMDateTime(1, 0, 0, 0, 5)).ToString(), "650000102000000.000005+000");
  EXPECT_EQ((far - TCIMDateTime(64999, 12, 31, 0, 0, 0, 0, 0)).ToString(),
            "00000001000000.000000:000");
  const TCIMDateTime days(65535, 1, 2147483647, 0, 0, 0, 0, 0);  // beyond 64 bits of microseconds
  EXPECT_EQ((days - far).GetDay(), 2147483646U + 195404U);
}

TEST(CIMDateTimeDisplay, IsForPeople) {
  EXPECT_EQ(Parse("20040315143000.000000+060").ToUIString(), "03/15/2004 14:30:00");
  const struct {
    TCIMDateTime fInterval;
    const char* fText;
  } rows[] = {
      {TCIMDateTime(0, 0, 0, 0, 0), ""},
      {TCIMDateTime(1, 1, 1, 1, 1001),
       "1 day 1 hour 1 minute 1 second 1 millisecond 1 microsecond "},
      {TCIMDateTime(1, 2, 0, 1, 1500), "1 day 2 hours 1 second 1 millisecond 500 microseconds "},
      {TCIMDateTime(70000, 0, 2, 2, 2000), "70000 days 2 minutes 2 seconds 2 milliseconds "},
  };
  for (const auto& row : rows) EXPECT_EQ(row.fInterval.ToUIString(), row.fText);
}

}  // namespace
}  // namespace NVORNQDX20
