// SPDX-License-Identifier: Apache-2.0
#include "literal.h"

#include <qdxcore/status.h>

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <system_error>
#include <type_traits>

namespace NVORNQDX20::NCIMXML {
namespace {

constexpr std::size_t kDateTimeLength = 25;
constexpr char kWildcard = '*';

/// Numbers and the like may stand among white space; strings are taken as they are.
std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t start = text.find_first_not_of(kBlanks);
  if (start == std::string_view::npos) return {};
  return text.substr(start, text.find_last_not_of(kBlanks) - start + 1);
}

bool StartsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

bool EqualsIgnoringCase(std::string_view text, std::string_view lower) {
  if (text.size() != lower.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if ((text[i] | ' ') != lower[i]) return false;
  }
  return true;
}

template <typename T>
std::string NumberText(T number) {
  if constexpr (std::is_floating_point_v<T>) {
    if (std::isnan(number)) return "NaN";
    if (std::isinf(number)) return number < 0 ? "-INF" : "INF";
  }
  char text[32];
  const auto end = std::to_chars(text, text + sizeof(text), number).ptr;
  return std::string(text, end);
}

/// All of the text must be the number, and the number must fit.
template <typename T>
std::optional<TCIMValue> Number(std::string_view text, int base) {
  T number{};
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number, base);
  if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
  return TCIMValue(number);
}

template <typename T>
std::optional<TCIMValue> ReadInteger(std::string_view text) {
  text = Trimmed(text);
  if (StartsWith(text, "+")) text.remove_prefix(1);
  const bool isHexadecimal = StartsWith(text, "0x") || StartsWith(text, "0X");
  if (isHexadecimal) text.remove_prefix(2);
  if (isHexadecimal && StartsWith(text, "-")) return std::nullopt;
  return Number<T>(text, isHexadecimal ? 16 : 10);
}

template <typename T>
std::optional<TCIMValue> ReadReal(std::string_view text) {
  text = Trimmed(text);
  constexpr T kInfinity = std::numeric_limits<T>::infinity();
  if (text == "NaN") return TCIMValue(std::numeric_limits<T>::quiet_NaN());
  if (text == "INF") return TCIMValue(kInfinity);
  if (text == "-INF") return TCIMValue(-kInfinity);
  if (StartsWith(text, "+")) text.remove_prefix(1);
  // The words that the standard library knows, and others do not.
  if (text.find_first_of("nN") != std::string_view::npos) return std::nullopt;
  T number{};
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
  return TCIMValue(number);
}

std::optional<TCIMValue> ReadBoolean(std::string_view text) {
  text = Trimmed(text);
  if (EqualsIgnoringCase(text, "true")) return TCIMValue(true);
  if (EqualsIgnoringCase(text, "false")) return TCIMValue(false);
  return std::nullopt;
}

bool IsDateTimeText(std::string_view text) {
  if (text.size() != kDateTimeLength) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const bool fits = i == 14   ? c == '.'
                      : i == 21 ? c == '+' || c == '-' || c == ':'
                                : (c >= '0' && c <= '9') || (c == kWildcard && i < 21);
    if (!fits) return false;
  }
  return text[21] != ':' || text.substr(22) == "000";
}

template <typename T>
T Field(std::string_view text, std::size_t position, std::size_t length) {
  T number = 0;
  std::from_chars(text.data() + position, text.data() + position + length, number);
  return number;
}

/// Field by field: TCIMDateTime narrows the microseconds and the days of what it reads as text.
TCIMDateTime MakeDateTime(std::string_view text) {
  const auto hour = Field<std::uint16_t>(text, 8, 2);
  const auto minute = Field<std::uint16_t>(text, 10, 2);
  const auto second = Field<std::uint16_t>(text, 12, 2);
  const auto microseconds = Field<std::uint32_t>(text, 15, 6);
  if (text[21] == ':') {
    return TCIMDateTime(Field<std::uint32_t>(text, 0, 8), hour, minute, second, microseconds);
  }
  const auto offset = Field<std::int16_t>(text, 22, 3);
  return TCIMDateTime(Field<std::uint16_t>(text, 0, 4), Field<std::uint16_t>(text, 4, 2),
                      Field<std::uint32_t>(text, 6, 2), hour, minute, second, microseconds,
                      static_cast<std::int16_t>(text[21] == '-' ? -offset : offset));
}

std::optional<TCIMValue> ReadDateTime(std::string_view text) {
  text = Trimmed(text);
  if (!IsDateTimeText(text)) return std::nullopt;
  const TCIMValue null(TCIMType::kCIMTypeDateTime, 0);
  if (text.find(kWildcard) != std::string_view::npos) return null;
  try {
    return TCIMValue(MakeDateTime(text));
  } catch (const TQDXException&) {
    return null;
  }
}

}  // namespace

bool IsAbsent(const TCIMValue& value) {
  if (value.IsNull()) return true;
  return value.GetType() == TCIMType::kCIMTypeDateTime && TCIMDateTime(value).IsNull();
}

bool CanSpell(const TCIMValue& value) {
  return IsAbsent(value) || value.GetType() != TCIMType::kCIMTypeDateTime ||
         TCIMDateTime(value).ToString().size() == kDateTimeLength;
}

std::string WriteLiteral(const TCIMValue& value) {
  switch (value.GetType()) {
    case TCIMType::kCIMTypeBoolean:
      return static_cast<bool>(value) ? "TRUE" : "FALSE";
    case TCIMType::kCIMTypeReal32:
      return NumberText<float>(value);
    case TCIMType::kCIMTypeReal64:
      return NumberText<double>(value);
    case TCIMType::kCIMTypeString:
      return value;
    case TCIMType::kCIMTypeDateTime:
      return TCIMDateTime(value).ToString();
    default:
      return value.ToString(10);
  }
}

std::optional<TCIMValue> ReadLiteral(TCIMType type, std::string_view text) {
  switch (type) {
    case TCIMType::kCIMTypeBoolean:
      return ReadBoolean(text);
    case TCIMType::kCIMTypeUint8:
      return ReadInteger<unsigned char>(text);
    case TCIMType::kCIMTypeSint8:
      return ReadInteger<signed char>(text);
    case TCIMType::kCIMTypeUint16:
      return ReadInteger<unsigned short>(text);
    case TCIMType::kCIMTypeSint16:
      return ReadInteger<short>(text);
    case TCIMType::kCIMTypeUint32:
      return ReadInteger<unsigned int>(text);
    case TCIMType::kCIMTypeSint32:
      return ReadInteger<int>(text);
    case TCIMType::kCIMTypeUint64:
      return ReadInteger<unsigned long>(text);
    case TCIMType::kCIMTypeSint64:
      return ReadInteger<long>(text);
    case TCIMType::kCIMTypeReal32:
      return ReadReal<float>(text);
    case TCIMType::kCIMTypeReal64:
      return ReadReal<double>(text);
    case TCIMType::kCIMTypeString:
      return TCIMValue(std::string(text));
    case TCIMType::kCIMTypeDateTime:
      return ReadDateTime(text);
    default:
      return std::nullopt;
  }
}

}  // namespace NVORNQDX20::NCIMXML
