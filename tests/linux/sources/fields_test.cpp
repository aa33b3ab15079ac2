// SPDX-License-Identifier: Apache-2.0
#include <sources/fields.h>

#include <sources/cpu_list.h>

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

/// The number, or the reason for its absence.
std::string TextOf(const TNumber& reading) {
  return reading ? std::to_string(*reading) : reading.GetReason();
}
std::string TextOf(const TText& reading) { return reading ? *reading : reading.GetReason(); }

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
