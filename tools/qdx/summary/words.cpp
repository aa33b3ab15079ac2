// SPDX-License-Identifier: Apache-2.0
#include "words.h"

#include <algorithm>
#include <cmath>

#include <qdxdisplay/quantity.h>
#include <qdxdisplay/sensor.h>

#include "screen.h"

namespace NVORNQDX20 {
namespace {

/// A name that firmware or a document makes longer than this would push away other facts.
constexpr std::size_t kLongestFact = 130;

bool IsDigits(const std::string& text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

std::string Listed(const std::vector<std::string>& texts, const std::string& separator) {
  std::string list;
  for (const std::string& text : texts) {
    if (text.empty()) continue;
    if (!list.empty()) list += separator;
    list += Shortened(text, kLongestFact);
  }
  return list;
}

std::string FirstOf(const std::vector<std::string>& names, std::size_t most) {
  const auto count = static_cast<std::ptrdiff_t>(std::min(names.size(), most));
  const std::string first = Listed({names.begin(), names.begin() + count}, " ");
  return names.size() > most ? first + " ..." : first;
}

std::string FirstReason(const std::string& reasons) {
  const std::size_t end = reasons.find("; ");
  return end == std::string::npos ? reasons : reasons.substr(0, end) + " and more";
}

std::string Counted(std::uint64_t count, const std::string& one, const std::string& many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

std::string Times(std::size_t count) { return count == 1 ? "" : std::to_string(count) + " x "; }

std::string AsQuantity(const NSummary::TNumber& number, const char* unit) {
  return number ? FormatQuantity(static_cast<long double>(*number), unit) : "";
}

std::string AsDiskSize(const NSummary::TNumber& bytes) { return AsQuantity(bytes, "byte"); }

std::string AsMemorySize(const NSummary::TNumber& bytes) {
  constexpr long double kKilobyte = 1024;
  return bytes ? FormatQuantity(static_cast<long double>(*bytes) / kKilobyte, "byte * 2^10") : "";
}

std::string DayOf(const std::string& dateTime) {
  const std::string day = dateTime.substr(0, 8);
  const bool isInterval = dateTime.find(':') != std::string::npos;
  if (day.size() < 8 || !IsDigits(day) || isInterval) return "";
  return day.substr(0, 4) + "-" + day.substr(4, 2) + "-" + day.substr(6, 2);
}

std::string MinuteOf(const std::string& dateTime) {
  std::string day = DayOf(dateTime);
  const std::string time = day.empty() ? "" : dateTime.substr(8, 4);
  if (time.size() < 4 || !IsDigits(time)) return day;
  return day + " " + time.substr(0, 2) + ":" + time.substr(2);
}

int PercentUsed(const NSummary::TFileSystem& system) {
  const auto part = system.UsedPart();
  // Rounded up, so that 100 means full; 5 % of a number in binary may be a trifle more.
  return part ? static_cast<int>(std::ceil(*part * 100 - 1e-9)) : -1;
}

std::string ReadingOf(const NSummary::TSensor& sensor, std::int64_t reading) {
  return FormatReading(reading, sensor.fBaseUnits.value_or(0), sensor.fModifier);
}

}  // namespace NVORNQDX20
