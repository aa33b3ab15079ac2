// SPDX-License-Identifier: Apache-2.0
/// Parses numbers in texts.
#ifndef QDXDESCRIBE_NUMBERS_H_
#define QDXDESCRIBE_NUMBERS_H_

#include <qdxdescribe/reading.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>

namespace NVORNQDX20::NDescribe {

namespace NDetail {

/// Returns no error, invalid_argument or result_out_of_range.
template <typename T>
std::errc ParseNumber(std::string_view text, T& number) {
  std::from_chars_result result{};
  if constexpr (std::is_floating_point_v<T>) {
    const char* const end = text.data() + text.size();
    result = std::from_chars(text.data(), end, number, std::chars_format::fixed);
    if (result.ec == std::errc() && !std::isfinite(number)) return std::errc::invalid_argument;
  } else {
    const bool hexadecimal = std::is_unsigned_v<T> && text.substr(0, 2) == "0x";
    if (hexadecimal) text.remove_prefix(2);
    const char* const end = text.data() + text.size();
    result = std::from_chars(text.data(), end, number, hexadecimal ? 16 : 10);
  }
  return result.ptr == text.data() + text.size() ? result.ec : std::errc::invalid_argument;
}

TMissing NoNumber(std::errc error, const std::string& text, const std::string& source);
TMissing OutOfRange(std::uint64_t number);
TMissing DividedByZero(std::uint64_t number);

}  // namespace NDetail

/// Parses decimal digits, for an unsigned type also hexadecimal digits after "0x". A number with
/// a fraction needs a floating-point type, one with a minus a signed type. Null for any other text,
/// such as one with blanks, and for a number that T cannot have.
template <typename T = std::uint64_t>
std::optional<T> ParseNumber(std::string_view text) {
  T number{};
  return NDetail::ParseNumber(text, number) == std::errc() ? std::optional<T>(number)
                                                           : std::nullopt;
}

/// Parses like ParseNumber(). The reason names `source` if the text is not a number.
template <typename T = std::uint64_t>
TReading<T> ToNumber(const TReading<std::string>& text, const std::string& source) {
  return text.and_then([&source](const std::string& digits) -> TReading<T> {
    T number{};
    const std::errc error = NDetail::ParseNumber(digits, number);
    if (error != std::errc()) return NDetail::NoNumber(error, digits, source);
    return number;
  });
}

/// Returns number * multiplier / divisor; missing if T cannot have it, or if the divisor is 0.
template <typename T = std::uint64_t>
TReading<T> Scaled(const TReading<std::uint64_t>& number, std::uint64_t multiplier,
                   std::uint64_t divisor = 1) {
  static_assert(std::is_unsigned_v<T>, "use map() for other types");
  return number.and_then([=](std::uint64_t value) -> TReading<T> {
    if (divisor == 0) return NDetail::DividedByZero(value);
    constexpr std::uint64_t kLargest = std::numeric_limits<std::uint64_t>::max();
    const bool fits = multiplier == 0 || value <= kLargest / multiplier;
    const std::uint64_t scaled = value * multiplier / divisor;
    if (!fits || scaled > std::numeric_limits<T>::max()) return NDetail::OutOfRange(value);
    return static_cast<T>(scaled);
  });
}

}  // namespace NVORNQDX20::NDescribe

#endif  // QDXDESCRIBE_NUMBERS_H_
