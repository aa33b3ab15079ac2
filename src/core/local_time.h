// SPDX-License-Identifier: Apache-2.0
/// Wall clock readings, and the instants that the host's time zone makes of them.
#ifndef SRC_CORE_LOCAL_TIME_H_
#define SRC_CORE_LOCAL_TIME_H_

#include <cstdint>
#include <ctime>

namespace NVORNQDX20 {

/// A reading of the local wall clock, taken as if daylight saving were never in effect. Fields out
/// of their range carry over, as mktime() has it.
///
/// mktime() refuses the instant -1, and the readings that standard time skips where a zone's offset
/// from UTC moves. It is slow, since it looks for a changed zone each time, so it is asked only
/// where that can come out, or where it decides the order of two readings.
class TWallClock {
 public:
  TWallClock(std::uint16_t year, std::uint16_t month, std::uint32_t day, std::uint16_t hour,
             int minute, std::uint16_t second);

  /// Seconds since 1970 by mktime(). Throws kQDXStatusInvalidDateTime where that answers -1.
  std::int64_t Instant() const;

  /// Whether mktime() answers anything but -1.
  bool IsConvertible() const;

  /// Less than, equal to or greater than 0, as the instant of this is before, at or after the
  /// other; throws as Instant does.
  int Compare(const TWallClock& other) const;

 private:
  std::int64_t CallMktime() const;
  bool IsSurelyConvertible() const;
  bool IsOrderedLikeInstants() const;

  std::tm fFields;
  std::int64_t fSecondsAtUTC;  // the instant, if the local zone were UTC
};

}  // namespace NVORNQDX20

#endif  // SRC_CORE_LOCAL_TIME_H_
