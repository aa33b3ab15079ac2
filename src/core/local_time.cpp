// SPDX-License-Identifier: Apache-2.0
#include "local_time.h"

#include <qdxcore/status.h>

#include "time_zone.h"

#include <cstdlib>

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
