// SPDX-License-Identifier: Apache-2.0
#include "placeholders.h"

#include <qdxmodel/names.h>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace NVORNQDX20 {
namespace {

/// Complete texts, compared without regard to case.
constexpr std::string_view kTexts[] = {"0123456789",
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
                                       "Unspecified"};

/// Returns whether the text has only zeros and ASCII punctuation, as in "00000000-0000" or
/// "......".
bool IsFiller(const std::string& text) {
  return std::all_of(text.begin(), text.end(), [](char character) {
    const auto code = static_cast<unsigned char>(character);
    const bool letter = (code >= 'A' && code <= 'Z') || (code >= 'a' && code <= 'z');
    return code < 0x80 && !letter && !(code >= '1' && code <= '9');
  });
}

}  // namespace

bool IsPlaceholder(const std::string& text) {
  return IsFiller(text) ||
         std::any_of(std::begin(kTexts), std::end(kTexts), [&text](std::string_view placeholder) {
           return NModel::EqualIgnoringCase(text, placeholder);
         });
}

}  // namespace NVORNQDX20
