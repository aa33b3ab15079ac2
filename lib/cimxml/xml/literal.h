// SPDX-License-Identifier: Apache-2.0
/// Formats and parses scalars in CIM-XML.
#ifndef LIB_CIMXML_XML_LITERAL_H_
#define LIB_CIMXML_XML_LITERAL_H_

#include <qdxcore/value.h>

#include <optional>
#include <string>
#include <string_view>

#include "cim_type.h"

namespace NVORNQDX20::NCIMXML {

/// Returns whether the value is null or holds a null date-time.
bool IsAbsent(const TCIMValue& value);

/// Returns false for a date-time whose text is longer than 25 characters, which is invalid.
bool CanSpell(const TCIMValue& value);

/// Formats a scalar. REQUIRES: CanSpell(), not IsAbsent(), not a reference. Reals get as many
/// digits as needed to read back the same number.
std::string WriteLiteral(const TCIMValue& value);

/// Returns whether the text is empty or white space only.
bool IsBlank(std::string_view text);

/// Parses a scalar; nothing if the text is not one of that type. Null of the type for a well-formed
/// date-time that TCIMDateTime cannot hold, for example one with wildcards.
std::optional<TCIMValue> ReadLiteral(TCIMType type, std::string_view text);

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_XML_LITERAL_H_
