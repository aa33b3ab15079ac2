// SPDX-License-Identifier: Apache-2.0
#include "time_zone.h"

#include <cstdlib>
#include <cstring>
#include <ctime>

namespace NVORNQDX20 {
namespace {

constexpr std::int64_t kSecondsPerDay = 86400;
constexpr std::int64_t kStretch = 16 * kSecondsPerDay;
/// Three days as promised, plus two for the distance between a reading and its instant.
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
    if (!KnowsZone()) AdoptZone();
    TEntry& entry = fEntries[static_cast<std::size_t>(number) % kEntries];
    if (!entry.fKnown || entry.fNumber != number) {
      ::tzset();  // localtime_r() does not check for a changed zone
      const std::int64_t start = number * kStretch;
      entry = {number, true, IsSteadyBetween(start - kMargin, start + kStretch + kMargin)};
    }
    return entry.fSteady;
  }

 private:
  struct TEntry {
    std::int32_t fNumber;
    bool fKnown;
    bool fSteady;
  };
  static constexpr std::size_t kEntries = 2048;  // ninety years

  bool KnowsZone() const {
    const char* const zone = std::getenv("TZ");
    return zone == nullptr ? fZoneState == kUnset
                           : fZoneState == kSet && std::strcmp(zone, fZone) == 0;
  }

  void AdoptZone() {
    const char* const zone = std::getenv("TZ");
    const std::size_t size = zone == nullptr ? 0 : std::strlen(zone) + 1;
    const bool fits = size <= sizeof fZone;
    if (fits && zone != nullptr) std::memcpy(fZone, zone, size);
    // A name that is too long to be stored is adopted again each time.
    fZoneState = zone == nullptr ? kUnset : fits ? kSet : kUnknown;
    for (TEntry& entry : fEntries) entry.fKnown = false;
  }

  enum { kUnknown, kUnset, kSet } fZoneState = kUnknown;
  char fZone[64] = {};
  TEntry fEntries[kEntries] = {};
};

/// Distinct date-times may be used on distinct threads.
thread_local TStretches gStretches;

}  // namespace

bool IsOffsetSteadyAround(std::int64_t reading) {
  const std::int64_t rounded = reading >= 0 ? reading : reading - (kStretch - 1);
  return gStretches.IsSteady(static_cast<std::int32_t>(rounded / kStretch));
}

}  // namespace NVORNQDX20
