// SPDX-License-Identifier: Apache-2.0
// Parses values. Numbers are read as by a C++ stream in the "C" locale that takes the base from the
// prefix; but a number that cannot be read or does not fit is 0, and so is a negative number of an
// unsigned type other than uint64. Pinned by CIMValueParsing.
#include <qdxcore/reference.h>
#include <qdxcore/status.h>
#include <qdxcore/value.h>

#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <system_error>
#include <type_traits>

namespace NVORNQDX20 {
namespace {

// Texts end with a null character, which stops each loop.

const char* SkipWhiteSpace(const char* text) {
  while (*text == ' ' || (*text >= '\t' && *text <= '\r')) ++text;
  return text;
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// Steps over a sign. Returns whether it was a minus.
bool TakeSign(const char*& text) {
  const char sign = *text;
  if (sign == '-' || sign == '+') ++text;
  return sign == '-';
}

/// Steps over the prefix of a C integer. Returns the base.
int TakeBase(const char*& text) {
  if (*text != '0') return 10;
  if (text[1] != 'x' && text[1] != 'X') return 8;
  text += 2;
  return 16;
}

template <typename T>
T WithSign(unsigned long magnitude, bool negative) {
  const auto limit = static_cast<unsigned long>(std::numeric_limits<T>::max());
  if (!negative) return magnitude > limit ? T{0} : static_cast<T>(magnitude);
  if (std::is_signed_v<T>) {
    return magnitude > limit + 1 ? T{0} : static_cast<T>(0 - magnitude);
  }
  return sizeof(T) == sizeof(magnitude) ? static_cast<T>(0 - magnitude) : T{0};
}

/// Returns the number at the start of a text in base 8, 10 or 16; 0 if there is none or it exceeds
/// 64 bits.
std::uint64_t ReadMagnitude(const char* text, const char* end, int base) {
  std::uint64_t number = 0;
  if (base == 10) {
    constexpr int kSurelyFits = 19;
    const char* digit = text;
    for (; IsDigit(*digit) && digit - text < kSurelyFits; ++digit) {
      number = number * 10 + static_cast<std::uint64_t>(*digit - '0');
    }
    if (digit - text < kSurelyFits) return number;
  }
  const auto result = std::from_chars(text, end, number, base);
  return result.ec == std::errc() ? number : 0;
}

template <typename T>
T ReadInteger(const std::string& text) {
  const char* start = SkipWhiteSpace(text.c_str());
  const bool negative = TakeSign(start);
  const int base = TakeBase(start);
  return WithSign<T>(ReadMagnitude(start, text.c_str() + text.size(), base), negative);
}

bool ReadBoolean(const std::string& text) {
  return std::strncmp(SkipWhiteSpace(text.c_str()), "true", 4) == 0;
}

std::size_t CountDigits(const char* text) {
  const char* end = text;
  while (IsDigit(*end)) ++end;
  return static_cast<std::size_t>(end - text);
}

/// Returns the length of the decimal number at the start of a text without a sign; 0 if there is
/// none, or if its exponent has no digits.
std::size_t LengthOfReal(const char* text) {
  std::size_t length = CountDigits(text);
  std::size_t digits = length;
  if (text[length] == '.') {
    const std::size_t fraction = CountDigits(text + length + 1);
    digits += fraction;
    length += 1 + fraction;
  }
  if (digits == 0 || (text[length] != 'e' && text[length] != 'E')) return digits == 0 ? 0 : length;
  ++length;
  if (text[length] == '+' || text[length] == '-') ++length;
  const std::size_t exponent = CountDigits(text + length);
  return exponent == 0 ? 0 : length + exponent;
}

/// For magnitudes outside the range of T. Returns infinity for a large one, and for a small one 0
/// or the nearest number; std::from_chars gives the same error for both.
template <typename T>
T ReadExtremeReal(const std::string& text) {
  static const locale_t classic = ::newlocale(LC_ALL_MASK, "C", nullptr);
  if (classic == nullptr) throw TQDXException(kQDXStatusOutOfMemory);
  T number;
  if constexpr (std::is_same_v<T, float>) {
    number = ::strtof_l(text.c_str(), nullptr, classic);
  } else {
    number = ::strtod_l(text.c_str(), nullptr, classic);
  }
  return number;
}

template <typename T>
T ReadReal(const std::string& text) {
  const char* start = SkipWhiteSpace(text.c_str());
  const bool negative = TakeSign(start);
  // std::from_chars also reads a minus sign, and words.
  if (!IsDigit(*start) && *start != '.') return 0;

  T number = 0;
  const auto result = std::from_chars(start, text.c_str() + text.size(), number);
  if (result.ec == std::errc::invalid_argument) return 0;
  // It stops before an exponent without digits, too.
  const bool isBeforeExponent = *result.ptr == 'e' || *result.ptr == 'E';
  if (isBeforeExponent && LengthOfReal(start) == 0) return 0;
  if (result.ec == std::errc::result_out_of_range) {
    number = ReadExtremeReal<T>(std::string(start, LengthOfReal(start)));
  }
  if (std::isinf(number)) return 0;
  return negative ? -number : number;
}

}  // namespace

TCIMValue::TCIMValue(TCIMType type, std::string& text, boost::shared_ptr<ICIMNamespace> ns)
    : TCIMValue() {
  switch (type) {
    case TCIMType::kCIMTypeBoolean:
      Set(ReadBoolean(text));
      break;
    case TCIMType::kCIMTypeUint8:
      // Through 32 bits on purpose, as sint8 is: 256 is 0, 300 is 44.
      Set(static_cast<unsigned char>(ReadInteger<unsigned int>(text)));
      break;
    case TCIMType::kCIMTypeSint8:
      Set(static_cast<signed char>(ReadInteger<int>(text)));
      break;
    case TCIMType::kCIMTypeUint16:
      Set(ReadInteger<unsigned short>(text));
      break;
    case TCIMType::kCIMTypeSint16:
      Set(ReadInteger<short>(text));
      break;
    case TCIMType::kCIMTypeUint32:
      Set(ReadInteger<unsigned int>(text));
      break;
    case TCIMType::kCIMTypeSint32:
      Set(ReadInteger<int>(text));
      break;
    case TCIMType::kCIMTypeUint64:
      Set(ReadInteger<unsigned long>(text));
      break;
    case TCIMType::kCIMTypeSint64:
      Set(ReadInteger<long>(text));
      break;
    case TCIMType::kCIMTypeReal32:
      Set(ReadReal<float>(text));
      break;
    case TCIMType::kCIMTypeReal64:
      Set(ReadReal<double>(text));
      break;
    case TCIMType::kCIMTypeString:
      Set(text);
      break;
    case TCIMType::kCIMTypeDateTime:
      Set(TCIMDateTime(text));
      break;
    case TCIMType::kCIMTypeReference: {
      TCIMReference reference(ns, text, {});
      Set(reference);
      break;
    }
    default:
      throw TQDXException(kQDXStatusTypeMismatch);
  }
}

}  // namespace NVORNQDX20
