// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/value.h>

#include "support/expect_status.h"

#include <limits>
#include <locale>

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

using TCIMType = TCIMValue::TCIMType;

TCIMValue Parse(TCIMType type, std::string text) {
  return TCIMValue(type, text, boost::shared_ptr<ICIMNamespace>());
}

struct TRow {
  const char* fText;
  TCIMValue fValue;  // the text is read as the type of this
};

template <typename T>
TRow Row(const char* text, T value) {
  return {text, TCIMValue(value)};
}

TRow U8(const char* text, int value) { return Row(text, static_cast<unsigned char>(value)); }
TRow S8(const char* text, int value) { return Row(text, static_cast<signed char>(value)); }
TRow U16(const char* text, int value) { return Row(text, static_cast<unsigned short>(value)); }
TRow S16(const char* text, int value) { return Row(text, static_cast<short>(value)); }

template <typename... TRows>
void Expect(const TRows&... rows) {
  for (const TRow& row : {rows...}) {
    const TCIMValue parsed = Parse(row.fValue.GetType(), row.fText);
    EXPECT_TRUE(parsed == row.fValue) << row.fValue.GetType() << " \"" << row.fText << '"';
    EXPECT_EQ(parsed.ToString(10), row.fValue.ToString(10)) << row.fText;  // tells -0 from 0
  }
}

TEST(CIMValueParsing, OfBooleans) {
  Expect(Row("true", true), Row(" \t\n\v\f\rtrue", true), Row("truely", true), Row("tru", false),
         Row("TRUE", false), Row("1", false), Row("", false));
}

TEST(CIMValueParsing, OfIntegersInTheirBases) {
  Expect(Row("0x1F", 31U), Row("037", 31U), Row("31", 31U), Row("0XfF", 255U), Row("08", 0U),
         Row("  42", 42U), Row("12abc", 12U), Row("+7", 7U), Row("1,000", 1U), Row("0x", 0U),
         Row("0xg", 0U), Row("00x1", 0U), Row("-0x10", -16), Row("-010", -8L), Row("", 0),
         Row("-", 0), Row("+-5", 0), Row("abc", 0));
}

TEST(CIMValueParsing, OfIntegersBeyondTheirRange) {
  Expect(  // 8 bits wrap, after the 32 bits through which they are read.
      U8("256", 0), U8("300", 44), U8("4294967296", 0), U8("-1", 0), S8("-1", -1), S8("200", -56),
      S8("2147483648", 0), U16("65535", 65535), U16("65537", 0), U16("-1", 0),
      S16("-32768", -32768), S16("-32769", 0), S16("32768", 0), Row("4294967295", 4294967295U),
      Row("4294967296", 0U), Row("-1", 0U), Row("2147483647", 2147483647), Row("2147483648", 0),
      Row("-2147483648", -2147483647 - 1), Row("-2147483649", 0),
      // A minus sign wraps in 64 bits alone.
      Row("18446744073709551615", 18446744073709551615UL), Row("18446744073709551616", 0UL),
      Row("-1", 18446744073709551615UL), Row("-18446744073709551616", 0UL),
      Row("9223372036854775807", 9223372036854775807L), Row("9223372036854775808", 0L),
      Row("-9223372036854775808", std::numeric_limits<long>::min()),
      Row("-9223372036854775809", 0L));
}

TEST(CIMValueParsing, OfReals) {
  Expect(Row("1e3", 1000.0), Row("0.1", 0.1F), Row(" +1.5E+2xyz", 150.0), Row("12e5each", 12e5),
         Row(".5", 0.5), Row("5.", 5.0), Row("-2.5.7", -2.5), Row(".", 0.0), Row("1e", 0.0),
         Row("1e+", 0.0), Row("e5", 0.0), Row("inf", 0.0), Row("nan", 0.0), Row("0x1p3", 0.0),
         Row("1e400", 0.0), Row("-1e400", 0.0), Row("-0", -0.0), Row("-1e-400", -0.0),
         Row("-", 0.0), Row("1e-400", 0.0), Row("1e39", 0.0F), Row("4.9e-324", 4.9e-324),
         Row("1e-40", 1e-40F), Row("179769313486231570000e288", 1.7976931348623157e308));
}

TEST(CIMValueParsing, OfTextsAndOfWhatCannotBeRead) {
  Expect(Row("  \"a\", \\ ", "  \"a\", \\ "),
         Row("20040315143000.000000+060", TCIMDateTime("20040315143000.000000+060")));
  EXPECT_QDX_STATUS(Parse(TCIMType::kCIMTypeDateTime, "yesterday"), kQDXStatusInvalidDateTime);
  for (const unsigned int type : {0U, 12U, 16U, 18U, 0xffffffffU}) {
    EXPECT_QDX_STATUS(Parse(TCIMType(type), "1"), kQDXStatusTypeMismatch);
  }
}

/// Groups digits by one and writes a comma for the point.
class TStrangeNumbers : public std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  std::string do_grouping() const override { return "\1"; }
  std::string do_truename() const override { return "yes"; }
};

TEST(CIMValueLocale, OfTheProgramChangesNothing) {
  const std::locale before =
      std::locale::global(std::locale(std::locale::classic(), new TStrangeNumbers));
  EXPECT_EQ(TCIMValue(1234.5).ToString(10) + TCIMValue(123456).ToString(10), "1234.5123456");
  EXPECT_EQ(TCIMValue(true).ToString(10), "true");
  Expect(Row("1234.5", 1234.5), Row("true", true));
  std::locale::global(before);
}

}  // namespace
}  // namespace NVORNQDX20
