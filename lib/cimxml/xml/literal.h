// SPDX-License-Identifier: Apache-2.0
/// Formats and parses scalars in CIM-XML.
#ifndef LIB_CIMXML_XML_LITERAL_H_
#define LIB_CIMXML_XML_LITERAL_H_

#include <qdxcore/value.h>

#include <cstddef>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "cim_type.h"

namespace NVORNQDX20::NCIMXML {

/// Returns whether the value is null or holds a null date-time.
bool IsAbsent(const TCIMValue& value);

/// Returns why CIM-XML has no text for a scalar that is not null; null if it has one. It has none
/// for a date-time that needs more than 25 characters, and for infinities and NaN.
const char* ObstacleToLiteral(const TCIMValue& value);

/// Formats a scalar. REQUIRES: ObstacleToLiteral() is null, not IsAbsent(), not a reference. Reals
/// get a point, and as many digits as needed to read back the same number.
std::string WriteLiteral(const TCIMValue& value);

/// Returns whether the text is empty or white space only.
bool IsBlank(std::string_view text);

/// Parses a scalar; nothing if the text is not one of that type. Null of the type for a well-formed
/// date-time that TCIMDateTime cannot hold, for example one with wildcards.
std::optional<TCIMValue> ReadLiteral(TCIMType type, std::string_view text);

/// A number or a boolean, without a TCIMValue.
class TNumber {
 public:
  template <typename T>
  explicit TNumber(T number) : fSize(sizeof number) {
    static_assert(sizeof number <= sizeof fBytes);
    std::memcpy(fBytes, &number, sizeof number);
  }
  /// The bytes of the native type in the order of this machine.
  std::string_view Bytes() const { return {fBytes, fSize}; }

 private:
  char fBytes[8] = {};
  std::size_t fSize;
};

/// Parses a number or a boolean as ReadLiteral() does; nothing for another type.
std::optional<TNumber> ReadNumber(TCIMType type, std::string_view text);

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_XML_LITERAL_H_
