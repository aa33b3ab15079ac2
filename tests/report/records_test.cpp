// SPDX-License-Identifier: Apache-2.0
#include "records.h"

#include <gtest/gtest.h>

namespace NVORNQDX20::NReport {
namespace {

TEST(Records, ListsOfNumbersAreBounded) {
  using TNumbers = std::set<unsigned>;
  EXPECT_EQ(NumbersIn("0-3,8"), (TNumbers{0, 1, 2, 3, 8}));
  EXPECT_EQ(NumbersIn("7"), TNumbers{7});
  for (const char* const none : {"", "x", "-1", ",", "3-1", "99999999999999"}) {
    EXPECT_EQ(NumbersIn(none), TNumbers{}) << none;
  }
  EXPECT_EQ(NumbersIn("1,x,2"), TNumbers{1});
  EXPECT_LE(NumbersIn("0-4294967295").size(), 70000U);
}

TEST(Records, NumbersInTextsCountAsNumbers) {
  const char* const ordered[] = {"",        "DIMM",       "DIMM 2", "DIMM 02A",
                                 "DIMM 10", "DIMM 010 B", "P1",     "P1 2"};
  for (std::size_t i = 0; i < std::size(ordered); ++i) {
    for (std::size_t j = 0; j < std::size(ordered); ++j) {
      EXPECT_EQ(ComesBefore(ordered[i], ordered[j]), i < j) << ordered[i] << ", " << ordered[j];
    }
  }
}

}  // namespace
}  // namespace NVORNQDX20::NReport
