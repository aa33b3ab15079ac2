// SPDX-License-Identifier: Apache-2.0
#include <qdxmodel/type.h>

namespace NVORNQDX20::NModel {

std::string TypeText(TCIMValue::TCIMType type) {
  if (!HasKeyword(type)) return "untyped";
  return type.ToString() + (IsArray(type) ? "[]" : "");
}

}  // namespace NVORNQDX20::NModel
