// SPDX-License-Identifier: Apache-2.0
// Date-times, beside the C library alone and hand-written code.
#include <qdxcore/datetime.h>
#include <qdxcore/os_specific.h>
#include <qdxcore/status.h>

#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <string>
#include <utility>

#include "operation.h"

namespace NBench {
namespace {

using namespace NVORNQDX20;

const std::string kPoint = "20040315143000.000000+060";
const std::string kHourLater = "20040315153000.000000+060";
const std::string kYearLater = "20050315143000.000000+060";
const std::string kInterval = "00000001020304.000005:000";

/// The fields of a date-time, written by hand.
struct TFields {
  bool fIsInterval = false;
  int fYear = 0;
  int fMonth = 0;
  int fDay = 0;
  int fHour = 0;
  int fMinute = 0;
  int fSecond = 0;
  int fMicroseconds = 0;
  int fOffset = 0;
};

int ReadDigits(const char* digits, int count, bool& isGood) {
  int number = 0;
  for (int i = 0; i < count; ++i) {
    const int digit = digits[i] - '0';
    if (digit < 0 || digit > 9) isGood = false;
    number = number * 10 + digit;
  }
  return number;
}

/// Returns null for bad text. The fields are in memory of their own, like those of a date-time.
std::unique_ptr<TFields> ReadByHand(const std::string& text) {
  if (text.size() != 25 || text[14] != '.') return nullptr;
  const char* at = text.data();
  bool isGood = true;
  TFields fields;
  fields.fIsInterval = at[21] == ':';
  if (fields.fIsInterval) {
    fields.fDay = ReadDigits(at, 8, isGood);
  } else {
    if (at[21] != '+' && at[21] != '-') return nullptr;
    fields.fYear = ReadDigits(at, 4, isGood);
    fields.fMonth = ReadDigits(at + 4, 2, isGood);
    fields.fDay = ReadDigits(at + 6, 2, isGood);
  }
  fields.fHour = ReadDigits(at + 8, 2, isGood);
  fields.fMinute = ReadDigits(at + 10, 2, isGood);
  fields.fSecond = ReadDigits(at + 12, 2, isGood);
  fields.fMicroseconds = ReadDigits(at + 15, 6, isGood);
  fields.fOffset = ReadDigits(at + 22, 3, isGood) * (at[21] == '-' ? -1 : 1);
  return isGood ? std::make_unique<TFields>(fields) : nullptr;
}

void WriteDigits(char* end, int number, int count) {
  for (; count > 0; --count) {
    *--end = static_cast<char>('0' + number % 10);
    number /= 10;
  }
}

std::string WriteByHand(const TFields& fields) {
  char text[25];
  if (fields.fIsInterval) {
    WriteDigits(text + 8, fields.fDay, 8);
  } else {
    WriteDigits(text + 4, fields.fYear, 4);
    WriteDigits(text + 6, fields.fMonth, 2);
    WriteDigits(text + 8, fields.fDay, 2);
  }
  WriteDigits(text + 10, fields.fHour, 2);
  WriteDigits(text + 12, fields.fMinute, 2);
  WriteDigits(text + 14, fields.fSecond, 2);
  text[14] = '.';
  WriteDigits(text + 21, fields.fMicroseconds, 6);
  text[21] = fields.fIsInterval ? ':' : fields.fOffset < 0 ? '-' : '+';
  WriteDigits(text + 25, std::abs(fields.fOffset), 3);
  return std::string(text, sizeof(text));
}

/// The microseconds since 1970 in UTC, without the C library: right where no zone has a say.
std::int64_t MicrosecondsByHand(const TFields& fields) {
  const int year = fields.fYear - (fields.fMonth <= 2 ? 1 : 0);
  const int era = year / 400;
  const int yearOfEra = year % 400;
  const int dayOfYear = (153 * ((fields.fMonth + 9) % 12) + 2) / 5 + fields.fDay - 1;
  const int dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  const std::int64_t day = era * 146097LL + dayOfEra - 719468;
  const std::int64_t second =
      ((day * 24 + fields.fHour) * 60 + fields.fMinute - fields.fOffset) * 60 + fields.fSecond;
  return second * 1000000 + fields.fMicroseconds;
}

std::tm March(int hour) {
  std::tm fields{};
  fields.tm_year = 104;
  fields.tm_mon = 2;
  fields.tm_mday = 15;
  fields.tm_hour = hour;
  fields.tm_isdst = -1;
  return fields;
}

TLoop Parse(const std::string& text) {
  return Repeat([text] { return TCIMDateTime(text); });
}
TLoop ParseByHand(const std::string& text) {
  return Repeat([text] { return ReadByHand(text); });
}
TLoop Format(const std::string& text) {
  return Repeat([value = TCIMDateTime(text)] { return value.ToString(); });
}
TLoop FormatByHand(const std::string& text) {
  return Repeat([fields = *ReadByHand(text)] { return WriteByHand(fields); });
}

TLoop Refuse() {
  return Repeat([text = std::string("20040315143000.00000x+060")] {
    try {
      const TCIMDateTime value(text);
      return false;
    } catch (const TQDXException&) {
      return true;
    }
  });
}

TLoop ThrowAndCatch() {
  return Repeat([code = kQDXStatusInvalidDateTime]() mutable {
    try {
      Keep(code);
      throw TQDXException(code);
    } catch (const TQDXException&) {
      return true;
    }
  });
}

TLoop AddInterval() {
  return Repeat([point = TCIMDateTime(kPoint), interval = TCIMDateTime(kInterval)] {
    return point + interval;
  });
}

TLoop SubtractInterval() {
  return Repeat([point = TCIMDateTime(kPoint), interval = TCIMDateTime(kInterval)] {
    return point - interval;
  });
}

TLoop SubtractPoint() {
  return Repeat(
      [left = TCIMDateTime(kYearLater), right = TCIMDateTime(kPoint)] { return left - right; });
}

TPrepare Compare(const std::string& other) {
  return [other] {
    return Repeat(
        [left = TCIMDateTime(kPoint), right = TCIMDateTime(other)] { return left < right; });
  };
}

TLoop CompareByHand() {
  return Repeat([left = *ReadByHand(kPoint), right = *ReadByHand(kYearLater)]() mutable {
    Keep(left);
    Keep(right);
    return MicrosecondsByHand(left) < MicrosecondsByHand(right);
  });
}

TLoop TwoMktime() {
  return Repeat([] {
    std::tm left = March(14);
    std::tm right = March(15);
    return std::mktime(&left) < std::mktime(&right);
  });
}

TLoop MktimeAndBack() {
  return Repeat([] {
    std::tm fields = March(14);
    const std::time_t moment = std::mktime(&fields) + 93784;
    ::localtime_r(&moment, &fields);
    return fields;
  });
}

TLoop Now() {
  return Repeat([] { return TOSSpecific::GetLocalTime(); });
}

TLoop NowByHand() {
  return Repeat([] {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    std::tm local{};
    ::localtime_r(&now.tv_sec, &local);
    return std::make_unique<TFields>(TFields{false, local.tm_year + 1900, local.tm_mon + 1,
                                             local.tm_mday, local.tm_hour, local.tm_min,
                                             local.tm_sec, static_cast<int>(now.tv_nsec / 1000),
                                             static_cast<int>(local.tm_gmtoff / 60)});
  });
}

TOperations InEachZone(const TOperation& operation) {
  TOperations all;
  for (const auto& [zone, name] : {std::pair(kZoneSet, ", TZ set"),
                                   {kZoneUnset, ", TZ unset"},
                                   {kManyVariables, ", 500 variables"}}) {
    TOperation& added = all.emplace_back(operation);
    added.fName += name;
    added.fZone = zone;
  }
  return all;
}

void Append(TOperations& all, const TOperations& more) {
  all.insert(all.end(), more.begin(), more.end());
}

}  // namespace

TOperations DateTimeOperations() {
  TOperations all = {
      {"parse point", [] { return Parse(kPoint); }, "by hand", [] { return ParseByHand(kPoint); },
       1.4},
      {"parse interval", [] { return Parse(kInterval); }, "by hand",
       [] { return ParseByHand(kInterval); }, 1.4},
      {"format point", [] { return Format(kPoint); }, "by hand",
       [] { return FormatByHand(kPoint); }, 1.31},
      {"format interval", [] { return Format(kInterval); }, "by hand",
       [] { return FormatByHand(kInterval); }, 1.31},
      {"refuse a bad date-time", Refuse, "throw and catch", ThrowAndCatch, 1.2},
      {"point - point", SubtractPoint, "mktime and localtime_r", MktimeAndBack, 1.1}};
  const std::string limit = "mktime and localtime_r";
  Append(all, InEachZone({"point + interval", AddInterval, limit, MktimeAndBack, 1.1}));
  Append(all, InEachZone({"point - interval", SubtractInterval, limit, MktimeAndBack, 1.1}));
  Append(all, InEachZone({"compare points a year apart", Compare(kYearLater), "by hand in UTC",
                          CompareByHand, 1}));
  Append(all, InEachZone({"compare points an hour apart", Compare(kHourLater), "mktime twice",
                          TwoMktime, 1.1}));
  Append(all, InEachZone({"now", Now, "clock_gettime and localtime_r", NowByHand, 1.3}));
  return all;
}

}  // namespace NBench
