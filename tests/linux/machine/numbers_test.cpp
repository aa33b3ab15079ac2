// SPDX-License-Identifier: Apache-2.0
#include <machine/numbers.h>

#include <machine/cpu_list.h>
#include <machine/fields.h>

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

constexpr std::uint64_t kMax = std::numeric_limits<std::uint64_t>::max();

/// The number, or the reason for its absence.
template <typename T>
std::string TextOf(const TReading<T>& reading) {
  return reading ? std::to_string(*reading) : reading.GetReason();
}
std::string TextOf(const TText& reading) { return reading ? *reading : reading.GetReason(); }

TEST(MachineNumber, IsAllOfItsText) {
  EXPECT_EQ(ParseNumber("0"), 0U);
  EXPECT_EQ(ParseNumber("0070"), 70U);
  EXPECT_EQ(ParseNumber("18446744073709551615"), kMax);
  EXPECT_EQ(ParseNumber("0x0aF"), 0xafU);
  for (const char* text : {"", "0x", "-1", "+1", " 1", "1 ", "1.0", "ff", "0XFF", "0xg", "0x-1",
                           "18446744073709551616", "0x10000000000000000"}) {
    EXPECT_EQ(ParseNumber(text), std::nullopt) << text;
  }
}

TEST(MachineNumber, IsMissingForAReason) {
  const std::string forty(40, '-');
  const std::string tooLarge = std::to_string(kMax / 512 + 1);
  const TNumber missing = Missing("why");
  const std::pair<std::string, std::string> rows[] = {
      {TextOf(ToNumber(Missing("why"), "s")), "why"},
      {TextOf(ToNumber(TText(forty), "s")), "s: '" + forty + "' is no valid number"},
      {TextOf(ToNumber(TText(forty + "-"), "s")), "s: no valid number"},
      {TextOf(Scaled(missing, 3)), "why"},
      {TextOf(Scaled(TNumber(7), 3, 2)), "10"},
      {TextOf(Scaled(TNumber(kMax / 512), 512)), std::to_string(kMax / 512 * 512)},
      {TextOf(Scaled(TNumber(kMax / 512 + 1), 512, 512)), tooLarge + " is out of range"},
      {TextOf(NumberAs<std::uint8_t>(missing)), "why"},
      {TextOf(NumberAs<std::uint8_t>(TNumber(255))), "255"},
      {TextOf(NumberAs<std::uint8_t>(TNumber(256))), "256 is out of range"}};
  for (const auto& [text, expected] : rows) EXPECT_EQ(text, expected);
}

TEST(MachineCPUList, HasNumbersAndRanges) {
  for (const char* text : {"", "0", "0-3", "0-1,3,5-6", "65535"}) {
    EXPECT_EQ(FormatCPUList(ParseCPUList(text).value()), text);
  }
  for (const char* text : {"a", "0-", "-1", "0,", ",0", "0 ", "65536", "0-4294967296", "0x1"}) {
    EXPECT_EQ(ParseCPUList(text), std::nullopt) << text;
  }
}

TEST(MachineFields, AreFoundByTheirNames) {
  const std::string_view lines = "A : b:c \nno field\nA: d\n\tE:\nF:64 kB\n:g\nH: 8";
  const TFields fields("s", lines, ':');
  EXPECT_EQ(TextOf(fields.Get("A")), "b:c");
  EXPECT_EQ(TextOf(fields.Get("E")), "s: no 'E'");  // there is nothing in it
  EXPECT_EQ(TextOf(fields.Get("no field")), "s: no 'no field'");
  EXPECT_EQ(TextOf(fields.Get("")), "g");
  EXPECT_EQ(TextOf(fields.GetNumber("F", " kB")), "64");
  EXPECT_EQ(TextOf(fields.GetNumber("F", " MB")), "s: F is not in MB");
  EXPECT_EQ(TextOf(fields.GetNumber("F")), "s: F: '64 kB' is no valid number");
  EXPECT_EQ(TextOf(fields.GetNumber("H")), "8");
  EXPECT_EQ(TextOf(fields.GetNumber("I", " kB")), "s: no 'I'");
  EXPECT_EQ(TextOf(TFields("s", Missing("why"), ':').GetNumber("A")), "why");
}

}  // namespace
}  // namespace NVORNQDX20
