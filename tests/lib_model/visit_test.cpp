// SPDX-License-Identifier: Apache-2.0
#include <qdxmodel/visit.h>

#include "support/expect_status.h"

using namespace NVORNQDX20;
using TType = TCIMValue::TCIMType;

TEST(Visit, RefusesWhatHoldsNoScalar) {
  const auto visited = [](const TCIMValue& value) {
    return NModel::VisitScalar(value, [](auto native) { return TCIMValue(native); });
  };
  EXPECT_EQ(visited(7L), TCIMValue(7L));
  for (const auto type : {TType::kCIMTypeNone, TType::kCIMTypeSint64, TType::kCIMTypeChar}) {
    EXPECT_QDX_STATUS(visited(TCIMValue(TType(type), 0)), kQDXStatusValueIsNULL);
  }
  EXPECT_QDX_STATUS(visited(TCIMValue(TType::kCIMTypeSint64, 0, {7L})), kQDXStatusTypeMismatch);
}
