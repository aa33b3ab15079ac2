// SPDX-License-Identifier: Apache-2.0
// Compares, adds and subtracts date-times.
#include <qdxcore/datetime.h>
#include <qdxcore/status.h>
#include <qdxsystem/zone_generation.h>

#include <ctime>

#include "calendar.h"
#include "local_time.h"
#include "zone_facts.h"

namespace NVORNQDX20 {
namespace {

/// Microseconds in 128 bits: 64 bits overflow in distant years.
__extension__ typedef __int128 TMicroseconds;

constexpr std::int64_t kPerSecond = 1000000;

[[noreturn]] void RefuseTime() { throw TQDXException(kQDXStatusInvalidDateTime); }

template <typename T>
T Magnitude(T number) {
  return number < 0 ? -number : number;
}

/// Returns the wall clock of a point, moved by `minutes`.
__attribute__((always_inline)) inline TWallClock ClockOf(const TCIMDateTimeImpl& point,
                                                         int minutes) {
  return TWallClock(point.GetYear(), point.GetMonth(), point.GetDay(), point.GetHour(),
                    point.GetMinute() + minutes, point.GetSecond());
}

/// Wraps at 2^32 on purpose. Pinned by CIMDateTimeArithmetic.AddsAndSubtracts.
std::uint32_t SecondsOf(const TCIMDateTimeImpl& interval) {
  return interval.GetDay() * 86400U + interval.GetHour() * 3600U + interval.GetMinute() * 60U +
         interval.GetSecond();
}

TMicroseconds MicrosecondsOf(const TCIMDateTimeImpl& interval) {
  return SecondsOf(interval) * kPerSecond + interval.GetMicroSeconds();
}

/// Seconds and the rest, both with the sign of the sum.
struct TSum {
  std::int64_t fSeconds;
  std::int64_t fMicroseconds;
};

TSum Split(TMicroseconds sum) {
  const auto narrow = static_cast<std::int64_t>(sum);
  if (narrow == sum) return {narrow / kPerSecond, narrow % kPerSecond};  // much faster
  return {static_cast<std::int64_t>(sum / kPerSecond), static_cast<std::int64_t>(sum % kPerSecond)};
}

TCIMDateTime MakeInterval(TMicroseconds total) {
  const auto [seconds, microseconds] = Split(total);
  const std::int64_t minutes = seconds / 60;
  const std::int64_t hours = minutes / 60;
  return TCIMDateTime(
      static_cast<std::uint32_t>(hours / 24), static_cast<std::uint16_t>(hours % 24),
      static_cast<std::uint16_t>(minutes % 60), static_cast<std::uint16_t>(seconds % 60),
      static_cast<std::uint32_t>(microseconds));
}

std::tm LocalTime(std::time_t time) {
  std::tm local{};
  if (::localtime_r(&time, &local) == nullptr) RefuseTime();
  return local;
}

/// Returns the local wall clock, read without daylight saving, at this many seconds by
/// localtime_r().
TDateAndTime ReadingAt(std::int64_t seconds) {
  std::tm local = LocalTime(seconds);
  if (local.tm_isdst != 0) local = LocalTime(seconds - 3600);
  return {std::int64_t{local.tm_year} + 1900,
          local.tm_mon + 1,
          local.tm_mday,
          local.tm_hour,
          local.tm_min,
          local.tm_sec};
}

TCIMDateTime MakePoint(const TDateAndTime& clock, std::int64_t microseconds,
                       std::int16_t utcOffset) {
  return TCIMDateTime(
      static_cast<std::uint16_t>(clock.fYear), static_cast<std::uint16_t>(clock.fMonth),
      static_cast<std::uint32_t>(clock.fDay), static_cast<std::uint16_t>(clock.fHour),
      static_cast<std::uint16_t>(clock.fMinute), static_cast<std::uint16_t>(clock.fSecond),
      static_cast<std::uint32_t>(microseconds), utcOffset);
}

/// Moves a point on the local wall clock, whatever its own offset. `sumAt` returns what becomes of
/// its instant. Both ways, from the clock to the instant and back, are by what is known of the
/// zone, or both are by the C library: in the second before a replaced file is noticed they can
/// differ.
template <typename TSumAt>
TCIMDateTime MovePoint(const TCIMDateTimeImpl& point, const TSumAt& sumAt) {
  const TZoneHold hold;
  const TWallClock clock = ClockOf(point, 0);
  TZoneFacts& zone = TZoneFacts::OfThisThread();
  if (const auto instant = clock.FindInstant(zone)) {
    const auto [seconds, microseconds] = sumAt(*instant);
    const std::int32_t ahead = zone.AheadAt(seconds);
    if (ahead != TZoneFacts::kVarying) {
      return MakePoint(ReadingAtUTC(seconds + ahead), microseconds, point.GetUTCOffset());
    }
  }
  const auto [seconds, microseconds] = sumAt(clock.Instant());
  return MakePoint(ReadingAt(seconds), microseconds, point.GetUTCOffset());
}

TCIMDateTime AddToPoint(const TCIMDateTimeImpl& point, const TCIMDateTimeImpl& interval) {
  return MovePoint(point, [&](std::int64_t instant) {
    const TSum sum = Split(TMicroseconds{instant} * kPerSecond + point.GetMicroSeconds() +
                           MicrosecondsOf(interval));
    // The microseconds are computed before the sign is dropped, so that before 1970 they exceed a
    // million. Pinned by CIMDateTimeArithmetic.AddsAndSubtracts.
    return TSum{Magnitude(sum.fSeconds), sum.fMicroseconds};
  });
}

/// `pointFraction` and `intervalFraction` are the microseconds to use for each operand.
TCIMDateTime SubtractFromPoint(const TCIMDateTimeImpl& point, std::uint32_t pointFraction,
                               const TCIMDateTimeImpl& interval, std::uint32_t intervalFraction) {
  return MovePoint(point, [&](std::int64_t instant) {
    return Split(Magnitude((TMicroseconds{instant} * kPerSecond + pointFraction) -
                           (SecondsOf(interval) * kPerSecond + intervalFraction)));
  });
}

/// Returns the time from one point to another, which may have another offset.
TMicroseconds MicrosecondsBetween(const TCIMDateTimeImpl& first, const TCIMDateTimeImpl& second) {
  const int offsets = second.GetUTCOffset() - first.GetUTCOffset();
  const std::int64_t seconds =
      ClockOf(second, 0).SecondsSince(ClockOf(first, 0), TZoneFacts::OfThisThread()) -
      std::int64_t{offsets} * 60;
  return TMicroseconds{seconds} * kPerSecond + second.GetMicroSeconds() - first.GetMicroSeconds();
}

/// Returns a number less than, equal to or greater than 0.
std::int64_t CompareSeconds(const TCIMDateTimeImpl& left, const TCIMDateTimeImpl& right) {
  if (left.IsInterval()) return std::int64_t{SecondsOf(left)} - SecondsOf(right);
  TZoneFacts& zone = TZoneFacts::OfThisThread();
  return ClockOf(left, -left.GetUTCOffset()).Compare(ClockOf(right, -right.GetUTCOffset()), zone);
}

/// Does the same; fractions decide between equal seconds.
std::int64_t Compare(const TCIMDateTimeImpl& left, const TCIMDateTimeImpl& right) {
  if (left.IsNull() || right.IsNull() || left.IsInterval() != right.IsInterval()) RefuseTime();
  const std::int64_t seconds = CompareSeconds(left, right);
  return seconds != 0 ? seconds : std::int64_t{left.GetMicroSeconds()} - right.GetMicroSeconds();
}

TCIMDateTime Add(const TCIMDateTimeImpl& left, const TCIMDateTimeImpl& right) {
  if (left.IsNull() || right.IsNull() || (!left.IsInterval() && !right.IsInterval())) RefuseTime();
  if (left.IsInterval() && right.IsInterval()) {
    return MakeInterval(MicrosecondsOf(left) + MicrosecondsOf(right));
  }
  return left.IsInterval() ? AddToPoint(right, left) : AddToPoint(left, right);
}

TCIMDateTime Subtract(const TCIMDateTimeImpl& left, const TCIMDateTimeImpl& right) {
  if (left.IsNull() || right.IsNull()) RefuseTime();
  if (left.IsInterval() && right.IsInterval()) {
    return MakeInterval(Magnitude(MicrosecondsOf(right) - MicrosecondsOf(left)));
  }
  if (!left.IsInterval() && !right.IsInterval()) {
    return MakeInterval(Magnitude(MicrosecondsBetween(left, right)));
  }
  const std::uint32_t fraction = left.GetMicroSeconds();
  const std::uint32_t otherFraction = right.GetMicroSeconds();
  if (!left.IsInterval()) return SubtractFromPoint(left, fraction, right, otherFraction);
  // An interval minus a point also moves the point back, but with the two fractions exchanged, on
  // purpose. Pinned by CIMDateTimeArithmetic.AddsAndSubtracts.
  return SubtractFromPoint(right, fraction, left, otherFraction);
}

}  // namespace

// The bodies' operators take a whole date-time, of which they can get a copy of its pointer alone.
// Usual operations go without.

bool TCIMDateTime::operator==(const TCIMDateTime& other) const {
  return Compare(*fBody, *other.fBody) == 0;
}
bool TCIMDateTime::operator<(const TCIMDateTime& other) const {
  return Compare(*fBody, *other.fBody) < 0;
}
TCIMDateTime TCIMDateTime::operator+(const TCIMDateTime& other) const {
  return Add(*fBody, *other.fBody);
}
TCIMDateTime TCIMDateTime::operator-(const TCIMDateTime& other) const {
  return Subtract(*fBody, *other.fBody);
}

bool TCIMDateTimeImpl::operator==(const TCIMDateTime& other) const {
  return Compare(*this, *other.GetBody()) == 0;
}
bool TCIMDateTimeImpl::operator<(const TCIMDateTime& other) const {
  return Compare(*this, *other.GetBody()) < 0;
}
TCIMDateTime TCIMDateTimeImpl::operator+(const TCIMDateTime& other) const {
  return Add(*this, *other.GetBody());
}
TCIMDateTime TCIMDateTimeImpl::operator-(const TCIMDateTime& other) const {
  return Subtract(*this, *other.GetBody());
}

void TCIMDateTimeImpl::GetDifference(TCIMDateTime&, TCIMDateTime&) const {
  throw TQDXException(kQDXStatusNotImplemented);
}

}  // namespace NVORNQDX20
