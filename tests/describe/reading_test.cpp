// SPDX-License-Identifier: Apache-2.0
#include <qdxdescribe/reading.h>

#include "support/expect_status.h"

#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

namespace NVORNQDX20::NDescribe {
namespace {

using TNumber = TReading<std::uint32_t>;

template <typename T, typename U>
constexpr bool kReads = std::is_convertible_v<U, TReading<T>>;
static_assert(kReads<double, int> && kReads<std::string, const char*>);
static_assert(!kReads<bool, const char*> && !kReads<bool, int> && !kReads<int, double> &&
              !kReads<int, bool> && !kReads<std::vector<int>, int>);

TEST(Readings, HandOnTheirReasons) {
  const TNumber seven = 7U;
  const TNumber none = Missing("no number");
  const auto half = [](std::uint32_t number) -> TReading<std::string> {
    if (number % 2 != 0) return Missing("odd");
    return std::to_string(number / 2);
  };
  const auto twice = [](std::uint32_t number) { return number * 2; };
  EXPECT_EQ(*seven.map(twice).and_then(half), "7");
  EXPECT_EQ(seven.and_then(half).GetReason(), "odd");
  EXPECT_EQ(none.map(twice).and_then(half).GetReason(), "no number");
  EXPECT_EQ(none.ValueOr(3), 3U);
  EXPECT_FALSE(TNumber());
  EXPECT_EQ(TNumber().GetReason(), "was not read");
  EXPECT_QDX_STATUS(*none, kQDXStatusValueIsNULL);
}

}  // namespace
}  // namespace NVORNQDX20::NDescribe
