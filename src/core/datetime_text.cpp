// SPDX-License-Identifier: Apache-2.0
// Formats and parses date-times: the DMTF's 25 characters, and a text for people.
#include <qdxcore/datetime.h>
#include <qdxcore/status.h>

#include <cstddef>

namespace NVORNQDX20 {
namespace {

constexpr std::size_t kTextLength = 25;
constexpr std::size_t kPointPosition = 14;
constexpr std::size_t kSignPosition = 21;

[[noreturn]] void RefuseDateTime() { throw TQDXException(kQDXStatusInvalidDateTime); }

std::uint32_t ReadNumber(const char* digits, int count) {
  std::uint32_t number = 0;
  for (int i = 0; i < count; ++i)
    number = number * 10 + static_cast<std::uint32_t>(digits[i] - '0');
  return number;
}

bool HasShapeOfDateTime(const std::string& text) {
  if (text.size() != kTextLength || text[kPointPosition] != '.') return false;
  for (std::size_t i = 0; i < kTextLength; ++i) {
    if (i == kPointPosition || i == kSignPosition) continue;
    if (text[i] < '0' || text[i] > '9') return false;
  }
  return true;
}

/// A buffer for decimal numbers with leading zeros; fits the largest value of every field.
class TFieldWriter {
 public:
  TFieldWriter& Number(std::uint32_t number, int minimumWidth) {
    char digits[10];
    int count = 0;
    do {
      digits[count++] = static_cast<char>('0' + number % 10);
      number /= 10;
    } while (number != 0);
    for (int i = count; i < minimumWidth; ++i) *fEnd++ = '0';
    while (count > 0) *fEnd++ = digits[--count];
    return *this;
  }

  TFieldWriter& Character(char c) {
    *fEnd++ = c;
    return *this;
  }

  std::string Text() const { return std::string(fText, static_cast<std::size_t>(fEnd - fText)); }

 private:
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

void TCIMDateTimeImpl::Set(const std::string& text) {
  if (!HasShapeOfDateTime(text)) RefuseDateTime();
  const char* const digits = text.data();
  const auto field = [digits](int position, int count) {
    return static_cast<std::uint16_t>(ReadNumber(digits + position, count));
  };

  // Microseconds, and the days of an interval below, are narrowed to 16 bits on purpose: 123456 is
  // stored as 57920. Pinned by CIMDateTimeText.NarrowsMicrosecondsAndDays.
  const std::uint16_t microseconds = field(15, 6);
  const char sign = text[kSignPosition];
  const auto offset = static_cast<std::int16_t>(field(22, 3));
  if (sign == ':') {
    if (offset != 0) RefuseDateTime();
    Set(std::uint32_t{field(0, 8)}, field(8, 2), field(10, 2), field(12, 2), microseconds);
  } else if (sign == '+' || sign == '-') {
    Set(field(0, 4), field(4, 2), field(6, 2), field(8, 2), field(10, 2), field(12, 2),
        microseconds, static_cast<std::int16_t>(sign == '-' ? -offset : offset));
  } else {
    RefuseDateTime();
  }
}

std::string TCIMDateTimeImpl::ToString() const {
  if (fNull) RefuseDateTime();
  TFieldWriter text;
  if (fInterval) {
    text.Number(fDay, 8);
  } else {
    text.Number(fYear, 4).Number(fMonth, 2).Number(fDay, 2);
  }
  text.Number(fHour, 2).Number(fMinute, 2).Number(fSecond, 2);
  text.Character('.').Number(fMicroseconds, 6);
  if (fInterval) {
    text.Character(':').Number(0, 3);
  } else {
    const int offset = fUTCOffset;
    text.Character(offset < 0 ? '-' : '+')
        .Number(static_cast<std::uint32_t>(offset < 0 ? -offset : offset), 3);
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
  text.Number(fMonth, 2).Character('/').Number(fDay, 2).Character('/').Number(fYear, 4);
  text.Character(' ').Number(fHour, 2).Character(':').Number(fMinute, 2);
  text.Character(':').Number(fSecond, 2);
  return text.Text();
}

}  // namespace NVORNQDX20
