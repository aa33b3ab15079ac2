// SPDX-License-Identifier: Apache-2.0
#include "local_time.h"

#include <qdxcore/status.h>

#include <cstdlib>
#include <ctime>

namespace NVORNQDX20 {

std::int64_t TWallClock::CallMktime(TWallClock clock) {
  const TDateAndTime minute = ReadingAtUTC(clock.fSecondsAtUTC - clock.fSecond);
  std::tm fields{};
  fields.tm_year = static_cast<int>(minute.fYear - 1900);
  fields.tm_mon = minute.fMonth - 1;
  fields.tm_mday = minute.fDay;
  fields.tm_hour = minute.fHour;
  fields.tm_min = minute.fMinute;
  fields.tm_sec = clock.fSecond;
  return std::mktime(&fields);
}

std::int64_t TWallClock::InstantOf(TWallClock clock) {
  const std::int64_t instant = CallMktime(clock);
  if (instant == -1) throw TQDXException(kQDXStatusInvalidDateTime);
  return instant;
}

std::int64_t TWallClock::SecondsByMktime(TWallClock left, TWallClock right, TZoneFacts& /*zone*/) {
  return left.Instant() - right.Instant();
}

std::int64_t TWallClock::CompareByMktime(TWallClock left, TWallClock right, TZoneFacts& zone) {
  const std::int64_t seconds = left.fSecondsAtUTC - right.fSecondsAtUTC;
  // Further apart than any two offsets.
  if (std::abs(seconds) > 2 * kZoneReach) {
    if (left.IsConvertible(zone) && right.IsConvertible(zone)) return seconds;
    throw TQDXException(kQDXStatusInvalidDateTime);
  }
  return left.Instant() - right.Instant();
}

}  // namespace NVORNQDX20
