// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/datetime.h>

#include "support/expect_status.h"
#include "support/temp_dir.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <random>
#include <tuple>
#include <utility>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

/// The zone of the C library and of /etc/localtime while a test sets one; 0 is the real one.
static int gHoursEast = 0;

// These stand before the C library's functions.
extern "C" {
__attribute__((visibility("default"))) std::tm* localtime_r(const std::time_t* time,
                                                            std::tm* result) noexcept {
  static const auto next =
      reinterpret_cast<decltype(&localtime_r)>(::dlsym(RTLD_NEXT, "localtime_r"));
  const std::time_t shown = *time + gHoursEast * 3600;
  return gHoursEast == 0 ? next(time, result) : ::gmtime_r(&shown, result);
}
__attribute__((visibility("default"))) std::time_t mktime(std::tm* fields) noexcept {
  static const auto next = reinterpret_cast<decltype(&mktime)>(::dlsym(RTLD_NEXT, "mktime"));
  return gHoursEast == 0 ? next(fields) : ::timegm(fields) - gHoursEast * 3600;
}
__attribute__((visibility("default"))) int stat(const char* path, struct stat* result) noexcept {
  if (gHoursEast == 0 || std::strcmp(path, "/etc/localtime") != 0) {
    return ::fstatat(AT_FDCWD, path, result, 0);
  }
  *result = {};
  result->st_ino = static_cast<ino_t>(gHoursEast + 100);
  return 0;
}
}

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

TCIMDateTime PointOf(const std::tm& fields, int utcOffset) {
  const auto field = [](int number) { return static_cast<std::uint16_t>(number); };
  return TCIMDateTime(field(fields.tm_year + 1900), field(fields.tm_mon + 1), field(fields.tm_mday),
                      field(fields.tm_hour), field(fields.tm_min), field(fields.tm_sec), 0,
                      static_cast<std::int16_t>(utcOffset));
}

/// The shortcuts around mktime() must never show: points around moves of a zone's offset, or far
/// from any, against mktime() itself.
TEST(CIMDateTime, IsTakenAndOrderedAsMktimeHasIt) {
  if (!std::filesystem::exists("/usr/share/zoneinfo/right")) GTEST_SKIP() << "needs tzdata";
  // Zone, reading of its clock, seconds around it, whether some are refused.
  const std::tuple<const char*, std::time_t, int, bool> rows[] = {
      {"UTC", -1, 30, true},
      {"ABC+24:59:59", -90000, 30, true},
      // What was learnt of one zone, or of a year, must not serve for the next.
      {nullptr, 1525478400, 1000000, false},
      {"Asia/Pyongyang", 1525478400, 1000000, true},
      {"/usr/share/zoneinfo/Asia/../Asia/../Asia/../Asia/../Etc/Universal", 1525478400, 1000000,
       false},
      {"Asia/Pyongyang", 1525478400, 1000000, true},
      {"UTC", 1525478400, 1000000, false},
      {"Asia/Pyongyang", 1525478400, 1000000, true},
      {"America/Caracas", -1369085260, 10000, false},
      {"America/Caracas", 1462069800, 10000, true},     // standard time skips half an hour
      {"Pacific/Kwajalein", 745891200, 1000000, true},  // and a day
      {"Asia/Seoul", -264901500, 10000, true},          // before 1970
      {"America/New_York", 1331434800, 1000000, false},
      // In summer, between two winters whose offsets differ.
      {"Europe/Istanbul", 1466265600, 4000, false},
      {"America/Jujuy", 693327600, 4000, false},
      {"right/UTC", 1483228827, 5, false},
      // In March of the year 0, and at New Year.
      {"UTC", -62162035200, 500000, false},
      {"UTC", 1072915200, 500000, false},
      // In March of 2000, 1900 and 400, where the leap years of a calendar end.
      {"UTC", 951868800, 500000, false},
      {"UTC", -2203891200, 500000, false},
      {"UTC", -49539254400, 500000, false},
      {"Asia/Kolkata", 19800, 2000000000, false}};
  std::mt19937 random(1);
  const auto number = [&random](int from, int to) {
    return std::uniform_int_distribution<int>(from, to)(random);
  };
  for (const auto& [zone, centre, around, refusesSome] : rows) {
    SetZone(zone);
    bool refused = false;
    TCIMDateTime last;
    std::time_t lastInstant = 0;
    for (int i = 0; i < 3000; ++i) {
      const int offset = number(-2, 2) * 30;
      const std::time_t shown = centre + number(-around, around) + offset * 60;
      std::tm fields{};
      ::gmtime_r(&shown, &fields);
      if (number(0, 1) == 0 && fields.tm_min > 0) {  // seconds that carry over
        --fields.tm_min;
        fields.tm_sec += 60;
      }
      if (fields.tm_mon % 11 == 0) {  // months too: December is number 0, January 13
        const int years = fields.tm_mon == 0 ? -1 : 1;
        fields.tm_year += years;
        fields.tm_mon -= 12 * years;
      }
      TCIMDateTime point;
      const std::string status = StatusThrownBy([&] { point = PointOf(fields, offset); });
      fields.tm_min -= offset;
      const std::time_t instant = std::mktime(&fields);
      SCOPED_TRACE(::testing::Message() << zone << " " << shown << " " << offset);
      ASSERT_EQ(status, instant == -1 ? "kQDXStatusInvalidDateTime" : "nothing");
      refused |= instant == -1;
      if (instant == -1) continue;
      ASSERT_TRUE(last.IsNull() || (last == point) == (lastInstant == instant));
      ASSERT_TRUE(last.IsNull() || (last < point) == (lastInstant < instant));
      last = point;
      lastInstant = instant;
    }
    EXPECT_TRUE(zone == nullptr || refused == refusesSome) << zone;
  }
}

