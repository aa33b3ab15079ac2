// SPDX-License-Identifier: Apache-2.0
#include "local_time.h"

#include <qdxcore/status.h>
#include <qdxsystem/zone_variable.h>

#include <cstdlib>
#include <ctime>

namespace NVORNQDX20 {
namespace {

constexpr std::int64_t kSecondsPerDay = 86400;

/// The largest distance of a time zone from UTC that a zone file can express.
constexpr std::int64_t kZoneReach = 4 * kSecondsPerDay;

/// Returns the days from 1970-01-01 to the first of a month of the Gregorian calendar. Month 0 is
/// January, -1 the December before.
std::int64_t DaysToMonth(std::int64_t year, std::int64_t month) {
  // Years begin in March, so that the leap day is the last day of a year.
  const std::int64_t marchYear = month < 2 ? year - 1 : year;
  const std::int64_t monthsSinceMarch = (month + 10) % 12;
  const std::int64_t era = (marchYear >= 0 ? marchYear : marchYear - 399) / 400;
  const std::int64_t yearOfEra = marchYear - era * 400;
  const std::int64_t dayOfYear = (153 * monthsSinceMarch + 2) / 5;
  const std::int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  return era * 146097 + dayOfEra - 719468;
}

std::int64_t SecondsAtUTC(const std::tm& fields) {
  const std::int64_t year = std::int64_t{fields.tm_year} + 1900 + fields.tm_mon / 12;
  const std::int64_t days = DaysToMonth(year, fields.tm_mon % 12) + fields.tm_mday - 1;
  return days * kSecondsPerDay + std::int64_t{fields.tm_hour} * 3600 +
         std::int64_t{fields.tm_min} * 60 + fields.tm_sec;
}

constexpr std::int64_t kStretch = 16 * kSecondsPerDay;
/// Three days for IsOffsetSteadyAround, plus two for the distance between a reading and its
/// instant.
constexpr std::int64_t kMargin = 5 * kSecondsPerDay;

bool HaveSameOffset(const std::tm& left, const std::tm& right) {
  return left.tm_gmtoff == right.tm_gmtoff && left.tm_isdst == right.tm_isdst;
}

std::tm LocalTime(std::time_t time) {
  std::tm local{};
  ::localtime_r(&time, &local);
  return local;
}

/// Samples one time per day: no zone has ever changed and changed back within three days.
bool HasOneOffsetBetween(std::time_t first, std::time_t last) {
  const std::tm start = LocalTime(first);
  for (std::time_t time = first; time < last; time += kSecondsPerDay) {
    if (!HaveSameOffset(start, LocalTime(time + kSecondsPerDay))) return false;
  }
  return true;
}

/// Returns the nearest time without daylight saving, in steps of a day; after 400 steps, a time
/// with it.
std::tm FindStandardTime(std::time_t from, std::time_t step) {
  std::tm local = LocalTime(from);
  for (int i = 0; i < 400 && local.tm_isdst != 0; ++i) local = LocalTime(from += step);
  return local;
}

/// During daylight saving, mktime() subtracts the standard offset of the time before or after it,
/// whichever its search in steps of a week finds first. Returns whether the two are equal; then no
/// zone has ever changed its standard offset within a week of either.
bool HasOneStandardOffsetAround(std::time_t first, std::time_t last) {
  const std::tm before = FindStandardTime(first, -kSecondsPerDay);
  return before.tm_isdst == 0 && HaveSameOffset(before, FindStandardTime(last, kSecondsPerDay));
}

bool IsSteadyBetween(std::time_t first, std::time_t last) {
  return HasOneOffsetBetween(first, last) &&
         (LocalTime(first).tm_isdst == 0 || HasOneStandardOffsetAround(first, last));
}

/// A cache: which periods of some days have a steady offset.
class TStretches {
 public:
  bool IsSteady(std::int32_t number) {
    if (fZone.HasChanged()) {
      for (TEntry& entry : fEntries) entry.fIsKnown = false;
    }
    TEntry& entry = fEntries[static_cast<std::size_t>(number) % kEntries];
    if (!entry.fIsKnown || entry.fNumber != number) {
      ::tzset();  // localtime_r() does not check for a changed zone
      const std::int64_t start = number * kStretch;
      entry = {number, true, IsSteadyBetween(start - kMargin, start + kStretch + kMargin)};
    }
    return entry.fIsSteady;
  }

 private:
  struct TEntry {
    std::int32_t fNumber;
    bool fIsKnown;
    bool fIsSteady;
  };
  static constexpr std::size_t kEntries = 2048;  // ninety years

  TZoneVariable fZone;
  TEntry fEntries[kEntries] = {};
};

/// Distinct date-times may be used on distinct threads.
thread_local TStretches gStretches;

/// Returns whether mktime() accepts every reading of the wall clock from three days before to three
/// days after this one, and subtracts the same offset from each, so that they are ordered like
/// their instants. Readings are in seconds since 1970 without daylight saving.
///
/// Each thread has a cache of some years, which is cleared when TZ changes. A replaced
/// /etc/localtime is only noticed for readings that are not in the cache yet.
bool IsOffsetSteadyAround(std::int64_t reading) {
  const std::int64_t rounded = reading >= 0 ? reading : reading - (kStretch - 1);
  return gStretches.IsSteady(static_cast<std::int32_t>(rounded / kStretch));
}

}  // namespace

TWallClock::TWallClock(std::uint16_t year, std::uint16_t month, std::uint32_t day,
                       std::uint16_t hour, int minute, std::uint16_t second)
    : fFields() {
  fFields.tm_year = year - 1900;
  fFields.tm_mon = month - 1;
  fFields.tm_mday = static_cast<int>(day);
  fFields.tm_hour = hour;
  fFields.tm_min = minute;
  fFields.tm_sec = second;
  fFields.tm_isdst = 0;
  fSecondsAtUTC = SecondsAtUTC(fFields);
}

std::int64_t TWallClock::CallMktime() const {
  std::tm fields = fFields;  // mktime() normalises its argument
  return std::mktime(&fields);
}

std::int64_t TWallClock::Instant() const {
  const std::int64_t instant = CallMktime();
  if (instant == -1) throw TQDXException(kQDXStatusInvalidDateTime);
  return instant;
}

bool TWallClock::IsConvertible() const { return IsSurelyConvertible() || CallMktime() != -1; }

bool TWallClock::IsSurelyConvertible() const {
  return std::abs(fSecondsAtUTC) > kZoneReach && IsOffsetSteadyAround(fSecondsAtUTC);
}

void TWallClock::RequireConvertible() const {
  if (!IsConvertible()) throw TQDXException(kQDXStatusInvalidDateTime);
}

/// Around a steady offset, nearby readings are ordered like their instants. The exception are zones
/// with leap seconds, where seconds that carry over give a different instant.
bool TWallClock::IsOrderedLikeInstants() const {
  return fFields.tm_sec < 60 && IsSurelyConvertible();
}

int TWallClock::Compare(const TWallClock& other) const {
  std::int64_t difference = fSecondsAtUTC - other.fSecondsAtUTC;
  if (std::abs(difference) > 2 * kZoneReach) {  // more than any two offsets differ
    RequireConvertible();
    other.RequireConvertible();
  } else if (!IsOrderedLikeInstants() || !other.IsOrderedLikeInstants()) {
    difference = Instant() - other.Instant();
  }
  return (difference > 0) - (difference < 0);
}

}  // namespace NVORNQDX20
