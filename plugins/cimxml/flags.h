// SPDX-License-Identifier: Apache-2.0
/// Scopes and flavors of qualifiers: each bit and the attribute that stands for it.
#ifndef QDXCIMXML_FLAGS_H_
#define QDXCIMXML_FLAGS_H_

#include <qdxrepository/repository.h>

#include <cstdint>
#include <string_view>

namespace NVORNQDX20::NCIMXML {

struct TFlag {
  std::uint32_t fBit;
  std::string_view fAttribute;
  bool fDefault;  ///< What an attribute that is not there means.
};

inline constexpr TFlag kFlavors[] = {{kFlavorOverridable, "OVERRIDABLE", true},
                                     {kFlavorToSubclass, "TOSUBCLASS", true},
                                     {kFlavorToInstance, "TOINSTANCE", false},
                                     {kFlavorTranslatable, "TRANSLATABLE", false}};

inline constexpr TFlag kScopes[] = {
    {kScopeClass, "CLASS", false},          {kScopeAssociation, "ASSOCIATION", false},
    {kScopeReference, "REFERENCE", false},  {kScopeProperty, "PROPERTY", false},
    {kScopeMethod, "METHOD", false},        {kScopeParameter, "PARAMETER", false},
    {kScopeIndication, "INDICATION", false}};

}  // namespace NVORNQDX20::NCIMXML

#endif  // QDXCIMXML_FLAGS_H_
