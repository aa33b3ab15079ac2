// SPDX-License-Identifier: Apache-2.0
#include <qdxdisplay/date_time.h>

#include <qdxdisplay/quantity.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <ctime>
#include <string_view>

namespace NVORNQDX20 {
namespace {

bool AreDigits(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

/// REQUIRES: there are so many digits.
int NumberAt(std::string_view text, std::size_t start, std::size_t size) {
  int number = 0;
  std::from_chars(text.data() + start, text.data() + start + size, number);
  return number;
}

/// Returns whether it is a CIM date-time without digits that are unknown, "*".
bool IsComplete(std::string_view text) {
  constexpr std::size_t kSize = 25;
  return text.size() == kSize && text[14] == '.' && AreDigits(text.substr(0, 14)) &&
         AreDigits(text.substr(15, 6)) && AreDigits(text.substr(22));
}

bool IsInterval(std::string_view text) { return text[21] == ':'; }

/// "00000012030405.000000:000": days, hours, minutes, seconds.
long double SecondsOf(std::string_view text) {
  const auto part = [text](std::size_t start, std::size_t size) {
    return static_cast<long double>(NumberAt(text, start, size));
  };
  return part(0, 8) * 86400 + part(8, 2) * 3600 + part(10, 2) * 60 + part(12, 2) +
         part(15, 6) / 1e6L;
}

/// "20040315143000.000000+060"; the offset is in minutes.
std::optional<std::string> PointText(std::string_view text) {
  if (text[21] != '+' && text[21] != '-') return std::nullopt;
  const int offset = NumberAt(text, 22, 3);
  std::string out(text.substr(0, 4));
  static constexpr struct {
    std::size_t fPosition;
    char fBefore;
  } kParts[] = {{4, '-'}, {6, '-'}, {8, ' '}, {10, ':'}, {12, ':'}};
  for (const auto& [position, before] : kParts) {
    out += before;
    out += text.substr(position, 2);
  }
  std::string_view fraction = text.substr(15, 6);
  fraction = fraction.substr(0, fraction.find_last_not_of('0') + 1);
  if (!fraction.empty()) out.append(".").append(fraction);
  const auto two = [](int number) { return (number < 10 ? "0" : "") + std::to_string(number); };
  return out + " " + text[21] + two(offset / 60) + ":" + two(offset % 60);
}

/// Minutes east of UTC.
int OffsetOf(std::string_view text) { return NumberAt(text, 22, 3) * (text[21] == '-' ? -1 : 1); }

/// Returns the digits of a point in time by a clock with this offset.
std::string DigitsAt(std::string_view text, int offset) {
  std::tm clock = {};
  clock.tm_year = NumberAt(text, 0, 4) - 1900;
  clock.tm_mon = NumberAt(text, 4, 2) - 1;
  clock.tm_mday = NumberAt(text, 6, 2);
  clock.tm_hour = NumberAt(text, 8, 2);
  clock.tm_min = NumberAt(text, 10, 2) + offset - OffsetOf(text);
  clock.tm_sec = NumberAt(text, 12, 2);
  const std::time_t time = ::timegm(&clock);
  char digits[32] = "";
  if (::gmtime_r(&time, &clock) != nullptr) {
    std::strftime(digits, sizeof digits, "%Y%m%d%H%M%S", &clock);
  }
  return digits + std::string(text.substr(15, 6));
}

/// A point in time as people type it.
struct TTyped {
  std::string fDigits;         ///< From the year on; as many as were typed.
  std::optional<int> fOffset;  ///< Minutes east of UTC.
};

/// Reads "+01:00", "+0100", "+060" or "Z".
std::optional<int> ParseOffset(std::string_view text) {
  if (text == "Z" || text == "z") return 0;
  const int sign = text.front() == '-' ? -1 : 1;
  text.remove_prefix(1);
  const std::size_t minutes = text.size() == 5 && text[2] == ':' ? 3 : 2;
  const bool isClock = text.size() == minutes + 2;
  const std::string_view rest = text.substr(std::min(minutes, text.size()));
  if (isClock && AreDigits(text.substr(0, 2)) && AreDigits(rest)) {
    return sign * (NumberAt(text, 0, 2) * 60 + NumberAt(text, minutes, 2));
  }
  if (text.size() != 3 || !AreDigits(text)) return std::nullopt;
  return sign * NumberAt(text, 0, 3);
}

std::optional<TTyped> ParseTyped(std::string_view text) {
  TTyped typed;
  // The signs of a date come before this.
  constexpr std::size_t kEndOfDate = 10;
  const std::size_t end = std::min(text.find_first_of("+-Zz", kEndOfDate), text.size());
  if (end < text.size()) {
    typed.fOffset = ParseOffset(text.substr(end));
    if (!typed.fOffset) return std::nullopt;
  }
  constexpr std::size_t kYear = 4, kSecond = 14, kMicroseconds = 20;
  const auto& digits = typed.fDigits;
  const auto isWhole = [&digits] { return digits.size() >= kSecond || digits.size() % 2 == 0; };
  for (const char c : text.substr(0, end)) {
    if (c >= '0' && c <= '9') {
      typed.fDigits += c;
    } else if (std::string_view("-:. Tt").find(c) == std::string_view::npos || !isWhole()) {
      return std::nullopt;
    }
  }
  const bool isDate = digits.size() >= kYear && digits.size() <= kMicroseconds && isWhole();
  return isDate ? std::optional(typed) : std::nullopt;
}

int Sign(int order) { return order < 0 ? -1 : order > 0 ? 1 : 0; }

}  // namespace

std::optional<std::string> DateTimeText(const std::string& text) {
  if (!IsComplete(text)) return std::nullopt;
  return IsInterval(text) ? FormatDuration(SecondsOf(text)) : PointText(text);
}

std::optional<int> CompareDateTime(const std::string& value, const std::string& typed) {
  if (!IsComplete(value)) return std::nullopt;
  if (IsInterval(value)) {
    const bool isRaw = IsComplete(typed) && IsInterval(typed);
    const auto wanted = isRaw ? std::optional(SecondsOf(typed)) : ParseQuantity(typed, "second");
    if (!wanted) return std::nullopt;
    const long double seconds = SecondsOf(value);
    return seconds < *wanted ? -1 : seconds > *wanted ? 1 : 0;
  }
  const auto wanted = ParseTyped(typed);
  if (!wanted) return std::nullopt;
  const std::string digits = DigitsAt(value, wanted->fOffset.value_or(OffsetOf(value)));
  return Sign(digits.compare(0, wanted->fDigits.size(), wanted->fDigits));
}

}  // namespace NVORNQDX20
