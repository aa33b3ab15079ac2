// SPDX-License-Identifier: Apache-2.0
// Formats and parses date-times: the DMTF's 25 characters, and a text for people.
#include <qdxcore/datetime.h>
#include <qdxcore/status.h>

#include "datetime_text.h"

#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>

namespace NVORNQDX20 {
namespace {

constexpr std::size_t kTextLength = 25;
constexpr std::size_t kPointPosition = 14;
constexpr std::size_t kSignPosition = 21;

[[noreturn]] void RefuseDateTime() { throw TQDXException(kQDXStatusInvalidDateTime); }

/// Eight characters, of which the first is the lowest byte.
std::uint64_t EightAt(const std::string& text, std::size_t position) {
  std::uint64_t characters = 0;
  std::memcpy(&characters, text.data() + position, sizeof characters);
  return characters;
}

/// Four numbers of two digits each, read at once.
class TDigitPairs {
 public:
  explicit TDigitPairs(std::uint64_t characters) {
    constexpr std::uint64_t kHighHalves = 0xF0F0F0F0F0F0F0F0;
    constexpr std::uint64_t kDigits = 0x3030303030303030;
    fAreDigits = (characters & kHighHalves) == kDigits &&
                 ((characters + 0x0606060606060606) & kHighHalves) == kDigits;
    const std::uint64_t digits = characters ^ kDigits;
    fPairs = digits * 10 + (digits >> 8);
  }

  bool AreDigits() const { return fAreDigits; }
  std::uint32_t operator[](int index) const { return fPairs >> (16 * index) & 0xFF; }
  /// Returns the number of all digits from a pair to a later one.
  std::uint32_t From(int first, int last) const {
    std::uint32_t number = 0;
    for (int i = first; i <= last; ++i) number = number * 100 + (*this)[i];
    return number;
  }

 private:
  bool fAreDigits;
  std::uint64_t fPairs;
};

/// A buffer for decimal numbers with leading zeros; fits the largest value of every field.
class TFieldWriter {
 public:
  template <int kMinimumWidth>
  TFieldWriter& Number(std::uint32_t number) {
    if (number < PowerOfTen(kMinimumWidth)) {
      PutDigits<kMinimumWidth>(fEnd, number);
      fEnd += kMinimumWidth;
    } else {
      fEnd = std::to_chars(fEnd, std::end(fText), number).ptr;
    }
    return *this;
  }

  TFieldWriter& Character(char c) {
    *fEnd++ = c;
    return *this;
  }

  std::string Text() const { return std::string(fText, static_cast<std::size_t>(fEnd - fText)); }

 private:
  static constexpr std::uint32_t PowerOfTen(int exponent) {
    return exponent == 0 ? 1 : 10 * PowerOfTen(exponent - 1);
  }

  /// Two digits at a time: half of the divisions.
  template <int kWidth>
  static void PutDigits(char* to, std::uint32_t number) {
    static constexpr std::array<char, 200> kPairs = [] {
      std::array<char, 200> pairs{};
      for (std::size_t i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
      }
      return pairs;
    }();
    if constexpr (kWidth == 1) {
      *to = static_cast<char>('0' + number);
    } else {
      if constexpr (kWidth > 2) PutDigits<kWidth - 2>(to, number / 100);
      std::memcpy(to + kWidth - 2, kPairs.data() + std::size_t{2} * (number % 100), 2);
    }
  }

  char fText[80];
  char* fEnd = fText;
};

/// Appends "1 hour " or "2 hours "; nothing for 0.
void AppendQuantity(std::string& text, std::uint32_t number, const char* unit) {
  if (number == 0) return;
  text += std::to_string(number);
  text += ' ';
  text += unit;
  text += number == 1 ? " " : "s ";
}

}  // namespace

bool ReadDateTime(const std::string& text, TCIMDateTimeImpl& result) {
  if (text.size() != kTextLength || text[kPointPosition] != '.') return false;
  // What is no digit, at the positions 14 and 21, is replaced by one.
  const TDigitPairs date(EightAt(text, 0));
  const TDigitPairs clock(EightAt(text, 6));
  const TDigitPairs fraction((EightAt(text, 13) & ~std::uint64_t{0xFFFF}) | 0x3030);
  const TDigitPairs zone((EightAt(text, 17) >> 32 & 0xFFFFFF00) | 0x3030303000000030);
  const char sign = text[kSignPosition];
  if (!date.AreDigits() || !clock.AreDigits() || !fraction.AreDigits() || !zone.AreDigits() ||
      (sign != ':' && sign != '+' && sign != '-') || (sign == ':' && zone.From(0, 1) != 0)) {
    return false;
  }

  const auto narrow = [](std::uint32_t number) { return static_cast<std::uint16_t>(number); };
  // Microseconds, and the days of an interval, are narrowed to 16 bits on purpose: 123456 is stored
  // as 57920. Pinned by CIMDateTimeText.NarrowsMicrosecondsAndDays.
  const std::uint16_t microseconds = narrow(fraction.From(1, 3));
  const std::uint16_t hour = narrow(clock[1]), minute = narrow(clock[2]), second = narrow(clock[3]);
  if (sign == ':') {
    result.Set(std::uint32_t{narrow(date.From(0, 3))}, hour, minute, second, microseconds);
  } else {
    const auto offset = static_cast<std::int16_t>(zone.From(0, 1));
    result.Set(narrow(date.From(0, 1)), narrow(date[2]), date[3], hour, minute, second,
               microseconds, static_cast<std::int16_t>(sign == '-' ? -offset : offset));
  }
  return true;
}

std::string TCIMDateTimeImpl::ToString() const {
  if (fNull) RefuseDateTime();
  TFieldWriter text;
  if (fInterval) {
    text.Number<8>(fDay);
  } else {
    text.Number<4>(fYear).Number<2>(fMonth).Number<2>(fDay);
  }
  text.Number<2>(fHour).Number<2>(fMinute).Number<2>(fSecond);
  text.Character('.').Number<6>(fMicroseconds);
  if (fInterval) {
    text.Character(':').Number<3>(0);
  } else {
    const int offset = fUTCOffset;
    text.Character(offset < 0 ? '-' : '+')
        .Number<3>(static_cast<std::uint32_t>(offset < 0 ? -offset : offset));
  }
  return text.Text();
}

std::string TCIMDateTimeImpl::ToUIString() const {
  if (fNull) RefuseDateTime();
  if (fInterval) {
    std::string text;
    AppendQuantity(text, fDay, "day");
    AppendQuantity(text, fHour, "hour");
    AppendQuantity(text, fMinute, "minute");
    AppendQuantity(text, fSecond, "second");
    AppendQuantity(text, fMicroseconds / 1000, "millisecond");
    AppendQuantity(text, fMicroseconds % 1000, "microsecond");
    return text;  // with the trailing blank
  }
  TFieldWriter text;
  text.Number<2>(fMonth).Character('/').Number<2>(fDay).Character('/').Number<4>(fYear);
  text.Character(' ').Number<2>(fHour).Character(':').Number<2>(fMinute);
  text.Character(':').Number<2>(fSecond);
  return text.Text();
}

}  // namespace NVORNQDX20
