// SPDX-License-Identifier: Apache-2.0
// Keywords of the CIM types.
#include <qdxcore/status.h>
#include <qdxcore/value.h>

#include <iterator>
#include <ostream>
#include <string_view>

namespace NVORNQDX20 {
namespace {

using TCIMType = TCIMValue::TCIMType;

/// Indexed by type code; empty for a code without a keyword.
constexpr std::string_view kKeywords[] = {
    "",       "boolean", "uint8",  "sint8",  "uint16", "sint16", "uint32",   "sint32",
    "uint64", "sint64",  "real32", "real64", "char",   "string", "datetime", "reference"};
static_assert(std::size(kKeywords) == TCIMType::kCIMTypeReference + 1);

/// ASCII only, so that the result does not depend on the locale.
char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

}  // namespace

TCIMValue::TCIMType::TCIMType(std::string keyword) : fType(kCIMTypeNone) {
  for (char& c : keyword) c = Lower(c);
  for (unsigned int type = kCIMTypeBoolean; type < std::size(kKeywords); ++type) {
    // "char" is written but not accepted on purpose: no value can hold one.
    // Pinned by CIMType.ReadsKeywordsInAnyCase.
    if (type != kCIMTypeChar && keyword == kKeywords[type]) fType = static_cast<ECIMType>(type);
  }
}

std::string TCIMValue::TCIMType::ToString() const {
  const unsigned int element = fType & ~static_cast<unsigned int>(kCIMTypeArray);
  if (element == kCIMTypeNone || element >= std::size(kKeywords)) {
    throw TQDXException(kQDXStatusTypeMismatch);
  }
  return std::string(kKeywords[element]);
}

std::ostream& operator<<(std::ostream& stream, const TCIMValue::TCIMType& type) {
  return stream << type.ToString();
}

}  // namespace NVORNQDX20
