// SPDX-License-Identifier: Apache-2.0
// Compares, adds and subtracts date-times.
#include <qdxcore/datetime.h>
#include <qdxcore/status.h>

#include "local_time.h"

#include <ctime>

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
TWallClock ClockOf(const TCIMDateTimeImpl& point, int minutes) {
  return TWallClock(point.GetYear(), point.GetMonth(), point.GetDay(), point.GetHour(),
                    point.GetMinute() + minutes, point.GetSecond());
}

/// Returns the instant of the point's wall clock read in the local zone, whatever its own offset.
std::int64_t InstantOf(const TCIMDateTimeImpl& point) { return ClockOf(point, 0).Instant(); }

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

/// Returns the point of a local wall clock, read without daylight saving, at this many seconds.
/// REQUIRES: they come from InstantOf(), whose zone this is.
TCIMDateTime MakePoint(std::int64_t seconds, std::uint32_t microseconds, std::int16_t utcOffset) {
  std::tm local = LocalTime(seconds);
  if (local.tm_isdst != 0) local = LocalTime(seconds - 3600);
  return TCIMDateTime(
      static_cast<std::uint16_t>(local.tm_year + 1900),
      static_cast<std::uint16_t>(local.tm_mon + 1), static_cast<std::uint32_t>(local.tm_mday),
      static_cast<std::uint16_t>(local.tm_hour), static_cast<std::uint16_t>(local.tm_min),
      static_cast<std::uint16_t>(local.tm_sec), microseconds, utcOffset);
}

TCIMDateTime AddToPoint(const TCIMDateTimeImpl& point, const TCIMDateTimeImpl& interval) {
  const auto [seconds, microseconds] = Split(TMicroseconds{InstantOf(point)} * kPerSecond +
                                             point.GetMicroSeconds() + MicrosecondsOf(interval));
  // The microseconds are computed before the sign is dropped, so that before 1970 they exceed a
  // million. Pinned by CIMDateTimeArithmetic.AddsAndSubtracts.
  return MakePoint(Magnitude(seconds), static_cast<std::uint32_t>(microseconds),
                   point.GetUTCOffset());
}

/// `pointFraction` and `intervalFraction` are the microseconds to use for each operand.
TCIMDateTime SubtractFromPoint(const TCIMDateTimeImpl& point, std::uint32_t pointFraction,
                               const TCIMDateTimeImpl& interval, std::uint32_t intervalFraction) {
  const auto [seconds, microseconds] =
      Split(Magnitude((TMicroseconds{InstantOf(point)} * kPerSecond + pointFraction) -
                      (SecondsOf(interval) * kPerSecond + intervalFraction)));
  return MakePoint(seconds, static_cast<std::uint32_t>(microseconds), point.GetUTCOffset());
}

/// Returns the time from one point to another, which may have another offset.
TMicroseconds MicrosecondsBetween(const TCIMDateTimeImpl& first, const TCIMDateTimeImpl& second) {
  const int offsets = second.GetUTCOffset() - first.GetUTCOffset();
  const std::int64_t seconds =
      ClockOf(second, 0).SecondsSince(ClockOf(first, 0)) - std::int64_t{offsets} * 60;
  return TMicroseconds{seconds} * kPerSecond + second.GetMicroSeconds() - first.GetMicroSeconds();
}

int CompareNumbers(std::uint32_t left, std::uint32_t right) {
  return (left > right) - (left < right);
}

/// Returns a number less than, equal to or greater than 0; fractions decide between equal seconds.
int Compare(const TCIMDateTimeImpl& left, const TCIMDateTimeImpl& right) {
  if (left.IsNull() || right.IsNull() || left.IsInterval() != right.IsInterval()) RefuseTime();
  const int seconds =
      left.IsInterval()
          ? CompareNumbers(SecondsOf(left), SecondsOf(right))
          : ClockOf(left, -left.GetUTCOffset()).Compare(ClockOf(right, -right.GetUTCOffset()));
  return seconds != 0 ? seconds : CompareNumbers(left.GetMicroSeconds(), right.GetMicroSeconds());
}

}  // namespace

bool TCIMDateTimeImpl::operator==(const TCIMDateTime& other) const {
  return Compare(*this, *other.GetBody()) == 0;
}

bool TCIMDateTimeImpl::operator<(const TCIMDateTime& other) const {
  return Compare(*this, *other.GetBody()) < 0;
}

TCIMDateTime TCIMDateTimeImpl::operator+(const TCIMDateTime& other) const {
  const TCIMDateTimeImpl& right = *other.GetBody();
  if (fNull || right.fNull || (!fInterval && !right.fInterval)) RefuseTime();
  if (fInterval && right.fInterval)
    return MakeInterval(MicrosecondsOf(*this) + MicrosecondsOf(right));
  return fInterval ? AddToPoint(right, *this) : AddToPoint(*this, right);
}

TCIMDateTime TCIMDateTimeImpl::operator-(const TCIMDateTime& other) const {
  const TCIMDateTimeImpl& right = *other.GetBody();
  if (fNull || right.fNull) RefuseTime();
  if (fInterval && right.fInterval) {
    return MakeInterval(Magnitude(MicrosecondsOf(right) - MicrosecondsOf(*this)));
  }
  if (!fInterval && !right.fInterval) {
    return MakeInterval(Magnitude(MicrosecondsBetween(*this, right)));
  }
  if (!fInterval) return SubtractFromPoint(*this, fMicroseconds, right, right.fMicroseconds);
  // An interval minus a point also moves the point back, but with the two fractions exchanged, on
  // purpose. Pinned by CIMDateTimeArithmetic.AddsAndSubtracts.
  return SubtractFromPoint(right, fMicroseconds, *this, right.fMicroseconds);
}

void TCIMDateTimeImpl::GetDifference(TCIMDateTime&, TCIMDateTime&) const {
  throw TQDXException(kQDXStatusNotImplemented);
}

}  // namespace NVORNQDX20