/// The distance of two points is that of their instants by mktime(), around changes of daylight
/// saving.
TEST(CIMDateTime, IsMeasuredAsMktimeHasIt) {
  const std::pair<const char*, std::time_t> rows[] = {
      {"Europe/Berlin", 1459040400},
      {"Europe/Berlin", 1477789200},
      {"Europe/London", -904518000},        // from summer time to double summer time
      {"Europe/Dublin", 1477789200},        // where winter is the exception
      {"Antarctica/Troll", 1459040400},     // two hours
      {"Australia/Lord_Howe", 1459609200},  // half an hour
      {"Africa/Casablanca", 1557021600},
      {"right/America/Denver", 127290592},  // standard time is found before a leap second
      {"AAA0BBB-3,J100/0,J100/5", 1460246400}};
  std::mt19937 random(1);
  for (const auto& [zone, centre] : rows) {
    SetZone(zone);
    TCIMDateTime last;
    std::time_t lastInstant = 0;
    for (int i = 0; i < 2000; ++i) {
      const int around = i % 2 == 0 ? 10000 : 2000000;
      const std::time_t shown =
          centre + std::uniform_int_distribution<int>(-around, around)(random);
      std::tm fields{};
      ::gmtime_r(&shown, &fields);
      const TCIMDateTime point = PointOf(fields, 0);
      const std::time_t instant = std::mktime(&fields);
      if (i > 0) {
        const TCIMDateTime distance = point - last;
        ASSERT_EQ(distance.GetDay() * 86400 + distance.GetHour() * 3600 +
                      distance.GetMinute() * 60 + distance.GetSecond(),
                  std::abs(instant - lastInstant))
            << zone << " " << shown;
      }
      last = point;
      lastInstant = instant;
    }
  }
}

/// However the environment changes, the next operation is in the zone of TZ: in Kwajalein there was
/// no such day.
TEST(CIMDateTime, FollowsTheEnvironment) {
  if (!std::filesystem::exists("/usr/share/zoneinfo")) GTEST_SKIP() << "needs tzdata";
  const auto isTaken = [] { return TCIMDateTimeImpl::IsValid(1993, 8, 21, 12, 0, 0, 0, 0); };
  const char* const kSkipping = "Pacific/Kwajalein";
  ::unsetenv("TZ");
  ::setenv("FIRST", "1", 1);
  ::setenv("SECOND", "2", 1);
  EXPECT_TRUE(isTaken());
  ::unsetenv("SECOND");
  ::setenv("TZ", kSkipping, 1);  // as many entries as before
  EXPECT_FALSE(isTaken());
  ::unsetenv("FIRST");
  EXPECT_FALSE(isTaken());
  ::unsetenv("TZ");
  EXPECT_TRUE(isTaken());

  char entry[32] = "TZ=UTC";
  ::putenv(entry);
  EXPECT_TRUE(isTaken());
  std::strcpy(entry + 3, kSkipping);
  EXPECT_FALSE(isTaken());
  for (int i = 0; i < 1100; ++i) ::setenv(("FILLER" + std::to_string(i)).c_str(), "", 1);
  std::strcpy(entry + 3, "UTC");
  EXPECT_TRUE(isTaken());
  ::unsetenv("TZ");
  EXPECT_TRUE(isTaken());
  ::setenv("TZ", kSkipping, 1);  // comes last, too far to be remembered
  EXPECT_FALSE(isTaken());

  std::string longPath = ":/usr/share/zoneinfo";
  for (int i = 0; i < 150; ++i) longPath += "/.";
  ::setenv("TZ", (longPath + "/UTC").c_str(), 1);
  EXPECT_TRUE(isTaken());
  ::setenv("TZ", (longPath + "/" + kSkipping).c_str(), 1);
  EXPECT_FALSE(isTaken());

  for (int i = 0; i < 1100; ++i) ::unsetenv(("FILLER" + std::to_string(i)).c_str());
  EXPECT_FALSE(isTaken());
  ::unsetenv("TZ");
  static char first[32] = "A=1";
  static char second[32] = "B=2";
  ::putenv(first);
  ::setenv("LAST", "1", 1);
  EXPECT_TRUE(isTaken());
  // An entry takes the name where it is, or comes back with it, and another one comes last.
  ::putenv(second);
  for (char* const renamed : {first, second}) {
    std::strcpy(renamed, ("TZ=" + std::string(kSkipping)).c_str());
    EXPECT_FALSE(isTaken());
    std::strcpy(renamed, "C=3");
    EXPECT_TRUE(isTaken());
  }
  ::unsetenv("C");
  std::strcpy(first, ("TZ=" + std::string(kSkipping)).c_str());
  ::putenv(first);
  ::setenv("LAST", "1", 1);
  EXPECT_FALSE(isTaken());

  char* own[] = {entry, nullptr};
  char** const old = std::exchange(environ, own);
  EXPECT_TRUE(isTaken());
  environ = nullptr;
  EXPECT_TRUE(isTaken());
  // It is not read beyond its end, however long it was.
  const std::size_t page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
  void* const memory =
      ::mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(memory, MAP_FAILED);
  environ = reinterpret_cast<char**>(static_cast<char*>(memory) + page) - 2;
  std::fill_n(environ, 60, &second[0]);
  EXPECT_TRUE(isTaken());
  environ[1] = nullptr;
  ::mprotect(static_cast<char*>(memory) + page, page, PROT_NONE);
  EXPECT_TRUE(isTaken());
  environ = old;
  EXPECT_FALSE(isTaken());
  ::munmap(memory, 2 * page);
  for (const char* name : {"TZ", "C", "LAST"}) ::unsetenv(name);
}

