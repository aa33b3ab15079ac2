// SPDX-License-Identifier: Apache-2.0
/// Scopes and flavors of qualifiers: each bit and its attribute.
#ifndef LIB_CIMXML_XML_QUALIFIER_FLAGS_H_
#define LIB_CIMXML_XML_QUALIFIER_FLAGS_H_

#include <qdxrepository/repository.h>

#include <cstdint>
#include <string_view>

namespace NVORNQDX20::NCIMXML {

struct TFlag {
  std::string_view fAttribute;
  std::uint32_t fBit;
  bool fIsDefault;  ///< Whether the flag is set if the attribute is missing.
};

inline constexpr TFlag kFlavors[] = {{"OVERRIDABLE", kFlavorOverridable, true},
                                     {"TOSUBCLASS", kFlavorToSubclass, true},
                                     {"TOINSTANCE", kFlavorToInstance, false},
                                     {"TRANSLATABLE", kFlavorTranslatable, false}};

inline constexpr TFlag kScopes[] = {
    {"CLASS", kScopeClass, false},          {"ASSOCIATION", kScopeAssociation, false},
    {"REFERENCE", kScopeReference, false},  {"PROPERTY", kScopeProperty, false},
    {"METHOD", kScopeMethod, false},        {"PARAMETER", kScopeParameter, false},
    {"INDICATION", kScopeIndication, false}};

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_XML_QUALIFIER_FLAGS_H_
