// SPDX-License-Identifier: Apache-2.0
#include "time_zone.h"

#include <cstdlib>
#include <cstring>
#include <ctime>

namespace NVORNQDX20 {
namespace {

constexpr std::int64_t kSecondsPerDay = 86400;
constexpr std::int64_t kStretch = 16 * kSecondsPerDay;
/// Three days that are promised, and two for the distance between a reading and its instant.
constexpr std::int64_t kMargin = 5 * kSecondsPerDay;

bool HaveSameOffset(const std::tm& left, const std::tm& right) {
  return left.tm_gmtoff == right.tm_gmtoff && left.tm_isdst == right.tm_isdst;
}

std::tm LocalTime(std::time_t time) {
  std::tm local{};
  ::localtime_r(&time, &local);
  return local;
}

/// Looks a day at a time: no zone ever moved there and back within less than three.
bool IsSteadyBetween(std::time_t first, std::time_t last) {
  const std::tm start = LocalTime(first);
  for (std::time_t time = first; time < last; time += kSecondsPerDay) {
    if (!HaveSameOffset(start, LocalTime(time + kSecondsPerDay))) return false;
  }
  return true;
}

/// Time in stretches of some days, each steady or not, as far as they were asked for.
class TStretches {
 public:
  bool IsSteady(std::int64_t number) {
    if (!KnowsZone()) AdoptZone();
    TEntry& entry = fEntries[static_cast<std::size_t>(number) % kEntries];
    if (!entry.fKnown || entry.fNumber != number) {
      ::tzset();  // localtime_r() does not look for a changed zone
      const std::int64_t start = number * kStretch;
      entry = {number, true, IsSteadyBetween(start - kMargin, start + kStretch + kMargin)};
    }
    return entry.fSteady;
  }

 private:
  struct TEntry {
    std::int64_t fNumber;
    bool fKnown;
    bool fSteady;
  };
  static constexpr std::size_t kEntries = 256;  // eleven years

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
    // A name too long to be kept is adopted anew each time.
    fZoneState = zone == nullptr ? kUnset : fits ? kSet : kUnknown;
    for (TEntry& entry : fEntries) entry.fKnown = false;
  }

  enum { kUnknown, kUnset, kSet } fZoneState = kUnknown;
  char fZone[64] = {};
  TEntry fEntries[kEntries] = {};
};

/// Date-times may be used on several threads, each object on one.
thread_local TStretches gStretches;

}  // namespace

bool IsOffsetSteadyAround(std::int64_t reading) {
  const std::int64_t rounded = reading >= 0 ? reading : reading - (kStretch - 1);
  return gStretches.IsSteady(rounded / kStretch);
}

}  // namespace NVORNQDX20
