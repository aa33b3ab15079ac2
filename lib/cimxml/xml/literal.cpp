// SPDX-License-Identifier: Apache-2.0
#include "literal.h"

#include <qdxcore/status.h>
#include <qdxmodel/names.h>
#include <qdxmodel/visit.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <system_error>
#include <type_traits>
#include <utility>

namespace NVORNQDX20::NCIMXML {
namespace {

constexpr std::size_t kDateTimeLength = 25;
constexpr char kWildcard = '*';
constexpr std::size_t kShortNumber = 18;  // digits that fit any 64 bits

constexpr bool IsBlankCharacter(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

/// White space around numbers, booleans and date-times is ignored; strings are kept unchanged.
std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && IsBlankCharacter(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlankCharacter(text.back())) text.remove_suffix(1);
  return text;
}

bool StartsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

/// The whole text must be a number that fits the type.
template <typename T>
std::optional<T> Number(std::string_view text, int base) {
  T number{};
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number, base);
  if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
  return number;
}

/// Whether a hexadecimal number follows its sign: CIM-XML writes -0x1F.
bool IsHexadecimal(std::string_view text) {
  if (StartsWith(text, "-")) text.remove_prefix(1);
  return StartsWith(text, "0x") || StartsWith(text, "0X");
}

/// Reads what most integers are: a few decimal digits. Returns nothing for another text.
std::optional<std::uint64_t> ReadShortNumber(std::string_view text) {
  if (text.empty() || text.size() > kShortNumber) return std::nullopt;
  std::uint64_t number = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') return std::nullopt;
    number = 10 * number + static_cast<std::uint64_t>(c - '0');
  }
  return number;
}

template <typename T>
std::optional<T> ReadInteger(std::string_view text) {
  text = Trimmed(text);
  if (const auto number = ReadShortNumber(text)) {
    if (*number <= std::numeric_limits<T>::max()) return static_cast<T>(*number);
    return std::nullopt;
  }
  if (StartsWith(text, "+")) {
    text.remove_prefix(1);
    if (StartsWith(text, "-")) return std::nullopt;
  }
  if (!IsHexadecimal(text)) return Number<T>(text, 10);
  const std::string_view sign = text.substr(0, StartsWith(text, "-") ? 1 : 0);
  text.remove_prefix(sign.size() + 2);
  if (StartsWith(text, "-")) return std::nullopt;
  return Number<T>(std::string(sign) + std::string(text), 16);
}

template <typename T>
std::optional<T> ReadReal(std::string_view text) {
  text = Trimmed(text);
  constexpr T kInfinity = std::numeric_limits<T>::infinity();
  if (text == "NaN") return std::numeric_limits<T>::quiet_NaN();
  if (text == "INF") return kInfinity;
  if (text == "-INF") return -kInfinity;
  if (StartsWith(text, "+")) text.remove_prefix(1);
  // The standard library accepts these words; CIM-XML does not.
  if (text.find_first_of("nN") != std::string_view::npos) return std::nullopt;
  T number{};
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
  return number;
}

std::optional<bool> ReadBoolean(std::string_view text) {
  text = Trimmed(text);
  if (NModel::EqualIgnoringCase(text, "true")) return true;
  if (NModel::EqualIgnoringCase(text, "false")) return false;
  return std::nullopt;
}

template <typename T>
std::optional<T> ReadArithmetic(std::string_view text) {
  if constexpr (std::is_same_v<T, bool>) {
    return ReadBoolean(text);
  } else if constexpr (std::is_integral_v<T>) {
    return ReadInteger<T>(text);
  } else {
    return ReadReal<T>(text);
  }
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

/// Returns the number of some digits.
template <typename T>
T Field(std::string_view text, std::size_t position, std::size_t length) {
  std::uint32_t number = 0;
  for (const char c : text.substr(position, length)) {
    number = 10 * number + static_cast<std::uint32_t>(c - '0');
  }
  return static_cast<T>(number);
}

/// Parsed field by field, since TCIMDateTime narrows the microseconds and days of a text.
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
  if (!IsDateTimeText(Trimmed(text))) return std::nullopt;
  const std::optional<TCIMDateTime> time = ReadTime(text);
  return time ? TCIMValue(*time) : TCIMValue(TCIMType::kCIMTypeDateTime, 0);
}

}  // namespace

