// SPDX-License-Identifier: Apache-2.0
#include "zone_facts.h"

#include <qdxsystem/thread_variable.h>
#include <qdxsystem/zone_generation.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <iterator>
#include <optional>

#include "calendar.h"

namespace NVORNQDX20 {
namespace {

/// Three days for SubtractedAround(), plus two for the distance between a reading and its instant.
constexpr std::int64_t kMargin = 5 * kSecondsPerDay;

/// A sample before the hour that localtime_r() may be asked for, and one after the last instant.
constexpr std::int64_t kMarginOfAhead = 2 * kSecondsPerDay;

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

/// What is known of some days; either is TZoneFacts::kVarying if it is not the same for all of
/// them.
struct TDays {
  std::int32_t fSubtracted;
  std::int32_t fAhead;
};

constexpr TDays kVaryingDays = {TZoneFacts::kVarying, TZoneFacts::kVarying};

/// One sample per day is enough: no zone has ever changed and changed back within three days.
TDays LearnAbout(std::time_t firstInside, std::time_t lastInside) {
  const std::time_t first = firstInside - kMargin;
  const std::time_t last = lastInside + kMargin;
  const std::time_t before = FindStandardTime(first, -kSecondsPerDay);
  const std::int64_t standard = SampleAt(before).fAhead;
  std::optional<std::int64_t> saving;
  bool hasStandard = false, hasSaving = false;
  for (std::time_t time = first - kSecondsPerDay; time < last;) {
    const TSample sample = SampleAt(time += kSecondsPerDay);
    if (time > firstInside - kMarginOfAhead && time < lastInside + kMarginOfAhead) {
      (sample.fIsStandard ? hasStandard : hasSaving) = true;
    }
    if (!sample.fIsStandard && !saving) saving = sample.fAhead;
    // Of the readings that a change between two kinds of daylight saving skips or repeats,
    // mktime() subtracts one of the two offsets.
    if (sample.fAhead != (sample.fIsStandard ? standard : *saving)) return kVaryingDays;
  }
  TDays days = kVaryingDays;
  if (!hasSaving || !hasStandard) {
    days.fAhead = static_cast<std::int32_t>(hasSaving ? *saving - 3600 : standard);
  }
  // During daylight saving, mktime() subtracts the offset of a standard time before or after it,
  // whichever its search in steps of a week finds first.
  const auto isStandard = [standard](std::time_t time) {
    const TSample sample = SampleAt(time);
    return sample.fIsStandard && sample.fAhead == standard;
  };
  const std::time_t after = FindStandardTime(last, kSecondsPerDay);
  if (!saving || (isStandard(before) && isStandard(before - kSearchStep) && isStandard(after) &&
                  isStandard(after + kSearchStep))) {
    days.fSubtracted = static_cast<std::int32_t>(standard);
  }
  return days;
}

/// Returns whether TZ has rules for daylight saving, which may be shorter than a day.
bool HasRules() {
  const char* const zone = std::getenv("TZ");
  return zone != nullptr && std::strchr(zone, ',') != nullptr;
}

/// Distinct date-times may be used on distinct threads.
thread_local TZoneFacts gZoneFacts;

}  // namespace

TZoneFacts& TZoneFacts::OfThisThread() {
  TZoneFacts& facts = FoundOnce(gZoneFacts);
  if (facts.fWatch == nullptr) facts.fWatch = &ZoneWatchOfThisThread();
  const std::uint32_t zone = facts.fWatch->Generation();
  if (zone != facts.fZone) facts.Forget(zone);
  return facts;
}

__attribute__((noinline)) void TZoneFacts::Forget(std::uint32_t zone) {
  fZone = zone;
  std::fill(std::begin(fStretches), std::end(fStretches), TStretch{});
}

__attribute__((noinline)) const TZoneFacts::TStretch& TZoneFacts::Examine(TStretch& stretch,
                                                                          std::uint32_t number) {
  static constexpr TStretch kUnknown = {0, kVarying, kVarying};
  if (fZone == 0) return kUnknown;
  ::tzset();  // localtime_r() does not check for a changed zone
  const std::int64_t first = (number - kStretchesBefore1970) * kStretch;
  const std::int64_t last = first + kStretch;
  TDays days = LearnAbout(first, last);
  // Near 1970, mktime() can return -1.
  if (first <= kZoneReach && last > -kZoneReach) days.fSubtracted = kVarying;
  if (HasRules()) days.fAhead = kVarying;
  // The C library reads a replaced file at once: what it has shown may be of the next zone.
  const std::uint32_t zone = fWatch->GenerationNow();
  if (zone != fZone) {
    Forget(zone);
    return kUnknown;
  }
  return stretch = {number, days.fSubtracted, days.fAhead};
}

}  // namespace NVORNQDX20
