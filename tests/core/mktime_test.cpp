// SPDX-License-Identifier: Apache-2.0
// Date-times against mktime() and localtime_r() themselves.
#include <qdxcore/datetime.h>

#include "support/expect_status.h"

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

using namespace NVORNQDX20;

namespace {

/// The time zone from here on, or the host's for null.
void SetZone(const char* name) { name == nullptr ? ::unsetenv("TZ") : ::setenv("TZ", name, 1); }

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

/// A reading of a clock that is this many minutes ahead of UTC.
struct TReading {
  std::tm fFields;
  int fOffset;
};

/// By mktime(), which is called with the fields of a local clock.
std::time_t InstantAt(const TReading& reading, int offset) {
  std::tm fields = reading.fFields;
  fields.tm_min -= offset;
  return std::mktime(&fields);
}

/// Where a zone has two answers, mktime() gives the one that is closer to what it was last asked.
bool IsCertain(const TReading& reading, int offset) {
  const std::time_t expected = InstantAt(reading, offset);
  for (const int days : {-40000, -18000, -12, 12, 0, 18000}) {
    TReading other = reading;
    other.fFields.tm_mday += days;
    (void)InstantAt(other, 0);
    if (InstantAt(reading, offset) != expected) return false;
  }
  return true;
}

/// By localtime_r(), without daylight saving; or the status of what mktime() refuses.
std::string PointAt(std::time_t instant, int offset) {
  TReading reading{{}, offset};
  ::localtime_r(&instant, &reading.fFields);
  if (reading.fFields.tm_isdst != 0) {
    instant -= 3600;
    ::localtime_r(&instant, &reading.fFields);
    reading.fFields.tm_isdst = 0;
  }
  if (InstantAt(reading, offset) == -1) return "kQDXStatusInvalidDateTime";
  return PointOf(reading.fFields, offset).ToString();
}

/// In the hour after a change that is the last hour of the days that are looked at together.
TEST(CIMDateTime, IsMovedAsTheCLibraryHasIt) {
  SetZone("Europe/Berlin");
  for (std::time_t shown = 1585443600 - 10000; shown < 1585443600 + 10000; shown += 50) {
    TReading reading{{}, 0};
    ::gmtime_r(&shown, &reading.fFields);
    EXPECT_EQ((PointOf(reading.fFields, 0) + TCIMDateTime(0, 0, 0, 0, 0)).ToString(),
              PointAt(InstantAt(reading, 0), 0));
  }
}

/// Times shortly before and after the local clock changes its distance from UTC.
std::vector<std::time_t> FindChanges() {
  std::vector<std::time_t> changes;
  long last = 0;
  constexpr std::time_t kStep = 6 * 86400;
  for (std::time_t time = -2500000000; time < 4200000000; time += kStep) {
    std::tm local{};
    ::localtime_r(&time, &local);
    if (local.tm_gmtoff * 2 + local.tm_isdst != last) {
      changes.insert(changes.end(), {time, time - kStep / 2});
    }
    last = local.tm_gmtoff * 2 + local.tm_isdst;
  }
  return changes;
}

std::string TextOf(const TReading& reading) {
  char text[80];
  std::strftime(text, sizeof text, "%F %H:%M:", &reading.fFields);
  return text + std::to_string(reading.fFields.tm_sec) + " at " + std::to_string(reading.fOffset);
}

class TReadings {
 public:
  int Number(int from, int to) { return std::uniform_int_distribution<int>(from, to)(fRandom); }

  TReading Make(const std::vector<std::time_t>& changes) {
    const int offset = Number(0, 2) == 0 ? 0 : Number(-840, 840);
    std::time_t time = std::time_t{Number(-30000, 40000)} * 86400 + Number(0, 86399);
    if (Number(0, 2) > 0 && !changes.empty()) {
      time = changes[static_cast<std::size_t>(Number(0, static_cast<int>(changes.size()) - 1))] +
             Number(-400000, 400000) + offset * 60;
    }
    TReading reading{{}, offset};
    ::gmtime_r(&time, &reading.fFields);
    if (Number(0, 9) == 0) reading.fFields.tm_sec = Number(60, 65535);
    return reading;
  }

