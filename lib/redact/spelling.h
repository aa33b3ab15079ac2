// SPDX-License-Identifier: Apache-2.0
/// How values are spelled.
#ifndef LIB_REDACT_SPELLING_H_
#define LIB_REDACT_SPELLING_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace NVORNQDX20::NRedact {

inline constexpr std::string_view kDigits = "0123456789";
inline constexpr std::string_view kHexadecimal = "0123456789abcdefABCDEF";
/// What names of hosts and parameters are made of.
inline constexpr std::string_view kWord =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_.-";

/// Returns false for an empty text.
inline bool IsMadeOf(std::string_view text, std::string_view characters) {
  return !text.empty() && text.find_first_not_of(characters) == std::string_view::npos;
}

inline bool Contains(std::string_view text, std::string_view characters) {
  return text.find_first_of(characters) != std::string_view::npos;
}

/// Returns the digits in lower case if the value is at least twelve hexadecimal digits with or
/// without separators; otherwise nothing.
std::string HexDigitsOf(std::string_view value);

/// Returns for example "52:54:00:12:34:56" of the digits in pairs.
std::string Grouped(const std::string& digits, std::size_t size, char separator);

/// Splits at each of the separators.
std::vector<std::string> Split(const std::string& text, const char* separators);

}  // namespace NVORNQDX20::NRedact

#endif  // LIB_REDACT_SPELLING_H_
