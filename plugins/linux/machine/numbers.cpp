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

TNumber ToNumber(const TText& text, const std::string& source) {
  return text.and_then([&source](const std::string& digits) -> TNumber {
    if (const auto number = ParseNumber(digits)) return *number;
    const bool quoted = digits.size() <= kMaxQuotedText;
    return Missing(source + ": " + (quoted ? "'" + digits + "' is " : "") + "no valid number");
  });
}

TNumber ReadNumber(const THostFiles& files, const std::string& path) {
  return ToNumber(files.ReadLine(path), path);
}

TReading<bool> ReadFlag(const THostFiles& files, const std::string& path) {
  return ReadNumber(files, path).and_then([&path](std::uint64_t number) -> TReading<bool> {
    if (number > 1) return Missing(path + ": neither 0 nor 1");
    return number == 1;
  });
}

TNumber Scaled(const TNumber& number, std::uint64_t multiplier, std::uint64_t divisor) {
  return number.and_then([=](std::uint64_t value) -> TNumber {
    if (value > std::numeric_limits<std::uint64_t>::max() / multiplier) {
      return Missing(std::to_string(value) + " is out of range");
    }
    return value * multiplier / divisor;
  });
}

}  // namespace NVORNQDX20
