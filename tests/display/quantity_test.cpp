// SPDX-License-Identifier: Apache-2.0
#include <qdxdisplay/quantity.h>

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

TEST(Quantity, HasTheUnitThatPeopleRead) {
  const struct {
    long double fNumber;
    const char* fUnit;
    const char* fText;
  } rows[] = {// Bytes: decimal, but binary where the number or the unit is.
              {512110190592, "byte", "512.1 GB"},
              {1920383410176, "byte", "1.92 TB"},
              {68719476736, "byte", "64 GiB"},
              {1610612736, "byte", "1.5 GiB"},
              {32768, "byte", "32 KiB"},
              {512, "byte", "512 B"},
              {1500, "byte", "1500 B"},
              {12345, "byte", "12.3 kB"},
              {16329548, "byte * 2^10", "15.6 GiB"},
              {999960000, "byte", "1 GB"},
              {18446744073709551615.0L, "byte", "18.4 EB"},
              {5, "Byte*10^3", "5000 B"},
              // Prefixes and fractions.
              {3200, "hertz * 10^6", "3.2 GHz"},
              {10000000000, "bit / second", "10 Gbit/s"},
              {2500000000, "bit per second", "2.5 Gbit/s"},
              {896, "ampere * 10^-3", "896 mA"},
              {12096, "volt * 10^-3", "12.1 V"},
              {50100, "watt * hour * 10^-3", "50.1 Wh"},
              {41, "degree celsius", "41 \u00b0C"},
              {-41500, "degree (celsius) * 10^-3", "-41.5 \u00b0C"},
              {2400, "revolution / minute", "2400 rpm"},
              {45, "percent", "45 %"},
              {64, "bit", "64 bits"},
              {1.75L, "inch", "1.75 in"},
              {0, "watt", "0 W"},
              {1, "watt * 10^-6", "0.001 mW"},
              {70, "decibel(m) * -1", "-70 dBm"},
              // Times.
              {100, "second * 10^-3", "100 ms"},
              {90, "minute", "1 h 30 min"},
              {1047600, "second", "12 days 3 h"},
              {86401, "second", "1 day"},
              {-61, "second", "-1 min 1 s"},
              {59.97L, "second", "1 min"},
              // What is not known stays as it is.
              {17, "lumen / watt", "17 lumen / watt"},
              {0.1, "furlong", "0.1 furlong"},
              {18446744073709551615.0L, "furlong", "18446744073709551615 furlong"},
              {7, "byte * 10^99999", "7 byte * 10^99999"},
              {7, "*", "7 *"},
              {7, "", "7"}};
  for (const auto& [number, unit, text] : rows) EXPECT_EQ(FormatQuantity(number, unit), text);
}

TEST(Quantity, IsReadAsPeopleTypeIt) {
  const struct {
    const char* fText;
    const char* fUnit;
    std::optional<double> fNumber;
  } rows[] = {{"100", "byte", 100},
              {"100 GB", "byte", 100e9},
              {"64gib", "byte * 2^10", 67108864},
              {"1.5T", "byte", 1.5e12},
              {"3.2GHz", "hertz * 10^6", 3200},
              {"500 mA", "ampere * 10^-3", 500},
              {"2h", "minute", 120},
              {"10Gbit", "bit / second", 10e9},
              {"41C", "degree celsius * 10^-3", 41000},
              {"0.07 V", "volt * 10^-3", 70},
              {"18446744073709551615", "", 18446744073709551615.0},
              {"100 GB", "hertz", std::nullopt},
              {"GB", "byte", std::nullopt},
              {"1-2", "byte", std::nullopt},
              {"", "byte", std::nullopt}};
  for (const auto& [text, unit, number] : rows) {
    const auto parsed = ParseQuantity(text, unit);
    EXPECT_EQ(parsed.has_value(), number.has_value()) << text;
    EXPECT_DOUBLE_EQ(static_cast<double>(parsed.value_or(0)), number.value_or(0)) << text;
  }
}

}  // namespace
}  // namespace NVORNQDX20
