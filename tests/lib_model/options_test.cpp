// SPDX-License-Identifier: Apache-2.0
#include <qdxmodel/options.h>

#include "support/expect_status.h"

using namespace NVORNQDX20;
using namespace NVORNQDX20::NModel;

TEST(Options, SayWhatHoldsWhenTheyAreMissing) {
  EXPECT_EQ(RootOf({}), "/");
  EXPECT_EQ(FileOf({}), std::nullopt);
  EXPECT_FALSE(HasMore({}));
  const TOptionsMap given = {{"root", "/mnt"}, {"file", ""}, {"more", true}};
  EXPECT_EQ(RootOf(given), "/mnt");
  EXPECT_EQ(FileOf(given), "");
  EXPECT_TRUE(HasMore(given));
  EXPECT_QDX_STATUS(HasMore({{"more", "true"}}), kQDXStatusTypeMismatch);
}
