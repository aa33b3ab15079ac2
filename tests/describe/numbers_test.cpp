// SPDX-License-Identifier: Apache-2.0
#include <qdxdescribe/numbers.h>

#include <gtest/gtest.h>

namespace NVORNQDX20::NDescribe {
namespace {

constexpr std::uint64_t kMax = std::numeric_limits<std::uint64_t>::max();

using TNumber = TReading<std::uint64_t>;

/// The number, or the reason for its absence.
template <typename T>
std::string TextOf(const TReading<T>& reading) {
  return reading ? std::to_string(*reading) : reading.GetReason();
}

TEST(Numbers, AreAllOfTheirText) {
  EXPECT_EQ(ParseNumber("0"), 0U);
  EXPECT_EQ(ParseNumber("0070"), 70U);
  EXPECT_EQ(ParseNumber("18446744073709551615"), kMax);
  EXPECT_EQ(ParseNumber("0x0aF"), 0xafU);
  for (const char* text : {"", "0x", "-1", "+1", " 1", "1 ", "1.0", "ff", "0XFF", "0xg", "0x-1",
                           "18446744073709551616", "0x10000000000000000"}) {
    EXPECT_EQ(ParseNumber(text), std::nullopt) << text;
  }
  EXPECT_EQ(ParseNumber<int>("-12"), -12);
  EXPECT_EQ(ParseNumber<int>("0x1"), std::nullopt);
  EXPECT_EQ(ParseNumber<double>("-0.25"), -0.25);
  for (const char* text : {"inf", "nan", "1e3", "0.5 ", "."}) {
    EXPECT_EQ(ParseNumber<double>(text), std::nullopt) << text;
  }
}

TEST(Numbers, AreMissingForAReason) {
  const std::string forty(40, '-');
  const std::string tooLarge = std::to_string(kMax / 512 + 1);
  const TNumber missing = Missing("why");
  const std::pair<std::string, std::string> rows[] = {
      {TextOf(ToNumber(Missing("why"), "s")), "why"},
      {TextOf(ToNumber(forty, "s")), "s: '" + forty + "' is no valid number"},
      {TextOf(ToNumber(forty + "-", "s")), "s: no valid number"},
      {TextOf(ToNumber<std::uint8_t>(std::string("256"), "s")), "s: '256' is out of range"},
      {TextOf(Scaled(missing, 3)), "why"},
      {TextOf(Scaled(TNumber(7), 3, 2)), "10"},
      {TextOf(Scaled(TNumber(7), 0)), "0"},
      {TextOf(Scaled(TNumber(7), 3, 0)), "7 cannot be divided by 0"},
      {TextOf(Scaled(TNumber(kMax / 512), 512)), std::to_string(kMax / 512 * 512)},
      {TextOf(Scaled(TNumber(kMax / 512 + 1), 512, 512)), tooLarge + " is out of range"},
      {TextOf(Scaled<std::uint8_t>(TNumber(510), 1, 2)), "255"},
      {TextOf(Scaled<std::uint8_t>(TNumber(512), 1, 2)), "512 is out of range"}};
  for (const auto& [text, expected] : rows) EXPECT_EQ(text, expected);
}

}  // namespace
}  // namespace NVORNQDX20::NDescribe
