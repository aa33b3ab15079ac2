// SPDX-License-Identifier: Apache-2.0
#include <qdxmodel/natural_order.h>

#include <gtest/gtest.h>

#include <iterator>

namespace NVORNQDX20::NModel {
namespace {

TEST(NaturalOrder, TakesNumbersForNumbers) {
  const char* const ordered[] = {"",           "DIMM", "DIMM 2", "DIMM 02A", "DIMM 10",
                                 "DIMM 010 B", "P1",   "P1 2",   "\u00E4"};
  for (std::size_t i = 0; i < std::size(ordered); ++i) {
    for (std::size_t j = 0; j < std::size(ordered); ++j) {
      EXPECT_EQ(ComesBefore(ordered[i], ordered[j]), i < j) << ordered[i] << ", " << ordered[j];
    }
  }
}

}  // namespace
}  // namespace NVORNQDX20::NModel
