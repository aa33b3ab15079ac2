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

}  // namespace
}  // namespace NVORNQDX20::NReport