bool IsAbsent(const TCIMValue& value) {
  if (value.IsNull()) return true;
  return value.GetType() == TCIMType::kCIMTypeDateTime && TCIMDateTime(value).IsNull();
}

TLiteral::TLiteral(const TCIMValue& value) : fIsAbsent(value.IsNull()) {
  if (fIsAbsent) return;
  NModel::VisitType(value.GetType(), [&](auto native) {
    using T = typename decltype(native)::TType;
    if constexpr (std::is_arithmetic_v<T> || std::is_same_v<T, TCIMDateTime>) {
      Set(static_cast<T>(value));
    }
  });
}

void TLiteral::Set(bool value) { Set(std::string_view(value ? "TRUE" : "FALSE")); }

void TLiteral::Set(const TCIMDateTime& value) {
  fIsAbsent = value.IsNull();
  if (fIsAbsent) return;
  const std::string text = value.ToString();
  Set(std::string_view(text));
  if (text.size() != kDateTimeLength) fObstacle = "a date-time longer than 25 characters";
}

template <typename T>
void TLiteral::Set(T number) {
  if constexpr (std::is_floating_point_v<T>) {
    if (!std::isfinite(number)) fObstacle = "a real that is not a finite number";
  }
  char* const end = std::to_chars(fText, fText + sizeof fText, number).ptr;
  fSize = static_cast<std::size_t>(end - fText);
  if constexpr (std::is_floating_point_v<T>) {
    // The form of real numbers has a point, which the standard library leaves out of whole numbers.
    char* const place = std::find_if(fText, end, [](char c) { return c == '.' || c == 'e'; });
    if (place != end && *place == '.') return;
    std::copy_backward(place, end, end + 2);
    std::copy_n(".0", 2, place);
    fSize += 2;
  }
}

void TLiteral::Set(std::string_view text) { fSize = text.copy(fText, sizeof fText); }

bool IsBlank(std::string_view text) {
  return std::all_of(text.begin(), text.end(), IsBlankCharacter);
}

std::string WriteLiteral(const TCIMValue& value) {
  const std::string* const text = value.FindString();
  return text != nullptr ? *text : std::string(TLiteral(value).GetText());
}

std::optional<TCIMValue> ReadLiteral(TCIMType type, std::string_view text) {
  return NModel::VisitType(type, [text](auto native) -> std::optional<TCIMValue> {
    using T = typename decltype(native)::TType;
    if constexpr (std::is_arithmetic_v<T>) {
      const std::optional<T> number = ReadArithmetic<T>(text);
      return number ? std::optional<TCIMValue>(*number) : std::nullopt;
    } else if constexpr (std::is_same_v<T, std::string>) {
      return TCIMValue(std::string(text));
    } else if constexpr (std::is_same_v<T, TCIMDateTime>) {
      return ReadDateTime(text);
    } else {
      static_assert(std::is_void_v<T> || std::is_same_v<T, TCIMReference>);
      return std::nullopt;
    }
  });
}

std::optional<TNumber> ReadNumber(TCIMType type, std::string_view text) {
  return NModel::VisitType(type, [text](auto native) -> std::optional<TNumber> {
    using T = typename decltype(native)::TType;
    if constexpr (std::is_arithmetic_v<T>) {
      const std::optional<T> number = ReadArithmetic<T>(text);
      if (number) return TNumber(*number);
    }
    return std::nullopt;
  });
}

std::optional<TCIMDateTime> ReadTime(std::string_view text) {
  text = Trimmed(text);
  if (!IsDateTimeText(text) || text.find(kWildcard) != std::string_view::npos) return std::nullopt;
  try {
    return MakeDateTime(text);
  } catch (const TQDXException&) {
    return std::nullopt;
  }
}

}  // namespace NVORNQDX20::NCIMXML
