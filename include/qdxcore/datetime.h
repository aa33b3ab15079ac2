// SPDX-License-Identifier: Apache-2.0
/// The CIM datetime type (DMTF DSP0004, datetime).
#ifndef QDXCORE_DATETIME_H_
#define QDXCORE_DATETIME_H_

#include <qdxcore/config.h>

#include <cstdint>
#include <string>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20 {

class TCIMDateTimeImpl;

/// A CIM datetime: a point in time, an interval, or null.
///
/// Copies are deep; two objects never share a body. Distinct objects may be used by distinct
/// threads, but one object only by one thread, even for reading; TZ must not change at that time.
/// Bad text or fields throw kQDXStatusInvalidDateTime and leave the object unchanged. A null value
/// can be copied, cleared, set and read by the getters; every other operation throws the same.
///
///   TCIMDateTime boot("20040315143000.000000+060");  // 14:30 at UTC + 1 hour
///   TCIMDateTime pause(1, 2, 3, 4, 5);               // 1 day 02:03:04 and 5 microseconds
///   TCIMDateTime later = boot + pause;               // a point, still at UTC + 1 hour
///
/// A point is validated only by the host's mktime(), which reads its fields, minus the offset, as
/// local time. mktime() normalises: month 13, February 30 and hour 99 are accepted and stored as
/// given. It refuses the instant -1 (one second before 1970, UTC) and times that the standard time
/// of the host's zone skips. The microseconds of a point are not checked.
///
/// Unexpected, but part of the contract:
/// - Adding an interval to a point, or subtracting it, mirrors a result before 1970 (UTC) at that
///   moment: 1969-12-31 12:00 plus an interval of zeros is 1970-01-01 12:00. If the result of + has
///   a fraction of a second, its microseconds exceed a million. Comparing two points, or
///   subtracting them from each other, has no such limit.
/// - A year above 65535 wraps: one day after 65535-12-31 is in year 0.
/// - The wall clock of a point moves by exactly the interval, unless summer time in the host's zone
///   is anything but one hour ahead of standard time: plus an interval of zeros, noon becomes 11:30
///   in the summer of Australia/Lord_Howe, 13:00 in that of Antarctica/Troll, and 10:00 in the
///   winter of Europe/Dublin.
/// - A point with a million microseconds or more has a text that Set refuses. + and - carry the
///   excess to the seconds; comparisons do not: 12:00:00 and two million microseconds is less than
///   12:00:01.
class QDXCORE_EXPORT TCIMDateTime {
 public:
  /// A null value.
  TCIMDateTime();
  /// A point in time; `utcOffset` is in minutes east of UTC. Equivalent to Set().
  TCIMDateTime(std::uint16_t year, std::uint16_t month, std::uint32_t day, std::uint16_t hour,
               std::uint16_t minute, std::uint16_t second, std::uint32_t microseconds,
               std::int16_t utcOffset);
  /// An interval. Equivalent to Set().
  TCIMDateTime(std::uint32_t days, std::uint16_t hours, std::uint16_t minutes,
               std::uint16_t seconds, std::uint32_t microseconds);
  /// Equivalent to Set(text).
  explicit TCIMDateTime(const std::string& text);
  /// Copies every field except the precision flag, which is false in the copy. There is no move
  /// constructor, because a move would keep the flag.
  TCIMDateTime(const TCIMDateTime& other);
  TCIMDateTime& operator=(const TCIMDateTime& other);
  ~TCIMDateTime();

  /// Makes this a point. `year` is the full year; `month` 1 is January.
  void Set(std::uint16_t year, std::uint16_t month, std::uint32_t day, std::uint16_t hour,
           std::uint16_t minute, std::uint16_t second, std::uint32_t microseconds,
           std::int16_t utcOffset);
  /// Makes this an interval: `hours` up to 23, `minutes` and `seconds` up to 59, `microseconds` up
  /// to 999999; `days` has no limit.
  void Set(std::uint32_t days, std::uint16_t hours, std::uint16_t minutes, std::uint16_t seconds,
           std::uint32_t microseconds);
  /// Parses exactly 25 characters: "yyyymmddhhmmss.mmmmmm", a sign and three digits of minutes, or
  /// "ddddddddhhmmss.mmmmmm:000". Wildcards are refused. Microseconds, and the days of an interval,
  /// are stored modulo 65536.
  void Set(const std::string& text);

  /// Returns the text that Set parses. A field that exceeds its width is written in full, which
  /// makes the text longer.
  std::string ToString() const;
  /// Returns a text for people: "03/15/2004 14:30:00" (without the offset), or "1 day 2 hours "
  /// with a trailing blank; empty for an interval of zeros.
  std::string ToUIString() const;

  bool IsNull() const;
  bool IsInterval() const;

  // These return the fields as stored, even if the value is null.
  std::uint16_t GetYear() const;
  std::uint16_t GetMonth() const;
  /// Returns the day of the month, or the number of days of an interval.
  std::uint32_t GetDay() const;
  std::uint16_t GetHour() const;
  std::uint16_t GetMinute() const;
  std::uint16_t GetSecond() const;
  std::uint32_t GetMicroSeconds() const;
  /// Returns minutes east of UTC, negative to the west. Meaningless for an interval.
  std::int16_t GetUTCOffset() const;

