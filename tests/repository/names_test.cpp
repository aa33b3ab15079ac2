// SPDX-License-Identifier: Apache-2.0
#include "names.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace {

using NVORNQDX20::NRepository::IsSameText;

TEST(RepositoryNames, AreTheSameTextsAsByTheLibrary) {
  const std::string all = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmn";
  for (std::size_t size = 0; size <= all.size(); ++size) {
    const std::string text = all.substr(all.size() - size);
    for (std::size_t at = 0; at <= size; ++at) {
      std::string other = text;
      if (at < size) other[at] = static_cast<char>(other[at] ^ 0x20);  // in lower case
      EXPECT_EQ(IsSameText(text, other), text == other) << text << " " << other;
    }
    EXPECT_FALSE(IsSameText(text, text + '\0')) << text;
    EXPECT_FALSE(IsSameText(text + 'x', text)) << text;
  }
}

}  // namespace
