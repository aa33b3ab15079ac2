// SPDX-License-Identifier: Apache-2.0
/// The keywords that CIM-XML has for the CIM types.
#ifndef LIB_CIMXML_XML_CIM_TYPE_H_
#define LIB_CIMXML_XML_CIM_TYPE_H_

#include <qdxcore/value.h>
#include <qdxmodel/type.h>

#include <string_view>

namespace NVORNQDX20::NCIMXML {

using TCIMType = TCIMValue::TCIMType;

using NModel::ArrayOf;
using NModel::ElementType;
using NModel::IsArray;

/// Not so arrays of references, which CIM does not have.
inline bool HasPropertyElement(TCIMType type) {
  return type != ArrayOf(TCIMType::kCIMTypeReference);
}

/// Of the element type; "reference" for references, "" for no type.
std::string_view KeywordOf(TCIMType type);

/// kCIMTypeNone for a text that is no keyword. No value can hold a single character, so "char16"
/// is read as a string.
TCIMType TypeOf(std::string_view keyword);

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_XML_CIM_TYPE_H_
