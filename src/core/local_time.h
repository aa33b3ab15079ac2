// SPDX-License-Identifier: Apache-2.0
/// Readings of the wall clock, and their instants in the host's time zone.
#ifndef SRC_CORE_LOCAL_TIME_H_
#define SRC_CORE_LOCAL_TIME_H_

#include <cstdint>
#include <optional>

namespace NVORNQDX20 {

class TZoneFacts;

/// A reading of the local wall clock without daylight saving. Fields out of range carry over, as in
/// mktime().
///
/// mktime() fails for the instant -1, and for readings that standard time skips when a zone's
/// offset from UTC changes. It is slow, since it checks for a changed zone each time, so it is only
/// called where it can fail, near a change of the zone's offset, and for the instant itself, which
/// localtime_r() reads in the zone that the C library has by then.
class TWallClock {
 public:
  TWallClock(std::uint16_t year, std::uint16_t month, std::uint32_t day, std::uint16_t hour,
             int minute, std::uint16_t second);

  /// Returns the seconds since 1970 by mktime(), in the zone that localtime_r() has afterwards.
  /// Throws kQDXStatusInvalidDateTime if it returns -1.
  std::int64_t Instant() const;

  /// Returns the seconds from the other instant to this one. Throws what Instant throws.
  std::int64_t SecondsSince(const TWallClock& other) const;

  /// Returns whether mktime() returns anything but -1.
  bool IsConvertible() const;

  /// Returns a number less than, equal to or greater than 0 if this instant is before, equal to or
  /// after the other one. Throws what Instant throws.
  int Compare(const TWallClock& other) const;

 private:
  std::int64_t CallMktime() const;
  bool IsConvertible(TZoneFacts& zone) const;
  bool IsFarFromEpoch() const;
  /// Returns the seconds that mktime() subtracts, or TZoneFacts::kVarying if it must be called.
  std::int32_t SubtractedIn(TZoneFacts& zone) const;
  /// Returns what SecondsSince returns, or nothing if mktime() must be called.
  std::optional<std::int64_t> FindSecondsSince(const TWallClock& other, TZoneFacts& zone) const;

  std::int64_t fSecondsAtUTC;  // the instant if the local zone were UTC
  int fYear;
  int fMonth;  // January is 0
  int fDay;
  int fHour;
  int fMinute;
  int fSecond;
};

}  // namespace NVORNQDX20

#endif  // SRC_CORE_LOCAL_TIME_H_
