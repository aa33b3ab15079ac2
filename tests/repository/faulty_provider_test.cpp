// SPDX-License-Identifier: Apache-2.0
#include "support/faulty_provider.h"

#include "support/class_builder.h"
#include "support/expect_status.h"

#include <gtest/gtest.h>

TEST(FaultyProvider, FailsInTheChosenCallAlone) {
  const auto faults = boost::make_shared<TFaults>();
  const TNamespace ns = MakeFaultyNamespace(MakeNamespace(), faults);
  const auto a = AddClass(ns, "T_A", {{"Id", 0U}});
  faults->Throw("ICIMClass::GetPropertyDecl", NVORNQDX20::kQDXStatusAccessDenied, 2);
  EXPECT_NE(a->GetPropertyDecl("Id", {}), nullptr);
  EXPECT_QDX_STATUS(a->GetPropertyDecl("Id", {}), NVORNQDX20::kQDXStatusAccessDenied);
  EXPECT_NE(a->GetPropertyDecl("Id", {}), nullptr);
  EXPECT_EQ(faults->Calls("ICIMClass::GetPropertyDecl"), 3);
  faults->AnswerNull("ICIMNamespace::GetClass", TFaults::kEveryCall);
  for (int i = 0; i < 2; ++i) EXPECT_EQ(ns->GetClass("T_A", {}), nullptr);
  faults->AnswerNull("ICIMProperty::GetValue");
  const auto property = a->CreateInstance({})->GetProperty("Id", {});
  EXPECT_TRUE(property->GetValue().IsNull());
  EXPECT_EQ(property->GetValue(), NVORNQDX20::TCIMValue(0U));
}
