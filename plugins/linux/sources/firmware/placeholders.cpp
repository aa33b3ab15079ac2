// SPDX-License-Identifier: Apache-2.0
#include "placeholders.h"

#include <qdxmodel/names.h>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace NVORNQDX20 {
namespace {

/// Complete texts, compared without regard to case.
constexpr std::string_view kTexts[] = {"$(DEFAULT_STRING)",
                                       "0123456789",
                                       "123456789",
                                       "1234567890",
                                       "9876543210",
                                       "<BAD INDEX>",
                                       "Base Board Asset Tag",
                                       "Base Board Product Name",
                                       "Base Board Serial Number",
                                       "Base Board Version",
                                       "Chassis Asset Tag",
                                       "Chassis Manufacturer",
                                       "Chassis Serial Number",
                                       "Chassis Version",
                                       "Default",
                                       "Default string",
                                       "Empty",
                                       "Invalid",
                                       "N/A",
                                       "NA",
                                       "No Asset Information",
                                       "No Asset Tag",
                                       "No Module Installed",
                                       "None",
                                       "Not Applicable",
                                       "Not Available",
                                       "Not Present",
                                       "Not Provided",
                                       "Not Set",
                                       "Not Settable",
                                       "Not Specified",
                                       "NotSpecified",
                                       "Null",
                                       "O.E.M.",
                                       "OEM",
                                       "OUT OF SPEC",
                                       "Product Name",
                                       "SKU",
                                       "SN#",
                                       "System Manufacturer",
                                       "System Product Name",
                                       "System Serial Number",
                                       "System SKU",
                                       "System SKUNumber",
                                       "System SN",
                                       "System UUID",
                                       "System Version",
                                       "TBD",
                                       "Type1Family",
                                       "Type1ProductConfigId",
                                       "Type1Sku0",
                                       "Type2 - Board Asset Tag",
                                       "Type2 - Board Serial Number",
                                       "Undefined",
                                       "Unknown",
                                       "Unspecified"};

/// Beginnings; the rest differs from firmware to firmware: "To be filled by O.E.M.", "...by More".
constexpr std::string_view kBeginnings[] = {"To be filled", "To be set by", "Fill by OEM",
                                            "Filled by OEM"};

/// Names of fields in the place of their values, which may have a number: "SerNum0", "PartNum01",
/// "A1_AssetTagNum0", "Array1_PartNumber2" and "Dimm0_AssetTag".
constexpr std::string_view kFieldNames[] = {
    "AssetTag",         "AssetTagNum",        "Asset Tag",   "AssetTagNumber", "Manufacturer",
    "ModulePartNumber", "ModuleSerialNumber", "Part Number", "PartNum",        "PartNumber",
    "SerNum",           "Serial Number",      "SerialNum",   "SerialNumber"};
/// What such a name may begin with, followed by a number or not, and "_".
constexpr std::string_view kOwners[] = {"A",        "Array", "B",    "C", "ChannelA",
                                        "ChannelB", "CPU",   "DIMM", "P", "Module"};

constexpr std::string_view kDigits = "0123456789";

std::string_view WithoutNumber(std::string_view text) {
  return text.substr(0, text.find_last_not_of(kDigits) + 1);
}

template <std::size_t kCount>
bool IsOneOf(std::string_view text, const std::string_view (&list)[kCount]) {
  return std::any_of(std::begin(list), std::end(list), [text](std::string_view each) {
    return NModel::EqualIgnoringCase(text, each);
  });
}

bool IsFieldName(std::string_view text) {
  const std::size_t underscore = text.find('_');
  if (underscore != std::string_view::npos &&
      IsOneOf(WithoutNumber(text.substr(0, underscore)), kOwners)) {
    text.remove_prefix(underscore + 1);
  }
  return IsOneOf(WithoutNumber(text), kFieldNames);
}

bool BeginsAsPlaceholder(const std::string& text) {
  return std::any_of(
      std::begin(kBeginnings), std::end(kBeginnings), [&text](std::string_view each) {
        return NModel::EqualIgnoringCase(std::string_view(text).substr(0, each.size()), each);
      });
}

/// Returns whether the text has only zeros and ASCII punctuation, as in "00000000-0000" or
/// "......".
bool IsFiller(const std::string& text) {
  return std::all_of(text.begin(), text.end(), [](char character) {
    const auto code = static_cast<unsigned char>(character);
    const bool letter = (code >= 'A' && code <= 'Z') || (code >= 'a' && code <= 'z');
    return code < 0x80 && !letter && !(code >= '1' && code <= '9');
  });
}

/// As in "XXXXXXX" and "xx".
bool IsCrosses(const std::string& text) {
  return text.size() > 1 && text.find_first_not_of("xX") == std::string::npos;
}

/// As in "[Empty]".
std::string_view WithoutBrackets(std::string_view text) {
  const bool isBracketed = text.size() > 2 && text.front() == '[' && text.back() == ']';
  return isBracketed ? text.substr(1, text.size() - 2) : text;
}

}  // namespace

bool IsPlaceholder(const std::string& text) {
  return IsFiller(text) || IsCrosses(text) || IsOneOf(WithoutBrackets(text), kTexts) ||
         IsFieldName(text) || BeginsAsPlaceholder(text);
}

NDescribe::TReading<std::string> WithoutPlaceholder(const NDescribe::TReading<std::string>& text,
                                                    const std::string& source) {
  if (!text || !IsPlaceholder(*text)) return text;
  return NDescribe::Missing(source + ": placeholder text '" + *text + "'");
}

}  // namespace NVORNQDX20
