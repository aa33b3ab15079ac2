// SPDX-License-Identifier: Apache-2.0
#include "numbers.h"

#include <charconv>

namespace NVORNQDX20 {
namespace {

/// Longer texts are truncated in a reason.
constexpr std::size_t kMaxQuotedText = 40;

}  // namespace

std::optional<std::uint64_t> ParseNumber(std::string_view text) {
  const bool hexadecimal = text.substr(0, 2) == "0x";
  if (hexadecimal) text.remove_prefix(2);
  std::uint64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, hexadecimal ? 16 : 10);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

TNumber ToNumber(const TReading& text, const std::string& source) {
  if (!text) return TNumber::Missing(text.fReason);
  const auto number = ParseNumber(*text.fValue);
  if (number) return TNumber::Of(*number);
  const bool quoted = text.fValue->size() <= kMaxQuotedText;
  return TNumber::Missing(source + ": " + (quoted ? "'" + *text.fValue + "' is " : "") +
                          "no valid number");
}

TNumber ReadNumber(const THostFiles& files, const std::string& path) {
  return ToNumber(files.ReadLine(path), path);
}

TReadingOf<bool> ReadFlag(const THostFiles& files, const std::string& path) {
  const TNumber number = ReadNumber(files, path);
  if (!number) return TReadingOf<bool>::Missing(number.fReason);
  if (*number.fValue > 1) return TReadingOf<bool>::Missing(path + ": neither 0 nor 1");
  return TReadingOf<bool>::Of(*number.fValue == 1);
}

TNumber Scaled(const TNumber& number, std::uint64_t multiplier, std::uint64_t divisor) {
  if (!number) return number;
  if (*number.fValue > std::numeric_limits<std::uint64_t>::max() / multiplier) {
    return TNumber::Missing(std::to_string(*number.fValue) + " is out of range");
  }
  return TNumber::Of(*number.fValue * multiplier / divisor);
}

}  // namespace NVORNQDX20
