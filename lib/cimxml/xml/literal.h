// SPDX-License-Identifier: Apache-2.0
/// Scalars as CIM-XML spells them.
#ifndef LIB_CIMXML_XML_LITERAL_H_
#define LIB_CIMXML_XML_LITERAL_H_

#include <qdxcore/value.h>

#include <optional>
#include <string>
#include <string_view>

#include "cim_type.h"

namespace NVORNQDX20::NCIMXML {

/// Whether there is something to spell: a date-time can be null within a value that is not.
bool IsAbsent(const TCIMValue& value);

/// Not so a date-time whose text is longer than the 25 characters that it must have.
bool CanSpell(const TCIMValue& value);

/// The text of a scalar that can be spelled, is not absent and is no reference. Reals have as many
/// digits as it takes to read back the same number.
std::string WriteLiteral(const TCIMValue& value);

/// The scalar that the text spells; nothing if it spells none of that type. Null of the type for a
/// date-time that is well-formed but that no TCIMDateTime can hold, for example one with wildcards.
std::optional<TCIMValue> ReadLiteral(TCIMType type, std::string_view text);

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_XML_LITERAL_H_
