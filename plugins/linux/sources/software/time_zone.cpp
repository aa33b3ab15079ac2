// SPDX-License-Identifier: Apache-2.0
#include "time_zone.h"

#include <algorithm>
#include <cstddef>

#include <boost/algorithm/string/predicate.hpp>

namespace NVORNQDX20 {
namespace {

constexpr std::int64_t kMinute = 60;
constexpr std::int64_t kHour = 60 * kMinute;
constexpr std::int64_t kDay = 24 * kHour;
const char* const kLocalTime = "/etc/localtime";

std::int64_t FloorDivide(std::int64_t number, std::int64_t divisor) {
  return number / divisor - (number % divisor < 0 ? 1 : 0);
}

bool IsLeapYear(std::int64_t year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

int DaysIn(int month, std::int64_t year) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return kDays[month - 1] + (month == 2 && IsLeapYear(year) ? 1 : 0);
}

/// Returns the days from 1970 to the first of January.
std::int64_t DaysBefore(std::int64_t year) {
  const std::int64_t before = year - 1;
  return (year - 1970) * 365 + FloorDivide(before, 4) - FloorDivide(before, 100) +
         FloorDivide(before, 400) - 477;
}

std::int64_t YearOf(std::int64_t seconds) {
  const std::int64_t days = FloorDivide(seconds, kDay);
  std::int64_t year = 1970 + FloorDivide(days * 400, 146'097);
  while (DaysBefore(year) > days) --year;
  while (DaysBefore(year + 1) <= days) ++year;
  return year;
}

/// Takes what the text begins with. A failure is kept until the end: IsGood().
class TParser {
 public:
  explicit TParser(std::string_view text) : fText(text) {}

  bool IsGood() const { return fIsGood; }
  bool IsAtEnd() const { return fText.empty(); }

  bool Take(char character) {
    if (fText.empty() || fText.front() != character) return false;
    fText.remove_prefix(1);
    return true;
  }
  void Expect(char character) { fIsGood = Take(character) && fIsGood; }

  int TakeNumber(int smallest, int largest) {
    const std::size_t end = std::min(fText.find_first_not_of("0123456789"), fText.size());
    const auto number = ParseNumber<int>(fText.substr(0, end));
    fText.remove_prefix(end);
    if (number && *number >= smallest && *number <= largest) return *number;
    fIsGood = false;
    return smallest;
  }

  /// Skips the name of a zone: letters, or anything between angle brackets.
  void SkipName() {
    const bool isQuoted = Take('<');
    const std::size_t end = isQuoted ? fText.find('>') : fText.find_first_of("+-0123456789,");
    if (end == 0 || (isQuoted && end == std::string_view::npos)) fIsGood = false;
    fText.remove_prefix(std::min(end, fText.size()));
    if (isQuoted) Expect('>');
  }

  /// Takes hours, and perhaps minutes and seconds.
  std::int64_t TakeTime() {
    const bool isNegative = Take('-');
    if (!isNegative) Take('+');
    std::int64_t seconds = TakeNumber(0, 167) * kHour;
    if (Take(':')) seconds += TakeNumber(0, 59) * kMinute;
    if (Take(':')) seconds += TakeNumber(0, 59);
    return isNegative ? -seconds : seconds;
  }

  bool NextIsTime() const {
    return !fText.empty() &&
           std::string_view("+-0123456789").find(fText.front()) != std::string_view::npos;
  }

 private:
  std::string_view fText;
  bool fIsGood = true;
};

/// Returns the day, counted from the first of January, of for example the last Sunday in March.
std::int64_t DayOfWeekday(std::int64_t year, int month, int week, int weekday) {
  std::int64_t first = 0;
  for (int each = 1; each < month; ++each) first += DaysIn(each, year);
  constexpr int kThursday = 4;  // the first of January 1970
  const std::int64_t days = DaysBefore(year) + first + kThursday;
  const std::int64_t weekdayOfFirst = days - FloorDivide(days, 7) * 7;
  std::int64_t day = (weekday - weekdayOfFirst + 7) % 7 + (week - 1) * std::int64_t{7};
  if (day >= DaysIn(month, year)) day -= 7;
  return first + day;
}

/// Takes a date and a time. Returns when that is in the year, in seconds since 1970 of the zone.
std::int64_t TakeChange(TParser& parser, std::int64_t year) {
  std::int64_t day = 0;
  parser.Expect(',');
  if (parser.Take('M')) {
    const int month = parser.TakeNumber(1, 12);
    parser.Expect('.');
    const int week = parser.TakeNumber(1, 5);
    parser.Expect('.');
    day = DayOfWeekday(year, month, week, parser.TakeNumber(0, 6));
  } else if (parser.Take('J')) {
    day = parser.TakeNumber(1, 365) - 1;
    if (IsLeapYear(year) && day >= 59) ++day;  // the 29th of February has no number
  } else {
    day = parser.TakeNumber(0, 365);
  }
  const std::int64_t time = parser.Take('/') ? parser.TakeTime() : 2 * kHour;
  return (DaysBefore(year) + day) * kDay + time;
}

/// Returns a number of the file: its bytes from the highest on, in two's complement.
std::int64_t NumberAt(std::string_view file, std::size_t position, std::size_t size) {
  std::uint64_t number = 0;
  for (const char byte : file.substr(position, size)) {
    number = number << 8U | static_cast<unsigned char>(byte);
  }
  return size == 4 ? static_cast<std::int32_t>(number) : static_cast<std::int64_t>(number);
}

/// One of the two tables of a file: that of version 1 has times of 4 bytes, the other of 8.
struct TZoneTable {
  static constexpr std::size_t kHeaderSize = 44;
  static constexpr std::size_t kTypeSize = 6;

  TZoneTable(std::string_view text, std::size_t timeSize) : fText(text), fTimeSize(timeSize) {
    if (text.size() < kHeaderSize || text.substr(0, 4) != "TZif") return;
    const auto count = [text](std::size_t position) {
      return static_cast<std::size_t>(NumberAt(text, position, 4)) & 0xFFFFFFFFU;
    };
    fChanges = count(32);
    fTypes = count(36);
    fSize = kHeaderSize + fChanges * (timeSize + 1) + fTypes * kTypeSize + count(40) +
            count(28) * (timeSize + 4) + count(24) + count(20);
  }

  bool IsWhole() const { return fSize != 0 && fSize <= fText.size() && fTypes != 0; }
  std::int64_t TimeOf(std::size_t change) const {
    return NumberAt(fText, kHeaderSize + change * fTimeSize, fTimeSize);
  }
  /// Returns how many of the changes have happened by then.
  std::size_t CountBefore(std::int64_t when) const {
    std::size_t count = 0;
    while (count < fChanges && TimeOf(count) <= when) ++count;
    return count;
  }
  /// Returns the seconds east of UTC after so many changes.
  std::optional<std::int64_t> OffsetAfter(std::size_t count) const {
    const std::size_t types = kHeaderSize + fChanges * fTimeSize;
    const std::size_t type = count == 0 ? 0 : static_cast<unsigned char>(fText[types + count - 1]);
    if (type >= fTypes) return std::nullopt;
    return NumberAt(fText, types + fChanges + type * kTypeSize, 4);
  }

  std::string_view fText;
  std::size_t fTimeSize;
  std::size_t fChanges = 0;
  std::size_t fTypes = 0;
  std::size_t fSize = 0;  // 0 for another format
};

TReading<std::int16_t> InMinutes(const std::optional<std::int64_t>& seconds,
                                 const std::string& source) {
  constexpr std::int64_t kLargest = 26 * kHour;
  if (!seconds || *seconds < -kLargest || *seconds > kLargest) {
    return Missing(source + ": no valid time zone");
  }
  return static_cast<std::int16_t>(*seconds / 60);
}

}  // namespace

std::optional<std::int64_t> OffsetByRule(std::string_view rule, std::int64_t when) {
  TParser parser(rule);
  parser.SkipName();
  // The sign is that of the way from the zone to UTC.
  const std::int64_t standard = -parser.TakeTime();
  std::int64_t offset = standard;
  if (!parser.IsAtEnd()) {
    parser.SkipName();
    const std::int64_t summer = parser.NextIsTime() ? -parser.TakeTime() : standard + kHour;
    const std::int64_t year = YearOf(when + standard);
    const std::int64_t begin = TakeChange(parser, year) - standard;
    const std::int64_t end = TakeChange(parser, year) - summer;
    // South of the equator, summer begins late in the year.
    const bool isSummer =
        begin < end ? begin <= when && when < end : !(end <= when && when < begin);
    if (isSummer) offset = summer;
  }
  if (!parser.IsGood() || !parser.IsAtEnd()) return std::nullopt;
  return offset;
}

std::optional<std::int64_t> OffsetInZoneFile(std::string_view file, std::int64_t when) {
  TZoneTable table(file, 4);
  if (!table.IsWhole()) return std::nullopt;
  if (file[4] >= '2') {
    table = TZoneTable(file.substr(table.fSize), 8);
    if (!table.IsWhole()) return std::nullopt;
  }
  const std::size_t count = table.CountBefore(when);
  std::string_view rest = table.fText.substr(table.fSize);
  // After the last change, a rule in the last line holds.
  if (count == table.fChanges && !rest.empty() && rest.front() == '\n') {
    rest.remove_prefix(1);
    const std::string_view rule = TakeLine(rest);
    if (!rule.empty()) return OffsetByRule(rule, when);
  }
  return table.OffsetAfter(count);
}

TText ReadTimeZoneName(const TFiles& files) {
  const TText link = files.ReadLink(kLocalTime);
  if (link) {
    constexpr std::string_view kFolder = "zoneinfo/";
    const std::size_t folder = link->find(kFolder);
    const std::size_t begin = folder == std::string::npos ? 0 : folder + kFolder.size();
    std::string name = PrintableText(link->substr(begin));
    if (begin != 0 && !name.empty()) return name;
  }
  // A copy of a zone's file does not have the zone's name.
  TText name = files.ReadLine("/etc/timezone");
  if (!name && files.IsAbsent("/etc/timezone") && !link) return Missing(link.GetReason());
  return name;
}

TReading<std::int16_t> ReadTimeZoneOffset(const TFiles& files, std::int64_t when) {
  const TText name = ReadTimeZoneName(files);
  TText file = files.Read(kLocalTime);
  if (!file && files.IsAbsent(kLocalTime) && name) {
    if (boost::algorithm::ends_with(*name, "UTC")) return std::int16_t{0};
    TText ofName = files.Read("/usr/share/zoneinfo/" + *name);
    if (ofName) file = std::move(ofName);
  }
  return file.and_then([when](const std::string& contents) {
    return InMinutes(OffsetInZoneFile(contents, when), kLocalTime);
  });
}

}  // namespace NVORNQDX20
