// SPDX-License-Identifier: Apache-2.0
// Values read from texts.
#include <qdxcore/value.h>

#include "support/expect_status.h"

#include <cmath>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <string>
#include <utility>

using namespace NVORNQDX20;

namespace {

using TCIMType = TCIMValue::TCIMType;

TCIMValue U8(int value) { return static_cast<unsigned char>(value); }
TCIMValue S8(int value) { return static_cast<signed char>(value); }
TCIMValue U16(int value) { return static_cast<unsigned short>(value); }
TCIMValue S16(int value) { return static_cast<short>(value); }

TCIMValue Parse(TCIMType type, std::string text) {
  return TCIMValue(type, text, boost::shared_ptr<ICIMNamespace>());
}

using Row = std::pair<const char*, TCIMValue>;  // the text is read as the type of the value

template <typename... TRows>
void ExpectParsed(const TRows&... rows) {
  for (const auto& [text, value] : {rows...}) {
    const TCIMValue parsed = Parse(value.GetType(), text);
    EXPECT_TRUE(parsed == value) << value.GetType() << " \"" << text << '"';
    EXPECT_EQ(parsed.ToString(10), value.ToString(10)) << text;  // tells -0 from 0
  }
}

TEST(CIMValueParsing, OfBooleans) {
  ExpectParsed(Row("true", true), Row(" \t\n\v\f\rtrue", true), Row("truely", true),
               Row("tru", false), Row("TRUE", false), Row("1", false), Row("", false));
}

TEST(CIMValueParsing, OfIntegersInTheirBases) {
  ExpectParsed(Row("0x1F", 31U), Row("037", 31U), Row("31", 31U), Row("0XfF", 255U), Row("08", 0U),
               Row("  42", 42U), Row("12abc", 12U), Row("+7", 7U), Row("1,000", 1U), Row("0x", 0U),
               Row("0xg", 0U), Row("00x1", 0U), Row("-0x10", -16), Row("-010", -8L), Row("", 0),
               Row("-", 0), Row("+-5", 0), Row("abc", 0));
}

TEST(CIMValueParsing, OfIntegersBeyondTheirRange) {
  ExpectParsed(  // 8 bits wrap, after the 32 bits through which they are read.
      Row("256", U8(0)), Row("300", U8(44)), Row("4294967296", U8(0)), Row("-1", U8(0)),
      Row("-1", S8(-1)), Row("200", S8(-56)), Row("2147483648", S8(0)), Row("65535", U16(65535)),
      Row("65537", U16(0)), Row("-1", U16(0)), Row("-32768", S16(-32768)), Row("-32769", S16(0)),
      Row("32768", S16(0)), Row("4294967295", 4294967295U), Row("4294967296", 0U), Row("-1", 0U),
      Row("2147483647", 2147483647), Row("2147483648", 0), Row("-2147483648", -2147483647 - 1),
      Row("-2147483649", 0),
      // A minus sign wraps in 64 bits alone.
      Row("18446744073709551615", 18446744073709551615UL), Row("18446744073709551616", 0UL),
      Row("-1", 18446744073709551615UL), Row("-18446744073709551616", 0UL),
      Row("9223372036854775807", 9223372036854775807L), Row("9223372036854775808", 0L),
      Row("-9223372036854775808", std::numeric_limits<long>::min()),
      Row("-9223372036854775809", 0L));
}

/// Reads like a stream that takes the base from the prefix.
TEST(CIMValueParsing, OfAnyIntegerIsThatOfAStream) {
  std::mt19937 engine(1);
  const auto number = [&engine](int from, int to) {
    return std::uniform_int_distribution<int>(from, to)(engine);
  };
  for (int i = 0; i < 20000; ++i) {
    std::string text(static_cast<std::size_t>(number(0, 2)), ' ');
    if (number(0, 2) == 0) text += "+-"[number(0, 1)];
    if (number(0, 2) == 0) text += number(0, 1) == 0 ? "0x" : "0";
    const bool isLong = number(0, 1) == 0;
    for (int length = number(isLong ? 17 : 0, 21); length > 0; --length) {
      text += "0123456789abF xX+-,9999999999"[number(0, isLong ? 9 : 28)];
    }
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    stream.unsetf(std::ios::basefield);
    long expected = 0;
    stream >> expected;
    EXPECT_EQ(static_cast<long>(Parse(TCIMType::kCIMTypeSint64, text)), stream ? expected : 0)
        << text;
  }
}

TEST(CIMValueParsing, OfReals) {
  ExpectParsed(Row("1e3", 1000.0), Row("0.1", 0.1F), Row(" +1.5E+2xyz", 150.0),
               Row("12e5each", 12e5), Row(".5", 0.5), Row("5.", 5.0), Row("-2.5.7", -2.5),
               Row(".", 0.0), Row("1e", 0.0), Row("1e+", 0.0), Row("e5", 0.0), Row("inf", 0.0),
               Row("nan", 0.0), Row("0x1p3", 0.0), Row("1e400", 0.0), Row("-1e400", 0.0),
               Row("-0", -0.0), Row("-1e-400", -0.0), Row("-", 0.0), Row("1e-400", 0.0),
               Row("1e39", 0.0F), Row("4.9e-324", 4.9e-324), Row("1e-40", 1e-40F),
               Row("179769313486231570000e288", 1.7976931348623157e308));
}

template <typename T>
void ExpectReadAsByAStream(TCIMType type, const std::string& text) {
  std::istringstream stream(text);
  stream.imbue(std::locale::classic());
  T expected = 0;
  if (!(stream >> expected)) expected = 0;
  const T number = Parse(type, text);
  EXPECT_EQ(number, expected) << text;
  EXPECT_EQ(std::signbit(number), std::signbit(expected)) << text;
}

TEST(CIMValueParsing, OfAnyRealIsThatOfAStream) {
  std::mt19937 engine(1);
  const auto number = [&engine](int from, int to) {
    return std::uniform_int_distribution<int>(from, to)(engine);
  };
  const auto some = [&number](const std::string& of, int most) {
    std::string text;
    for (int length = number(0, most); length > 0; --length) {
      text += of[static_cast<std::size_t>(number(0, static_cast<int>(of.size()) - 1))];
    }
    return text;
  };
  for (int i = 0; i < 20000; ++i) {
    const std::string digits = number(0, 9) == 0 ? "0" : "0123456789";
    std::string text = some(" \t", 1) + some("+-", 1) + some(digits, number(0, 9) == 0 ? 400 : 20);
    if (number(0, 1) == 0) text += "." + some(digits, number(0, 9) == 0 ? 400 : 20);
    if (number(0, 1) == 0) text += some("eE", 1) + some("+-", 1) + some(digits, 3);
    text += some("eE.+-x 5infa", 2);
    ExpectReadAsByAStream<double>(TCIMType::kCIMTypeReal64, text);
    ExpectReadAsByAStream<float>(TCIMType::kCIMTypeReal32, text);
  }
}

TEST(CIMValueParsing, OfTextsAndOfWhatCannotBeRead) {
  ExpectParsed(Row("  \"a\", \\ ", "  \"a\", \\ "),
               Row("20040315143000.000000+060", TCIMDateTime("20040315143000.000000+060")));
  EXPECT_QDX_STATUS(Parse(TCIMType::kCIMTypeDateTime, "yesterday"), kQDXStatusInvalidDateTime);
  for (const unsigned int type : {0U, 12U, 16U, 18U, 0xffffffffU}) {
    EXPECT_QDX_STATUS(Parse(TCIMType(type), "1"), kQDXStatusTypeMismatch);
  }
}

}  // namespace