  /// Makes the value null; the fields keep their contents.
  void Clear();

  /// A flag stored for the caller. The library never reads it; texts and copies do not carry it.
  bool GetPrecision() const;
  void SetPrecision(bool precision);

  /// Returns whether both are the same moment, whatever their offsets, or the same duration.
  /// Comparing a point with an interval throws.
  bool operator==(const TCIMDateTime& other) const;
  /// Returns whether this is the earlier moment or the shorter duration. Throws like ==.
  bool operator<(const TCIMDateTime& other) const;
  bool operator!=(const TCIMDateTime& other) const { return !(*this == other); }
  bool operator>(const TCIMDateTime& other) const { return other < *this; }
  bool operator<=(const TCIMDateTime& other) const { return !(other < *this); }
  bool operator>=(const TCIMDateTime& other) const { return !(*this < other); }

  /// Adds two intervals, or an interval and a point in either order; the result keeps the point's
  /// offset. Two points throw. Here, in operator- and in comparisons, the seconds of an interval
  /// wrap at 2^32.
  TCIMDateTime operator+(const TCIMDateTime& other) const;
  /// Returns the distance between two points or two intervals, which is never negative. Of a point
  /// and an interval in either order, returns the point moved back by the interval.
  TCIMDateTime operator-(const TCIMDateTime& other) const;
  /// Always throws kQDXStatusNotImplemented.
  void GetDifference(TCIMDateTime& first, TCIMDateTime& second) const;

  /// Returns the body, shared with this value: changing the body changes the value.
  boost::shared_ptr<TCIMDateTimeImpl> GetBody() const;

 private:
  boost::shared_ptr<TCIMDateTimeImpl> fBody;
};

/// The body of a TCIMDateTime: holds the fields and has the same operations.
class QDXCORE_EXPORT TCIMDateTimeImpl {
 public:
  TCIMDateTimeImpl();
  TCIMDateTimeImpl(std::uint16_t year, std::uint16_t month, std::uint32_t day, std::uint16_t hour,
                   std::uint16_t minute, std::uint16_t second, std::uint32_t microseconds,
                   std::int16_t utcOffset);
  TCIMDateTimeImpl(std::uint32_t days, std::uint16_t hours, std::uint16_t minutes,
                   std::uint16_t seconds, std::uint32_t microseconds);
  explicit TCIMDateTimeImpl(const std::string& text);
  TCIMDateTimeImpl(const TCIMDateTimeImpl& other);
  TCIMDateTimeImpl& operator=(const TCIMDateTimeImpl& other);

  void Set(std::uint16_t year, std::uint16_t month, std::uint32_t day, std::uint16_t hour,
           std::uint16_t minute, std::uint16_t second, std::uint32_t microseconds,
           std::int16_t utcOffset);
  void Set(std::uint32_t days, std::uint16_t hours, std::uint16_t minutes, std::uint16_t seconds,
           std::uint32_t microseconds);
  void Set(const std::string& text);

  std::string ToString() const;
  std::string ToUIString() const;

  bool IsNull() const { return fNull; }
  bool IsInterval() const { return fInterval; }
  std::uint16_t GetYear() const { return fYear; }
  std::uint16_t GetMonth() const { return fMonth; }
  std::uint32_t GetDay() const { return fDay; }
  std::uint16_t GetHour() const { return fHour; }
  std::uint16_t GetMinute() const { return fMinute; }
  std::uint16_t GetSecond() const { return fSecond; }
  std::uint32_t GetMicroSeconds() const { return fMicroseconds; }
  std::int16_t GetUTCOffset() const { return fUTCOffset; }
  void Clear() { fNull = true; }
  bool GetPrecision() const { return fPrecision; }
  void SetPrecision(bool precision) { fPrecision = precision; }

  bool operator==(const TCIMDateTime& other) const;
  bool operator<(const TCIMDateTime& other) const;
  TCIMDateTime operator+(const TCIMDateTime& other) const;
  TCIMDateTime operator-(const TCIMDateTime& other) const;
  void GetDifference(TCIMDateTime& first, TCIMDateTime& second) const;

  /// Returns whether the host's mktime() accepts these fields of a point.
  static bool IsValid(std::uint16_t year, std::uint16_t month, std::uint32_t day,
                      std::uint16_t hour, std::uint16_t minute, std::uint16_t second,
                      std::uint32_t microseconds, std::int16_t utcOffset);
  /// Returns whether each field of an interval is in its range.
  static bool IsValid(std::uint32_t days, std::uint16_t hours, std::uint16_t minutes,
                      std::uint16_t seconds, std::uint32_t microseconds);

 private:
  bool fNull = true;
  std::uint16_t fYear = 0;
  std::uint16_t fMonth = 0;
  std::uint32_t fDay = 0;  // day of the month, or days of an interval
  std::uint16_t fHour = 0;
  std::uint16_t fMinute = 0;
  std::uint16_t fSecond = 0;
  std::uint32_t fMicroseconds = 0;
  std::int16_t fUTCOffset = 0;
  bool fInterval = false;
  bool fPrecision = false;
};

}  // namespace NVORNQDX20

#endif  // QDXCORE_DATETIME_H_
