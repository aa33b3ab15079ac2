// SPDX-License-Identifier: Apache-2.0
#include "hash_index.h"

#include <gtest/gtest.h>

using NVORNQDX20::NRepository::THashIndex;

TEST(HashIndex, TellsApartWhatHasTheSameHashOrPlace) {
  THashIndex index;
  const auto hashOf = [](std::size_t position) {
    return position % 3 == 0 ? 7 : position << 16 | 7;
  };
  const auto find = [&](std::size_t position) {
    return index.Find(hashOf(position), [&](std::size_t at) { return at == position; });
  };
  EXPECT_FALSE(find(0));
  for (std::size_t position = 0; position < 300; ++position) {
    EXPECT_FALSE(find(position)) << position;
    index.Reserve();
    index.Add(hashOf(position));
  }
  for (std::size_t position = 0; position < 300; ++position) EXPECT_EQ(find(position), position);
  EXPECT_FALSE(index.Find(8, [](std::size_t) { return true; })) << "in a place that is taken";
}
