// SPDX-License-Identifier: Apache-2.0
#include <qdxmodel/type.h>
#include <qdxmodel/visit.h>

#include "support/class_builder.h"
#include "support/expect_status.h"

using namespace NVORNQDX20;
using namespace NVORNQDX20::NModel;
using TType = TCIMValue::TCIMType;

namespace {

/// What a visitor gets, as a value: of the same type only if the visitor got the native type.
TCIMValue Visited(const TCIMValue& value) {
  return VisitScalar(value, [](auto native) { return TCIMValue(native); });
}

}  // namespace

TEST(Visit, GivesEachTypeItsNativeValue) {
  const auto ns = MakeNamespace();
  AddClass(ns, "T_A", {});
  const TCIMValue values[] = {true,
                              static_cast<unsigned char>(200),
                              static_cast<signed char>(-100),
                              static_cast<unsigned short>(60000),
                              static_cast<short>(-30000),
                              4000000000U,
                              -2000000000,
                              1UL << 63,
                              -(1L << 62),
                              0.1F,
                              0.1,
                              "text",
                              TCIMDateTime(1, 2, 3, 4, 5),
                              ReferenceTo(ns, "T_A")};
  unsigned int type = TType::kCIMTypeNone;
  for (const TCIMValue& value : values) {
    type += type + 1 == TType::kCIMTypeChar ? 2 : 1;
    ASSERT_EQ(value.GetType(), TType(type));  // none is left out
    EXPECT_EQ(Visited(value), value) << TypeText(type);
    EXPECT_QDX_STATUS(Visited(TCIMValue(TType(type), 0)), kQDXStatusValueIsNULL);
    EXPECT_QDX_STATUS(Visited(TCIMValue(TType(type), 0, {value})), kQDXStatusTypeMismatch);
  }
  EXPECT_EQ(type, TType::kCIMTypeReference);
  EXPECT_QDX_STATUS(Visited(TCIMValue()), kQDXStatusValueIsNULL);
  EXPECT_QDX_STATUS(Visited(TCIMValue(TType(TType::kCIMTypeChar), 0)), kQDXStatusValueIsNULL);
}

TEST(TypeText, NamesElementTypeAndArray) {
  const std::pair<unsigned int, const char*> cases[] = {
      {TType::kCIMTypeUint8, "uint8"},
      {TType::kCIMTypeReference, "reference"},
      {TType::kCIMTypeString | TType::kCIMTypeArray, "string[]"},
      {TType::kCIMTypeNone, "untyped"},
      {TType::kCIMTypeArray, "untyped"},
      {TType::kCIMTypeArray << 1, "untyped"},
  };
  for (const auto& [type, text] : cases) EXPECT_EQ(TypeText(type), text);
}
