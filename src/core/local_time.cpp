// SPDX-License-Identifier: Apache-2.0
#include "local_time.h"

#include <qdxcore/status.h>
#include <qdxsystem/thread_variable.h>
#include <qdxsystem/zone_generation.h>

#include <cstdlib>
#include <ctime>
#include <limits>
#include <optional>

namespace NVORNQDX20 {
namespace {

constexpr std::int64_t kSecondsPerDay = 86400;

/// The largest distance of a time zone from UTC that a zone file can express.
constexpr std::int64_t kZoneReach = 4 * kSecondsPerDay;

/// Returns the days from 1970-01-01 to the first of a month of the Gregorian calendar. Month 0 is
/// January.
std::int64_t DaysToMonth(std::int64_t year, int month) {
  // Years begin in March, so that the leap day is the last day of a year; and forty million years
  // earlier, so that none is negative: the days of a point reach six million years back.
  constexpr int kDaysSinceMarch[] = {306, 337, 0, 31, 61, 92, 122, 153, 184, 214, 245, 275};
  constexpr std::int64_t kDaysTo1970 = 14610419468;
  const auto marchYear = static_cast<std::uint32_t>(year + 40000000 - (month < 2 ? 1 : 0));
  const std::uint32_t century = marchYear / 100;
  return std::int64_t{marchYear} * 365 + marchYear / 4 - century + century / 4 +
         kDaysSinceMarch[month] - kDaysTo1970;
}

/// `month` 0 is January. All but the year may exceed their ranges.
std::int64_t SecondsAtUTC(std::int64_t year, int month, int day, int hour, int minute, int second) {
  if (month < 0 || month >= 12) {
    const int years = month < 0 ? -1 : month / 12;
    year += years;
    month -= 12 * years;
  }
  return (DaysToMonth(year, month) + day - 1) * kSecondsPerDay + std::int64_t{hour} * 3600 +
         std::int64_t{minute} * 60 + second;
}

/// Some twelve days; a power of two divides fastest.
constexpr std::int64_t kStretch = std::int64_t{1} << 20;
/// A number of stretches, so that none is negative.
constexpr std::int64_t kStretchesBefore1970 = std::int64_t{1} << 28;
/// Three days for TZoneFacts::IsSteadyAround, plus two for the distance between a reading and its
/// instant.
constexpr std::int64_t kMargin = 5 * kSecondsPerDay;

/// More than the steps in which mktime() looks for standard time.
constexpr std::int64_t kSearchStep = 8 * kSecondsPerDay;

/// What the local zone's clocks show.
struct TSample {
  std::int64_t fAhead;  // seconds ahead of the instant: leap seconds make it differ from tm_gmtoff
  bool fIsStandard;
};

TSample SampleAt(std::time_t time) {
  std::tm local{};
  ::localtime_r(&time, &local);
  return {SecondsAtUTC(std::int64_t{local.tm_year} + 1900, local.tm_mon, local.tm_mday,
                       local.tm_hour, local.tm_min, local.tm_sec) -
              time,
          local.tm_isdst == 0};
}

/// Looks for the nearest time without daylight saving, in steps of a day; after 400 steps, returns
/// a time with it.
std::time_t FindStandardTime(std::time_t from, std::time_t step) {
  for (int i = 0; i < 400 && !SampleAt(from).fIsStandard; ++i) from += step;
  return from;
}

}  // namespace

/// What is known of the host's zone: a cache of some years for each thread.
class TZoneFacts {
 public:
  /// Looks at the zone, once for each operation: it costs more than all the rest.
  static TZoneFacts& OfThisThread();

  /// Returns whether mktime() accepts every reading of the wall clock from three days before to
  /// three days after this one, and subtracts the same seconds from each, so that they are ordered
  /// like their instants. A reading is in seconds since 1970 without daylight saving.
  bool IsSteadyAround(std::int64_t reading) { return SubtractedAround(reading) != kVarying; }

  /// Returns the seconds that mktime() subtracts, or kVarying unless IsSteadyAround(reading).
  std::int32_t SubtractedAround(std::int64_t reading) {
    return fZone == 0 ? kVarying : Find(reading);
  }

  /// Results with the same number are of the same zone.
  std::uint32_t Zone() const { return fZone; }

  static constexpr std::int32_t kVarying = std::numeric_limits<std::int32_t>::min();

 private:
  static constexpr std::size_t kStretches = 2048;  // 68 years

  struct TStretch {
    std::uint32_t fZone;
    std::uint32_t fNumber;
    std::int32_t fSubtracted;  // or kVarying
  };

  std::int32_t Find(std::int64_t reading) {
    const auto number =
        static_cast<std::uint32_t>((reading + kStretchesBefore1970 * kStretch) / kStretch);
    TStretch& stretch = fStretches[number % kStretches];
    if (stretch.fZone == fZone && stretch.fNumber == number) return stretch.fSubtracted;
    return Examine(stretch, number);
  }

  __attribute__((noinline)) std::int32_t Examine(TStretch& stretch, std::uint32_t number) {
    ::tzset();  // localtime_r() does not check for a changed zone
    const std::int64_t first = (number - kStretchesBefore1970) * kStretch - kMargin;
    stretch = {fZone, number, FindSubtracted(first, first + kStretch + 2 * kMargin)};
    // The C library reads a replaced file at once: what it has shown may be of the next zone.
    fZone = ZoneGenerationNow();
    return stretch.fZone == fZone ? stretch.fSubtracted : kVarying;
  }

