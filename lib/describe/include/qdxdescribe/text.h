// SPDX-License-Identifier: Apache-2.0
/// Cleans texts of firmware and files.
#ifndef QDXDESCRIBE_TEXT_H_
#define QDXDESCRIBE_TEXT_H_

#include <string>
#include <string_view>

namespace NVORNQDX20::NDescribe {

/// Returns the text without control characters, without bytes that are not UTF-8, and without
/// blanks at either end: firmware strings can contain any bytes, and CIM strings are Unicode.
std::string PrintableText(std::string_view text);

/// Returns the first line and removes it from the text.
std::string_view TakeLine(std::string_view& text);

}  // namespace NVORNQDX20::NDescribe

#endif  // QDXDESCRIBE_TEXT_H_