/// The C library reads a replaced file of TZ again when TZ was another one in the meantime, which
/// need not be seen here.
TEST(CIMDateTime, FollowsAReplacedFileOfTZ) {
  const std::filesystem::path zones = "/usr/share/zoneinfo";
  if (!std::filesystem::exists(zones)) GTEST_SKIP() << "needs tzdata";
  const TTempDir directory;
  const std::string file = (directory.Path() / "zone").string(), name = ":" + file;
  const TCIMDateTime noon(2020, 7, 1, 12, 0, 0, 0, 0);
  const TCIMDateTime day(1, 0, 0, 0, 0);
  const auto isTaken = [] { return TCIMDateTimeImpl::IsValid(1993, 8, 21, 12, 0, 0, 0, 0); };
  std::filesystem::copy(zones / "UTC", file);
  SetZone(name.c_str());
  EXPECT_EQ((noon + day).ToString(), "20200702120000.000000+000");
  EXPECT_TRUE(isTaken());
  std::filesystem::copy(zones / "Pacific/Kwajalein", file + ".new");
  std::filesystem::rename(file + ".new", file);
  for (const char* zone : {"UTC", name.c_str()}) {
    SetZone(zone);
    ::tzset();
  }
  EXPECT_EQ((noon + day).ToString(), "20200702120000.000000+000");
  ::usleep(1100000);  // until it is noticed
  EXPECT_FALSE(isTaken());
  SetZone("UTC");
  EXPECT_TRUE(isTaken());
}

/// In the second before a replaced /etc/localtime is noticed, too, no operation mixes two zones.
TEST(CIMDateTime, IsMovedInOneZoneWhileItsFileIsReplaced) {
  SetZone(nullptr);
  const TCIMDateTime noon(2020, 7, 1, 12, 0, 0, 5, 60);
  const TCIMDateTime nearEpoch(1970, 1, 2, 12, 0, 0, 0, 60);  // always by mktime()
  std::uint16_t year = 1985;
  for (const int hours : {1, 9, -5}) {
    gHoursEast = hours;
    // In years that were not looked at yet, unlike that of noon.
    const TCIMDateTime early(++year, 7, 1, 12, 0, 0, 5, 60), later(++year, 7, 1, 12, 0, 0, 5, 60);
    EXPECT_EQ((noon - early).GetHour(), 0);
    EXPECT_EQ((later - noon).GetHour(), 0);
    EXPECT_EQ((noon + TCIMDateTime(1, 0, 0, 0, 0)).ToString(), "20200702120000.000005+060");
    EXPECT_EQ((noon - TCIMDateTime(1, 0, 0, 0, 0)).ToString(), "20200630120000.000005+060");
    EXPECT_EQ((noon - nearEpoch).ToString(), "00018443000000.000005:000");
  }
  gHoursEast = 0;
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
