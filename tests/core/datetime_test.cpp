// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/datetime.h>

#include "support/expect_status.h"

#include <cstdlib>
#include <string>

using namespace NVORNQDX20;

namespace {

/// The time zone from here on, or the host's for null: a test that depends on it sets its own.
void SetZone(const char* name) { name == nullptr ? ::unsetenv("TZ") : ::setenv("TZ", name, 1); }

TCIMDateTime Parse(const std::string& text) { return TCIMDateTime(text); }

/// Comparing, adding and subtracting each throw.
void ExpectRefused(const TCIMDateTime& left, const TCIMDateTime& right) {
  EXPECT_QDX_STATUS(left == right, kQDXStatusInvalidDateTime);
  EXPECT_QDX_STATUS(left < right, kQDXStatusInvalidDateTime);
  EXPECT_QDX_STATUS(left + right, kQDXStatusInvalidDateTime);
  EXPECT_QDX_STATUS(left - right, kQDXStatusInvalidDateTime);
}

TEST(CIMDateTime, IsNullUntilSet) {
  TCIMDateTime value;
  EXPECT_TRUE(value.IsNull());
  EXPECT_QDX_STATUS(value.ToUIString(), kQDXStatusInvalidDateTime);
  value.Set("20040315143000.000000+060");
  EXPECT_FALSE(value.IsNull());
  value.Clear();
  EXPECT_EQ(value.GetYear(), 2004);
  EXPECT_QDX_STATUS(value.ToString(), kQDXStatusInvalidDateTime);
  // As an operand, it would otherwise pass for the interval that it was.
  TCIMDateTime null(1, 2, 3, 4, 5);
  null.Clear();
  for (const TCIMDateTime& other :
       {null, Parse("20040315143000.000000+060"), TCIMDateTime(1, 2, 3, 4, 5)}) {
    ExpectRefused(null, other);
    ExpectRefused(other, null);
  }
}

TEST(CIMDateTime, CopiesAllButThePrecisionFlag) {
  TCIMDateTime value(2004, 3, 15, 14, 30, 15, 7, -90);
  value.SetPrecision(true);
  TCIMDateTime assigned;
  const boost::shared_ptr<TCIMDateTimeImpl> before = assigned.GetBody();
  assigned = value;
  EXPECT_TRUE(before->IsNull());
  EXPECT_NE(assigned.GetBody(), value.GetBody());
  for (const TCIMDateTime& copy : {assigned, value}) {
    EXPECT_EQ(copy.ToString(), "20040315143015.000007-090");
    EXPECT_FALSE(copy.GetPrecision());
  }
  EXPECT_TRUE(value.GetPrecision());
}

TEST(CIMDateTime, KeepsThePointsFieldsBehindAnInterval) {
  TCIMDateTime value(2004, 3, 15, 14, 30, 15, 7, -90);
  value.Set(8, 7, 6, 5, 4);
  EXPECT_EQ(value.ToString(), "00000008070605.000004:000");
  EXPECT_EQ(value.GetYear() * 100 + value.GetMonth(), 200403);
  EXPECT_EQ(value.GetUTCOffset(), -90);
  value.Set("20040315143000.000000+060");
  EXPECT_FALSE(value.IsInterval());
}

TEST(CIMDateTimeText, SurvivesARoundTrip) {
  for (const char* text :
       {"20040315143000.000000+060", "20040230000000.000000-300", "00000001020304.000005:000",
        "00065535235959.065535:000", "99999999999999.000000+999", "00000001000000.000000+000",
        "20041399999999.000000+000"}) {
    EXPECT_EQ(Parse(text).ToString(), text);
  }
  EXPECT_EQ(Parse("20040315143000.000000-000").ToString(), "20040315143000.000000+000");
}

TEST(CIMDateTimeText, NarrowsMicrosecondsAndDays) {
  EXPECT_EQ(Parse("20040315143000.123456+060").GetMicroSeconds(), 57920U);
  EXPECT_EQ(Parse("00070000235959.999999:000").ToString(), "00004464235959.016959:000");
}

TEST(CIMDateTimeText, KeepsFieldsThatCarryOver) {
  EXPECT_EQ(TCIMDateTime(65535, 3, 100, 4, 5, 6, 12345678, -1000).ToString(),
            "6553503100040506.12345678-1000");
}

TEST(CIMDateTimeText, ThatIsBadIsRefusedAndChangesNothing) {
  TCIMDateTime value(1, 2, 3, 4, 5);
  for (const std::string bad :
       {"", "20040315143000.00000+060", "20040315143000.000000+0600", "20040315143000,000000+060",
        " 0040315143000.000000+060", "20040315143000.00000*+060", "20040315143000.000000*060",
        "20040315143000.000000+06a", "00000001020304.000005:001", "00000000240000.000000:000",
        "00000000006000.000000:000", "00000000000060.000000:000"}) {
    EXPECT_QDX_STATUS(value.Set(bad), kQDXStatusInvalidDateTime) << bad;
  }
  EXPECT_QDX_STATUS(value.Set(0, 0, 0, 0, 1000000), kQDXStatusInvalidDateTime);
  EXPECT_EQ(value.ToString(), "00000001020304.000005:000");
  EXPECT_EQ(TCIMDateTime(4294967295U, 23, 59, 59, 999999).ToString(),
            "4294967295235959.999999:000");
}

TEST(CIMDateTimeText, HasDigitsAndNothingElse) {
  for (const std::string good : {"20040315143000.000000+060", "00000001020304.000005:000"}) {
    for (std::size_t position = 0; position < good.size(); ++position) {
      for (int c = 0; c < 256; ++c) {
        std::string text = good;
        text[position] = static_cast<char>(c);
        const bool isDigit = c >= '0' && c <= '9';
        const bool isInterval = good[21] == ':';
        // Hours, minutes and seconds of an interval have limits.
        if (isInterval && isDigit && position >= 8 && position < 14) continue;
        const bool isGood = position == 14   ? c == '.'
                            : position == 21 ? c == '+' || c == '-' || (c == ':' && isInterval)
                            : isInterval && position > 21 ? c == '0'
                                                          : isDigit;
        const std::string status = StatusThrownBy([&] { (void)Parse(text); });
        ASSERT_EQ(status, isGood ? "nothing" : "kQDXStatusInvalidDateTime") << text;
        if (isGood && !isInterval && position < 15) {
          ASSERT_EQ(Parse(text).ToString(), text);
        }
      }
    }
  }
}

TEST(CIMDateTimeComparison, HonoursOffsetsAndFractions) {
  // Each is less than the next.
  const TCIMDateTime points[] = {
      Parse("20040315132959.000000+000"), Parse("20040315143000.000000+060"),
      Parse("20040315133000.000001+000"), Parse("20040315133001.000000+000"),
      Parse("20040315133000.000000-001")};
  for (std::size_t i = 0; i + 1 < std::size(points); ++i) {
    const TCIMDateTime &less = points[i], &more = points[i + 1];
    EXPECT_TRUE(less < more && less <= more && less != more && !(less == more)) << i;
    EXPECT_TRUE(more > less && more >= less && !(more < less) && !(more <= less)) << i;
    EXPECT_TRUE(less <= less && less >= less && !(less > less) && !(less != less)) << i;
  }
  EXPECT_TRUE(points[1] == Parse("20040315133000.000000+000"));
  EXPECT_TRUE(TCIMDateTime(0, 0, 0, 1, 5) < TCIMDateTime(0, 0, 0, 1, 6));
  EXPECT_QDX_STATUS(points[0] == TCIMDateTime(1, 0, 0, 0, 0), kQDXStatusInvalidDateTime);
  EXPECT_QDX_STATUS(TCIMDateTime(1, 0, 0, 0, 0) < points[0], kQDXStatusInvalidDateTime);
}

/// Each is "left + right = result" or "left - right = result", or a status where that is thrown.
void ExpectSums(const char* zone, std::initializer_list<std::string> sums) {
  SetZone(zone);
  for (const std::string& sum : sums) {
    const TCIMDateTime left(sum.substr(0, 25)), right(sum.substr(28, 25));
    std::string result;
    const std::string status =
        StatusThrownBy([&] { result = (sum[26] == '+' ? left + right : left - right).ToString(); });
    EXPECT_EQ(result.empty() ? status : result, sum.substr(56)) << sum;
  }
}

TEST(CIMDateTimeArithmetic, AddsAndSubtracts) {
  ExpectSums(
      "UTC",
      {"20040228120000.000500+060 + 00000001000000.000600:000 = 20040229120000.001100+060",
       "00000001000000.000600:000 + 20040228120000.000500+060 = 20040229120000.001100+060",
       "20040228120000.000500+060 - 00000001000000.000100:000 = 20040227120000.000400+060",
       "20040228120000.000500+060 - 20040301130001.000000-060 = 00000002030000.999500:000",
       "20040301130001.000000-060 - 20040228120000.000500+060 = 00000002030000.999500:000",
       "00000000010000.000000:000 - 00000001000000.000600:000 = 00000000230000.000600:000",
       "20040228120000.000500+060 + 20040301130001.000000-060 = kQDXStatusInvalidDateTime",
       // The fractions of an interval less a point are exchanged.
       "00000001000000.000600:000 - 20040229120000.000500+060 = 20040228120000.000100+060",
       // Odd results before 1970.
       "19691231235000.000001+000 + 00000000000001.000000:000 = 19700101000958.4293967297+000",
       "19691231235000.000001+000 - 00000000000001.000000:000 = 19700101001000.999999+000",
       // The point is taken, since its offset moves it, but not the instant of its wall clock.
       "19691231235959.000000+001 + 00000000000001.000000:000 = kQDXStatusInvalidDateTime",
       "00000000000001.000000:000 - 19691231235959.000000+001 = kQDXStatusInvalidDateTime",
       "19691231235959.000000+001 - 19691231235959.000000+001 = kQDXStatusInvalidDateTime",
       // The seconds of intervals wrap: 49711 days are 2^32 and 63104 more.
       "00049711000000.000000:000 + 00000000000000.000000:000 = 00000000173144.000000:000"});
  // On the wall clock, without daylight saving.
  ExpectSums("EST5EDT,M3.2.0,M11.1.0",
             {"20040715120000.000000-300 + 00000001000000.000000:000 = 20040716120000.000000-300",
              "20041030120000.000000-300 + 00000002000000.000000:000 = 20041101120000.000000-300"});
  // Daylight saving for five hours, which no zone of a file has.
  ExpectSums("AAA0BBB-3,J60/0,J60/5",
             {"20040229120000.000000+000 + 00000000130000.000000:000 = 20040301030000.000000+000",
              "20040302010000.000000+000 - 00000001000000.000000:000 = 20040301030000.000000+000"});
  EXPECT_TRUE(TCIMDateTime(49711, 0, 0, 0, 0) == TCIMDateTime(0, 17, 31, 44, 0));
  EXPECT_EQ((TCIMDateTime(0, 23, 59, 59, 500000) + TCIMDateTime(0, 0, 0, 0, 600000)).ToString(),
            "00000001000000.100000:000");
}

TEST(CIMDateTimeArithmetic, HoldsTheFarthestYears) {
  SetZone("UTC");
  const TCIMDateTime far(65000, 1, 1, 0, 0, 0, 0, 0);
  EXPECT_EQ((far + TCIMDateTime(1, 0, 0, 0, 5)).ToString(), "650000102000000.000005+000");
  const TCIMDateTime days(65535, 1, 2147483647, 0, 0, 0, 0, 0);  // beyond 64 bits of microseconds
  EXPECT_EQ((days - far).GetDay(), 2147483646U + 195404U);
  // Days are taken for signed: long before the year 0.
  const TCIMDateTime first1970(1970, 1, 2, 0, 0, 0, 0, 0);
  const TCIMDateTime early(1970, 1, 4000000000U, 0, 0, 0, 0, 0);
  EXPECT_TRUE(early < first1970);
  EXPECT_EQ((first1970 - early).GetDay(), 294967298U);
  TCIMDateTime first, second;
  EXPECT_QDX_STATUS(first.GetDifference(first, second), kQDXStatusNotImplemented);
}

TEST(CIMDateTimeDisplay, IsForPeople) {
  EXPECT_EQ(Parse("20040315143000.000000+060").ToUIString(), "03/15/2004 14:30:00");
  EXPECT_EQ(TCIMDateTime(0, 0, 0, 0, 0).ToUIString(), "");
  EXPECT_EQ(TCIMDateTime(1, 1, 1, 1, 1001).ToUIString(),
            "1 day 1 hour 1 minute 1 second 1 millisecond 1 microsecond ");
  EXPECT_EQ(TCIMDateTime(70000, 0, 2, 0, 1500).ToUIString(),
            "70000 days 2 minutes 1 millisecond 500 microseconds ");
}

}  // namespace
