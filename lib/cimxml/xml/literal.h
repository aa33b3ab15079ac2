// SPDX-License-Identifier: Apache-2.0
/// Formats and parses scalars in CIM-XML.
#ifndef LIB_CIMXML_XML_LITERAL_H_
#define LIB_CIMXML_XML_LITERAL_H_

#include <qdxcore/datetime.h>
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

/// The text of a scalar that is neither a string nor a reference. Reals get a point, and as many
/// digits as needed to read back the same number.
class TLiteral {
 public:
  explicit TLiteral(const TCIMValue& value);

  /// As IsAbsent() of the value.
  bool IsAbsent() const { return fIsAbsent; }
  /// Returns why CIM-XML has no text for the value; null if it has one, or is absent. It has none
  /// for a date-time that needs more than 25 characters, and for infinities and NaN.
  const char* GetObstacle() const { return fObstacle; }
  /// Needs no escapes.
  std::string_view GetText() const { return {fText, fSize}; }

 private:
  void Set(bool value);
  void Set(const TCIMDateTime& value);
  template <typename T>
  void Set(T number);
  void Set(std::string_view text);

  char fText[80] = {};
  std::size_t fSize = 0;
  bool fIsAbsent = false;
  const char* fObstacle = nullptr;
};

/// Formats a scalar that is no reference, also one for which CIM-XML has no text.
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

/// Parses a date-time as ReadLiteral() does; nothing also for one that TCIMDateTime cannot hold.
std::optional<TCIMDateTime> ReadTime(std::string_view text);

}  // namespace NVORNQDX20::NCIMXML

#endif  // LIB_CIMXML_XML_LITERAL_H_
