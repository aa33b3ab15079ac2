// SPDX-License-Identifier: Apache-2.0
/// The Gregorian calendar in UTC, without the C library.
#ifndef SRC_CORE_CALENDAR_H_
#define SRC_CORE_CALENDAR_H_

#include <cstdint>

namespace NVORNQDX20 {

constexpr std::int64_t kSecondsPerDay = 86400;

// Years begin in March here, so that the leap day is the last day of a year; and forty million
// years earlier, so that none is negative: the days of a point reach six million years back.
constexpr std::int64_t kMarchYearsBefore0 = 40000000;
constexpr std::int64_t kMarchDaysBefore1970 = 14610419468;

/// Returns the seconds from 1970 to a reading of the clock. `month` 0 is January. All but the year
/// may exceed their ranges.
inline std::int64_t SecondsAtUTC(std::int64_t year, int month, int day, int hour, int minute,
                                 int second) {
  static constexpr std::int16_t kDaysSinceMarch[] = {306, 337, 0,   31,  61,  92,
                                                     122, 153, 184, 214, 245, 275};
  if (static_cast<std::uint32_t>(month) >= 12) {
    const int years = month < 0 ? -1 : month / 12;
    year += years;
    month -= 12 * years;
  }
  const auto marchYear =
      static_cast<std::uint32_t>(year + kMarchYearsBefore0 - (month < 2 ? 1 : 0));
  const std::uint32_t century = marchYear / 100;
  const std::int64_t days = static_cast<std::int64_t>(std::uint64_t{marchYear} * 1461 / 4) -
                            century + century / 4 + kDaysSinceMarch[month] + day - 1 -
                            kMarchDaysBefore1970;
  return days * kSecondsPerDay + std::int64_t{hour} * 3600 + std::int64_t{minute} * 60 + second;
}

/// A reading of the clock. January is month 1.
struct TDateAndTime {
  std::int64_t fYear;
  int fMonth;
  int fDay;
  int fHour;
  int fMinute;
  int fSecond;
};

/// Returns the reading at this many seconds since 1970.
inline TDateAndTime ReadingAtUTC(std::int64_t seconds) {
  const auto shifted = static_cast<std::uint64_t>(seconds + kMarchDaysBefore1970 * kSecondsPerDay);
  const auto secondOfDay = static_cast<int>(shifted % kSecondsPerDay);
  const std::uint64_t days = shifted / kSecondsPerDay;
  const std::uint64_t century = (4 * days + 3) / 146097;
  const auto dayOfCentury = static_cast<std::uint32_t>(days - century * 146097 / 4);
  const std::uint32_t yearOfCentury = (4 * dayOfCentury + 3) / 1461;
  const auto dayOfYear = static_cast<int>(dayOfCentury - yearOfCentury * 1461 / 4);
  const int marchMonth = (5 * dayOfYear + 2) / 153;
  const bool isNextYear = marchMonth >= 10;
  return {static_cast<std::int64_t>(century) * 100 + yearOfCentury + (isNextYear ? 1 : 0) -
              kMarchYearsBefore0,
          marchMonth + (isNextYear ? -9 : 3),
          dayOfYear - (153 * marchMonth + 2) / 5 + 1,
          secondOfDay / 3600,
          secondOfDay / 60 % 60,
          secondOfDay % 60};
}

}  // namespace NVORNQDX20

#endif  // SRC_CORE_CALENDAR_H_