 private:
  std::mt19937 fRandom{1};
};

std::string Magnitude(std::time_t seconds) {
  seconds = std::abs(seconds);
  return TCIMDateTime(static_cast<std::uint32_t>(seconds / 86400),
                      static_cast<std::uint16_t>(seconds / 3600 % 24),
                      static_cast<std::uint16_t>(seconds / 60 % 60),
                      static_cast<std::uint16_t>(seconds % 60), 0)
      .ToString();
}

/// What this returns, or the status that it throws.
template <typename T>
std::string ResultOf(const T& operation) {
  std::string result;
  const std::string status = StatusThrownBy([&] { result = operation().ToString(); });
  return result.empty() ? status : result;
}

/// Compares all operations on two readings with mktime() and localtime_r(). Returns whether
/// mktime() takes both.
bool CheckOperations(const TReading& one, const TReading& two, std::uint32_t days) {
  const std::string refused = "kQDXStatusInvalidDateTime";
  const std::time_t first = InstantAt(one, one.fOffset), second = InstantAt(two, two.fOffset);
  TCIMDateTime left, right;
  EXPECT_EQ(StatusThrownBy([&] { left = PointOf(one.fFields, one.fOffset); }) == "nothing",
            first != -1);
  EXPECT_EQ(StatusThrownBy([&] { right = PointOf(two.fFields, two.fOffset); }) == "nothing",
            second != -1);
  if (left.IsNull() || right.IsNull()) return false;
  EXPECT_EQ(left == right, first == second);
  EXPECT_EQ(left < right, first < second);
  const std::time_t wall = InstantAt(one, 0), otherWall = InstantAt(two, 0);
  EXPECT_EQ(ResultOf([&] { return left - right; }),
            wall == -1 || otherWall == -1
                ? refused
                : Magnitude((wall - one.fOffset * 60) - (otherWall - two.fOffset * 60)));
  const TCIMDateTime interval(days, 3, 4, 5, 0);
  const std::time_t seconds = std::time_t{days} * 86400 + 3 * 3600 + 4 * 60 + 5;
  EXPECT_EQ(ResultOf([&] { return left + interval; }),
            wall == -1 ? refused : PointAt(std::abs(wall + seconds), one.fOffset));
  EXPECT_EQ(ResultOf([&] { return left - interval; }),
            wall == -1 ? refused : PointAt(std::abs(wall - seconds), one.fOffset));
  return true;
}

TEST(CIMDateTime, IsWhatTheCLibraryHasInEveryZone) {
  std::vector<std::string> zones = {"UTC0",
                                    "AAA0BBB-3,J60/0,J60/5",
                                    "AAA-24BBB24,J100,J200",
                                    "EST5EDT,0/0,J365/25",
                                    "XXX24:59:59",
                                    "<-0330>3:30<-0230>,M3.2.0/-167,M11.1.0/167",
                                    "IST-1GMT0,M10.5.0,M3.5.0/1",
                                    "AAA3BBB2:30,J100,J103",
                                    "",
                                    "garbage"};
  for (const char* folder : {"", "right"}) {
    const std::filesystem::path top = std::filesystem::path("/usr/share/zoneinfo") / folder;
    std::error_code error;
    for (std::filesystem::recursive_directory_iterator file(top, error), end; file != end; ++file) {
      const std::string name = file->path().filename();
      if (*folder == '\0' && (name == "posix" || name == "right")) {
        file.disable_recursion_pending();  // the same zones again
      } else if (file->is_regular_file() && !file->is_symlink()) {
        zones.push_back(file->path());
      }
    }
  }
  TReadings readings;
  int taken = 0, refused = 0;
  for (const std::string& zone : zones) {
    SetZone(zone.c_str());
    ::tzset();
    const std::vector<std::time_t> changes = FindChanges();
    for (int i = 0; i < 5 && !HasFailure(); ++i) {
      const TReading one = readings.Make(changes);
      TReading two = readings.Make(changes);
      if (readings.Number(0, 2) == 0) {
        two = one;
        two.fFields.tm_min += readings.Number(0, 180);
      }
      if (!IsCertain(one, one.fOffset) || !IsCertain(two, two.fOffset) || !IsCertain(one, 0) ||
          !IsCertain(two, 0)) {
        continue;
      }
      SCOPED_TRACE(zone + ": " + TextOf(one) + ", " + TextOf(two));
      // Sums near a change of the zone, and far from the reading.
      const auto days = static_cast<std::uint32_t>(readings.Number(0, i % 2 == 0 ? 3 : 40000));
      ++(CheckOperations(one, two, days) ? taken : refused);
    }
  }
  EXPECT_GT(taken, 100);
  RecordProperty("taken", taken);
  RecordProperty("refused", refused);
}

}  // namespace
