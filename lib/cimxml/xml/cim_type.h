// SPDX-License-Identifier: Apache-2.0
/// The keywords of the CIM types in CIM-XML.
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

/// Returns whether CIM-XML has a property element for the type: not for arrays of references, which
/// do not exist in CIM.
inline bool HasPropertyElement(TCIMType type) {
  return type != ArrayOf(TCIMType::kCIMTypeReference);
}

/// Returns the keyword of the element type; "reference" for references, "" for no type.
std::string_view KeywordOf(TCIMType type);

/// Returns kCIMTypeNone for an unknown keyword. TCIMValue cannot hold a character, so "char16"
/// gives a string.
TCIMType TypeOf(std::string_view keyword);

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_XML_CIM_TYPE_H_
