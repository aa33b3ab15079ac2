// SPDX-License-Identifier: Apache-2.0
/// Texts of the machine on a page: none of them is trusted.
#ifndef LIB_REPORT_ESCAPE_H_
#define LIB_REPORT_ESCAPE_H_

#include <string>
#include <string_view>

#include <qdxsnapshot/value_json.h>

namespace NVORNQDX20::NReport {

/// Returns the text with control characters, and those that are invisible or change the direction
/// of writing, as "[U+202E]"; line ends and tabs stay. A byte that is not UTF-8 becomes U+FFFD.
std::string Visible(std::string_view text);

/// Returns the visible text for an element or an attribute in double quotes.
std::string Escaped(std::string_view text);

/// Returns ASCII text for a script element of JSON, which it cannot end.
std::string ScriptJSON(const TJSON& json);

}  // namespace NVORNQDX20::NReport

#endif  // LIB_REPORT_ESCAPE_H_
