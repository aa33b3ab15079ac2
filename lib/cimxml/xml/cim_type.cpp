// SPDX-License-Identifier: Apache-2.0
#include "cim_type.h"

#include <iterator>

namespace NVORNQDX20::NCIMXML {
namespace {

constexpr std::string_view kKeywords[] = {
    "",       "boolean", "uint8",  "sint8",  "uint16", "sint16", "uint32",   "sint32",
    "uint64", "sint64",  "real32", "real64", "char16", "string", "datetime", "reference"};
static_assert(std::size(kKeywords) == TCIMType::kCIMTypeReference + 1);

}  // namespace

std::string_view KeywordOf(TCIMType type) {
  const auto element = static_cast<std::size_t>(ElementType(type));
  return element < std::size(kKeywords) ? kKeywords[element] : std::string_view();
}

TCIMType TypeOf(std::string_view keyword) {
  for (unsigned int type = TCIMType::kCIMTypeBoolean; type < TCIMType::kCIMTypeReference; ++type) {
    if (kKeywords[type] == keyword) {
      return type == TCIMType::kCIMTypeChar ? TCIMType(TCIMType::kCIMTypeString) : TCIMType(type);
    }
  }
  return TCIMType::kCIMTypeNone;
}

}  // namespace NVORNQDX20::NCIMXML
