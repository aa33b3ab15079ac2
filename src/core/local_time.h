// SPDX-License-Identifier: Apache-2.0
/// Readings of the wall clock, and their instants in the host's time zone.
#ifndef SRC_CORE_LOCAL_TIME_H_
#define SRC_CORE_LOCAL_TIME_H_

#include <cstdint>
#include <optional>

#include "calendar.h"
#include "zone_facts.h"

namespace NVORNQDX20 {

/// A reading of the local wall clock without daylight saving. Fields out of range carry over, as in
/// mktime().
///
/// mktime() fails for the instant -1, and for readings that standard time skips when a zone's
/// offset from UTC changes. It is slow, since it checks for a changed zone each time, so it is only
/// called where it can fail, and near a change of the zone's offset.
class TWallClock {
 public:
  TWallClock(std::uint16_t year, std::uint16_t month, std::uint32_t day, std::uint16_t hour,
             int minute, std::uint16_t second)
      : fSecondsAtUTC(SecondsAtUTC(year, month - 1, static_cast<int>(day), hour, minute, second)),
        fSecond(second) {}

  /// Returns the seconds since 1970 by mktime(), in the zone that localtime_r() has afterwards.
  /// Throws kQDXStatusInvalidDateTime if it returns -1.
  std::int64_t Instant() const { return InstantOf(*this); }

  /// Returns the same from what is known of the zone, or nothing if mktime() must be called.
  std::optional<std::int64_t> FindInstant(TZoneFacts& zone) const {
    const std::int32_t subtracted = SubtractedIn(zone);
    if (subtracted == TZoneFacts::kVarying) return std::nullopt;
    return fSecondsAtUTC - subtracted;
  }

  /// Returns the seconds from the other instant to this one. Throws what Instant throws.
  std::int64_t SecondsSince(const TWallClock& other, TZoneFacts& zone) const {
    return FindSecondsSince(other, zone, SecondsByMktime);
  }

  /// Returns a number less than, equal to or greater than 0 if this instant is before, equal to or
  /// after the other one. Throws what Instant throws.
  std::int64_t Compare(const TWallClock& other, TZoneFacts& zone) const {
    return FindSecondsSince(other, zone, CompareByMktime);
  }

  /// Returns whether mktime() returns anything but -1.
  bool IsConvertible(TZoneFacts& zone) const {
    return zone.SubtractedAround(fSecondsAtUTC) != TZoneFacts::kVarying || CallMktime(*this) != -1;
  }

 private:
  // These take copies, so that a clock need not be in memory where they are not called.
  static std::int64_t CallMktime(TWallClock clock);
  static std::int64_t InstantOf(TWallClock clock);
  static std::int64_t SecondsByMktime(TWallClock left, TWallClock right, TZoneFacts& zone);
  static std::int64_t CompareByMktime(TWallClock left, TWallClock right, TZoneFacts& zone);

  /// Returns the seconds that mktime() subtracts, or TZoneFacts::kVarying if it must be called. The
  /// exception are zones with leap seconds, where seconds that carry over give a different instant.
  std::int32_t SubtractedIn(TZoneFacts& zone) const {
    return fSecond < 60 ? zone.SubtractedAround(fSecondsAtUTC) : TZoneFacts::kVarying;
  }

  template <typename TByMktime>
  std::int64_t FindSecondsSince(const TWallClock& other, TZoneFacts& zone,
                                const TByMktime& byMktime) const {
    const std::int32_t subtracted = SubtractedIn(zone);
    const std::int32_t subtractedFromOther = other.SubtractedIn(zone);
    if (subtracted == TZoneFacts::kVarying || subtractedFromOther == TZoneFacts::kVarying) {
      return byMktime(*this, other, zone);
    }
    return (fSecondsAtUTC - subtracted) - (other.fSecondsAtUTC - subtractedFromOther);
  }

  std::int64_t fSecondsAtUTC;  // the instant if the local zone were UTC
  int fSecond;                 // the field: mktime() does not carry it over as it does the others
};

}  // namespace NVORNQDX20

#endif  // SRC_CORE_LOCAL_TIME_H_
