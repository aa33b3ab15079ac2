// SPDX-License-Identifier: Apache-2.0
#include <qdxmodel/names.h>

#include <gtest/gtest.h>

using namespace NVORNQDX20::NModel;

TEST(Names, CompareHashAndFoldWithoutRegardToASCIICaseOnly) {
  const struct {
    std::string fLeft, fRight;
    bool fAreEqual;
  } cases[] = {
      {"", "", true},
      {"CIM_DiskDrive", "cim_DISKDRIVE", true},
      {"AZaz", "azAZ", true},
      {"CIM_Disk", "CIM_Disks", false},
      {"ABCDEFGHIJKLMNOPQRSTUVWXYZ", "abcdefghijklmnopqrstuvwxyz", true},
      {"ABCDEFGHIJKLMNOPQRSTUVWXYZ", "abcdefgh1jklmnopqrstuvwxyz", false},
      {"\xC1", "\xE1", false},  // letters plus 0x80
      {"@[", "`{", false},      // one bit apart, like letters of two cases
      {"Gr\xC3\x96\xC3\x9F", "gr\xC3\xB6\xC3\x9F", false},  // case beyond ASCII
      {std::string("a\0b", 3), std::string("A\0c", 3), false},
  };
  for (const auto& [left, right, areEqual] : cases) {
    EXPECT_EQ(EqualIgnoringCase(left, right), areEqual) << left;
    EXPECT_EQ(Folded(left) == Folded(right), areEqual) << left;
    EXPECT_EQ(TNameHash()(left) == TNameHash()(right), areEqual) << left;
  }
  EXPECT_EQ(Folded("CIM_\xC3\x96"), "cim_\xC3\x96");
}
