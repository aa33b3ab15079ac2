// SPDX-License-Identifier: Apache-2.0
/// Functions of CIM types.
#ifndef QDXMODEL_TYPE_H_
#define QDXMODEL_TYPE_H_

#include <qdxcore/value.h>

#include <string>

namespace NVORNQDX20::NModel {

inline bool IsArray(TCIMValue::TCIMType type) noexcept {
  return (type & TCIMValue::TCIMType::kCIMTypeArray) != 0;
}

/// Returns the type without the array flag.
inline TCIMValue::TCIMType ElementType(TCIMValue::TCIMType type) noexcept {
  return type & ~static_cast<unsigned int>(TCIMValue::TCIMType::kCIMTypeArray);
}

/// Returns the type with the array flag.
inline TCIMValue::TCIMType ArrayOf(TCIMValue::TCIMType type) noexcept {
  return type | TCIMValue::TCIMType::kCIMTypeArray;
}

/// Returns whether the element type is one of the fifteen CIM types, which have a keyword.
inline bool HasKeyword(TCIMValue::TCIMType type) noexcept {
  const TCIMValue::TCIMType element = ElementType(type);
  return element != TCIMValue::TCIMType::kCIMTypeNone &&
         element <= TCIMValue::TCIMType::kCIMTypeReference;
}

/// Returns the text for people: "uint8", "string[]", or "untyped" for a type without keyword.
std::string TypeText(TCIMValue::TCIMType type);

}  // namespace NVORNQDX20::NModel

#endif  // QDXMODEL_TYPE_H_
