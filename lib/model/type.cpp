// SPDX-License-Identifier: Apache-2.0
/// The text of a type.
#include <qdxmodel/type.h>

namespace NVORNQDX20::NModel {

std::string TypeText(TCIMValue::TCIMType type) {
  if (!HasKeyword(type)) return "untyped";
  return type.ToString() + (IsArray(type) ? "[]" : "");
}

}  // namespace NVORNQDX20::NModel
