// SPDX-License-Identifier: Apache-2.0
#include "dmi.h"

#include <qdxmodel/names.h>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace NVORNQDX20 {
namespace {

const char* const kFolder = "/sys/class/dmi/id";

/// Whole texts, compared without regard to case.
constexpr std::string_view kPlaceholders[] = {
    "0123456789",
    "123456789",
    "1234567890",
    "Chassis Serial Number",
    "Default",
    "Default string",
    "Empty",
    "Invalid",
    "N/A",
    "None",
    "Not Applicable",
    "Not Available",
    "Not Specified",
    "Null",
    "O.E.M.",
    "OEM",
    "Product Name",
    "Serial Number",
    "SKU",
    "System manufacturer",
    "System Product Name",
    "System Serial Number",
    "System SKU",
    "TBD",
    "To be filled by O.E.M.",
    "To be filled by OEM",
    "Undefined",
    "Unknown",
    "Unspecified",
};

/// Nothing but zeros and ASCII punctuation, as in "00000000-0000" or "......".
bool IsFiller(const std::string& text) {
  return std::all_of(text.begin(), text.end(), [](char character) {
    const auto code = static_cast<unsigned char>(character);
    const bool letter = (code >= 'A' && code <= 'Z') || (code >= 'a' && code <= 'z');
    return code < 0x80 && !letter && !(code >= '1' && code <= '9');
  });
}

bool IsPlaceholder(const std::string& text) {
  return IsFiller(text) || std::any_of(std::begin(kPlaceholders), std::end(kPlaceholders),
                                       [&text](std::string_view placeholder) {
                                         return NModel::EqualIgnoringCase(text, placeholder);
                                       });
}

}  // namespace

TReading ReadDMIString(const THostFiles& files, const std::string& name) {
  if (!files.IsFolder(kFolder)) {
    return TReading::Missing(std::string("no DMI table: ") + kFolder + " does not exist");
  }
  const std::string path = std::string(kFolder) + "/" + name;
  TReading reading = files.ReadLine(path);
  if (reading && IsPlaceholder(*reading.fValue)) {
    return TReading::Missing(path + ": placeholder text '" + *reading.fValue + "'");
  }
  return reading;
}

}  // namespace NVORNQDX20