  /// One sample per day is enough: no zone has ever changed and changed back within three days.
  static std::int32_t FindSubtracted(std::time_t first, std::time_t last) {
    const std::time_t before = FindStandardTime(first, -kSecondsPerDay);
    const std::int64_t standard = SampleAt(before).fAhead;
    std::optional<std::int64_t> saving;
    for (std::time_t time = first - kSecondsPerDay; time < last;) {
      const TSample sample = SampleAt(time += kSecondsPerDay);
      if (!sample.fIsStandard && !saving) saving = sample.fAhead;
      // Of the readings that a change between two kinds of daylight saving skips or repeats,
      // mktime() subtracts one of the two offsets.
      if (sample.fAhead != (sample.fIsStandard ? standard : *saving)) return kVarying;
    }
    // During daylight saving, mktime() subtracts the offset of a standard time before or after it,
    // whichever its search in steps of a week finds first.
    const auto isStandard = [standard](std::time_t time) {
      const TSample sample = SampleAt(time);
      return sample.fIsStandard && sample.fAhead == standard;
    };
    const std::time_t after = FindStandardTime(last, kSecondsPerDay);
    const bool isSteady = !saving || (isStandard(before) && isStandard(before - kSearchStep) &&
                                      isStandard(after) && isStandard(after + kSearchStep));
    return isSteady ? static_cast<std::int32_t>(standard) : kVarying;
  }

  std::uint32_t fZone = 0;
  TStretch fStretches[kStretches] = {};
};

namespace {

/// Distinct date-times may be used on distinct threads.
thread_local TZoneFacts gZoneFacts;

}  // namespace

TZoneFacts& TZoneFacts::OfThisThread() {
  TZoneFacts& facts = FoundOnce(gZoneFacts);
  facts.fZone = ZoneGeneration();
  return facts;
}

TWallClock::TWallClock(std::uint16_t year, std::uint16_t month, std::uint32_t day,
                       std::uint16_t hour, int minute, std::uint16_t second)
    : fYear(year),
      fMonth(month - 1),
      fDay(static_cast<int>(day)),
      fHour(hour),
      fMinute(minute),
      fSecond(second) {
  fSecondsAtUTC = SecondsAtUTC(fYear, fMonth, fDay, fHour, fMinute, fSecond);
}

std::int64_t TWallClock::CallMktime() const {
  std::tm fields{};
  fields.tm_year = fYear - 1900;
  fields.tm_mon = fMonth;
  fields.tm_mday = fDay;
  fields.tm_hour = fHour;
  fields.tm_min = fMinute;
  fields.tm_sec = fSecond;
  return std::mktime(&fields);
}

std::int64_t TWallClock::Instant() const {
  const std::int64_t instant = CallMktime();
  if (instant == -1) throw TQDXException(kQDXStatusInvalidDateTime);
  return instant;
}

bool TWallClock::IsConvertible() const { return IsConvertible(TZoneFacts::OfThisThread()); }

bool TWallClock::IsConvertible(TZoneFacts& zone) const {
  return (IsFarFromEpoch() && zone.IsSteadyAround(fSecondsAtUTC)) || CallMktime() != -1;
}

inline bool TWallClock::IsFarFromEpoch() const { return std::abs(fSecondsAtUTC) > kZoneReach; }

/// The exception are zones with leap seconds, where seconds that carry over give a different
/// instant.
inline std::int32_t TWallClock::SubtractedIn(TZoneFacts& zone) const {
  return fSecond < 60 && IsFarFromEpoch() ? zone.SubtractedAround(fSecondsAtUTC)
                                          : TZoneFacts::kVarying;
}

inline std::optional<std::int64_t> TWallClock::FindSecondsSince(const TWallClock& other,
                                                                TZoneFacts& zone) const {
  const std::uint32_t first = zone.Zone();
  const std::int64_t subtracted = SubtractedIn(zone);
  const std::int64_t subtractedFromOther = other.SubtractedIn(zone);
  if (subtracted == TZoneFacts::kVarying || subtractedFromOther == TZoneFacts::kVarying ||
      zone.Zone() != first) {
    return std::nullopt;
  }
  return (fSecondsAtUTC - subtracted) - (other.fSecondsAtUTC - subtractedFromOther);
}

std::int64_t TWallClock::SecondsSince(const TWallClock& other) const {
  const auto seconds = FindSecondsSince(other, TZoneFacts::OfThisThread());
  return seconds ? *seconds : Instant() - other.Instant();
}

int TWallClock::Compare(const TWallClock& other) const {
  TZoneFacts& zone = TZoneFacts::OfThisThread();
  auto seconds = FindSecondsSince(other, zone);
  if (!seconds) {
    seconds = fSecondsAtUTC - other.fSecondsAtUTC;
    if (std::abs(*seconds) <= 2 * kZoneReach) {
      seconds = Instant() - other.Instant();
    } else if (!IsConvertible(zone) || !other.IsConvertible(zone)) {
      // Further apart than any two offsets.
      throw TQDXException(kQDXStatusInvalidDateTime);
    }
  }
  return (*seconds > 0) - (*seconds < 0);
}

}  // namespace NVORNQDX20
