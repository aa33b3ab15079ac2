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
/// Copies are deep; two objects never share a body. Different objects may be used on different
/// threads; one object, even if it is only read, on one. Nobody may change TZ in the meantime.
/// Bad text or fields throw kQDXStatusInvalidDateTime and leave the object as it was; so does
/// every use of a null value but the getters, Clear and the setters.
///
///   TCIMDateTime boot("20040315143000.000000+060");  // 14:30 at UTC + 1 hour
///   TCIMDateTime pause(1, 2, 3, 4, 5);               // 1 day 02:03:04 and 5 microseconds
///   TCIMDateTime later = boot + pause;               // a point, still at UTC + 1 hour
///
/// A point is checked by the host's mktime() alone, its fields less the offset read as local time.
/// That normalises: month 13, February 30 or hour 99 are accepted and kept as given. Refused are
/// the instant -1 (one second before 1970, UTC), and what the standard time of the host's zone
/// skips. The microseconds of a point are not checked at all.
///
/// Unexpected, but part of the contract:
/// - A point moved by an interval to before 1970 (UTC) is mirrored at that moment: 1969-12-31 12:00
///   moved by nothing is 1970-01-01 12:00. If it was moved with + and has a fraction of a second,
///   its microseconds are beyond a million. Comparing points, or subtracting them from each
///   other, has no such limit.
/// - A year beyond 65535 wraps: one day after 65535-12-31 is in year 0.
/// - A point keeps its wall clock when it is moved, unless summer time in the host's zone is
/// anything
///   but one hour ahead of standard time: moved by nothing, noon becomes 11:30 in the summer of
///   Australia/Lord_Howe, 13:00 in that of Antarctica/Troll and 10:00 in the winter of
///   Europe/Dublin.
/// - A point with a million microseconds or more has a text that Set refuses. + and - carry them
///   over to the seconds; comparisons do not: 12:00:00 and two million are before 12:00:01.
class QDXCORE_EXPORT TCIMDateTime {
 public:
  /// Null.
  TCIMDateTime();
  /// A point in time; utcOffset is in minutes east of UTC.
  TCIMDateTime(std::uint16_t year, std::uint16_t month, std::uint32_t day, std::uint16_t hour,
               std::uint16_t minute, std::uint16_t second, std::uint32_t microseconds,
               std::int16_t utcOffset);
  /// An interval.
  TCIMDateTime(std::uint32_t days, std::uint16_t hours, std::uint16_t minutes,
               std::uint16_t seconds, std::uint32_t microseconds);
  /// As Set(text).
  explicit TCIMDateTime(const std::string& text);
  /// Every field but the precision flag, which is false in the copy. There is no move: it would
  /// carry the flag.
  TCIMDateTime(const TCIMDateTime& other);
  TCIMDateTime& operator=(const TCIMDateTime& other);
  ~TCIMDateTime();

  /// Makes it a point. Year is the full year, month 1 is January.
  void Set(std::uint16_t year, std::uint16_t month, std::uint32_t day, std::uint16_t hour,
           std::uint16_t minute, std::uint16_t second, std::uint32_t microseconds,
           std::int16_t utcOffset);
  /// Makes it an interval: hours to 23, minutes and seconds to 59, microseconds to 999999; days are
  /// not bounded.
  void Set(std::uint32_t days, std::uint16_t hours, std::uint16_t minutes, std::uint16_t seconds,
           std::uint32_t microseconds);
  /// Exactly 25 characters: "yyyymmddhhmmss.mmmmmm", a sign and three digits of minutes, or
  /// "ddddddddhhmmss.mmmmmm:000". No wildcards. Microseconds, and the days of an interval, are
  /// kept modulo 65536.
  void Set(const std::string& text);

  /// The form that Set reads. A field too large for its width is written whole, so that the text
  /// is longer then.
  std::string ToString() const;
  /// For people: "03/15/2004 14:30:00" (without offset), or "1 day 2 hours " with a blank at the
  /// end; an interval of zeros is empty.
  std::string ToUIString() const;

  bool IsNull() const;
  bool IsInterval() const;

  // The fields as stored, whether or not the value is null.
  std::uint16_t GetYear() const;
  std::uint16_t GetMonth() const;
  /// Day of the month, or the number of days of an interval.
  std::uint32_t GetDay() const;
  std::uint16_t GetHour() const;
  std::uint16_t GetMinute() const;
  std::uint16_t GetSecond() const;
  std::uint32_t GetMicroSeconds() const;
  /// Minutes east of UTC, negative to the west. Means nothing for an interval.
  std::int16_t GetUTCOffset() const;

  /// Makes it null; the fields keep their values.
  void Clear();

  /// A flag stored for the caller: nothing reads it, no text carries it, no copy takes it along.
  bool GetPrecision() const;
  void SetPrecision(bool precision);

  /// Same moment, offsets honoured, or same duration. A point never compares with an interval: that
  /// throws.
  bool operator==(const TCIMDateTime& other) const;
  /// Earlier moment or shorter duration; throws as == does.
  bool operator<(const TCIMDateTime& other) const;
  bool operator!=(const TCIMDateTime& other) const { return !(*this == other); }
  bool operator>(const TCIMDateTime& other) const { return other < *this; }
  bool operator<=(const TCIMDateTime& other) const { return !(other < *this); }
  bool operator>=(const TCIMDateTime& other) const { return !(*this < other); }

  /// Interval + interval, or point + interval in either order: the point's wall clock moves, its
  /// offset stays. Two points throw. The seconds of an interval wrap at 2^32 here and in all that
  /// follows.
  TCIMDateTime operator+(const TCIMDateTime& other) const;
  /// The distance, never negative, between two points or two intervals; or the point moved back, in
  /// whichever order the two stand.
  TCIMDateTime operator-(const TCIMDateTime& other) const;
  /// Always throws kQDXStatusNotImplemented.
  void GetDifference(TCIMDateTime& first, TCIMDateTime& second) const;

  /// The body itself, shared: changing it changes this value.
  boost::shared_ptr<TCIMDateTimeImpl> GetBody() const;

 private:
  boost::shared_ptr<TCIMDateTimeImpl> fBody;
};

/// The body of a TCIMDateTime: the same operations on the fields themselves.
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

  /// Whether the host's mktime() takes these fields for a point.
  static bool IsValid(std::uint16_t year, std::uint16_t month, std::uint32_t day,
                      std::uint16_t hour, std::uint16_t minute, std::uint16_t second,
                      std::uint32_t microseconds, std::int16_t utcOffset);
  /// Whether each field of an interval is in its range.
  static bool IsValid(std::uint32_t days, std::uint16_t hours, std::uint16_t minutes,
                      std::uint16_t seconds, std::uint32_t microseconds);

 private:
  bool fNull = true;
  std::uint16_t fYear = 0;
  std::uint16_t fMonth = 0;
  std::uint32_t fDay = 0;  // of the month, or the days of an interval
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
